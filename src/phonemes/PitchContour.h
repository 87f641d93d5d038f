#pragma once
// PitchContour: the f0 track of an utterance, in the f0 row's tenths of hertz. A baseline
// declines from the starting f0 by 10 % over each phrase (a new phrase starts 5 % below where
// the last one started); a vowel with primary stress rises to 12 % above the baseline a third of
// the way in and falls back by its end (a secondary stress half as much); the last syllable of a
// phrase falls to 80 % of the baseline before a full stop, an exclamation mark or the end, rises
// to 135 % before a question mark and by 5 % before a comma. Values stay within 50..500 Hz.
#include "phonemes/RuleTrack.h"
#include "phonemes/SegmentTiming.h"

#include <vector>

class PitchContour
{
public:
    static void apply(const std::vector<Segment>& segments, const RuleSettings& settings, RuleTrack& track);
};
