// Analysis speed on ten seconds of speech-like audio at 11025 Hz: the spectrogram with formant
// tracks at 1000 x 400 pixels, the pitch track at default settings, one formant-mode LPC frame
// and one smoothed 256-point spectrum.
#include "analysis/CMathFunc.h"
#include "display/PitchTrackComputation.h"
#include "display/SpectrogramComputation.h"
#include "document/MyDocument.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace
{

constexpr double kRate = 11025.0;

// Ten seconds of a voice whose pitch and formants move: pulses at 90 .. 190 Hz through three
// resonators gliding between vowel targets, with a little breath noise and short pauses.
std::vector<float> speechLike()
{
    const int n = static_cast<int>(10.0 * kRate);
    std::vector<float> out(n);
    std::mt19937 random(1);
    std::normal_distribution<double> breath(0.0, 0.002);
    double phase = 0.0;
    double y1[3] = {}, y2[3] = {};
    for (int i = 0; i < n; ++i) {
        const double t = i / kRate;
        const double f0 = 140.0 + 50.0 * std::sin(2.0 * M_PI * 0.4 * t);
        phase += f0 / kRate;
        double x = 0.0;
        if (phase >= 1.0) {
            phase -= 1.0;
            x = 1.0;
        }
        const double glide = 0.5 + 0.5 * std::sin(2.0 * M_PI * 0.7 * t);
        const double formants[3] = {300.0 + 450.0 * glide, 2200.0 - 1100.0 * glide, 2600.0 + 200.0 * glide};
        const double bandwidths[3] = {80.0, 100.0, 150.0};
        for (int k = 0; k < 3; ++k) {
            const double c = -std::exp(-2.0 * M_PI * bandwidths[k] / kRate);
            const double b =
                2.0 * std::exp(-M_PI * bandwidths[k] / kRate) * std::cos(2.0 * M_PI * formants[k] / kRate);
            const double y = (1.0 - b - c) * x + b * y1[k] + c * y2[k];
            y2[k] = y1[k];
            y1[k] = y;
            x = y;
        }
        const bool pause = std::fmod(t, 2.5) > 2.2;
        out[i] = static_cast<float>((pause ? 0.0 : 0.05 * x) + breath(random));
    }
    return out;
}

const Channels& recording()
{
    static const std::unique_ptr<Channels> channel = [] {
        const std::vector<float> samples = speechLike();
        auto c = std::make_unique<Channels>();
        c->m_hData = MemoryBlock::newHandleClear(samples.size() * sizeof(float));
        std::memcpy(c->m_hData->bytes(), samples.data(), samples.size() * sizeof(float));
        c->m_dSampleRate = kRate;
        c->m_dwFileLength = static_cast<double>(samples.size());
        c->m_dLengthMS = samples.size() * 1000.0 / kRate;
        return c;
    }();
    return *channel;
}

MyDocument& document()
{
    static MyDocument d;
    d.setAnalysisDefaults(kRate);
    return d;
}

void BM_SpectrogramWithFormants(benchmark::State& state)
{
    const Channels& channel = recording();
    const SpectrogramSettings settings = SpectrogramSettings::fromDocument(document());
    for (auto _ : state) {
        SpectrogramComputation s(settings);
        benchmark::DoNotOptimize(s.compute(channel, 1000, 400));
        benchmark::DoNotOptimize(s.m_phsnFormants.data());
    }
}
BENCHMARK(BM_SpectrogramWithFormants)->Unit(benchmark::kMillisecond);

void BM_PitchTrack(benchmark::State& state)
{
    const Channels& channel = recording();
    const PitchSettings settings = PitchSettings::fromDocument(document());
    for (auto _ : state) {
        PitchTrackComputation t;
        benchmark::DoNotOptimize(t.DoPitchCepstral(channel, settings));
        benchmark::DoNotOptimize(t.m_hdPitchFile.data());
    }
}
BENCHMARK(BM_PitchTrack)->Unit(benchmark::kMillisecond);

void BM_DoLPCFormants(benchmark::State& state)
{
    const float* x = recording().samples();
    std::vector<double> frame(154 + 20);
    for (auto _ : state) {
        for (std::size_t i = 0; i < frame.size(); ++i)
            frame[i] = x[20000 + i];
        CMathFunc math;
        benchmark::DoNotOptimize(math.DoLPC(frame.data(), 14, 154, 0.98, 1, 0, 400, 5000, kRate, 1, 1));
    }
}
BENCHMARK(BM_DoLPCFormants)->Unit(benchmark::kMicrosecond);

void BM_DoFFTRealSmoothed256(benchmark::State& state)
{
    const float* x = recording().samples();
    std::vector<double> frame(400 + 100);
    for (auto _ : state) {
        for (int i = 0; i < 257; ++i)
            frame[i] = x[30000 + i];
        CMathFunc math;
        benchmark::DoNotOptimize(math.DoFFT_Real(frame.data(), 256, 0.98, 1, 1, 400, 5000, kRate));
    }
}
BENCHMARK(BM_DoFFTRealSmoothed256)->Unit(benchmark::kMicrosecond);

} // namespace
