#include "analysis/CMathFunc.h"
#include "analysis/SpectrumSupport.h"
#include "support/TestSignals.h"

#include <gtest/gtest.h>

#include <bit>
#include <complex>

namespace
{

constexpr double kSentinel = -12345.0;

std::vector<double> hammingWindowed(const std::vector<double>& x, int n)
{
    std::vector<double> y(n);
    for (int i = 0; i < n; ++i)
        y[i] = x[i] * (0.54 - 0.46 * std::cos(2.0 * M_PI * i / n));
    return y;
}

} // namespace

TEST(Spectrum, FftMatchesDirectDftForEverySize)
{
    CMathFunc math;
    std::mt19937 generator(7);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    for (int m = 1; m <= 10; ++m) {
        const int n = 1 << m;
        std::vector<double> re(n), im(n);
        for (int i = 0; i < n; ++i) {
            re[i] = uniform(generator);
            im[i] = uniform(generator);
        }
        const std::vector<double> re0 = re, im0 = im;
        math.FFT_CODE_REAL(re.data(), im.data(), m);
        for (int k = 0; k < n; ++k) {
            std::complex<double> expected = 0.0;
            for (int j = 0; j < n; ++j)
                expected += std::complex<double>(re0[j], im0[j]) * std::polar(1.0, -2.0 * M_PI * j * k / n);
            ASSERT_NEAR(re[k], expected.real(), 1e-9 * n) << "m=" << m << " k=" << k;
            ASSERT_NEAR(im[k], expected.imag(), 1e-9 * n) << "m=" << m << " k=" << k;
        }
    }
    // The half-size transform of real input gives the same bins.
    for (int m = 1; m <= 12; ++m) {
        const int n = 1 << m;
        std::vector<double> re = signals::noise(n, m), im(n, 0.0);
        std::vector<double> halfRe(n / 2 + 1), halfIm(n / 2 + 1);
        spectrum::realSpectrum(re.data(), m, halfRe.data(), halfIm.data());
        math.FFT_CODE_REAL(re.data(), im.data(), m);
        for (int k = 0; k <= n / 2; ++k) {
            ASSERT_NEAR(halfRe[k], re[k], 1e-9 * n) << "m=" << m << " k=" << k;
            ASSERT_NEAR(halfIm[k], im[k], 1e-9 * n) << "m=" << m << " k=" << k;
        }
    }

    // Sizes outside the supported range leave the arrays as they are.
    double re[2] = {1.0, 2.0}, im[2] = {3.0, 4.0};
    math.FFT_CODE_REAL(re, im, 0);
    math.FFT_CODE_REAL(re, im, 40);
    EXPECT_EQ(re[1], 2.0);
    EXPECT_EQ(im[0], 3.0);
}

// Every level is that of the DFT of the frame as the analysis takes it: the forward difference
// x[i+1] - p x[i] with pre-emphasis (which reads sample n), x[i] without; then the periodic
// Hamming window or none; padded with zeros to a power of two. Nothing else is written.
TEST(Spectrum, LevelsAreTheDftOfTheEmphasizedWindowedFramePaddedWithZeros)
{
    CMathFunc math;
    // A loud transform first, so that stale values would show.
    std::vector<double> loud = signals::noise(513, 11, 100.0);
    math.DoFFT_Real(loud.data(), 512, 0.0, 0, 0, 0, 0, 11025.0);

    struct Case {
        int n, window;
        double emphasis;
        std::vector<double> x; // n + 1 samples
    };
    const Case cases[] = {{256, 0, 0.0, signals::noise(257, 5)},
                          {256, 1, 0.0, signals::noise(257, 3)},
                          {256, 1, 0.9, signals::noise(257, 3)},
                          {256, 1, 0.98, std::vector<double>(257, 0.0)}, // silence reads 0 dB
                          {300, 1, 0.0, signals::noise(301, 12)},
                          {300, 0, 0.97, signals::noise(301, 12)}};
    for (const Case& c : cases) {
        std::vector<double> frame(c.n);
        for (int i = 0; i < c.n; ++i)
            frame[i] = c.emphasis > 0.0 ? c.x[i + 1] - c.emphasis * c.x[i] : c.x[i];
        if (c.window == 1)
            frame = hammingWindowed(frame, c.n);
        std::vector<double> data = c.x;
        data.resize(c.n + 16, kSentinel);
        const std::vector<double> before = data;
        math.DoFFT_Real(data.data(), c.n, c.emphasis, c.window, 0, 0, 0, 11025.0);
        const int padded = std::bit_ceil(static_cast<unsigned>(c.n));
        for (int k = 0; k < c.n / 2; ++k)
            ASSERT_NEAR(data[k], signals::dftLevel(frame, padded, k), 1e-8) << c.n << " points, bin " << k;
        EXPECT_TRUE(std::equal(data.begin() + c.n / 2, data.end(), before.begin() + c.n / 2)) << c.n;
    }

    // Smoothed, the levels are resampled onto the display grid as Smooth does it (checked
    // against the spline below), and nothing past the grid's points is written.
    std::vector<double> plain = cases[1].x, smoothed = cases[1].x;
    plain.resize(300, kSentinel);
    smoothed.resize(300, kSentinel);
    math.DoFFT_Real(plain.data(), 256, 0.0, 1, 0, 0, 0, 8000.0);
    math.Smooth(plain.data(), 256, 200, 3000, 8000.0);
    math.DoFFT_Real(smoothed.data(), 256, 0.0, 1, 1, 200, 3000, 8000.0);
    EXPECT_EQ(smoothed, plain);

    // Beyond the largest transform: refused, nothing written.
    std::vector<double> big(8194, 1.0);
    math.DoFFT_Real(big.data(), 8193, 0.0, 1, 0, 0, 0, 11025.0);
    EXPECT_EQ(big[0], 1.0);
}

