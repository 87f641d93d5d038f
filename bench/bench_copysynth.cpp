// Copy synthesis of 10 s of speech-like sound (the synthesizer's own, with moving pitch,
// formants, voicing and frication): the estimation from samples to frame values.
#include "copysynth/CopySynthesis.h"
#include "copysynth/KlattRender.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace
{

std::vector<float> speechLike(int frames)
{
    std::vector<FrameValues> list;
    for (int c = 0; c < frames; ++c) {
        FrameValues v{};
        for (int row = 0; row < kParameterCount; ++row)
            v[row] = kFactoryParameters[row].defaultValue;
        const double t = c * 0.01;
        const bool voiced = std::fmod(t, 0.7) < 0.55;
        v[Row::f0] = static_cast<int>(1100 + 200 * std::sin(2.0 * t));
        v[Row::av] = voiced ? 60 : 0;
        v[Row::af] = voiced ? 0 : 55;
        v[Row::a4f] = v[Row::a5f] = 55;
        v[Row::f1] = static_cast<int>(500 + 200 * std::sin(7.0 * t));
        v[Row::f2] = static_cast<int>(1500 + 400 * std::sin(5.0 * t));
        v[Row::f3] = static_cast<int>(2500 + 200 * std::sin(3.0 * t));
        list.push_back(v);
    }
    return renderFrames(list, 11025, 10).samples;
}

void BM_CopySynthesize10s(benchmark::State& state)
{
    const std::vector<float> samples = speechLike(1003);
    for (auto _ : state) {
        const CopySynthesisResult r = copySynthesize(samples.data(), samples.size(), 11025.0, {});
        benchmark::DoNotOptimize(r.frames.data());
    }
}
BENCHMARK(BM_CopySynthesize10s)->Unit(benchmark::kMillisecond);

} // namespace
