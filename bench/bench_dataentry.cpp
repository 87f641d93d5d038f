// Drawing a track over a 6000-frame (60 s) document in the graphical data-entry window: the
// cost of one mouse-move event of a drag, with and without painting what it asks to redraw,
// against a full repaint of the plot. Runs under the offscreen platform.
#include "dataentry/gui/graphical/dataentryGraphicalController.h"
#include "dataentry/gui/graphical/viewF0.h"
#include "table/gui/mainTable.h"

#include "GuiBenchMain.h"
#include "dataentry/gui/DataEntryTestSupport.h"

#include <benchmark/benchmark.h>

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

    LongDocumentWindow()
    {
        Channels& c = *doc.getChannel(0);
        c.m_dLengthMS = 10.0 * kFrames;
        c.m_nColumnNum = kFrames;
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

} // namespace

BENCHMARK(BM_DragMoveEvent)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DragMoveEventAndPaint)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_FullRepaint)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv)
{
    return runGuiBenchmarks(argc, argv, [] {
        window().controller.reset(); // the window goes before the application
        window().table.reset();
    });
}
