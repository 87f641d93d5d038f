#pragma once
// Signals with known answers for the copy synthesis tests: documents' frames made by hand and
// synthesized by the synthesizer itself, so the estimate must give back their parameters.
#include "copysynth/CopySynthesis.h"
#include "copysynth/KlattRender.h"
#include "support/SignalProbe.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace copytest
{

constexpr int kRate = 11025;
constexpr int kInterval = 10;

// A frame of factory values with the given voicing and formants (f1 .. f5, Hz).
inline FrameValues vowelFrame(double f0Hz, int av,
                              std::array<int, 5> formants = {700, 1220, 2600, 3300, 3750})
{
    FrameValues v{};
    for (int row = 0; row < kParameterCount; ++row)
        v[row] = kFactoryParameters[row].defaultValue;
    v[Row::f0] = static_cast<int>(std::lround(f0Hz * 10.0));
    v[Row::av] = av;
    const int rows[5] = {Row::f1, Row::f2, Row::f3, Row::f4, Row::f5};
    for (int k = 0; k < 5; ++k)
        v[rows[k]] = formants[k];
    v[Row::oq] = 40;
    return v;
}

inline std::vector<float> render(const std::vector<FrameValues>& frames)
{
    return renderFrames(frames, kRate, kInterval).samples;
}

inline CopySynthesisResult estimate(const std::vector<float>& samples, CopySynthesisOptions options = {})
{
    return copySynthesize(samples.data(), samples.size(), kRate, options);
}

// Levels in dB of 20 ms stretches (mean square), from `from` seconds on.
inline std::vector<double> levels(const std::vector<float>& x, double rate)
{
    const std::size_t n = static_cast<std::size_t>(0.02 * rate);
    std::vector<double> out;
    for (std::size_t i = 0; i + n <= x.size(); i += n)
        out.push_back(probe::rmsDb(x, i, i + n));
    return out;
}

// Median absolute level difference over the stretches within 30 dB of the loudest.
inline double medianLevelError(const std::vector<float>& a, const std::vector<float>& b)
{
    const std::vector<double> la = levels(a, kRate), lb = levels(b, kRate);
    const double loudest = *std::max_element(la.begin(), la.end());
    std::vector<double> d;
    for (std::size_t i = 0; i < std::min(la.size(), lb.size()); ++i)
        if (la[i] > loudest - 30.0)
            d.push_back(std::fabs(la[i] - lb[i]));
    std::nth_element(d.begin(), d.begin() + d.size() / 2, d.end());
    return d[d.size() / 2];
}

} // namespace copytest
