// Whole-process timings of the stimulus commands, as a user runs them: an 11-step continuum of
// 1 s documents with WAVE files (as synthesized, and resampled and levelled for an experiment),
// and a batch synthesis of 200 documents of 2 s with one job and
// with two. Each iteration starts tessaphon-cli and waits for it; the counters give the CPU time
// of the processes per iteration (user + system), which the machine's load does not inflate.
#include "CliProcess.h"
#include "document/MyDocument.h"
#include "stimulus/Stimulus.h"

#include <cmath>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{

namespace fs = std::filesystem;
using cliprocess::timeCommand;

const fs::path& workFolder()
{
    static const fs::path folder = [] {
        const fs::path f =
            fs::temp_directory_path() / ("tessaphon-bench-stimuli-" + std::to_string(::getpid()));
        fs::create_directories(f / "batch");
        fs::create_directories(f / "wav");
        return f;
    }();
    return folder;
}

// A document of `ms` milliseconds in 10 ms frames with f0 and f2 set in every frame.
void writeDocument(const fs::path& path, int ms, int f0, int f2)
{
    MyDocument document;
    for (int ch = 0; ch < 3; ++ch) {
        document.getChannel(ch)->m_dLengthMS = ms;
        document.getChannel(ch)->m_nColumnNum = ms / 10;
    }
    document.SetUpDataGridMemory();
    document.buildDataTableDictionary();
    for (int frame = 1; frame <= ms / 10; ++frame) {
        document._dataTableDictionary.cellAt(frame * 10LL, Row::f0)->set_nValue(f0 + frame);
        document._dataTableDictionary.cellAt(frame * 10LL, Row::f2)->set_nValue(f2);
    }
    std::string error;
    if (!document.writeSafelyToURL(path.string(), "stk", &error))
        throw std::runtime_error(error);
}

std::vector<std::string> continuumArguments(const std::string& folder)
{
    const fs::path a = workFolder() / "ba.stk", b = workFolder() / "da.stk";
    writeDocument(a, 1000, 1000, 1200);
    writeDocument(b, 1000, 1200, 2200);
    return {"continuum", a.string(), b.string(),
            "--steps",   "11",       "--scale",
            "bark",      "-o",       (workFolder() / folder).string()};
}

void BM_Continuum11Steps(benchmark::State& state)
{
    timeCommand(state, continuumArguments("continuum"));
}
BENCHMARK(BM_Continuum11Steps)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

// The same continuum made ready for an experiment: resampled to 48 kHz, every step at one gain
// that brings the loudest to -23 dBFS RMS (two passes over the steps).
void BM_Continuum11StepsForExperiment(benchmark::State& state)
{
    std::vector<std::string> arguments = continuumArguments("experiment");
    for (const char* option : {"--rate", "48000", "--normalize", "rms:-23", "--same-gain"})
        arguments.push_back(option);
    timeCommand(state, arguments);
}
BENCHMARK(BM_Continuum11StepsForExperiment)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(5);

// One second of synthesis at 11025 Hz resampled to 48 kHz, in the process.
void BM_ResampleOneSecond(benchmark::State& state)
{
    std::vector<float> second(11025);
    for (std::size_t i = 0; i < second.size(); ++i)
        second[i] = static_cast<float>(0.3 * std::sin(0.2 * double(i)));
    for (auto _ : state)
        benchmark::DoNotOptimize(resampleSignal(second.data(), second.size(), 11025, 48000));
}
BENCHMARK(BM_ResampleOneSecond)->Unit(benchmark::kMillisecond);

void BM_BatchSynth200(benchmark::State& state)
{
    std::vector<std::string> arguments{"synth",     "--force",
                                       "--out-dir", (workFolder() / "wav").string(),
                                       "-j",        std::to_string(state.range(0))};
    for (int i = 0; i < 200; ++i) {
        const fs::path path = workFolder() / "batch" / ("s" + std::to_string(i) + ".stk");
        if (!fs::exists(path))
            writeDocument(path, 2000, 900 + i, 1000 + 5 * i);
        arguments.push_back(path.string());
    }
    timeCommand(state, arguments);
}
BENCHMARK(BM_BatchSynth200)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(1);

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    fs::remove_all(workFolder());
    return 0;
}
