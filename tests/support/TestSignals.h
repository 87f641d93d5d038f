#pragma once
// Generated signals with known answers for the analysis tests.
#include <algorithm>
#include <cmath>
#include <complex>
#include <random>
#include <utility>
#include <vector>

namespace signals
{

inline std::vector<double> sine(int n, double hz, double sampleRate, double amplitude = 1.0,
                                double phase = 0.0)
{
    std::vector<double> x(n);
    for (int i = 0; i < n; ++i)
        x[i] = amplitude * std::cos(2.0 * M_PI * hz * i / sampleRate + phase);
    return x;
}

// Unit impulses at every period of f0 (the period need not be a whole number of samples).
inline std::vector<double> pulseTrain(int n, double f0, double sampleRate)
{
    std::vector<double> x(n, 0.0);
    const double period = sampleRate / f0;
    for (double t = 0.0; t < n; t += period)
        x[static_cast<int>(t)] = 1.0;
    return x;
}

// Second-order resonator (frequency and bandwidth in Hz) with unit gain at 0 Hz.
inline std::vector<double> resonate(const std::vector<double>& x, double hz, double bandwidth,
                                    double sampleRate)
{
    const double c = -std::exp(-2.0 * M_PI * bandwidth / sampleRate);
    const double b = 2.0 * std::exp(-M_PI * bandwidth / sampleRate) * std::cos(2.0 * M_PI * hz / sampleRate);
    const double a = 1.0 - b - c;
    std::vector<double> y(x.size());
    double y1 = 0.0, y2 = 0.0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        y[i] = a * x[i] + b * y1 + c * y2;
        y2 = y1;
        y1 = y[i];
    }
    return y;
}

// A steady vowel: a pulse train at f0 through resonators in cascade.
inline std::vector<double> vowel(int n, double f0, double sampleRate,
                                 const std::vector<std::pair<double, double>>& formants)
{
    std::vector<double> y = pulseTrain(n, f0, sampleRate);
    for (const auto& [hz, bandwidth] : formants)
        y = resonate(y, hz, bandwidth, sampleRate);
    return y;
}

inline std::vector<double> noise(int n, unsigned seed, double deviation = 1.0)
{
    std::mt19937 generator(seed);
    std::normal_distribution<double> normal(0.0, deviation);
    std::vector<double> x(n);
    for (double& v : x)
        v = normal(generator);
    return x;
}

// Predictor polynomial z^p + a1 z^(p-1) + ... of pole pairs at (hz, bandwidth), highest power first.
inline std::vector<double> polynomialOfPoles(const std::vector<std::pair<double, double>>& poles,
                                             double sampleRate)
{
    std::vector<double> poly{1.0};
    for (const auto& [hz, bandwidth] : poles) {
        const double radius = std::exp(-M_PI * bandwidth / sampleRate);
        const double p = -2.0 * radius * std::cos(2.0 * M_PI * hz / sampleRate);
        const double q = radius * radius;
        std::vector<double> next(poly.size() + 2, 0.0);
        for (std::size_t i = 0; i < poly.size(); ++i) {
            next[i] += poly[i];
            next[i + 1] += p * poly[i];
            next[i + 2] += q * poly[i];
        }
        poly = next;
    }
    return poly;
}

// The polynomial times (z - root).
inline std::vector<double> withRealRoot(const std::vector<double>& poly, double root)
{
    std::vector<double> next(poly.size() + 1, 0.0);
    for (std::size_t i = 0; i < poly.size(); ++i) {
        next[i] += poly[i];
        next[i + 1] -= root * poly[i];
    }
    return next;
}

// y[n] = x[n] - sum a[j] y[n-j]: the all-pole filter 1 / A(z).
inline std::vector<double> allPole(const std::vector<double>& x, const std::vector<double>& a)
{
    std::vector<double> y(x.size(), 0.0);
    for (std::size_t n = 0; n < x.size(); ++n) {
        double v = x[n];
        for (std::size_t j = 1; j < a.size() && j <= n; ++j)
            v -= a[j] * y[n - j];
        y[n] = v;
    }
    return y;
}

inline std::vector<float> toFloat(const std::vector<double>& x, double gain = 1.0)
{
    std::vector<float> y(x.size());
    for (std::size_t i = 0; i < x.size(); ++i)
        y[i] = static_cast<float>(x[i] * gain);
    return y;
}

// Level in dB of bin k of the n-point DFT of x (x shorter than n is padded with zeros).
inline double dftLevel(const std::vector<double>& x, int n, int k)
{
    std::complex<double> sum = 0.0;
    for (std::size_t j = 0; j < x.size(); ++j)
        sum += x[j] * std::polar(1.0, -2.0 * M_PI * double(j) * k / n);
    const double power = std::norm(sum);
    return power != 0.0 ? 10.0 * std::log10(power) : 0.0;
}

// The middle value (the upper one of an even count), -1 for none.
inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.empty() ? -1.0 : values[values.size() / 2];
}

} // namespace signals