TEST(Spectrum, SplineInterpolatesAndRefusesEqualAbscissae)
{
    CMathFunc math;
    // A clamped spline with exact end slopes reproduces a cubic.
    std::vector<double> x(11), y(11), y2(11);
    for (int i = 1; i <= 10; ++i) {
        x[i] = 0.3 * i + 0.1 * (i % 3);
        y[i] = x[i] * x[i] * x[i] - 2.0 * x[i];
    }
    const auto splint = [&](double at) {
        double value = 0.0;
        EXPECT_EQ(math.splint(x.data(), y.data(), y2.data(), 10, at, &value), 0) << at;
        return value;
    };
    math.spline(x.data(), y.data(), 10, 3 * x[1] * x[1] - 2.0, 3 * x[10] * x[10] - 2.0, y2.data());
    for (double at : {0.35, 1.0, 2.2, 3.05})
        EXPECT_NEAR(splint(at), at * at * at - 2.0 * at, 1e-9) << at;
    // A natural spline through a straight line is the line, also beyond the ends.
    for (int i = 1; i <= 10; ++i)
        y[i] = 4.0 - 1.5 * x[i];
    math.spline(x.data(), y.data(), 10, 1e30, 1e30, y2.data());
    for (double at : {-1.0, 0.9, 5.0})
        EXPECT_NEAR(splint(at), 4.0 - 1.5 * at, 1e-9) << at;

    // Two equal abscissae around the point: 1, and the output is left alone.
    const double xa[] = {0.0, 2.0, 2.0, 2.0};
    const double ya[] = {0.0, 1.0, 2.0, 3.0};
    const double y2a[] = {0.0, 0.0, 0.0, 0.0};
    for (const auto& [n, at] : {std::pair{3, 1.5}, std::pair{2, 2.5}, std::pair{1, 2.0}}) {
        double out = 99.0;
        EXPECT_EQ(math.splint(xa, ya, y2a, n, at, &out), 1) << at;
        EXPECT_EQ(out, 99.0);
    }
}

TEST(Spectrum, SmoothingEqualsTheSplineAtEveryOutputPoint)
{
    // Smooth finds each output point's interval by computing it on the unit-spaced knots; it must
    // give exactly what splint's search gives, at the ends and beyond the last knot too.
    struct Case {
        int n, nOut, range;
        double rate;
    };
    for (const Case& c :
         {Case{256, 400, 5000, 11025.0}, Case{256, 128, 2000, 8000.0}, Case{64, 333, 11000, 22050.0},
          Case{4, 50, 8000, 8000.0}, Case{2, 7, 4000, 8000.0}, Case{512, 256, 4000, 4000.0}}) {
        const std::vector<double> levels = signals::noise(c.n, 7 + c.n);
        std::vector<double> smoothed = levels;
        smoothed.resize(std::max(c.n, c.nOut) + 1, kSentinel);
        CMathFunc math;
        math.Smooth(smoothed.data(), c.n, c.nOut, c.range, c.rate);

        const int points = c.n / 2;
        std::vector<double> x(points + 1), y(points + 1), y2(points + 1);
        for (int k = 1; k <= points; ++k) {
            x[k] = k - 1;
            y[k] = levels[k - 1];
        }
        math.spline(x.data(), y.data(), points, 1e30, 1e30, y2.data());
        const double step = (c.range / (c.rate * 0.5)) * (c.n * 0.5) / c.nOut;
        for (int k = 0; k < c.nOut; ++k) {
            double want = levels.size() > static_cast<std::size_t>(k) ? levels[k] : kSentinel;
            math.splint(x.data(), y.data(), y2.data(), points, k * step, &want);
            ASSERT_EQ(smoothed[k], want) << c.n << " points, output " << k;
        }
        EXPECT_EQ(smoothed[std::max(c.n, c.nOut)], kSentinel);
    }
}
