#pragma once
// Measuring test signals from outside: a windowed power spectrum (4-term Blackman-Harris, side
// lobes below -92 dB) and levels in dB. For the resampler and the stimulus file tests (their sines:
// TestSignals.h).
#include "analysis/SpectrumSupport.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <vector>

namespace probe
{

// Power spectrum (linear) of `size` (a power of two, 2 to 8192) samples from `first`, bins
// 0..size/2, by the analysis library's transform of real input (itself checked against a direct
// DFT by the spectrum tests).
inline std::vector<double> powerSpectrum(const std::vector<float>& x, std::size_t first, std::size_t size)
{
    std::vector<double> a(size), re(size / 2 + 1), im(size / 2 + 1), power(size / 2 + 1);
    for (std::size_t i = 0; i < size; ++i) {
        const double t = 2.0 * M_PI * double(i) / double(size);
        const double w =
            0.35875 - 0.48829 * std::cos(t) + 0.14128 * std::cos(2 * t) - 0.01168 * std::cos(3 * t);
        a[i] = first + i < x.size() ? w * x[first + i] : 0.0;
    }
    spectrum::realSpectrum(a.data(), std::countr_zero(size), re.data(), im.data());
    for (std::size_t k = 0; k < power.size(); ++k)
        power[k] = re[k] * re[k] + im[k] * im[k];
    return power;
}

inline double db(double power)
{
    return 10.0 * std::log10(power + 1e-300);
}

// RMS in dB re full scale of samples [first, last).
inline double rmsDb(const std::vector<float>& x, std::size_t first, std::size_t last)
{
    double sum = 0.0;
    for (std::size_t i = first; i < last; ++i)
        sum += double(x[i]) * x[i];
    return db(sum / double(last - first));
}

} // namespace probe
