// Document costs for a 60 s utterance (6000 frames of 10 ms, 288,000 cells): building its table
// data, writing and reading its parameter document, one undo step's snapshots, one undo, and
// the resident memory of the document with table data and full undo and redo lists.
#include "document/MyDocument.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace
{

constexpr double kLengthMS = 60000.0;

std::unique_ptr<MyDocument> sixtySecondDocument()
{
    auto document = std::make_unique<MyDocument>();
    Channels* c = document->getChannel(0);
    c->m_dLengthMS = kLengthMS;
    c->m_nColumnNum = static_cast<int>(kLengthMS / c->m_nUpdateIntervalMS);
    document->SetUpDataGridMemory();
    // Values of realistic width (two to four digits) and a few anchors.
    for (int k = 0; k < c->m_nColumnNum; ++k)
        for (int row = 0; row < kParameterCount; ++row)
            c->m_snppDataImage_Col_Row[k][row] =
                static_cast<std::int16_t>(c->m_Parameters[row].nDefaultValue + (k * 7 + row) % 50);
    for (int k = 0; k < c->m_nColumnNum; k += 100)
        c->m_pAnchorPosition.insert(c->m_pAnchorPosition.end(), {Row::f1, k});
    c->m_nNumberofAnchors = static_cast<int>(c->m_pAnchorPosition.size() / 2);
    document->m_bReadFile = 1;
    document->buildDataTableDictionary();
    return document;
}

// Resident memory of the process in MB, from /proc/self/status.
double residentMB()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmRSS:", 0) == 0)
            return std::stod(line.substr(6)) / 1024.0;
    return 0.0;
}

// Registered first so that the process has not yet grown with the other benchmarks.
void BM_DocumentMemoryWithFullUndoAndRedo(benchmark::State& state)
{
    for (auto _ : state) {
        auto document = sixtySecondDocument();
        for (int i = 0; i < 10; ++i) {
            document->saveUndo();
            document->saveRedo();
        }
        state.counters["VmRSS_MB"] = residentMB();
    }
}
BENCHMARK(BM_DocumentMemoryWithFullUndoAndRedo)->Unit(benchmark::kMillisecond)->Iterations(1);

void BM_BuildTableData(benchmark::State& state)
{
    auto document = sixtySecondDocument();
    for (auto _ : state) {
        document->buildDataTableDictionary();
        benchmark::DoNotOptimize(document->_dataTableDictionary.map()); // every column made
    }
}
BENCHMARK(BM_BuildTableData)->Unit(benchmark::kMillisecond);

void BM_SaveAndReadBack(benchmark::State& state)
{
    auto document = sixtySecondDocument();
    MyDocument copy;
    for (auto _ : state) {
        const std::string text = document->Save_STK_FileType50(true);
        if (copy.Read_STK_FileType(text) != 0)
            state.SkipWithError("read failed");
        state.counters["text_KB"] = text.size() / 1024.0;
    }
}
BENCHMARK(BM_SaveAndReadBack)->Unit(benchmark::kMillisecond);

// The whole save path to the disk (temporary file, fsync, rename) and opening the file again.
void BM_SaveToDiskAndOpen(benchmark::State& state)
{
    const std::string path = (std::filesystem::temp_directory_path() / "tessaphon-bench.stk").string();
    auto document = sixtySecondDocument();
    for (auto _ : state) {
        std::string error;
        if (!document->writeSafelyToURL(path, "stk", &error))
            state.SkipWithError(error.c_str());
        std::ifstream in(path, std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        MyDocument opened;
        if (!opened.readFromData(bytes, "stk", nullptr))
            state.SkipWithError("open failed");
    }
    std::remove(path.c_str());
}
BENCHMARK(BM_SaveToDiskAndOpen)->Unit(benchmark::kMillisecond);

// What a fuzz target does with one input: a new document reads an 8 KB text whose first line
// declares one hour while its value lines stop after a few frames. Only the frames present may
// cost memory and time (items_per_second: inputs read per second, without the fuzzer's
// instrumentation).
void BM_ReadDeclaredHourWithFewFrames(benchmark::State& state)
{
    auto document = sixtySecondDocument();
    std::string text = document->parameterDocumentText(true).substr(0, 8192);
    text.replace(0, text.find('\t'), "3600000");
    for (auto _ : state) {
        MyDocument read;
        if (read.Read_STK_FileType(text) != 0 || read.getChannel(0)->m_nColumnNum != 360000)
            state.SkipWithError("read failed");
        benchmark::DoNotOptimize(read.getChannel(0)->m_snppDataImage_Col_Row.storedColumns());
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_ReadDeclaredHourWithFewFrames)->Unit(benchmark::kMicrosecond);

void BM_SnapshotPair(benchmark::State& state)
{
    auto document = sixtySecondDocument();
    for (auto _ : state) {
        document->saveUndo();
        document->saveRedo();
    }
}
BENCHMARK(BM_SnapshotPair)->Unit(benchmark::kMillisecond);

void BM_DoUndo(benchmark::State& state)
{
    auto document = sixtySecondDocument();
    for (int i = 0; i < 10; ++i) {
        document->saveUndo();
        document->saveRedo();
    }
    for (auto _ : state) {
        document->_nUndoRedoIndex = 10;
        document->doUndo();
    }
}
BENCHMARK(BM_DoUndo)->Unit(benchmark::kMillisecond);

} // namespace
