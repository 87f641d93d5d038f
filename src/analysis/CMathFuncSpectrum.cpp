// CMathFunc's spectrum core: the radix-2 FFT, the short-time level spectrum and the cubic spline
// that resamples a spectrum onto a display grid.
#include "analysis/CMathFunc.h"
#include "analysis/SpectrumSupport.h"
#include "document/Log.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <new>
#include <vector>

namespace spectrum
{

TransformArrays& transformArrays()
{
    thread_local TransformArrays arrays{std::vector<double>(CMathFunc::kWorkArrayLength, 0.0),
                                        std::vector<double>(CMathFunc::kWorkArrayLength, 0.0)};
    return arrays;
}

const double* windowTable(int n, int window, int count)
{
    struct Table {
        int length = -1;
        int kind = -1;
        std::vector<double> dHamming; // its size is the number of points made
    };
    thread_local std::array<Table, 4> tables;
    thread_local std::size_t next = 0;
    const int kind = window == 1 ? 1 : 0;
    count = std::clamp(count, 0, std::max(n, 0));
    for (const Table& t : tables)
        if (t.length == n && t.kind == kind && t.dHamming.size() >= static_cast<std::size_t>(count))
            return t.dHamming.data();
    Table& t = tables[next];
    next = (next + 1) % tables.size();
    t.length = n;
    t.kind = kind;
    t.dHamming.assign(static_cast<std::size_t>(count), 1.0);
    if (kind == 1)
        for (int i = 0; i < count; ++i)
            t.dHamming[i] = 0.54 - 0.46 * std::cos(kTwoPi * i / n);
    return t.dHamming.data();
}

void windowFrame(const double* x, int n, double preEmphasis, int window, double* re)
{
    const double* w = windowTable(n, window, n);
    if (preEmphasis > 0.0) {
        for (int i = 0; i < n; ++i)
            re[i] = (x[i + 1] - preEmphasis * x[i]) * w[i];
    } else {
        for (int i = 0; i < n; ++i)
            re[i] = x[i] * w[i];
    }
}

void realSpectrum(const double* x, int m, double* re, double* im)
{
    struct HalfTransform {
        int m = -1;
        std::vector<double> zr, zi, wr, wi; // packed sequence and twiddles e^(-2 pi i k / N)
    };
    thread_local HalfTransform h;
    const int n = 1 << m;
    const int half = n / 2;
    if (h.m != m) {
        h.m = m;
        h.zr.assign(half, 0.0);
        h.zi.assign(half, 0.0);
        h.wr.resize(half + 1);
        h.wi.resize(half + 1);
        for (int k = 0; k <= half; ++k) {
            h.wr[k] = std::cos(2.0 * M_PI * k / n);
            h.wi[k] = -std::sin(2.0 * M_PI * k / n);
        }
    }
    // Even samples as real parts, odd samples as imaginary parts.
    for (int j = 0; j < half; ++j) {
        h.zr[j] = x[2 * j];
        h.zi[j] = x[2 * j + 1];
    }
    CMathFunc().FFT_CODE_REAL(h.zr.data(), h.zi.data(), m - 1);
    for (int k = 0; k <= half; ++k) {
        const int a = k % half, b = (half - k) % half;
        // Spectra of the even and the odd samples, then one butterfly.
        const double er = 0.5 * (h.zr[a] + h.zr[b]), ei = 0.5 * (h.zi[a] - h.zi[b]);
        const double orr = 0.5 * (h.zi[a] + h.zi[b]), oi = -0.5 * (h.zr[a] - h.zr[b]);
        re[k] = er + h.wr[k] * orr - h.wi[k] * oi;
        im[k] = ei + h.wr[k] * oi + h.wi[k] * orr;
    }
}

int transformOrder(int n)
{
    int m = 1;
    while ((1 << m) < n)
        ++m;
    return m;
}

} // namespace spectrum

namespace
{

// Spline abscissae, ordinates and second derivatives of the calling thread (1-based).
struct SplineArrays {
    std::vector<double> x, y, y2;
};
SplineArrays& splineArrays()
{
    thread_local SplineArrays arrays{std::vector<double>(CMathFunc::kSplineArrayLength, 0.0),
                                     std::vector<double>(CMathFunc::kSplineArrayLength, 0.0),
                                     std::vector<double>(CMathFunc::kSplineArrayLength, 0.0)};
    return arrays;
}

} // namespace

void CMathFunc::FFT_CODE_REAL(double* re, double* im, int m)
{
    if (m > 24) {
        Log::printf("FFT_CODE_REAL: 2^%d points refused\n", m);
        return;
    }
    if (m < 1)
        return; // a single point is its own transform
    const int n = 1 << m;

    for (int i = 0, j = 0; i < n - 1; ++i) {
        if (i < j) {
            std::swap(re[i], re[j]);
            std::swap(im[i], im[j]);
        }
        int k = n / 2;
        while (k <= j) {
            j -= k;
            k /= 2;
        }
        j += k;
    }

    for (int s = 1; s <= m; ++s) {
        const int le = 1 << s;
        const int half = le / 2;
        const double wr = std::cos(M_PI / half);
        const double wi = -std::sin(M_PI / half);
        double ur = 1.0, ui = 0.0;
        for (int j = 0; j < half; ++j) {
            for (int i = j; i < n; i += le) {
                const int ip = i + half;
                const double tr = ur * re[ip] - ui * im[ip];
                const double ti = ur * im[ip] + ui * re[ip];
                re[ip] = re[i] - tr;
                im[ip] = im[i] - ti;
                re[i] += tr;
                im[i] += ti;
            }
            // The twiddle factor advances by recurrence, not by fresh sines.
            const double nr = ur * wr - ui * wi;
            ui = ur * wi + ui * wr;
            ur = nr;
        }
    }
}

