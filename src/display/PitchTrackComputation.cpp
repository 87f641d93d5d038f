#include "display/PitchTrackComputation.h"

#include "analysis/CMathFunc.h"
#include "document/Log.h"

#include <algorithm>
#include <cmath>

namespace
{

// Window in samples: a window longer than the transform is cut to the whole number of
// milliseconds that 1024 samples last.
int windowSamples(double sampleRate, double windowMS)
{
    const double perMS = sampleRate / 1000.0;
    double samples = std::trunc(perMS * windowMS);
    if (samples > PitchTrackComputation::kTransformSize)
        samples = std::trunc(perMS * std::trunc(1000.0 / sampleRate * PitchTrackComputation::kTransformSize));
    if (!std::isfinite(samples))
        return 0;
    return static_cast<int>(
        std::clamp(samples, 0.0, static_cast<double>(PitchTrackComputation::kTransformSize)));
}

} // namespace

bool PitchTrackComputation::DoPitchCepstral(const Channels& channel, const PitchSettings& settings)
{
    m_hdPitchFile.clear();
    m_bHavePitch = 0;
    m_nFrameCount = 0;
    const double sr = channel.m_dSampleRate;
    const double N =
        std::isfinite(channel.m_dwFileLength) ? std::clamp(channel.m_dwFileLength, 0.0, 9.0e15) : 0.0;
    m_dStepSamples = sr / 1000.0 * settings.m_dPitchStepSize;
    if (!(m_dStepSamples >= 1.0) || !std::isfinite(m_dStepSamples)) {
        Log::printf("pitch track: a step of %g samples is refused\n", m_dStepSamples);
        return false;
    }
    const double frameCount = std::trunc(N / m_dStepSamples) - 1.0;
    if (frameCount > kMaxFrames) {
        Log::printf("pitch track: %.0f frames are more than %d\n", frameCount, kMaxFrames);
        return false;
    }
    m_nWindowSamples = windowSamples(sr, settings.m_dPitchWindowLength);
    const int frames = static_cast<int>(std::max(frameCount, 0.0));
    m_nFrameCount = frames;
    m_hdPitchFile.assign(static_cast<std::size_t>(frames), 0.0);

    std::vector<double> raw(static_cast<std::size_t>(frames) + 10, 0.0);
    if (const float* samples = channel.samples()) {
        const double length = std::min(N, static_cast<double>(channel.sampleCount()));
        CMathFunc math;
        for (int i = 0; i < frames; ++i)
            raw[i] = math.DoPitchCepstrumNewFloat(samples, i * m_dStepSamples, length, sr,
                                                  settings.m_dCalculationLow, settings.m_dCalculationHigh,
                                                  kTransformSize, m_nWindowSamples);
    }
    removeJumps(raw, settings.m_dFreqDeviation);
    smoothForward();
    gateByEnergy(channel, settings.m_dPitchTrackingThreshHold);
    m_bHavePitch = 1;
    return true;
}

void PitchTrackComputation::removeJumps(const std::vector<double>& raw, double deviation)
{
    // The first and the last frame stay 0.
    for (int i = 1; i <= m_nFrameCount - 2; ++i) {
        const double before = std::trunc(std::fabs(raw[i - 1] - raw[i]));
        const double after = std::trunc(std::fabs(raw[i + 1] - raw[i]));
        m_hdPitchFile[i] = (before >= deviation || after >= deviation) ? 0.0 : raw[i];
    }
}

void PitchTrackComputation::smoothForward()
{
    // In place and forward: each mean uses the two following values before they are smoothed
    // themselves, and a zero among the three leaves the frame as it is.
    std::vector<double>& track = m_hdPitchFile;
    for (int j = 0; j <= m_nFrameCount - 4; ++j) {
        if (track[j] != 0.0 && track[j + 1] != 0.0 && track[j + 2] != 0.0)
            track[j] = (track[j] + track[j + 1] + track[j + 2]) / 3.0;
    }
}

void PitchTrackComputation::gateByEnergy(const Channels& channel, double threshold)
{
    const float* x = channel.samples();
    const long long available = static_cast<long long>(channel.sampleCount());
    std::vector<double> energy(static_cast<std::size_t>(m_nFrameCount) + 10, 0.0);
    double loudest = -1000000000.0;
    for (int i = 0; i < m_nFrameCount; ++i) {
        const long long first = static_cast<long long>(i * m_dStepSamples);
        const long long last =
            std::min(static_cast<long long>(i * m_dStepSamples + m_dStepSamples), available);
        double sum = 0.0;
        for (long long k = first; x && k < last; ++k)
            sum += static_cast<double>(x[k]) * x[k];
        energy[i] = sum / m_dStepSamples;
        loudest = std::max(loudest, energy[i]);
    }
    const double limit = loudest * threshold / 100.0;
    for (int i = 0; i < m_nFrameCount; ++i)
        if (energy[i] - limit <= 0.0)
            m_hdPitchFile[i] = 0.0;
}
