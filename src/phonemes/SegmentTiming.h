#pragma once
// SegmentTiming: the durations of a phoneme string, by rule. Each phoneme's duration is
//     minimum + (inherent - minimum) x P, then divided by the speaking-rate factor,
// where P is the product of these factors (1 when none applies):
//   - an unstressed syllable's vowel 0.5, a secondary stress 0.7; a consonant before an
//     unstressed vowel 0.7;
//   - a vowel not in its word's last syllable 0.85;
//   - phrase-final lengthening: the last syllable of a phrase (its vowel and the consonants after
//     it) 1.4;
//   - a vowel before a consonant of its own word: voiceless stop or affricate 0.7, voiceless
//     fricative 0.8, voiced fricative 1.6, voiced stop 1.2, nasal 0.85 (fully in a phrase's last
//     syllable, halfway elsewhere).
// A duration written in the input replaces the rule's. A stop or affricate's duration is its
// closure; its release (burst, then aspiration up to the voice onset time) follows it. A phrase
// starts after 50 ms of silence; a comma, semicolon or colon pauses 200 ms, a full stop,
// exclamation or question mark 300 ms; the utterance ends with 100 ms of silence.
// Times are in ms from the start of the utterance. Pure functions: any thread.
#include "phonemes/PhonemeString.h"

#include <vector>

struct RuleSettings {
    double f0Hz = 120.0;    // f0 at the start of the utterance
    double speed = 1.0;     // speaking-rate factor: 2 speaks twice as fast
    int sampleRate = 11025; // 11025 or 22050
    int intervalMS = 10;    // frame length
};

struct Segment {
    const Phoneme* phoneme = nullptr;
    int stress = -1; // syllables: 0, 1, 2
    double startMS = 0.0;
    double durationMS = 0.0; // the closure of a stop or affricate
    double burstMS = 0.0;    // release of a stop or affricate: burst, then aspiration
    double aspirationMS = 0.0;
    bool wordStart = false;
    bool phraseFinal = false; // in the last syllable of its phrase
    char phraseMark = 0;      // the mark ending the segment's phrase ('.', '?', ...; 0 at the end)
    bool voiceBar = false;    // a voiced closure after a voiced sound keeps voicing

    double endMS() const { return startMS + durationMS + burstMS + aspirationMS; }
    double releaseMS() const { return startMS + durationMS; }
};

class SegmentTiming
{
public:
    static constexpr double kLeadingSilenceMS = 50.0;
    static constexpr double kTrailingSilenceMS = 100.0;
    static constexpr double kMinorPauseMS = 200.0;
    static constexpr double kMajorPauseMS = 300.0;

    // The segments of the tokens, silences included, in time order. Throws PhonemeError for a
    // speaking-rate factor outside 0.25 .. 4 or a string without phonemes.
    static std::vector<Segment> segments(const std::vector<PhonemeToken>& tokens,
                                         const PhonemeInventory& inventory, const RuleSettings& settings);
    // The rule's duration factor P of token i (see above), without the rate factor.
    static double ruleFactor(const std::vector<PhonemeToken>& tokens, std::size_t i);
};
