#pragma once
// PitchContour: the f0 track of an utterance, in the f0 row's tenths of hertz. A baseline
// declines from the starting f0 by 10 % over each phrase (a new phrase starts 5 % below where
// the last one started); a vowel with primary stress rises to 12 % above the baseline a third of
// the way in and falls back by its end (a secondary stress half as much); the last syllable of a
// phrase falls to 80 % of the baseline before a full stop, an exclamation mark or the end, rises
// to 135 % before a question mark and by 5 % before a comma. Values stay within 50..500 Hz.
//
// The glottal open phase (oq, in output samples) follows the period: half of it, the open
// quotient of a man's modal voice (Holmberg, Hillman & Perkell 1988, JASA 84, glottal airflow in
// soft, normal and loud voice; Klatt & Klatt 1990, JASA 87, take the same for modal voice),
// within the row's 10..65 samples (at 22050 Hz a long period is held at 65). The factory 20
// samples are an open quotient of about a fifth at 120 Hz: a pressed voice whose source
// spectrum rises to a broad peak near 500 Hz, on top of the first formant of /i/ and /u/, which
// the formant tracks then find 10-20 % high.
#include "phonemes/RuleTrack.h"
#include "phonemes/SegmentTiming.h"

#include <vector>

class PitchContour
{
public:
    static void apply(const std::vector<Segment>& segments, const RuleSettings& settings, RuleTrack& track);
    // The open phase at every f0 anchor, for a track that apply() has filled.
    static void openPhase(int sampleRate, RuleTrack& track);
    static constexpr double kOpenQuotient = 0.5;
};
