// What the project's own analysis finds in speech made by rule: vowel formants, stop places,
// fricative spectra.
#include "phonemes/RuleTestSupport.h"

#include <gtest/gtest.h>

#include <array>

using namespace ruletest;

TEST(PhonemeAcoustics, SteadyVowelsHaveTheTablesFormantsWithinFivePercent)
{
    // At the default f0 and at two lower starts, so that no harmonic happens to sit on a formant.
    for (double f0 : {RuleSettings{}.f0Hz, 110.0, 100.0}) {
        RuleSettings settings;
        settings.f0Hz = f0;
        for (const char* vowel : {"IY", "IH", "EH", "AE", "AA", "AO", "UH", "UW", "AH", "ER"}) {
            const RuleFrames frames = framesOf(std::string(vowel) + "1:300", settings);
            const Segment& s = segmentOf(frames, vowel);
            ASSERT_NEAR(s.durationMS, 300.0, 1e-9);
            // The middle 200 ms, clear of the transitions from and to silence.
            const auto [f1, f2] = measureF1F2(*synthesized(frames), s.startMS + 50.0, s.endMS() - 50.0);
            const Phoneme& p = *s.phoneme;
            EXPECT_NEAR(f1, p.f[0], 0.05 * p.f[0]) << vowel << " at f0 " << f0;
            EXPECT_NEAR(f2, p.f[1], 0.05 * p.f[1]) << vowel << " at f0 " << f0;
        }
    }
}

TEST(PhonemeAcoustics, StopPlacesStartTheirTransitionsWhereTheLociPutThem)
{
    for (const char* vowel : {"AA", "IY", "UW", "AE"}) {
        std::array<int, 3> f2{}, f3{};
        const char* stops[] = {"B", "D", "G"};
        for (int i = 0; i < 3; ++i) {
            const RuleFrames frames = framesOf(std::string(stops[i]) + " " + vowel + "1");
            const Segment& stop = segmentOf(frames, stops[i]);
            // The first voiced frame after the release.
            int frame = static_cast<int>(stop.releaseMS() / 10.0);
            while (frames.value(Row::av, frame) == 0)
                ++frame;
            f2[i] = frames.value(Row::f2, frame);
            f3[i] = frames.value(Row::f3, frame);
        }
        EXPECT_LT(f2[0], f2[1]) << vowel;
        EXPECT_LT(f2[0], f2[2]) << vowel;
        EXPECT_LT(f3[2] - f2[2], f3[1] - f2[1]) << vowel;
        EXPECT_LT(f3[2] - f2[2], f3[0] - f2[0]) << vowel;
    }
}

TEST(PhonemeAcoustics, FricativeEnergyPeaksWhereTheirPlaceOfArticulationPutsIt)
{
    // At 22050 Hz the peak of /s/ is the sixth parallel formant at the top of its row, 4999 Hz,
    // give or take a bin of noise. Nothing within the parameters' limits lifts it above 5 kHz: no
    // parallel formant goes higher; the bypass adds noise whose level falls with frequency (the
    // noise source and the output low-pass), so it adds most below 5 kHz; the cascade's seventh
    // and eighth formants filter voicing and aspiration only, after the lower formants.
    struct Case {
        const char* arpa;
        int rate;
        double low, high;
    };
    for (const Case& c : {Case{"S", 11025, 4000.0, 5513.0}, Case{"SH", 11025, 2000.0, 4000.0},
                          Case{"S", 22050, 4899.0, 5099.0}}) {
        RuleSettings settings;
        settings.sampleRate = c.rate;
        const RuleFrames frames = framesOf(std::string(c.arpa) + ":300", settings);
        const Segment& segment = segmentOf(frames, c.arpa);
        const double peak =
            spectralPeakHz(synthesize(frames, c.rate), c.rate, segment.startMS + 50, segment.endMS() - 50);
        EXPECT_GT(peak, c.low) << c.arpa << " at " << c.rate << " Hz";
        EXPECT_LT(peak, c.high) << c.arpa << " at " << c.rate << " Hz";
    }
}
