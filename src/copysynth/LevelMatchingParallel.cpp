// The copy synthesis's voicing through the parallel branch: each formant's amplitude matched.
#include "copysynth/LevelMatching.h"

#include "copysynth/SignalTools.h"

#include <algorithm>
#include <cmath>
#include <future>

namespace
{

constexpr int kFormants = 5;
constexpr int kAmplitudeRows[kFormants] = {Row::a1f, Row::a2f, Row::a3f, Row::a4f, Row::a5f};
constexpr int kCascadeBandwidths[kFormants] = {Row::b1, Row::b2, Row::b3, Row::b4, Row::b5};
constexpr int kParallelBandwidths[kFormants] = {Row::b1f, Row::b2f, Row::b3f, Row::b4f, Row::b5f};
constexpr int kStart = 60;         // dB: every amplitude starts here, corrected by the passes
constexpr double kWindowS = 0.025; // formant peaks are measured as the spectral comparison sees them
constexpr double kStepLimit = 30.0;
constexpr double kDamping = 0.8;

} // namespace

void LevelMatching::matchParallelVoicing(std::vector<FrameValues>& frames, int passes,
                                         double bandwidthScale) const
{
    for (std::size_t f = 0; f < m_target.centres.size(); ++f) {
        FrameValues& v = frames[f];
        if (!m_target.voiced[f] || v[Row::av] <= 0)
            continue;
        v[Row::av] = 0;
        v[Row::apv] = kStart;
        for (int k = 0; k < kFormants; ++k) {
            v[kAmplitudeRows[k]] = kStart;
            v[kParallelBandwidths[k]] = std::clamp(
                static_cast<int>(std::lround(v[kCascadeBandwidths[k]] * bandwidthScale)), 40, 1000);
        }
    }
    const BandLayout layout{kWindowS, true, [](const FrameValues& v, double top) {
                                return std::vector<double>{60.0,
                                                           0.5 * (v[Row::f1] + v[Row::f2]),
                                                           0.5 * (v[Row::f2] + v[Row::f3]),
                                                           0.5 * (v[Row::f3] + v[Row::f4]),
                                                           0.5 * (v[Row::f4] + v[Row::f5]),
                                                           top};
                            }};
    // The recording's levels are taken on a thread of their own while the first pass renders
    // (both only read the frames).
    using Levels = std::vector<std::vector<double>>;
    std::future<Levels> analysed = std::async(std::launch::async, [this, &frames, &layout] {
        return levelsInBands(m_target.samples, m_target.count, m_target.rate, frames, layout);
    });
    Levels recording;
    for (int pass = 0; pass < passes; ++pass) {
        const Rendering r = renderFrames(only(frames, true, false), m_nRate, m_nInterval);
        const auto synth = levelsInBands(r.samples.data(), r.samples.size(), m_nRate, frames, layout);
        if (analysed.valid())
            recording = analysed.get();
        for (std::size_t f = 0; f < m_target.centres.size(); ++f) {
            if (!m_target.voiced[f] || frames[f][Row::apv] == 0)
                continue;
            for (int k = 0; k < kFormants; ++k) {
                if (synth[f][k] <= kSilentDb || recording[f][k] <= kSilentDb)
                    continue;
                int& value = frames[f][kAmplitudeRows[k]];
                const double error = std::clamp(recording[f][k] - synth[f][k], -kStepLimit, kStepLimit);
                value = std::clamp(static_cast<int>(std::lround(value + kDamping * error)), 0, 87);
            }
        }
    }
}
