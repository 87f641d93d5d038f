// Signal tools of the copy synthesis: FFT, resampling, windows.
#include "copysynth/SignalTools.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace
{
constexpr double kPi = 3.14159265358979323846;
} // namespace

double levelDb(double meanSquare)
{
    return meanSquare > 1e-15 ? 10.0 * std::log10(meanSquare) : kSilentDb;
}

Fft::Fft(int size) : m_nSize(size), m_twiddles(size / 2), m_bitReverse(size)
{
    if (size < 2 || (size & (size - 1)) != 0)
        throw std::invalid_argument("FFT size must be a power of two");
    for (int k = 0; k < size / 2; ++k)
        m_twiddles[k] = std::polar(1.0, -2.0 * kPi * k / size);
    int bits = 0;
    while ((1 << bits) < size)
        ++bits;
    for (int i = 0; i < size; ++i) {
        int r = 0;
        for (int b = 0; b < bits; ++b)
            r |= ((i >> b) & 1) << (bits - 1 - b);
        m_bitReverse[i] = r;
    }
}

template <bool Inverse> void Fft::transform(std::complex<double>* data) const
{
    for (int i = 0; i < m_nSize; ++i)
        if (i < m_bitReverse[i])
            std::swap(data[i], data[m_bitReverse[i]]);
    for (int half = 1; half < m_nSize; half *= 2) {
        const int step = m_nSize / (2 * half);
        for (int k = 0; k < half; ++k) {
            const std::complex<double> w = m_twiddles[k * step];
            const double wr = w.real(), wi = Inverse ? -w.imag() : w.imag();
            for (int start = k; start < m_nSize; start += 2 * half) {
                // Written out: std::complex multiplication checks for infinities on every call.
                std::complex<double>& a = data[start];
                std::complex<double>& b = data[start + half];
                const double tr = b.real() * wr - b.imag() * wi;
                const double ti = b.real() * wi + b.imag() * wr;
                b = std::complex<double>(a.real() - tr, a.imag() - ti);
                a = std::complex<double>(a.real() + tr, a.imag() + ti);
            }
        }
    }
}

void Fft::forward(std::complex<double>* data) const
{
    transform<false>(data);
}

void Fft::inverse(std::complex<double>* data) const
{
    transform<true>(data);
    const double scale = 1.0 / m_nSize;
    for (int i = 0; i < m_nSize; ++i)
        data[i] *= scale;
}

void Fft::powerSpectrum(const double* real, int count, std::complex<double>* work, double* power) const
{
    const int n = std::min(count, m_nSize);
    for (int i = 0; i < n; ++i)
        work[i] = std::complex<double>(real[i], 0.0);
    std::fill(work + n, work + m_nSize, std::complex<double>());
    forward(work);
    for (int k = 0; k <= m_nSize / 2; ++k)
        power[k] = std::norm(work[k]);
}

void Fft::powerSpectrumPair(const double* a, const double* b, int count, std::complex<double>* work,
                            double* powerA, double* powerB) const
{
    const int n = std::min(count, m_nSize);
    for (int i = 0; i < n; ++i)
        work[i] = std::complex<double>(a[i], b[i]);
    std::fill(work + n, work + m_nSize, std::complex<double>());
    forward(work);
    for (int k = 0; k <= m_nSize / 2; ++k) {
        const std::complex<double> z = work[k], zc = std::conj(work[(m_nSize - k) % m_nSize]);
        powerA[k] = 0.25 * std::norm(z + zc);
        powerB[k] = 0.25 * std::norm(z - zc);
    }
}

void Fft::autocorrelationPair(const double* a, const double* b, int count, std::complex<double>* work,
                              int lags, double* ra, double* rb) const
{
    const int n = std::min(count, m_nSize);
    for (int i = 0; i < n; ++i)
        work[i] = std::complex<double>(a[i], b[i]);
    std::fill(work + n, work + m_nSize, std::complex<double>());
    forward(work);
    // The spectra of the two real signals are the even and odd parts of the packed one; their
    // powers are real and even, so one inverse transform returns both autocorrelations.
    std::vector<std::complex<double>> powers(m_nSize / 2 + 1);
    for (int k = 0; k <= m_nSize / 2; ++k) {
        const std::complex<double> z = work[k], zc = std::conj(work[(m_nSize - k) % m_nSize]);
        powers[k] = std::complex<double>(0.25 * std::norm(z + zc), 0.25 * std::norm(z - zc));
    }
    for (int k = 0; k <= m_nSize / 2; ++k)
        work[k] = powers[k];
    for (int k = m_nSize / 2 + 1; k < m_nSize; ++k)
        work[k] = powers[m_nSize - k];
    inverse(work);
    for (int t = 0; t < lags; ++t) {
        ra[t] = work[t].real();
        rb[t] = work[t].imag();
    }
}

int fftSizeFor(int n)
{
    int size = 2;
    while (size < n)
        size *= 2;
    return size;
}

