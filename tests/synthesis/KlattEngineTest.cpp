#include "SynthesisTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>

namespace
{

// Energy of x in the samples whose quarter-rate phase in a 441-sample period lies in (lo, hi).
double energyAtPhases(const std::vector<double>& x, int lo, int hi)
{
    double sum = 0.0;
    for (std::size_t n = 0; n < x.size(); ++n)
        if (const int phase = static_cast<int>(4 * n % 441); phase > lo && phase < hi)
            sum += x[n] * x[n];
    return sum;
}

} // namespace

// Where the formants of a synthesized vowel lie is measured in the display tests (the analysis
// finds them again); periods, open phases, the nasal pair, spectral tilt and every table entry
// are checked against the plain transcription of the equations (KlattReferenceTest.cpp).

TEST(KlattEngine, OpenPhaseLimits)
{
    // Beyond the row's limits (oq 10..65), where the reference comparison cannot go: an open
    // phase longer than the shape table takes its last shape; the impulsive source caps it at 263.
    klatt_frame_t f = quietFactoryFrame();
    f.f0 = 500;
    f.oq = 100;
    for (int source : {2, 1}) {
        klatt_global_t run = preparedRun(11025, 5, 110, source);
        EXPECT_FALSE(allZero(runFrames(run, f, 20)));
        EXPECT_EQ(run.open_len, source == 2 ? 400 : 263) << "source " << source;
        if (source == 2) {
            EXPECT_EQ(run.pulse_b, CKlattEngine::B0[223]);
        }
    }
}

TEST(KlattEngine, VoicingIsWrittenBack)
{
    // The voicing the engine used (av - 7 dB) is written back into the caller's frame.
    klatt_frame_t f = quietFactoryFrame();
    f.av = 20;
    klatt_global_t g = preparedRun(11025, 5, 110);
    std::vector<int> out(110);
    CKlattEngine().parwave(&g, &f, out.data());
    EXPECT_EQ(f.av, 13);
}

TEST(KlattEngine, FlutterMovesF0OnlyWhenAsked)
{
    klatt_global_t g = preparedRun(11025, 5, 110);
    std::vector<int> out(110);
    std::set<int> seen;
    for (int i = 0; i < 40; ++i) {
        g.flutter_percent = i < 20 ? 0 : 100;
        klatt_frame_t f = quietFactoryFrame();
        CKlattEngine().parwave(&g, &f, out.data());
        seen.insert(f.f0);
        EXPECT_LE(std::abs(f.f0 - 1000), i < 20 ? 0 : 60); // at most 2 x 1 x 3 sines x 10
    }
    EXPECT_GE(seen.size(), 3u); // the three sines nearly repeat every 10 frames
}

TEST(KlattEngine, NoiseRoutingOutputSelectionAndSilence)
{
    // Unvoiced, parallel amplitudes (the nasal's too) and bypass off: aspiration still reaches
    // the output through the cascade, frication (parallel branch only) does not.
    klatt_frame_t f = quietFactoryFrame();
    f.f0 = 0;
    f.ab = f.anv = 0;
    for (int row = Row::a8f; row <= Row::a1f; ++row)
        f[row] = 0;
    klatt_frame_t aspirated = f, fricated = f;
    aspirated.ah = 60;
    fricated.af = 60;
    klatt_global_t g = preparedRun(11025, 5, 110);
    EXPECT_FALSE(allZero(runFrames(g, aspirated, 10)));
    EXPECT_EQ(g.period_len, 4);
    EXPECT_TRUE(allZero(steadyRun(fricated, 10)));
    fricated.a3f = 60;
    EXPECT_FALSE(allZero(steadyRun(fricated, 10)));
    EXPECT_EQ(steadyRun(klatt_frame_t{}, 10), std::vector<int>(1100, 0)); // an all-zero frame is silent

    // Selections outside 1..7 give the normal output; inside they tap another signal.
    klatt_frame_t v = quietFactoryFrame();
    const std::vector<int> normal = steadyRun(v, 10);
    for (int select : {1, 9}) {
        klatt_global_t t = preparedRun(11025, 5, 110);
        t.output_select = static_cast<std::uint8_t>(select);
        EXPECT_EQ(runFrames(t, v, 10) == normal, select == 9) << select;
    }
}

TEST(KlattEngine, NoiseFollowsThePitchPeriod)
{
    // While voiced, noise is halved in the second half of each period (period 441 quarter-rate
    // samples, 110.25 output samples): tap the aspiration and compare the halves.
    klatt_frame_t breathy = quietFactoryFrame();
    breathy.ah = 60;
    klatt_global_t tapped = preparedRun(11025, 5, 110);
    tapped.output_select = 2;
    const std::vector<int> aspiration = runFrames(tapped, breathy, 100);
    const std::vector<double> noise(aspiration.begin(), aspiration.end());
    EXPECT_NEAR(std::sqrt(energyAtPhases(noise, 240, 420) / energyAtPhases(noise, 20, 200)), 0.5, 0.1);

    // Breathiness enters the voicing during the open phase only (80 quarter-rate samples).
    klatt_frame_t breath = quietFactoryFrame();
    breath.atu = 60;
    klatt_global_t plain = preparedRun(11025, 5, 110), noisy = preparedRun(11025, 5, 110);
    plain.output_select = noisy.output_select = 1;
    const std::vector<int> clean = runFrames(plain, quietFactoryFrame(), 100);
    const std::vector<int> withBreath = runFrames(noisy, breath, 100);
    std::vector<double> added(clean.size());
    for (std::size_t n = 0; n < clean.size(); ++n)
        added[n] = double(withBreath[n]) - clean[n];
    const double open = energyAtPhases(added, -1, 72);
    EXPECT_GT(open, 0.0);
    EXPECT_LT(energyAtPhases(added, 100, 420), 0.01 * open);
}

TEST(KlattEngine, FramesOfAnySizeWriteExactlyTheirSamples)
{
    // Sentinels after the frame: nothing is written past its samples.
    const klatt_frame_t f = quietFactoryFrame();
    for (int n : {0, 1, 37, 129}) {
        klatt_global_t g = preparedRun(11025, 5, n);
        std::vector<int> out(n + 8, 0x5a5a5a5a);
        klatt_frame_t scratch = f;
        CKlattEngine().parwave(&g, &scratch, out.data());
        for (int i = n; i < n + 8; ++i)
            EXPECT_EQ(out[i], 0x5a5a5a5a) << "frame of " << n;
        EXPECT_EQ(g.sample_index, n);
    }
}

TEST(KlattEngine, AbsurdParametersStayInRange)
{
    klatt_frame_t f = quietFactoryFrame();
    f.b1 = -3000; // an unstable resonator
    f.oq = 2000000000;
    f.skew = -2000000000;
    f.av = -2147483647 - 1;
    f.gain = 87;
    for (int source : {1, 2, 3}) {
        klatt_global_t g = preparedRun(11025, 5, 110, source);
        g.flutter_percent = 100;
        for (int v : runFrames(g, f, 5)) {
            ASSERT_GE(v, -32768);
            ASSERT_LE(v, 32767);
        }
    }
}
