// The f0 contour: declination, accents on stressed syllables, the phrase-final movement.
#include "phonemes/PitchContour.h"

#include <algorithm>
#include <cmath>

namespace
{

// One phrase: its time span and starting f0.
struct Phrase {
    double startMS, endMS, f0;
    double baseline(double ms) const
    {
        const double span = std::max(endMS - startMS, 1.0);
        return f0 * (1.0 - 0.10 * std::clamp((ms - startMS) / span, 0.0, 1.0));
    }
};

int tenths(double hz)
{
    return static_cast<int>(std::lround(std::clamp(hz, 50.0, 500.0) * 10.0));
}

// The end of the phrase that segment i belongs to: the start of the next pause.
double phraseEnd(const std::vector<Segment>& segments, std::size_t i)
{
    for (std::size_t k = i; k < segments.size(); ++k)
        if (segments[k].phoneme->silent())
            return segments[k].startMS;
    return segments.back().endMS();
}

} // namespace

void PitchContour::apply(const std::vector<Segment>& segments, const RuleSettings& settings, RuleTrack& track)
{
    Phrase phrase{0.0, 1.0, settings.f0Hz};
    double phraseStartF0 = settings.f0Hz;
    bool inPhrase = false;
    track.setAt(Row::f0, 0.0, tenths(settings.f0Hz));
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const Segment& s = segments[i];
        if (s.phoneme->silent()) {
            if (inPhrase)
                phraseStartF0 *= 0.95;
            inPhrase = false;
            continue;
        }
        if (!inPhrase) {
            phrase = Phrase{s.startMS, phraseEnd(segments, i), phraseStartF0};
            inPhrase = true;
            track.setAt(Row::f0, s.startMS, tenths(phrase.f0));
        }
        if (!s.phoneme->syllabic())
            continue;
        const double start = s.startMS, end = s.endMS();
        const double accent = s.stress == 1 ? 0.12 : s.stress == 2 ? 0.06 : 0.0;
        const double peakAt = start + (end - start) / 3.0;
        track.setAt(Row::f0, start, tenths(phrase.baseline(start) * (1.0 + accent / 3.0)));
        track.setAt(Row::f0, peakAt, tenths(phrase.baseline(peakAt) * (1.0 + accent)));
        double final = phrase.baseline(end);
        if (s.phraseFinal) {
            if (s.phraseMark == '?')
                final *= 1.35;
            else if (s.phraseMark == ',' || s.phraseMark == ';' || s.phraseMark == ':')
                final *= 1.05;
            else
                final *= 0.80;
        }
        track.setAt(Row::f0, end, tenths(final));
    }
}

void PitchContour::openPhase(int sampleRate, RuleTrack& track)
{
    const auto& limits = kFactoryParameters[Row::oq];
    for (const auto& [frame, tenthsHz] : track.points(Row::f0)) {
        const double samples = kOpenQuotient * sampleRate * 10.0 / std::max(tenthsHz, 1);
        track.set(Row::oq, frame,
                  std::clamp(static_cast<int>(std::lround(samples)), limits.minValue, limits.maxValue));
    }
}
