#include "display/SliceComputation.h"

#include "analysis/CMathFunc.h"
#include "analysis/SpectrumSupport.h"
#include "document/Channels.h"
#include "document/MyDocument.h"

#include <algorithm>
#include <cmath>

SliceSettings SliceSettings::fromDocument(MyDocument& document)
{
    return SliceSettings{document, document.updateInterval()};
}

namespace
{
// Samples enter the transforms on the 16-bit scale, so that only digital silence meets the
// analysis's "zero power reads 0 dB" rule; the scale is taken out again in dB.
constexpr double kSampleScale = 32768.0;

// Power from a level in dB.
double powerOf(double db)
{
    return std::pow(10.0, db / 10.0);
}

// The transform length the settings ask for: a power of two within what the analysis takes.
int transformLength(int points)
{
    int n = 32;
    while (n < points && n < CMathFunc::kMaxTransformLength)
        n *= 2;
    return n;
}
// Bins 0 .. n/2 - 1 up to the frequency range (and never beyond half the rate): how many.
int binCount(int n, double sampleRate, int rangeHz)
{
    const double binHz = sampleRate / n;
    const double top = std::min(static_cast<double>(std::max(rangeHz, 0)), sampleRate / 2.0);
    return std::min(n / 2, static_cast<int>(std::floor(top / binHz + 1e-9)) + 1);
}

} // namespace

void SliceComputation::clear()
{
    m_dFrequency.clear();
    m_dFFT.clear();
    m_dLPC.clear();
    m_nWindows = 0;
    m_bSilent = true;
}

bool SliceComputation::compute(const Channels& channel, double startSample)
{
    return compute(channel.samples(), channel.sampleCount(), channel.m_dSampleRate, startSample);
}

void SliceComputation::storeLevels(const std::vector<double>& fftPower, const std::vector<double>& lpcPower,
                                   int voiced, double binHz)
{
    const int applied = m_nAppliedSamples;
    const int windows = m_nWindows;
    const int bins = static_cast<int>(fftPower.size());
    // dB re full scale: the 16-bit scale and the window's gain for a sine centred on a bin.
    double windowSum = 0.0;
    const double* w = spectrum::windowTable(applied, 1, applied);
    for (int i = 0; i < applied; ++i)
        windowSum += w[i];
    const double offset = 20.0 * std::log10(kSampleScale * windowSum / 2.0);
    m_dFrequency.resize(bins);
    m_dFFT.resize(bins);
    for (int k = 0; k < bins; ++k) {
        m_dFrequency[k] = k * binHz;
        m_dFFT[k] = 10.0 * std::log10(fftPower[k] / windows) - offset;
    }
    m_bSilent = voiced == 0;
    if (!m_bSilent) {
        m_dLPC.resize(bins);
        for (int k = 0; k < bins; ++k)
            m_dLPC[k] = 10.0 * std::log10(lpcPower[k] / windows) - offset;
    }
}

bool SliceComputation::compute(const float* samples, std::size_t count, double sampleRate, double startSample)
{
    clear();
    if (!samples || count == 0 || !(sampleRate >= 1.0) || !std::isfinite(sampleRate) ||
        !(startSample >= 0.0) || startSample >= static_cast<double>(count))
        return false;
    const int n = transformLength(m_settings.m_nFFTWindowLength);
    const double appliedMS = std::max(1.0, static_cast<double>(m_settings.m_nFFTAppliedWindowLength));
    const int applied = std::clamp(static_cast<int>(appliedMS * sampleRate / 1000.0), 2, n);
    const int windows = std::clamp(m_settings.m_nFFTAverageStepSize, 1, 1000);
    const int order =
        std::clamp(m_settings.m_nLPCNumberofCoefficients, 1, std::min(kMaxLpcOrder, applied - 1));
    const double spacing =
        std::max(1, m_settings.m_nUpdateIntervalMS) * sampleRate / 1000.0 / static_cast<double>(windows);
    m_dStartSample = std::trunc(startSample);
    m_dSampleRate = sampleRate;
    m_nTransformLength = n;
    m_nAppliedSamples = applied;
    m_nWindows = windows;

    const double binHz = sampleRate / n;
    const int bins = binCount(n, sampleRate, m_settings.m_nFFTfrequencyRange);

    CMathFunc math;
    std::vector<double> raw(applied);
    std::vector<double> frame(static_cast<std::size_t>(n) + 1);
    std::vector<double> envelope(std::max<std::size_t>(static_cast<std::size_t>(n) + 1, 129));
    std::vector<double> fftPower(bins, 0.0), lpcPower(bins, 0.0);
    int voiced = 0; // windows that held any sound
    for (int j = 0; j < windows; ++j) {
        const long long first = static_cast<long long>(m_dStartSample + std::trunc(j * spacing));
        bool sound = false;
        for (int i = 0; i < applied; ++i) {
            const long long k = first + i;
            raw[i] = k < static_cast<long long>(count) ? samples[k] * kSampleScale : 0.0;
            sound = sound || raw[i] != 0.0;
        }
        // The Hamming window over the applied length, the rest of the transform silent.
        spectrum::windowFrame(raw.data(), applied, 0.0, 1, frame.data());
        std::fill(frame.begin() + applied, frame.end(), 0.0);
        math.DoFFT_Real(frame.data(), n, 0.0, 0, 0, 0, 0, sampleRate);
        for (int k = 0; k < bins; ++k)
            fftPower[k] += powerOf(frame[k]);
        if (!sound)
            continue;
        // The level of the inverse filter at the bin frequencies: output point k of n over
        // 0 .. rate stands for k x rate / n Hz, bin k of the transform.
        std::copy(raw.begin(), raw.end(), envelope.begin());
        math.DoLPC(envelope.data(), order, applied, 0.0, 1, 1, n, static_cast<int>(std::lround(sampleRate)),
                   sampleRate, 0, 0);
        const double energy = math.lastLpc()->energy;
        for (int k = 0; k < bins; ++k)
            lpcPower[k] += energy / powerOf(envelope[k]);
        ++voiced;
    }

    storeLevels(fftPower, lpcPower, voiced, binHz);
    return true;
}

double SliceComputation::peakFrequency() const
{
    if (m_dFFT.empty())
        return 0.0;
    const auto peak = std::max_element(m_dFFT.begin(), m_dFFT.end()) - m_dFFT.begin();
    double shift = 0.0;
    if (peak > 0 && peak + 1 < static_cast<long>(m_dFFT.size())) {
        const double a = m_dFFT[peak - 1], b = m_dFFT[peak], c = m_dFFT[peak + 1];
        const double curvature = a - 2.0 * b + c;
        if (curvature < 0.0)
            shift = std::clamp(0.5 * (a - c) / curvature, -0.5, 0.5);
    }
    return (static_cast<double>(peak) + shift) * m_dSampleRate / m_nTransformLength;
}
