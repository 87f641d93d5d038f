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

TEST(KlattEngine, PeriodOpenPhaseAndLowpassArithmetic)
{
    klatt_global_t g = preparedRun(11025, 5, 110);
    EXPECT_EQ(g.lowpass_freq, 1047); // 950 * 11025 / 10000, truncated
    EXPECT_EQ(g.lowpass_bw, 694);
    EXPECT_EQ(preparedRun(22050, 8, 220).lowpass_freq, 2094);
    runFrames(g, quietFactoryFrame(), 1); // f0 1000 = 100 Hz
    EXPECT_EQ(g.period_len, 441);         // quarter-rate samples: 110.25 output samples
    EXPECT_EQ(g.open_len, 80);            // oq 20
    EXPECT_EQ(g.mod_point, 220);
    EXPECT_EQ(g.sample_index, 110);

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

TEST(KlattEngine, DecibelRulesForVoicingAndGain)
{
    klatt_frame_t f = quietFactoryFrame();
    f.av = 19; // 19 - 7 = 12: below the first non-zero table entry
    EXPECT_TRUE(allZero(steadyRun(f, 10)));
    f.av = 20;
    klatt_global_t g = preparedRun(11025, 5, 110);
    klatt_frame_t scratch = f;
    std::vector<int> out(110);
    CKlattEngine().parwave(&g, &scratch, out.data());
    EXPECT_DOUBLE_EQ(g.gain_voice, 0.006);
    EXPECT_EQ(scratch.av, 13); // written back
    EXPECT_FALSE(allZero(steadyRun(f, 10)));

    // A gain of 3 dB or less becomes 57 dB, the same as the factory 60 - 3.
    f = quietFactoryFrame();
    const std::vector<int> reference = steadyRun(f, 10);
    for (int gain : {3, -20}) {
        f.gain = gain;
        EXPECT_EQ(steadyRun(f, 10), reference) << "gain " << gain;
    }
    f.gain = 4; // 1 dB: the table gives 0
    EXPECT_TRUE(allZero(steadyRun(f, 10)));
    f.gain = 200; // outside the table: 0, not a read past it
    EXPECT_TRUE(allZero(steadyRun(f, 10)));
    EXPECT_EQ(CKlattEngine::DBtoLIN(-1), 0.0);
    EXPECT_EQ(CKlattEngine::DBtoLIN(88), 0.0);
    EXPECT_DOUBLE_EQ(CKlattEngine::DBtoLIN(87), 32.767);
}

TEST(KlattEngine, OutputIsTruncatedTowardZero)
{
    // The same frame at 57 dB (x 1.024) and at 13 dB (x 0.006): wherever the loud run pins the
    // quiet sample's magnitude inside [0.5, 1), truncation must give 0 where rounding gives 1.
    klatt_frame_t f = quietFactoryFrame();
    const std::vector<int> loud = steadyRun(f, 20);
    f.gain = 16;
    const std::vector<int> quiet = steadyRun(f, 20);
    int positive = 0, negative = 0;
    for (std::size_t i = 0; i < loud.size(); ++i) {
        ASSERT_LT(std::abs(loud[i]), 32767);
        const double lo = 0.006 * std::abs(loud[i]) / 1.024;
        const double hi = 0.006 * (std::abs(loud[i]) + 1) / 1.024;
        ASSERT_LE(std::abs(quiet[i]), std::floor(hi)) << i;
        ASSERT_GE(std::abs(quiet[i]), std::floor(lo)) << i;
        if (lo >= 0.5 && hi < 1.0) {
            EXPECT_EQ(quiet[i], 0) << i;
            (loud[i] > 0 ? positive : negative)++;
        }
    }
    EXPECT_GT(positive, 10);
    EXPECT_GT(negative, 10);
}

TEST(KlattEngine, CascadeLengthAndModelChooseTheBranches)
{
    klatt_frame_t f = quietFactoryFrame();
    klatt_frame_t high = f;
    high.f6 = 4200;
    high.f7 = 5200;
    high.f8 = 6000;
    high.b7 = 100;
    for (int cascade : {5, 8}) {
        klatt_global_t a = preparedRun(22050, cascade, 220);
        klatt_global_t b = preparedRun(22050, cascade, 220);
        const bool same = runFrames(a, f, 10) == runFrames(b, high, 10);
        EXPECT_EQ(same, cascade == 5) << "cascade " << cascade;
        if (cascade == 5) {
            EXPECT_EQ(a.resonators[R_CASC_F1 + 5].a, 0.0); // F6..F8 never set up
        }
    }

    // All parallel: voicing reaches the output only through apv.
    klatt_global_t g = preparedRun(11025, 5, 110);
    g.model = 2;
    EXPECT_TRUE(allZero(runFrames(g, f, 10)));
    f.apv = 60;
    EXPECT_FALSE(allZero(runFrames(g, f, 10)));
}

TEST(KlattEngine, NasalZeroAndPoleCancelAndZeroHzMeansOneHz)
{
    auto zeroCoefficients = [](int fnz) {
        klatt_frame_t f = quietFactoryFrame();
        f.fnz = fnz;
        klatt_global_t g = preparedRun(11025, 5, 110);
        runFrames(g, f, 1);
        const resonator_t& r = g.resonators[R_NASAL_ZERO];
        return std::vector<double>{r.a, r.b, r.c};
    };
    EXPECT_EQ(zeroCoefficients(0), zeroCoefficients(1));
    EXPECT_EQ(zeroCoefficients(-40), zeroCoefficients(1));
    EXPECT_NE(zeroCoefficients(2), zeroCoefficients(1));

    // A nasal zero on the nasal pole cancels it wherever the pair sits.
    klatt_frame_t a = quietFactoryFrame(), b = quietFactoryFrame();
    b.fnz = b.fnp = 450;
    b.bnz = b.bnp = 150;
    const std::vector<int> x = steadyRun(a, 20), y = steadyRun(b, 20);
    for (std::size_t i = 0; i < x.size(); ++i)
        ASSERT_LE(std::abs(x[i] - y[i]), 1) << i;
}

TEST(KlattEngine, SkewAlternatesPeriodsWithinTheClosedPhase)
{
    for (int skew : {20, 1000}) {
        klatt_frame_t f = quietFactoryFrame();
        f.skew = skew;
        klatt_global_t g = preparedRun(11025, 5, 1);
        CKlattEngine engine;
        std::vector<int> lengths;
        int out = 0;
        for (int i = 0; i < 1200; ++i) {
            klatt_frame_t scratch = f;
            engine.parwave(&g, &scratch, &out);
            if (lengths.empty() || lengths.back() != g.period_len)
                lengths.push_back(g.period_len);
            const bool periodStarted = g.period_pos <= 4;
            if (periodStarted && skew == 1000) {
                EXPECT_EQ(scratch.skew, 441 - 80); // limited to the closed phase
            }
        }
        const int d = std::min(skew, 441 - 80);
        ASSERT_GE(lengths.size(), 4u);
        EXPECT_EQ(std::set<int>(lengths.begin(), lengths.end()), (std::set<int>{441 - d, 441 + d}));
    }
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

TEST(KlattEngine, ParallelFormantsAlternateInSignAndScale)
{
    // All-parallel voicing through one formant at a time, all tuned alike: each output is the
    // same signal times the formant's factor, with F2, F4, F6 negative and F3, F5 positive.
    auto alone = [](int amplitudeRow) {
        klatt_frame_t f = quietFactoryFrame();
        f.apv = 60;
        for (int row = Row::a8f; row <= Row::a1f; ++row)
            f[row] = 0;
        f.anv = 0;
        for (int k = 0; k < 5; ++k) {
            f[Row::f6 + k] = 1500; // f6..f2
            f[Row::b6f + k] = 200; // b6f..b2f
        }
        f.f1 = f.fnp = 500;
        f.b1f = f.bnp = 100;
        f[amplitudeRow] = 60;
        klatt_global_t g = preparedRun(11025, 5, 110);
        g.model = 2;
        return runFrames(g, f, 20);
    };
    auto ratio = [](const std::vector<int>& x, const std::vector<int>& y) { // least-squares x / y
        double xy = 0.0, yy = 0.0;
        for (std::size_t i = 0; i < x.size(); ++i) {
            xy += double(x[i]) * y[i];
            yy += double(y[i]) * y[i];
        }
        return xy / yy;
    };
    const std::vector<int> f3 = alone(Row::a3f);
    const std::pair<int, double> scales[] = {
        {Row::a2f, -0.15}, {Row::a4f, -0.04}, {Row::a5f, 0.022}, {Row::a6f, -0.03}};
    for (const auto& [row, scale] : scales)
        EXPECT_NEAR(ratio(alone(row), f3), scale / 0.06, 0.05) << row;
    EXPECT_NEAR(ratio(alone(Row::anv), alone(Row::a1f)), 0.6 / 0.4, 0.05);
}

TEST(KlattEngine, FramesOfAnySizeWriteExactlyTheirSamples)
{
    // One 300-sample frame spans several internal blocks; with a steady noise-free frame the
    // result equals three 100-sample frames.
    const klatt_frame_t f = quietFactoryFrame();
    EXPECT_EQ(steadyRun(f, 2, 300), steadyRun(f, 6, 100));

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
    const auto& s = CKlattEngine::natural_samples;
    EXPECT_EQ(*std::min_element(std::begin(s), std::end(s)), -2449);
    EXPECT_EQ(*std::max_element(std::begin(s), std::end(s)), 770);
    EXPECT_EQ(std::vector<int>(s, s + 5), (std::vector<int>{-310, -400, 530, 356, 224}));

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
