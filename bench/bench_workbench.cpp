// The workbench's interactive paths, driving the real widgets offscreen:
//  - one typed edit on a 60 s document (6000 frames, 288,000 cells) at the column in view:
//    typed entry with its undo and redo snapshots, then painting what it changed (target:
//    10 ms or less); and a full repaint of the table for comparison;
//  - edit then play on a 2 s document: from the play command, through the 0.1 s deferral and
//    the synthesis, to the first render request of the output (target: 150 ms or less);
//  - opening a document of varying frames from its file text to the table's first paint:
//    60 s (target: 150 ms or less) and one hour (target: 1.5 s and 800 MB resident or less).
#include "GuiBenchMain.h"
#include "LongDocumentText.h"
#include "audio/AudioPlayer.h"
#include "document/Log.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <QApplication>
#include <QElapsedTimer>
#include <benchmark/benchmark.h>

namespace
{
std::unique_ptr<MyDocument> documentOf(double lengthMS)
{
    auto doc = std::make_unique<MyDocument>();
    for (int ch = 0; ch < 3; ++ch) {
        Channels& c = *doc->getChannel(ch);
        c.m_dLengthMS = lengthMS;
        c.m_nColumnNum = static_cast<int>(lengthMS / c.m_nUpdateIntervalMS);
    }
    doc->SetUpDataGridMemory();
    doc->buildDataTableDictionary();
    return doc;
}

// Reading the text, building the table data, and the table window up to its first paint. The
// document and its window are closed outside the timing.
void openToFirstPaint(benchmark::State& state, const std::string& text)
{
    for (auto _ : state) {
        auto doc = std::make_unique<MyDocument>();
        int errorCode = 0;
        if (!doc->readFromData(text, "stk", &errorCode)) {
            state.SkipWithError("the document was not read");
            break;
        }
        doc->buildDataTableDictionary();
        auto table = std::make_unique<mainTable>(doc.get());
        table->resize(1100, 700);
        table->show();
        table->viewport()->repaint();
        state.PauseTiming();
        state.counters["VmRSS_MB"] = statusMB("VmRSS:");
        table.reset();
        doc.reset();
        state.ResumeTiming();
    }
}

void BM_OpenSixtySecondDocument(benchmark::State& state)
{
    openToFirstPaint(state, longDocumentText(6000));
}
BENCHMARK(BM_OpenSixtySecondDocument)->Unit(benchmark::kMillisecond)->Iterations(10);

void BM_OpenOneHourDocument(benchmark::State& state)
{
    const std::string text = longDocumentText(360000);
    openToFirstPaint(state, text);
    state.counters["VmHWM_MB"] = statusMB("VmHWM:");
}
BENCHMARK(BM_OpenOneHourDocument)->Unit(benchmark::kMillisecond)->Iterations(3);

// Shows a table at a common window size and lets it paint once.
void showTable(mainTable& table)
{
    table.resize(1100, 700);
    table.show();
    QCoreApplication::processEvents();
}

void BM_TypedEditOn6000Frames(benchmark::State& state)
{
    auto doc = documentOf(60000.0);
    mainTable table(doc.get());
    showTable(table);
    QAbstractItemModel* model = table.model();
    const int column = 5;
    int value = 600;
    for (auto _ : state) {
        value = value == 600 ? 700 : 600;
        model->setData(model->index(Row::f1, column), QString::number(value), Qt::EditRole);
        // What the edit marked for redrawing is painted, as the event loop would.
        QCoreApplication::processEvents();
    }
    if (doc->_dataTableDictionary.cellAt(10LL * column, Row::f1)->_nValue() != value)
        state.SkipWithError("the typed value did not arrive");
}
BENCHMARK(BM_TypedEditOn6000Frames)->Unit(benchmark::kMillisecond)->Iterations(30);

void BM_FullRepaintOf6000Frames(benchmark::State& state)
{
    auto doc = documentOf(60000.0);
    mainTable table(doc.get());
    showTable(table);
    for (auto _ : state)
        table.viewport()->repaint();
}
BENCHMARK(BM_FullRepaintOf6000Frames)->Unit(benchmark::kMillisecond)->Iterations(30);

void BM_EditThenPlayToFirstRender(benchmark::State& state)
{
    auto doc = documentOf(2000.0);
    mainTable table(doc.get());
    table.show();
    AudioPlayer* player = mainTable::sharedPlayer();
    QAbstractItemModel* model = table.model();
    int value = 1000;
    for (auto _ : state) {
        value = value == 1000 ? 1200 : 1000;
        model->setData(model->index(Row::f0, 10), QString::number(value), Qt::EditRole);
        QElapsedTimer clock;
        clock.start();
        table._PlayCurrent();
        while (player->playedSamples() <= 0 && clock.elapsed() < 5000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        state.SetIterationTime(clock.nsecsElapsed() * 1e-9);
        if (player->playedSamples() <= 0) {
            state.SkipWithError("no render request arrived");
            break;
        }
        table.stopPlayback();
        player->setData(nullptr, 0, 0); // the next round counts from no request
    }
}
BENCHMARK(BM_EditThenPlayToFirstRender)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(10);
} // namespace

int main(int argc, char** argv)
{
    Log::setSink([](const std::string&) {}); // the synthesizer's and player's lines
    return runGuiBenchmarks(argc, argv);
}
