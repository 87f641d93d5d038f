// LPC by Levinson-Durbin and polynomial roots by Laguerre's method.
#include "copysynth/LpcRoots.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr double kPi = 3.14159265358979323846;
using Complex = std::complex<double>;

// Written out: std::complex's operators check for infinities on every call.
inline Complex mul(Complex a, Complex b)
{
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

// |z| without the care for overflow of std::abs (hypot), which the values here never need.
inline double magnitude(Complex z)
{
    return std::sqrt(z.real() * z.real() + z.imag() * z.imag());
}

// One root of the polynomial p[0..m] (highest power first) by Laguerre's method, from `x`.
Complex laguerre(const std::vector<Complex>& p, int m, Complex x)
{
    static const double fractions[] = {0.5, 0.25, 0.75, 0.13, 0.38, 0.62, 0.88, 1.0};
    for (int iteration = 1; iteration <= 80; ++iteration) {
        Complex b = p[0], d = 0.0, f = 0.0;
        double err = magnitude(b);
        const double ax = magnitude(x);
        for (int j = 1; j <= m; ++j) {
            f = mul(x, f) + d;
            d = mul(x, d) + b;
            b = mul(x, b) + p[j];
            err = magnitude(b) + ax * err;
        }
        if (magnitude(b) <= err * 1e-14)
            return x;
        const Complex g = d / b;
        const Complex g2 = mul(g, g);
        const Complex h = g2 - 2.0 * f / b;
        const Complex sq = std::sqrt(static_cast<double>(m - 1) * (static_cast<double>(m) * h - g2));
        Complex gp = g + sq, gm = g - sq;
        if (magnitude(gp) < magnitude(gm))
            gp = gm;
        const Complex dx = magnitude(gp) > 0.0 ? static_cast<double>(m) / gp
                                               : std::polar(1.0 + ax, static_cast<double>(iteration));
        const Complex next = x - dx;
        if (next == x)
            return x;
        // Every tenth step is shortened, which breaks the rare limit cycle.
        x = iteration % 10 ? next : x - fractions[(iteration / 10) % 8] * dx;
    }
    return x;
}

} // namespace

bool lpcCoefficients(const double* x, int n, int order, double* a)
{
    std::vector<double> r(order + 1, 0.0);
    for (int lag = 0; lag <= order; ++lag) {
        double sum = 0.0;
        for (int i = 0; i + lag < n; ++i)
            sum += x[i] * x[i + lag];
        r[lag] = sum;
    }
    if (!(r[0] > 1e-12))
        return false;
    r[0] *= 1.0 + 1e-9; // a whisper of white noise keeps the recursion stable
    std::fill(a, a + order + 1, 0.0);
    a[0] = 1.0;
    double error = r[0];
    std::vector<double> previous(order + 1);
    for (int i = 1; i <= order; ++i) {
        double acc = r[i];
        for (int j = 1; j < i; ++j)
            acc += a[j] * r[i - j];
        const double k = -acc / error;
        std::copy(a, a + order + 1, previous.begin());
        for (int j = 1; j < i; ++j)
            a[j] = previous[j] + k * previous[i - j];
        a[i] = k;
        error *= 1.0 - k * k;
        if (error <= 0.0)
            return false;
    }
    return true;
}

std::vector<std::complex<double>> polynomialRoots(const double* c, int degree)
{
    std::vector<Complex> p(c, c + degree + 1), work = p;
    std::vector<Complex> roots;
    roots.reserve(degree);
    for (int m = degree; m >= 1; --m) {
        Complex x = laguerre(work, m, Complex(0.0, 0.0));
        // A root near the real axis is made real, so that its partner is not searched twice.
        if (std::fabs(x.imag()) <= 1e-12 * std::fabs(x.real()))
            x = x.real();
        roots.push_back(x);
        // Deflation by synthetic division.
        Complex carry = work[0];
        for (int j = 1; j <= m; ++j) {
            const Complex next = work[j] + mul(carry, x);
            work[j - 1] = carry;
            carry = next;
        }
    }
    // The deflated roots are not polished on the whole polynomial: in double precision, for
    // the low orders of formant analysis, they are within a fraction of a hertz already.
    return roots;
}

std::vector<FormantCandidate> formantCandidates(const double* a, int order, double rate)
{
    std::vector<FormantCandidate> out;
    for (const Complex& z : polynomialRoots(a, order)) {
        if (z.imag() <= 0.0)
            continue;
        const double freq = std::arg(z) * rate / (2.0 * kPi);
        const double radius = std::min(std::abs(z), 0.999999);
        const double bw = -std::log(radius) * rate / kPi;
        if (freq > 50.0 && freq < rate / 2.0 - 50.0)
            out.push_back({freq, bw});
    }
    std::sort(out.begin(), out.end(),
              [](const FormantCandidate& x, const FormantCandidate& y) { return x.freq < y.freq; });
    return out;
}
