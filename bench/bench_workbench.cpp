// The workbench's interactive paths, driving the real widgets offscreen:
//  - one typed edit on a 60 s document (6000 frames, 288,000 cells): typed entry with its undo
//    and redo snapshots, then the table's reload and repaint (target: 30 ms or less);
//  - edit then play on a 2 s document: from the play command, through the 0.1 s deferral and
//    the synthesis, to the first render request of the output (target: 150 ms or less).
#include "app/TestEnvironment.h"
#include "audio/AudioPlayer.h"
#include "document/Log.h"
#include "document/MyDocument.h"
#include "table/mainTable.h"

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

void BM_TypedEditOn6000Frames(benchmark::State& state)
{
    auto doc = documentOf(60000.0);
    mainTable table(doc.get());
    table.resize(1100, 700);
    table.show();
    QCoreApplication::processEvents();
    QAbstractItemModel* model = table.model();
    int column = 1;
    int value = 600;
    for (auto _ : state) {
        value = value == 600 ? 700 : 600;
        column = column % 6000 + 1;
        model->setData(model->index(Row::f1, column), QString::number(value), Qt::EditRole);
        table.viewport()->repaint();
    }
    if (doc->_dataTableDictionary.cellAt(10LL * column, Row::f1)->_nValue() != value)
        state.SkipWithError("the typed value did not arrive");
}
BENCHMARK(BM_TypedEditOn6000Frames)->Unit(benchmark::kMillisecond)->Iterations(30);

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
    const std::string folder = prepareTestEnvironment();
    Log::setSink([](const std::string&) {}); // the synthesizer's and player's lines
    {
        QApplication app(argc, argv);
        benchmark::Initialize(&argc, argv);
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
    }
    removeTestEnvironment(folder);
    return 0;
}
