#pragma once
// PhonemeRules: synthesis by rule. Turns a phoneme string into the frames of a parameter
// document: the durations of SegmentTiming, then one track per parameter the rules drive, each
// made of anchor points joined by straight lines exactly as the table's interpolation joins
// anchors (so Interpolate All gives the same values back):
//   - sources: av, ah, af and the parallel amplitudes (ab, a2f-a6f) step at the segment and
//     phase boundaries: closure (silent, or a voice bar after a voiced sound), burst (frication
//     through the parallel branch), aspiration up to the voice onset, then voicing;
//   - formants f1-f3: a vowel holds its target (a diphthong glides from its first to its second)
//     and moves to its neighbours over at most 50 ms; next to a consonant the transition starts
//     at the locus value C + k (V - C) (F1 of an obstruent at the consonant's own low F1), so
//     /b d g/ start their transitions at different F2 and F3 (after an aspirated release the
//     transition starts at the release, in the aspiration); other neighbours meet halfway;
//   - bandwidths b1-b3 and the nasal zero step with the segments;
//   - f0 and the glottal open phase oq: see PitchContour.
// Rows the rules do not drive keep their defaults. Pure functions: any thread.
#include "document/ParameterDefinition.h"
#include "phonemes/SegmentTiming.h"

#include <array>
#include <string>
#include <utility>
#include <vector>

struct RuleFrames {
    int intervalMS = 10;
    int frames = 0;
    // Values by row and frame, every row filled (undriven rows with their defaults).
    std::array<std::vector<int>, kParameterCount> rows;
    std::vector<std::pair<int, int>> anchors; // (row, frame), frames from 0
    std::vector<Segment> segments;
    std::string phonemes; // the input as ARPAbet

    int value(int row, int frame) const { return rows[row][frame]; }
};

class PhonemeRules
{
public:
    static constexpr double kTransitionMS = 50.0;

    // Throws PhonemeError (see SegmentTiming::segments).
    static RuleFrames frames(const std::vector<PhonemeToken>& tokens, const PhonemeInventory& inventory,
                             const RuleSettings& settings);
};
