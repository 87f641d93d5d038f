// CMathFunc's cepstral pitch estimate of one analysis window.
#include "analysis/CMathFunc.h"
#include "analysis/SpectrumSupport.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace
{

// The calling thread's arrays of the pitch routine. dCesprumfile holds the copied samples and
// then the cepstrum; it is never cleared, because the windows near the end of a recording are
// made partly of what the previous call left in it.
struct PitchArrays {
    std::vector<double> dCesprumfile = std::vector<double>(CMathFunc::kWorkArrayLength, 0.0);
    std::vector<double> dRealpart = std::vector<double>(CMathFunc::kWorkArrayLength, 0.0);
    std::vector<double> dImagpart = std::vector<double>(CMathFunc::kWorkArrayLength, 0.0);
};
PitchArrays& pitchArrays()
{
    thread_local PitchArrays arrays;
    return arrays;
}

// A quefrency limit sr / f truncated, kept within 0 .. the array length (also for f <= 0).
int quefrencyIndex(double sampleRate, double hz)
{
    const double q = sampleRate / hz;
    if (!(q > 0.0))
        return 0;
    return static_cast<int>(std::min(q, static_cast<double>(CMathFunc::kWorkArrayLength)));
}

// Copies the analysis window from sample trunc(start) on. A window that fits is copied with
// five spare samples. Otherwise the copy stops at sample index length - start, a bound that
// mixes an index with a count: near the end fewer samples (or none) are refreshed. Intended.
void copyWindow(const float* samples, double start, double length, int windowLength, double* out)
{
    const long long first = static_cast<long long>(start);
    const double bound = start + windowLength + 5 <= length ? start + windowLength + 5 : length - start;
    const double limit = std::min(std::ceil(bound), static_cast<double>(first + CMathFunc::kWorkArrayLength));
    const long long last = static_cast<long long>(limit);
    for (long long i = first; i < last; ++i)
        out[i - first] = samples[i];
}

// The index of the highest cepstral value in qLow .. qHigh - 1 of c[0 .. half - 1], after
// the values outside that range are cleared and the rest set relative to the peak (20 dB of
// range kept).
int cepstralPeak(double* c, int half, int qLow, int qHigh)
{
    std::fill(c, c + qLow, 0.0);
    if (qHigh < half)
        std::fill(c + qHigh, c + half, 0.0);

    double peak = -1e-30;
    for (int i = 0; i < half; ++i)
        peak = std::max(peak, c[i]);
    for (int i = 0; i < half; ++i)
        c[i] = std::max(0.0, c[i] - peak + 20.0);

    // A range without any positive value leaves the index at half the transform: a flat
    // cepstrum then reports sampleRate / (fftSize / 2). Intended.
    int index = half;
    double best = 0.0;
    for (int i = qLow; i < qHigh; ++i) {
        if (c[i] > best) {
            best = c[i];
            index = i;
        }
    }
    return index;
}

} // namespace

double CMathFunc::DoPitchCepstrumNewFloat(const float* samples, double start, double length,
                                          double sampleRate, double lowHz, double highHz, int fftSize,
                                          int windowLength)
{
    int m = 7;
    while (m <= 12 && (1 << m) != fftSize)
        ++m;
    if (m > 12)
        return -1.0;
    // Indices stay exactly representable; a start beyond the end copies nothing either way.
    constexpr double kLargestIndex = 9.0e15;
    if (!std::isfinite(length) || length < 0.0)
        length = 0.0;
    length = std::min(length, kLargestIndex);
    if (!std::isfinite(start) || start < 0.0)
        start = 0.0;
    start = std::min(start, length);

    PitchArrays& arrays = pitchArrays();
    double* c = arrays.dCesprumfile.data();
    double* re = arrays.dRealpart.data();
    double* im = arrays.dImagpart.data();
    if (samples)
        copyWindow(samples, start, length, windowLength, c);

    // Only the first fftSize points of a longer window enter the transform.
    const int windowed = std::clamp(windowLength, 0, fftSize);
    const double* hamming = spectrum::windowTable(windowLength, 1, windowed);
    for (int i = 0; i < windowed; ++i)
        re[i] = hamming[i] * c[i];
    std::fill(re + windowed, re + fftSize, 0.0);

    // Both transforms take real input, so each is made from half its bins: the level spectrum
    // of a real window is symmetric, and so the second transform needs only its first half.
    const int half = fftSize / 2;
    double* binRe = im;
    double* binIm = im + half + 1;
    spectrum::realSpectrum(re, m, binRe, binIm);
    for (int i = 0; i <= half; ++i)
        re[i] = spectrum::levelDb(binRe[i], binIm[i]);
    for (int i = half + 1; i < fftSize; ++i)
        re[i] = re[fftSize - i];
    spectrum::realSpectrum(re, m, binRe, binIm);
    for (int i = 0; i < half; ++i)
        c[i] = spectrum::levelDb(binRe[i], binIm[i]);

    const int qLow = quefrencyIndex(sampleRate, highHz);
    const int qHigh = quefrencyIndex(sampleRate, lowHz);
    const int index = cepstralPeak(c, half, qLow, qHigh);
    const double f0 = sampleRate / std::max(index, 1);
    return (f0 >= lowHz && f0 <= highHz) ? f0 : 0.0;
}
