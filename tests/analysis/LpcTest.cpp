#include "analysis/CMathFunc.h"
#include "document/Log.h"
#include "support/TestSignals.h"

#include <gtest/gtest.h>

#include <complex>

namespace
{

// Levinson-Durbin on the autocorrelation of x, A(z) = 1 + sum a[j] z^-j.
struct Reference {
    std::vector<double> a, k;
    double energy = 0.0;
};
Reference levinson(const std::vector<double>& x, int order)
{
    std::vector<double> r(order + 1, 0.0);
    for (int i = 0; i <= order; ++i)
        for (std::size_t j = 0; j + i < x.size(); ++j)
            r[i] += x[j] * x[j + i];
    Reference out;
    out.a.assign(order + 1, 0.0);
    out.k.assign(order + 1, 0.0);
    out.a[0] = 1.0;
    double error = r[0];
    for (int m = 1; m <= order; ++m) {
        double acc = r[m];
        for (int j = 1; j < m; ++j)
            acc += out.a[j] * r[m - j];
        const double k = -acc / error;
        std::vector<double> next = out.a;
        for (int j = 1; j < m; ++j)
            next[j] = out.a[j] + k * out.a[m - j];
        next[m] = k;
        out.a = next;
        out.k[m] = k;
        error *= 1.0 - k * k;
    }
    out.energy = error;
    return out;
}

} // namespace

TEST(Lpc, LevinsonDurbinCoefficientsAndTheModesOfDoLpc)
{
    // A(z) of two resonances at 11025 Hz driven by white noise.
    const std::vector<double> poly = signals::polynomialOfPoles({{600.0, 80.0}, {1800.0, 120.0}}, 11025.0);
    const std::vector<double> y = signals::allPole(signals::noise(60000, 5), poly);
    CMathFunc math;
    // The Schur recursion's coefficients, energy and reflections are those of Levinson-Durbin.
    const Reference ref = levinson(y, 10);
    const lpcout* lpc = math.autolpc(y.data(), static_cast<int>(y.size()), 10);
    for (int j = 0; j <= 10; ++j)
        EXPECT_NEAR(lpc->a[j], ref.a[j], 1e-9) << j;
    for (int j = 1; j <= 10; ++j)
        EXPECT_NEAR(lpc->k[j], ref.k[j], 1e-9) << j;
    EXPECT_NEAR(lpc->energy / ref.energy, 1.0, 1e-9);

    // DoLPC with a rectangular window and no pre-emphasis analyses the frame as it is. For
    // coefficients only, the frame is left alone and the coefficients are in the thread's
    // record, the one autolpc hands out.
    std::vector<double> data(y.begin(), y.begin() + 401);
    const std::vector<double> before = data;
    const std::vector<double> a = levinson(std::vector<double>(y.begin(), y.begin() + 400), 4).a;
    EXPECT_EQ(math.DoLPC(data.data(), 4, 400, 0.0, 0, 0, 0, 0, 11025.0, 0, 1), nullptr);
    EXPECT_EQ(data, before);
    EXPECT_EQ(lpc->order, 4);
    for (int j = 0; j <= 4; ++j)
        EXPECT_NEAR(lpc->a[j], a[j], 1e-9) << j;

    // Spectrum mode: the level of the inverse filter at 128 bins of a 256-point grid, nothing
    // else written.
    data.resize(600, -1.0);
    std::vector<double> spectrum = data;
    math.DoLPC(spectrum.data(), 4, 400, 0.0, 0, 0, 0, 0, 11025.0, 0, 0);
    for (int i = 0; i < 128; ++i) {
        std::complex<double> sum = 0.0;
        for (int j = 0; j <= 4; ++j)
            sum += a[j] * std::polar(1.0, -M_PI * i * j / 128.0);
        ASSERT_NEAR(spectrum[i], 10.0 * std::log10(std::norm(sum)), 1e-9) << i;
    }
    EXPECT_TRUE(std::equal(spectrum.begin() + 128, spectrum.end(), data.begin() + 128));

    // Smoothed spectrum: output point k stands for k * range / nOut Hz.
    math.DoLPC(data.data(), 4, 400, 0.0, 0, 1, 64, 4000, 8000.0, 0, 0);
    for (int k = 0; k < 64; ++k)
        ASSERT_NEAR(data[k], spectrum[2 * k], 1e-9) << k;
}

TEST(Lpc, OrderAboveTheRecordsIsClampedAndSilenceDoesNotThrow)
{
    CMathFunc math;
    const std::vector<double> x = signals::noise(3000, 9);
    std::string log;
    Log::setSink([&log](const std::string& line) { log += line; });
    const lpcout* clamped = math.autolpc(x.data(), 3000, 1000);
    Log::setSink({});
    EXPECT_EQ(clamped->order, 400);
    EXPECT_EQ(log, "Requested LPC order too large\n");
    EXPECT_TRUE(std::isfinite(clamped->a[400]));
    EXPECT_EQ(math.autolpc(x.data(), 100, -5)->order, 0);
    EXPECT_EQ(math.autolpc(x.data(), 100, -5)->a[0], 1.0);

    // Silence: the first stage divides zero by zero; non-finite coefficients, no throw. Their
    // polynomial cannot be factored, so formant mode answers no record and forgets the record
    // of the frame before, which had formants.
    std::vector<double> silence(200, 0.0);
    const lpcout* lpc = math.autolpc(silence.data(), 200, 10);
    EXPECT_FALSE(std::isfinite(lpc->k[1]));
    std::vector<double> vowel = signals::vowel(2000, 120.0, 11025.0, {{700.0, 130.0}, {1220.0, 70.0}});
    const RootRecord* voiced = math.DoLPC(vowel.data() + 500, 10, 300, 0.98, 1, 0, 0, 5000, 11025.0, 1, 1);
    ASSERT_NE(voiced, nullptr);
    EXPECT_GE(voiced->formantCount, 2);
    EXPECT_EQ(lp_Roots, voiced);
    EXPECT_EQ(math.DoLPC(silence.data(), 10, 150, 0.98, 1, 0, 0, 5000, 11025.0, 1, 1), nullptr);
    EXPECT_EQ(lp_Roots, nullptr);
}
