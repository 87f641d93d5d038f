// Segment durations by rule (see SegmentTiming.h for the rules).
#include "phonemes/SegmentTiming.h"

#include "phonemes/PhonemeError.h"

#include <algorithm>
#include <cmath>

namespace
{

bool isPhoneme(const std::vector<PhonemeToken>& t, std::size_t i)
{
    return i < t.size() && t[i].phoneme != nullptr;
}

// True when token j follows token i within the same word.
bool sameWordNext(const std::vector<PhonemeToken>& t, std::size_t i, std::size_t j)
{
    for (std::size_t k = i + 1; k <= j; ++k)
        if (!isPhoneme(t, k) || t[k].wordStart)
            return false;
    return true;
}

bool syllableAfterInWord(const std::vector<PhonemeToken>& t, std::size_t i)
{
    for (std::size_t k = i + 1; isPhoneme(t, k) && !t[k].wordStart; ++k)
        if (t[k].phoneme->syllabic())
            return true;
    return false;
}

// In the phrase's last syllable: no syllable after it before the phrase ends, and (for a
// consonant) a syllable before it in the phrase.
bool inLastSyllable(const std::vector<PhonemeToken>& t, std::size_t i)
{
    for (std::size_t k = i + 1; isPhoneme(t, k); ++k)
        if (t[k].phoneme->syllabic())
            return false;
    if (t[i].phoneme->syllabic())
        return true;
    for (std::size_t k = i; k-- > 0 && isPhoneme(t, k);)
        if (t[k].phoneme->syllabic())
            return true;
    return false;
}

// The effect of the consonant after a vowel on the vowel.
double postVocalic(const Phoneme& next)
{
    if (next.closure())
        return next.voiced ? 1.2 : 0.7;
    if (next.kind == Phoneme::Fricative)
        return next.voiced ? 1.6 : 0.8;
    if (next.kind == Phoneme::Nasal)
        return 0.85;
    return 1.0;
}

char phraseMark(const std::vector<PhonemeToken>& t, std::size_t i)
{
    for (std::size_t k = i; k < t.size(); ++k)
        if (!t[k].phoneme)
            return t[k].mark;
    return 0;
}

} // namespace

double SegmentTiming::ruleFactor(const std::vector<PhonemeToken>& t, std::size_t i)
{
    const Phoneme& p = *t[i].phoneme;
    double factor = 1.0;
    const bool last = inLastSyllable(t, i);
    if (p.syllabic()) {
        if (t[i].stress == 0)
            factor *= 0.5;
        else if (t[i].stress == 2)
            factor *= 0.7;
        if (syllableAfterInWord(t, i))
            factor *= 0.85;
        if (sameWordNext(t, i, i + 1) && !t[i + 1].phoneme->syllabic()) {
            const double effect = postVocalic(*t[i + 1].phoneme);
            factor *= last ? effect : 1.0 + (effect - 1.0) / 2.0;
        }
    } else if (sameWordNext(t, i, i + 1) && t[i + 1].phoneme->syllabic() && t[i + 1].stress == 0) {
        factor *= 0.7;
    }
    if (last)
        factor *= 1.4;
    return factor;
}

std::vector<Segment> SegmentTiming::segments(const std::vector<PhonemeToken>& tokens,
                                             const PhonemeInventory& inventory, const RuleSettings& settings)
{
    if (!(settings.speed >= 0.25 && settings.speed <= 4.0))
        throw PhonemeError("the speaking-rate factor must lie between 0.25 and 4");
    if (std::none_of(tokens.begin(), tokens.end(), [](const PhonemeToken& t) { return t.phoneme; }))
        throw PhonemeError("no phonemes to synthesize");

    std::vector<Segment> out;
    double now = 0.0;
    auto pause = [&](double ms, char mark) {
        Segment s;
        s.phoneme = &inventory.silence();
        s.startMS = now;
        s.durationMS = ms;
        s.phraseMark = mark;
        now += ms;
        out.push_back(s);
    };
    pause(kLeadingSilenceMS, 0);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const PhonemeToken& t = tokens[i];
        if (!t.phoneme) {
            const bool minor = t.mark == ',' || t.mark == ';' || t.mark == ':';
            if (!out.empty() && !out.back().phoneme->silent())
                pause(minor ? kMinorPauseMS : kMajorPauseMS, t.mark);
            continue;
        }
        const Phoneme& p = *t.phoneme;
        Segment s;
        s.phoneme = &p;
        s.stress = t.stress;
        s.startMS = now;
        s.wordStart = t.wordStart;
        s.phraseFinal = inLastSyllable(tokens, i);
        s.phraseMark = phraseMark(tokens, i);
        const double rule = p.minimumMS + (p.inherentMS - p.minimumMS) * ruleFactor(tokens, i);
        s.durationMS = t.durationMS > 0 ? t.durationMS : rule / settings.speed;
        if (p.closure()) {
            // The release keeps its length at any rate: bursts and voice onset times are
            // properties of the stop, not of the tempo.
            s.burstMS = std::min<double>(p.burstMS, p.votMS > 0 ? p.votMS : p.burstMS);
            const bool beforeSyllable = isPhoneme(tokens, i + 1) && tokens[i + 1].phoneme->syllabic();
            s.aspirationMS = beforeSyllable ? std::max(0, p.votMS - p.burstMS) : 0.0;
            s.voiceBar = p.voiced && !out.empty() && out.back().phoneme->voiced;
        }
        now = s.endMS();
        out.push_back(s);
    }
    pause(kTrailingSilenceMS, 0);
    return out;
}
