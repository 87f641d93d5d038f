#include "display/SpectralComparison.h"

#include "analysis/CMathFunc.h"

#include <algorithm>
#include <cmath>
#include <limits>

double envelopeDistance(const std::vector<double>& a, const std::vector<double>& b)
{
    const std::size_t n = std::min(a.size(), b.size());
    if (n == 0)
        return 0.0;
    double meanA = 0.0, meanB = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        meanA += a[i];
        meanB += b[i];
    }
    meanA /= n;
    meanB /= n;
    double sum = 0.0;
    for (std::size_t i = 0; i < n; ++i) {
        const double d = (a[i] - meanA) - (b[i] - meanB);
        sum += d * d;
    }
    return std::sqrt(sum / n);
}

double envelopeDistance(const std::vector<double>& frequencyA, const std::vector<double>& a,
                        const std::vector<double>& frequencyB, const std::vector<double>& b, double topHz)
{
    const std::size_t countA = std::min(frequencyA.size(), a.size());
    const std::size_t countB = std::min(frequencyB.size(), b.size());
    if (countA == 0 || countB == 0)
        return 0.0;
    const double top = std::min({topHz, frequencyA[countA - 1], frequencyB[countB - 1]});
    std::vector<double> onA, fromB;
    std::size_t j = 0;
    for (std::size_t i = 0; i < countA && frequencyA[i] <= top; ++i) {
        const double f = frequencyA[i];
        while (j + 1 < countB && frequencyB[j + 1] < f)
            ++j;
        double value = b[j];
        if (j + 1 < countB && frequencyB[j + 1] > frequencyB[j] && f > frequencyB[j]) {
            const double t = (f - frequencyB[j]) / (frequencyB[j + 1] - frequencyB[j]);
            value = b[j] + std::min(t, 1.0) * (b[j + 1] - b[j]);
        }
        onA.push_back(a[i]);
        fromB.push_back(value);
    }
    return envelopeDistance(onA, fromB);
}

namespace
{
// One frame of a recording: its power (sum of squares over the window, silence 0) and its
// LPC envelope at the comparison's points.
struct FrameAnalysis {
    double power = 0.0;
    std::vector<double> envelope;
};

FrameAnalysis analyseFrame(const float* x, long long start, int window, const SpectrogramSettings& s,
                           double sampleRate, std::vector<double>& work)
{
    FrameAnalysis frame;
    // The window and one more sample: the pre-emphasis takes the forward difference.
    for (int i = 0; i <= window; ++i) {
        work[i] = x[start + i];
        if (i < window)
            frame.power += work[i] * work[i];
    }
    if (frame.power == 0.0)
        return frame;
    CMathFunc math;
    const int order = std::clamp(s.m_nSpecLPCNumberofCoefficients, 1, std::min(kMaxLpcOrder, window - 1));
    math.DoLPC(work.data(), order, window, s.m_dPreEmphasis, 1, 1, RecordingComparison::kEnvelopePoints,
               s.m_nSpecfrequencyRange, sampleRate, 0, 0);
    frame.envelope.assign(work.begin(), work.begin() + RecordingComparison::kEnvelopePoints);
    return frame;
}

double levelDb(double power)
{
    return power > 0.0 ? 10.0 * std::log10(power) : -std::numeric_limits<double>::infinity();
}
} // namespace

bool RecordingComparison::compare(const Channels& a, const Channels& b)
{
    m_frames.clear();
    m_nFramesWalked = 0;
    const double rate = a.m_dSampleRate;
    if (!a.samples() || !b.samples() || rate != b.m_dSampleRate || !(rate >= 1.0) || !std::isfinite(rate))
        return false;
    const int window = std::clamp(m_settings.m_nSpecWindowLength, 2, CMathFunc::kMaxTransformLength);
    const auto length = static_cast<long long>(std::min(a.sampleCount(), b.sampleCount()));
    const double step = rate * kStepMS / 1000.0;
    std::vector<double> work(std::max(window + 1, kEnvelopePoints) + 1);

    std::vector<FrameAnalysis> framesA, framesB;
    for (long long j = 0;; ++j) {
        const auto start = static_cast<long long>(j * step);
        if (start + window + 1 > length)
            break;
        framesA.push_back(analyseFrame(a.samples(), start, window, m_settings, rate, work));
        framesB.push_back(analyseFrame(b.samples(), start, window, m_settings, rate, work));
    }
    m_nFramesWalked = static_cast<std::int32_t>(framesA.size());
    double loudestA = -std::numeric_limits<double>::infinity(), loudestB = loudestA;
    for (std::size_t j = 0; j < framesA.size(); ++j) {
        loudestA = std::max(loudestA, levelDb(framesA[j].power));
        loudestB = std::max(loudestB, levelDb(framesB[j].power));
    }
    const double range = m_settings.m_nSpecDynamicRange;
    for (std::size_t j = 0; j < framesA.size(); ++j) {
        const FrameAnalysis& fa = framesA[j];
        const FrameAnalysis& fb = framesB[j];
        if (fa.envelope.empty() || fb.envelope.empty() || levelDb(fa.power) < loudestA - range ||
            levelDb(fb.power) < loudestB - range)
            continue;
        m_frames.push_back({static_cast<double>(j) * kStepMS, envelopeDistance(fa.envelope, fb.envelope)});
    }
    return true;
}

double RecordingComparison::meanDistance() const
{
    if (m_frames.empty())
        return std::numeric_limits<double>::quiet_NaN();
    double sum = 0.0;
    for (const FrameDistance& f : m_frames)
        sum += f.distanceDB;
    return sum / static_cast<double>(m_frames.size());
}
