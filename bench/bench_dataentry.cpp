// Drawing a track over a 6000-frame (60 s) document in the graphical data-entry window: the
// cost of one mouse-move event of a drag, with and without painting what it asks to redraw,
// against a full repaint of the plot. And Play After Each Stroke on a 3 s document: from the
// release of a stroke to the started playback of the synthesis (the whole utterance). Runs
// under the offscreen platform, playing into ALSA's file output.
#include "audio/AudioPlayer.h"
#include "dataentry/gui/graphical/dataentryGraphicalController.h"
#include "dataentry/gui/graphical/viewF0.h"
#include "table/gui/mainTable.h"

#include "GuiBenchMain.h"
#include "dataentry/gui/DataEntryTestSupport.h"

#include <benchmark/benchmark.h>

#include <QAction>
#include <QApplication>
#include <QMouseEvent>

#include <memory>

namespace
{

constexpr int kFrames = 6000;

struct LongDocumentWindow {
    MyDocument doc;
    std::unique_ptr<mainTable> table;
    std::unique_ptr<dataentryGraphicalController> controller;

    explicit LongDocumentWindow(int frames = kFrames)
    {
        Channels& c = *doc.getChannel(0);
        c.m_dLengthMS = 10.0 * frames;
        c.m_nColumnNum = frames;
        doc.buildDataTableDictionary();
        table = std::make_unique<mainTable>(&doc);
        controller = std::make_unique<dataentryGraphicalController>(&doc, table.get());
        controller->window()->resize(1205, 826);
        controller->window()->show();
        QApplication::processEvents();
    }

    QWidget& plot() { return *controller->_viewF0(); }

    void send(QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::MouseButtons held)
    {
        sendMouse(plot(), type, at, button, held);
    }
};

LongDocumentWindow& window()
{
    static LongDocumentWindow w;
    return w;
}

LongDocumentWindow& threeSeconds()
{
    static LongDocumentWindow w(300);
    return w;
}

// Sweeps the pointer back and forth over the plot, one pixel per event.
template <bool Paint> void dragMove(benchmark::State& state)
{
    LongDocumentWindow& w = window();
    const int width = w.plot().width();
    const int height = w.plot().height();
    w.send(QEvent::MouseButtonPress, {1, 1}, Qt::LeftButton, Qt::LeftButton);
    QApplication::processEvents();
    int x = 0;
    int step = 1;
    for (auto _ : state) {
        x += step;
        if (x <= 0 || x >= width - 1)
            step = -step;
        w.send(QEvent::MouseMove, QPointF(x, (x * 7) % height), Qt::NoButton, Qt::LeftButton);
        if (Paint)
            QApplication::processEvents();
    }
    w.send(QEvent::MouseButtonRelease, {1, 1}, Qt::LeftButton, Qt::NoButton);
    QApplication::processEvents();
    state.counters["frames"] = kFrames;
}

void BM_DragMoveEvent(benchmark::State& state)
{
    dragMove<false>(state);
}
void BM_DragMoveEventAndPaint(benchmark::State& state)
{
    dragMove<true>(state);
}

void BM_FullRepaint(benchmark::State& state)
{
    LongDocumentWindow& w = window();
    for (auto _ : state)
        w.plot().repaint();
}

// One stroke over a few frames, released: the release synthesizes the 3 s document and starts
// its playback before it returns.
void BM_ReleaseToPlayback(benchmark::State& state)
{
    LongDocumentWindow& w = threeSeconds();
    w.controller->playAfterStrokeAction()->setChecked(true);
    int started = 0;
    const QMetaObject::Connection counting =
        QObject::connect(w.table.get(), &mainTable::playbackStarted, [&started] { ++started; });
    int y = 10;
    for (auto _ : state) {
        state.PauseTiming();
        y = y % 60 + 10; // another value each time, so that every release synthesizes anew
        w.send(QEvent::MouseButtonPress, QPointF(100, y), Qt::LeftButton, Qt::LeftButton);
        w.send(QEvent::MouseMove, QPointF(110, y), Qt::NoButton, Qt::LeftButton);
        state.ResumeTiming();
        w.send(QEvent::MouseButtonRelease, QPointF(110, y), Qt::LeftButton, Qt::NoButton);
    }
    QObject::disconnect(counting); // `started` goes with this run
    w.controller->playAfterStrokeAction()->setChecked(false);
    mainTable::sharedPlayer()->stopPlay();
    state.counters["started"] = benchmark::Counter(started, benchmark::Counter::kAvgIterations);
}

} // namespace

BENCHMARK(BM_ReleaseToPlayback)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_DragMoveEvent)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DragMoveEventAndPaint)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FullRepaint)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv)
{
    return runGuiBenchmarks(argc, argv, [] {
        for (LongDocumentWindow* w : {&window(), &threeSeconds()}) {
            w->controller.reset(); // the windows go before the application
            w->table.reset();
        }
    });
}
