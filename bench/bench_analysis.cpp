// Analysis speed on ten seconds of synthesized running vowels at 11025 Hz: the spectrogram with formant
// tracks at 1000 x 400 pixels, the pitch track at default settings, one formant-mode LPC frame
// and one smoothed 256-point spectrum.
#include "analysis/CMathFunc.h"
#include "display/PitchTrackComputation.h"
#include "display/SliceComputation.h"
#include "display/SpectralComparison.h"
#include "display/SpectrogramComputation.h"
#include "document/Log.h"
#include "document/MyDocument.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <vector>

namespace
{

// The recording: examples/moving-vowels.stk (ten seconds whose pitch and formants move)
// synthesized by the project's own synthesizer at 11025 Hz.
MyDocument& document()
{
    static const std::unique_ptr<MyDocument> d = [] {
        auto doc = std::make_unique<MyDocument>();
        std::ifstream in(TESSAPHON_SOURCE_DIR "/examples/moving-vowels.stk", std::ios::binary);
        std::ostringstream bytes;
        bytes << in.rdbuf();
        int error = 0;
        if (!doc->readFromData(bytes.str(), "stk", &error)) {
            std::fprintf(stderr, "examples/moving-vowels.stk: %s\n", doc->lastReadError().c_str());
            std::exit(1);
        }
        doc->buildDataTableDictionary();
        Log::setSink([](const std::string&) {}); // the driver's progress lines
        doc->Synthesize();
        Log::setSink({});
        doc->setAnalysisDefaults(doc->getChannel(0)->m_dSampleRate);
        return doc;
    }();
    return *d;
}

const Channels& recording()
{
    return *document().getChannel(0);
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

// The comparison behind `tessaphon-cli compare`: the recording against itself, frame by frame.
void BM_CompareTenSeconds(benchmark::State& state)
{
    const Channels& channel = recording();
    const SpectrogramSettings settings = SpectrogramSettings::fromDocument(document());
    for (auto _ : state) {
        RecordingComparison comparison(settings);
        benchmark::DoNotOptimize(comparison.compare(channel, channel));
        benchmark::DoNotOptimize(comparison.m_frames.data());
    }
}
BENCHMARK(BM_CompareTenSeconds)->Unit(benchmark::kMillisecond);

// One FFT/LPC slice at the panel's defaults (ten windows averaged).
void BM_Slice(benchmark::State& state)
{
    const Channels& channel = recording();
    SliceComputation slice(SliceSettings::fromDocument(document()));
    double start = 0.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(slice.compute(channel, start));
        start = start > 100000.0 ? 0.0 : start + 110.0;
    }
}
BENCHMARK(BM_Slice)->Unit(benchmark::kMicrosecond);

void BM_DoLPCFormants(benchmark::State& state)
{
    const float* x = recording().samples();
    std::vector<double> frame(154 + 20);
    for (auto _ : state) {
        for (std::size_t i = 0; i < frame.size(); ++i)
            frame[i] = x[20000 + i];
        CMathFunc math;
        benchmark::DoNotOptimize(math.DoLPC(frame.data(), 14, 154, 0.98, 1, 0, 400, 5000, 11025.0, 1, 1));
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
        benchmark::DoNotOptimize(math.DoFFT_Real(frame.data(), 256, 0.98, 1, 1, 400, 5000, 11025.0));
    }
}
BENCHMARK(BM_DoFFTRealSmoothed256)->Unit(benchmark::kMicrosecond);

} // namespace