int CMathFunc::DoFFT_Real(double* data, int n, double preEmphasis, int window, unsigned char smooth, int nOut,
                          int frequencyRange, double sampleRate)
{
    if (n < 1 || n > kMaxTransformLength) {
        Log::printf("DoFFT_Real: frame length %d outside 1..%d refused\n", n, kMaxTransformLength);
        return 0;
    }
    spectrum::TransformArrays& arrays = spectrum::transformArrays();
    double* re = arrays.dRealpart.data();
    double* im = arrays.dImagpart.data();
    const int m = spectrum::transformOrder(n);
    const int points = 1 << m;

    spectrum::windowFrame(data, n, preEmphasis, window, re);
    // Lengths that are not powers of two are padded with zeros rather than stale values.
    std::fill(re + n, re + points, 0.0);
    std::fill(im, im + points, 0.0);

    FFT_CODE_REAL(re, im, m);
    for (int i = 0; i < n / 2; ++i)
        data[i] = spectrum::levelDb(re[i], im[i]);

    if (smooth)
        Smooth(data, n, nOut, frequencyRange, sampleRate);
    return 0;
}

void CMathFunc::spline(const double* x, const double* y, int n, double yp1, double ypn, double* y2)
{
    if (n < 2) {
        for (int i = 1; i <= n; ++i)
            y2[i] = 0.0;
        return;
    }
    // Without memory for the work vector the second derivatives are left as they are.
    const std::unique_ptr<double[]> u(new (std::nothrow) double[static_cast<std::size_t>(n) + 1]());
    if (!u)
        return;
    if (yp1 > 0.99e30) {
        y2[1] = u[1] = 0.0;
    } else {
        y2[1] = -0.5;
        u[1] = (3.0 / (x[2] - x[1])) * ((y[2] - y[1]) / (x[2] - x[1]) - yp1);
    }
    for (int i = 2; i <= n - 1; ++i) {
        const double sig = (x[i] - x[i - 1]) / (x[i + 1] - x[i - 1]);
        const double p = sig * y2[i - 1] + 2.0;
        y2[i] = (sig - 1.0) / p;
        u[i] = (y[i + 1] - y[i]) / (x[i + 1] - x[i]) - (y[i] - y[i - 1]) / (x[i] - x[i - 1]);
        u[i] = (6.0 * u[i] / (x[i + 1] - x[i - 1]) - sig * u[i - 1]) / p;
    }
    double qn = 0.0, un = 0.0;
    if (ypn <= 0.99e30) {
        qn = 0.5;
        un = (3.0 / (x[n] - x[n - 1])) * (ypn - (y[n] - y[n - 1]) / (x[n] - x[n - 1]));
    }
    y2[n] = (un - qn * u[n - 1]) / (qn * y2[n - 1] + 1.0);
    for (int k = n - 1; k >= 1; --k)
        y2[k] = y2[k] * y2[k + 1] + u[k];
}

int CMathFunc::splint(const double* xa, const double* ya, const double* y2a, int n, double x, double* y)
{
    if (n < 2)
        return 1;
    int klo = 1, khi = n;
    while (khi - klo > 1) {
        const int k = (khi + klo) / 2;
        if (xa[k] > x)
            khi = k;
        else
            klo = k;
    }
    const double h = xa[khi] - xa[klo];
    if (h == 0.0)
        return 1;
    const double a = (xa[khi] - x) / h;
    const double b = (x - xa[klo]) / h;
    *y =
        a * ya[klo] + b * ya[khi] + ((a * a * a - a) * y2a[klo] + (b * b * b - b) * y2a[khi]) * (h * h) / 6.0;
    return 0;
}

namespace
{
// The interval splint's bisection finds for x on the knots xa[k] = k - 1 (k = 1 .. n): the
// largest klo in 1 .. n-1 with xa[klo] <= x, or 1 when there is none. Knots a unit apart let it
// be computed instead of searched; a NaN, which every comparison fails, ends at n - 1 as the
// bisection does.
int unitKnotInterval(double x, int n)
{
    if (std::isnan(x))
        return n - 1;
    if (!(x >= 0.0))
        return 1;
    if (x >= n - 2)
        return n - 1;
    return static_cast<int>(x) + 1;
}
} // namespace

void CMathFunc::Smooth(double* data, int n, int nOut, int frequencyRange, double sampleRate)
{
    SplineArrays& s = splineArrays();
    const int points = std::min(std::max(n / 2, 0), kSplineArrayLength - 1);
    s.x[0] = s.y[0] = s.y2[0] = 0.0;
    for (int k = 1; k <= points; ++k) {
        s.x[k] = k - 1;
        s.y[k] = data[k - 1];
    }
    spline(s.x.data(), s.y.data(), points, 1e30, 1e30, s.y2.data());
    if (nOut <= 0)
        return;
    // Output point k stands for k * frequencyRange / nOut Hz: the bin of frequencyRange / nOut Hz.
    const double step = (frequencyRange / (sampleRate * 0.5)) * (n * 0.5) / nOut;
    if (points < 2)
        return; // splint leaves every output point as it was
    // splint at each output point, with the interval computed rather than searched.
    const double* xa = s.x.data();
    const double* ya = s.y.data();
    const double* y2a = s.y2.data();
    for (int k = 0; k < nOut; ++k) {
        const double x = k * step;
        const int klo = unitKnotInterval(x, points);
        const int khi = klo + 1;
        const double h = xa[khi] - xa[klo];
        const double a = (xa[khi] - x) / h;
        const double b = (x - xa[klo]) / h;
        data[k] = a * ya[klo] + b * ya[khi] +
                  ((a * a * a - a) * y2a[klo] + (b * b * b - b) * y2a[khi]) * (h * h) / 6.0;
    }
}