std::vector<float> resampled(const float* samples, std::size_t count, double fromRate, double toRate)
{
    if (std::fabs(fromRate - toRate) < 1e-9)
        return std::vector<float>(samples, samples + count);
    const double ratio = toRate / fromRate;
    const std::size_t outCount = static_cast<std::size_t>(std::floor(count * ratio));
    std::vector<float> out(outCount);
    // Cut-off a little below the lower Nyquist frequency, in cycles per input sample; the
    // Hann-windowed sinc kernel is tabulated finely and read with linear interpolation.
    const double cutoff = 0.5 * std::min(1.0, ratio) * 0.94;
    const int zeroCrossings = 6;
    const double halfWidth = zeroCrossings / (2.0 * cutoff); // in input samples
    constexpr int kSteps = 256;                              // table points per input sample
    const int tableSize = static_cast<int>(std::ceil(halfWidth * kSteps)) + 2;
    std::vector<double> kernel(tableSize);
    for (int i = 0; i < tableSize; ++i) {
        const double d = std::min(static_cast<double>(i) / kSteps, halfWidth);
        const double x = 2.0 * cutoff * d;
        const double sinc = x < 1e-9 ? 1.0 : std::sin(kPi * x) / (kPi * x);
        kernel[i] = 2.0 * cutoff * sinc * (0.5 + 0.5 * std::cos(kPi * d / halfWidth));
    }
    for (std::size_t j = 0; j < outCount; ++j) {
        const double t = j / ratio;
        const long first = std::max(0L, static_cast<long>(std::ceil(t - halfWidth)));
        const long last =
            std::min(static_cast<long>(count) - 1, static_cast<long>(std::floor(t + halfWidth)));
        double sum = 0.0;
        for (long i = first; i <= last; ++i) {
            const double pos = std::fabs(i - t) * kSteps;
            const int k = static_cast<int>(pos);
            const double frac = pos - k;
            sum += samples[i] * (kernel[k] + (kernel[k + 1] - kernel[k]) * frac);
        }
        out[j] = static_cast<float>(sum);
    }
    return out;
}

std::vector<double> hannWindow(int n)
{
    std::vector<double> w(n);
    for (int i = 0; i < n; ++i)
        w[i] = 0.5 - 0.5 * std::cos(2.0 * kPi * i / n);
    return w;
}

void windowedSegment(const float* samples, std::size_t count, double centre, int length,
                     const std::vector<double>& window, double* out)
{
    const long start = static_cast<long>(std::lround(centre - length / 2.0));
    for (int i = 0; i < length; ++i) {
        const long k = start + i;
        const double x = (k >= 0 && k < static_cast<long>(count)) ? samples[k] : 0.0;
        out[i] = x * window[i];
    }
}

double melOfHz(double hz)
{
    return 2595.0 * std::log10(1.0 + hz / 700.0);
}

double hzOfMel(double mel)
{
    return 700.0 * (std::pow(10.0, mel / 2595.0) - 1.0);
}

FrameSpectrum::FrameSpectrum(int length)
    : m_nLength(length), m_fft(fftSizeFor(length)), m_window(hannWindow(length)), m_segment(length),
      m_secondSegment(length), m_power(m_fft.size() / 2 + 1), m_secondPower(m_fft.size() / 2 + 1),
      m_work(m_fft.size())
{
    for (double w : m_window)
        m_dEnergy += w * w;
}

void FrameSpectrum::analyse(const float* samples, std::size_t count, double centre)
{
    windowedSegment(samples, count, centre, m_nLength, m_window, m_segment.data());
    m_fft.powerSpectrum(m_segment.data(), m_nLength, m_work.data(), m_power.data());
}

void FrameSpectrum::analysePair(const float* samples, std::size_t count, double centre, double secondCentre)
{
    windowedSegment(samples, count, centre, m_nLength, m_window, m_segment.data());
    windowedSegment(samples, count, secondCentre, m_nLength, m_window, m_secondSegment.data());
    m_fft.powerSpectrumPair(m_segment.data(), m_secondSegment.data(), m_nLength, m_work.data(),
                            m_power.data(), m_secondPower.data());
}

double FrameSpectrum::bandLevelDb(double lo, double hi, double rate, bool second) const
{
    const std::vector<double>& power = second ? m_secondPower : m_power;
    const int size = m_fft.size();
    const int first = static_cast<int>(std::ceil(lo * size / rate));
    const int last = std::min(size / 2, static_cast<int>(std::floor(hi * size / rate)));
    double sum = 0.0;
    for (int k = std::max(first, 0); k <= last; ++k)
        sum += power[k];
    return levelDb(2.0 * sum / (size * m_dEnergy));
}

std::vector<int> tracedBack(const std::vector<std::vector<double>>& score,
                            const std::vector<std::vector<int>>& from, bool lowestWins)
{
    std::vector<int> states(score.size());
    if (score.empty())
        return states;
    const std::vector<double>& last = score.back();
    const auto best =
        lowestWins ? std::min_element(last.begin(), last.end()) : std::max_element(last.begin(), last.end());
    int state = static_cast<int>(best - last.begin());
    for (std::size_t f = score.size(); f-- > 0;) {
        states[f] = state;
        state = from[f][state];
    }
    return states;
}
