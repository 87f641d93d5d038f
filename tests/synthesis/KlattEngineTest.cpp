#include "SynthesisTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>

namespace
{

// Frequency (a multiple of f0) of the strongest harmonic between lo and hi Hz.
double strongestHarmonic(const std::vector<int>& x, double f0, double lo, double hi)
{
    double best = 0.0, bestFreq = 0.0;
    for (double f = std::ceil(lo / f0) * f0; f <= hi; f += f0) {
        const double m = dftMagnitude(x, 2000, 4096, f, 11025.0);
        if (m > best) {
            best = m;
            bestFreq = f;
        }
    }
    return bestFreq;
}

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

TEST(KlattEngine, SteadyVowelsPeakAtTheirFormants)
{
    struct Vowel {
        int f1, f2, f3;
    };
    for (const Vowel v : {Vowel{700, 1220, 2600}, Vowel{300, 2200, 3000}}) {
        klatt_frame_t f = quietFactoryFrame();
        f.f1 = v.f1;
        f.f2 = v.f2;
        f.f3 = v.f3;
        const std::vector<int> x = steadyRun(f, 60);
        EXPECT_NEAR(strongestHarmonic(x, 100.0, 200, v.f1 + 250), v.f1, 100) << v.f1;
        EXPECT_NEAR(strongestHarmonic(x, 100.0, v.f2 - 300, v.f2 + 300), v.f2, 100) << v.f2;
        EXPECT_NEAR(strongestHarmonic(x, 100.0, v.f3 - 300, std::min(v.f3 + 300, 3100)), v.f3, 100) << v.f3;
        // A formant stands well above the trough between F2 and F3.
        const double trough = dftMagnitude(x, 2000, 4096, (v.f2 + v.f3) / 200 * 100.0, 11025.0);
        EXPECT_GT(dftMagnitude(x, 2000, 4096, v.f2 / 100 * 100.0, 11025.0), 3.0 * trough);
        // Spectral tilt takes the high formants down against the first.
        f.tl = 20;
        const std::vector<int> tilted = steadyRun(f, 60);
        auto highOverLow = [&](const std::vector<int>& y) {
            return dftMagnitude(y, 2000, 4096, v.f3 / 100 * 100.0, 11025.0) /
                   dftMagnitude(y, 2000, 4096, v.f1 / 100 * 100.0, 11025.0);
        };
        EXPECT_LT(highOverLow(tilted), 0.5 * highOverLow(x));
    }
}

TEST(KlattEngine, EveryGlottalSourceRepeatsAtThePitchPeriod)
{
    // f0 in 0.1 Hz. 100 Hz is 110.25 output samples, so the output repeats after four periods
    // (441 samples); 150 Hz is 73.5, repeating after two (147). A steady noise-free frame has
    // settled after 2000 samples.
    for (int source : {1, 2, 3}) {
        for (const auto& [f0, repeat] : {std::pair{1000, 441}, std::pair{1500, 147}}) {
            klatt_frame_t f = quietFactoryFrame();
            f.f0 = f0;
            klatt_global_t g = preparedRun(11025, 5, 110, source);
            g.source_sample_scale = 10.0; // the driver's 0.00001 makes the sampled source inaudible
            const std::vector<int> x = runFrames(g, f, 40);
            EXPECT_EQ(g.period_len, 40 * 11025 / f0);
            double energy = 0.0, change = 0.0;
            for (int n = 2000; n < 3500; ++n) {
                energy += double(x[n]) * x[n];
                change += double(x[n] - x[n + repeat]) * (x[n] - x[n + repeat]);
            }
            EXPECT_GT(energy, 1e6) << "source " << source << " f0 " << f0;
            EXPECT_LT(change, 1e-3 * energy) << "source " << source << " f0 " << f0;
        }
    }
}

TEST(KlattEngine, OpenPhaseLimits)
{
    struct Case {
        int source, f0, oq, open;
    };
    const Case cases[] = {
        {2, 1000, 5, 40},    // too short: raised to 40
        {2, 1000, 200, 439}, // longer than the period (441): cut to period - 2
        {2, 500, 100, 400},  // longer than the shape table: last shape used
        {1, 500, 100, 263},  // impulsive source: capped at 263
    };
    for (const Case& c : cases) {
        klatt_frame_t f = quietFactoryFrame();
        f.f0 = c.f0;
        f.oq = c.oq;
        klatt_global_t run = preparedRun(11025, 5, 110, c.source);
        EXPECT_FALSE(allZero(runFrames(run, f, 20)));
        EXPECT_EQ(run.open_len, c.open) << "oq " << c.oq;
        if (c.source == 2) {
            EXPECT_EQ(run.pulse_b, CKlattEngine::B0[std::min(c.open - 40, 223)]);
        }
    }
}

TEST(KlattEngine, VoicingIsWrittenBackAndPoleZeroPairCancels)
{
    // The voicing the engine used (av - 7 dB) is written back into the caller's frame.
    klatt_frame_t f = quietFactoryFrame();
    f.av = 20;
    klatt_global_t g = preparedRun(11025, 5, 110);
    std::vector<int> out(110);
    CKlattEngine().parwave(&g, &f, out.data());
    EXPECT_EQ(f.av, 13);

    // A nasal zero on the nasal pole cancels it wherever the pair sits.
    klatt_frame_t a = quietFactoryFrame(), b = quietFactoryFrame();
    b.fnz = b.fnp = 450;
    b.bnz = b.bnp = 150;
    const std::vector<int> x = steadyRun(a, 20), y = steadyRun(b, 20);
    for (std::size_t i = 0; i < x.size(); ++i)
        ASSERT_LE(std::abs(x[i] - y[i]), 1) << i;
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
    // Unvoiced, parallel amplitudes and bypass off: aspiration still reaches the output through
    // the cascade, frication (parallel branch only) does not.
    klatt_frame_t f = quietFactoryFrame();
    f.f0 = 0;
    f.ab = 0;
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

TEST(KlattTables, ShapesAreConsistent)
{
    // The pulse shapes follow 1920000 / open^2, rounded up in places.
    int rounded = 0;
    for (int open = 40; open <= 263; ++open) {
        const int d = CKlattEngine::B0[open - 40] - 1920000 / (open * open);
        EXPECT_TRUE(d == 0 || d == 1) << open;
        rounded += d;
    }
    EXPECT_EQ(rounded, 21);

    // Every 6 dB doubles the gain.
    for (int dB = 19; dB + 6 <= 87; ++dB)
        EXPECT_NEAR(CKlattEngine::amptable[dB + 6] / CKlattEngine::amptable[dB], 2.0, 0.2) << dB;
}
