// Synthesis speed: a 60 s document of speech-like frames that change every 10 ms, synthesized
// at 11025 Hz (five cascade formants) and at 22050 Hz (eight). The counter realtime_factor is
// seconds of audio per second of CPU time.
#include "document/Log.h"
#include "document/MyDocument.h"
#include "synthesis/CKlattEngine.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <string>
#include <vector>

namespace
{

constexpr int kSeconds = 60;
constexpr int kIntervalMS = 10;
constexpr int kFrames = kSeconds * 1000 / kIntervalMS;

// Parameters of frame k: syllables of about 250 ms, each a short fricative or burst followed
// by a voiced stretch whose formants glide between vowel targets, under a slow pitch contour.
std::vector<int> speechLikeFrame(int k)
{
    std::vector<int> v(kParameterCount);
    for (int row = 0; row < kParameterCount; ++row)
        v[row] = kFactoryParameters[row].defaultValue;
    const int phase = k % 25;
    const double t = k * 0.01;
    const double glide = 0.5 + 0.5 * std::sin(t * 5.3);
    v[Row::f0] = static_cast<int>(1150 + 250 * std::sin(t * 1.7) + 60 * std::sin(t * 9.1));
    v[Row::f1] = static_cast<int>(300 + 450 * glide);
    v[Row::f2] = static_cast<int>(900 + 1300 * (0.5 + 0.5 * std::sin(t * 3.1)));
    v[Row::f3] = static_cast<int>(2300 + 600 * (0.5 + 0.5 * std::sin(t * 2.3)));
    v[Row::b1] = 60 + (k % 7) * 5;
    v[Row::b2] = 90 + (k % 5) * 10;
    if (phase < 4) { // unvoiced onset
        v[Row::av] = 0;
        v[Row::af] = 50 + phase * 3;
        v[Row::ah] = 40;
        v[Row::a4f] = 55;
        v[Row::a5f] = 60;
        v[Row::ab] = 30;
    } else {
        v[Row::av] = phase < 7 ? 45 + 5 * phase : 60 - (phase > 20 ? 4 * (phase - 20) : 0);
        v[Row::ah] = phase > 20 ? 35 : 0;
    }
    return v;
}

void makeDocument(MyDocument& doc, bool highFormants)
{
    Channels& c = *doc.getChannel(0);
    c.m_dLengthMS = kSeconds * 1000.0;
    c.m_nUpdateIntervalMS = kIntervalMS;
    c.m_nColumnNum = kFrames + 1; // column 0 (time 0) is not synthesized
    c.m_Parameters[Row::f6].bSelected = highFormants ? 1 : 0;
    doc.buildDataTableDictionary();
    for (int k = 1; k <= kFrames; ++k) {
        const std::vector<int> values = speechLikeFrame(k);
        CellArray& column = *doc._dataTableDictionary.objectForKey(static_cast<long long>(k) * kIntervalMS);
        for (int row = 0; row < kParameterCount; ++row)
            column[row]->set_nValue(values[row]);
    }
}

// Times the synthesis driver on a document, its diagnostic lines silenced.
void timeSynthesis(benchmark::State& state, MyDocument& doc)
{
    Log::setSink([](const std::string&) {});
    for (auto _ : state) {
        doc.Synthesize();
        benchmark::DoNotOptimize(doc.getChannel(0)->samples());
    }
    Log::setSink({});
    state.counters["realtime_factor"] =
        benchmark::Counter(double(kSeconds) * state.iterations(), benchmark::Counter::kIsRate);
}

// The whole driver: table data to float audio in channel 0, previous audio kept in channel 1.
void BM_Synthesize(benchmark::State& state)
{
    const bool high = state.range(0) == 22050;
    MyDocument doc;
    makeDocument(doc, high);
    timeSynthesis(state, doc);
}

// A document read but never shown, as the command-line tool synthesizes it: no table data is
// built, the frames come from the grid.
void BM_SynthesizeFromGrid(benchmark::State& state)
{
    const bool high = state.range(0) == 22050;
    MyDocument shown;
    makeDocument(shown, high);
    MyDocument doc;
    if (doc.Read_STK_FileType(shown.parameterDocumentText(true)) != 0)
        state.SkipWithError("read failed");
    timeSynthesis(state, doc);
}

// The engine alone over the same frames.
void BM_Parwave(benchmark::State& state)
{
    const int rate = static_cast<int>(state.range(0));
    std::vector<klatt_frame_t> frames(kFrames);
    for (int k = 0; k < kFrames; ++k) {
        const std::vector<int> values = speechLikeFrame(k + 1);
        for (int row = 0; row < kParameterCount; ++row)
            frames[k][row] = values[row];
    }
    std::vector<int> out(rate * kIntervalMS / 1000);
    for (auto _ : state) {
        klatt_global_t g{};
        g.model = 1;
        g.quiet = 1;
        g.glottal_source = 2;
        g.sample_rate = rate;
        g.cascade_formants = rate == 22050 ? 8 : 5;
        g.samples_per_frame = static_cast<int>(out.size());
        CKlattEngine engine;
        engine.parwave_init(&g);
        for (const klatt_frame_t& f : frames) {
            klatt_frame_t scratch = f;
            engine.parwave(&g, &scratch, out.data());
            benchmark::DoNotOptimize(out.data());
        }
    }
    state.counters["realtime_factor"] =
        benchmark::Counter(double(kSeconds) * state.iterations(), benchmark::Counter::kIsRate);
}

} // namespace

BENCHMARK(BM_Synthesize)->Arg(11025)->Arg(22050)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SynthesizeFromGrid)->Arg(11025)->Arg(22050)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Parwave)->Arg(11025)->Arg(22050)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
