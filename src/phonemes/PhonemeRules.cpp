// Synthesis by rule: sources, formant transitions and bandwidths of each segment as anchor
// points, then the tracks filled between them (see PhonemeRules.h).
#include "phonemes/PhonemeRules.h"

#include "phonemes/PitchContour.h"
#include "phonemes/RuleTrack.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr int kFormantRows[3] = {Row::f1, Row::f2, Row::f3};
constexpr int kBandwidthRows[3] = {Row::b1, Row::b2, Row::b3};
constexpr int kParallelRows[5] = {Row::a2f, Row::a3f, Row::a4f, Row::a5f, Row::a6f};

// The source amplitudes of one phase of a segment.
struct Sources {
    int av = 0, ah = 0, af = 0, ab = 0;
    std::array<int, 5> a{};
};

void holdSources(RuleTrack& track, double from, double to, const Sources& s)
{
    track.hold(Row::av, from, to, s.av);
    track.hold(Row::ah, from, to, s.ah);
    track.hold(Row::af, from, to, s.af);
    track.hold(Row::ab, from, to, s.ab);
    for (int i = 0; i < 5; ++i)
        track.hold(kParallelRows[i], from, to, s.a[i]);
}

void addSources(const Segment& s, RuleTrack& track)
{
    const Phoneme& p = *s.phoneme;
    Sources steady;
    if (p.closure()) {
        Sources closure;
        closure.av = s.voiceBar ? p.av : 0;
        holdSources(track, s.startMS, s.releaseMS(), closure);
        Sources burst;
        burst.af = p.af;
        burst.ab = p.ab;
        burst.a = p.a;
        holdSources(track, s.releaseMS(), s.releaseMS() + s.burstMS, burst);
        Sources aspiration;
        aspiration.ah = p.ah;
        holdSources(track, s.releaseMS() + s.burstMS, s.endMS(), aspiration);
        return;
    }
    if (!p.silent()) {
        // An unstressed vowel is a little softer than a stressed one.
        steady.av = p.syllabic() && s.stress == 0 ? std::max(0, p.av - 3) : p.av;
        steady.ah = p.ah;
        steady.af = p.af;
        steady.ab = p.ab;
        steady.a = p.a;
    }
    holdSources(track, s.startMS, s.endMS(), steady);
}

// A segment's formant target near its start or its end (a diphthong ends at its second target).
int target(const Phoneme& p, int formant, bool atEnd)
{
    return atEnd && p.kind == Phoneme::Diphthong && p.fEnd[formant] > 0 ? p.fEnd[formant] : p.f[formant];
}

bool obstruent(const Phoneme& p)
{
    return p.closure() || p.kind == Phoneme::Fricative;
}

// Where a consonant's transition to or from a vowel starts: C + k (V - C); an obstruent keeps
// its own low F1.
int locus(const Phoneme& c, const Phoneme& v, int formant, bool vowelAtEnd)
{
    const double k = formant == 0 && obstruent(c) ? 0.0 : c.k;
    const int vowel = target(v, formant, vowelAtEnd);
    return static_cast<int>(std::lround(c.f[formant] + k * (vowel - c.f[formant])));
}

// A consonant's value next to silence: its locus towards the vowel on its other side, if any.
int alone(const std::vector<Segment>& seg, std::size_t i, int formant, bool lookRight)
{
    const Phoneme& c = *seg[i].phoneme;
    if (c.syllabic())
        return target(c, formant, !lookRight);
    const std::size_t j = lookRight ? i + 1 : i - 1;
    if (j < seg.size() && seg[j].phoneme->syllabic())
        return locus(c, *seg[j].phoneme, formant, !lookRight);
    return c.f[formant];
}

// The value of a formant at the boundary between segments i - 1 and i.
int boundary(const std::vector<Segment>& seg, std::size_t i, int formant)
{
    const Phoneme& a = *seg[i - 1].phoneme;
    const Phoneme& b = *seg[i].phoneme;
    if (b.silent())
        return a.silent() ? a.f[formant] : alone(seg, i - 1, formant, false);
    if (a.silent())
        return alone(seg, i, formant, true);
    if (a.syllabic() && b.syllabic())
        return (target(a, formant, true) + target(b, formant, false)) / 2;
    if (a.syllabic())
        return locus(b, a, formant, true);
    if (b.syllabic())
        return locus(a, b, formant, false);
    return (a.f[formant] + b.f[formant]) / 2;
}

void addFormants(const std::vector<Segment>& seg, RuleTrack& track)
{
    for (std::size_t i = 0; i < seg.size(); ++i) {
        const Segment& s = seg[i];
        const Phoneme& p = *s.phoneme;
        for (int f = 0; f < 3; ++f) {
            const int row = kFormantRows[f];
            const int left = i == 0 ? p.f[f] : boundary(seg, i, f);
            const int right = i + 1 < seg.size() ? boundary(seg, i + 1, f) : p.f[f];
            // After an aspirated release the transition has begun in the aspiration: it runs
            // from the release (where the stop put its locus value) to the vowel's target.
            const bool afterAspiration = i > 0 && seg[i - 1].aspirationMS > 0 && p.syllabic();
            if (!afterAspiration)
                track.setAt(row, s.startMS, left);
            const double length = s.endMS() - s.startMS;
            if (p.syllabic()) {
                const double in = p.kind == Phoneme::Diphthong
                                      ? 0.25 * length
                                      : std::min(PhonemeRules::kTransitionMS, 0.4 * length);
                const double out = p.kind == Phoneme::Diphthong
                                       ? 0.15 * length
                                       : std::min(PhonemeRules::kTransitionMS, 0.4 * length);
                track.setAt(row, s.startMS + in, target(p, f, false));
                track.setAt(row, s.endMS() - out, target(p, f, true));
            } else if (p.closure()) {
                // Held through the closure; the release starts from where the next transition does.
                track.setAt(row, s.releaseMS(), right);
            } else if (!p.silent() && !obstruent(p) && p.kind != Phoneme::Aspirate) {
                track.setAt(row, s.startMS + length / 2.0, p.f[f]);
            }
            if (i + 1 == seg.size())
                track.setAt(row, s.endMS(), right);
        }
        for (int f = 0; f < 3; ++f)
            track.hold(kBandwidthRows[f], s.startMS, s.endMS(), p.b[f]);
        track.hold(Row::fnz, s.startMS, s.endMS(), p.fnz);
        track.hold(Row::b6f, s.startMS, s.endMS(), p.b6f);
    }
}

} // namespace

RuleFrames PhonemeRules::frames(const std::vector<PhonemeToken>& tokens, const PhonemeInventory& inventory,
                                const RuleSettings& settings)
{
    RuleFrames out;
    out.intervalMS = settings.intervalMS;
    out.segments = SegmentTiming::segments(tokens, inventory, settings);
    out.phonemes = PhonemeString::describe(tokens);
    RuleTrack track(settings.intervalMS);
    for (const Segment& s : out.segments)
        addSources(s, track);
    addFormants(out.segments, track);
    PitchContour::apply(out.segments, settings, track);
    PitchContour::openPhase(settings.sampleRate, track);
    out.frames = track.frameAt(out.segments.back().endMS()) + 1;
    // The nasal pole stays where the zero cancels it outside nasals.
    track.set(Row::fnp, 0, 270);
    // Aspiration also reaches the parallel F1; the rules give it no share there.
    track.set(Row::a1f, 0, 0);
    for (int row = 0; row < kParameterCount; ++row)
        out.rows[row] = track.fill(row, out.frames, kFactoryParameters[row].defaultValue);
    out.anchors = track.anchors(out.frames);
    return out;
}
