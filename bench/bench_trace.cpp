// The trace window over a 10 s recording: opening it up to its first paint with the pitch
// track, the spectrogram with its formant tracks arriving from the worker and painted after
// that, and one mouse-move event of a formant drag with the table following and the strip it
// asks to redraw painted; and the undo of Enter All Data on an hour-long recording. Runs under
// the offscreen platform.
#include "support/TestSignals.h"
namespace benchsignals = signals; // before Qt's `signals` keyword

#include "GuiBenchMain.h"
#include "dataentry/gui/DataEntryTestSupport.h"
#include "dataentry/gui/trace/dataentryTraceContoller.h"
#include "dataentry/gui/trace/viewSpectrogram.h"
#include "document/MyDocument.h"
#include "table/gui/mainTable.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QMouseEvent>
#include <QPushButton>

#include <cstring>
#include <memory>

namespace
{

constexpr double kRate = 11025.0;

// A vowel whose pitch glides from 100 to 160 Hz, as the bytes of a WAVE file.
std::string vowelRecording(double seconds)
{
    const int n = static_cast<int>(seconds * kRate);
    std::vector<double> pulses(static_cast<std::size_t>(n), 0.0);
    double phase = 0.0;
    for (int i = 0; i < n; ++i) {
        phase += (100.0 + 60.0 * i / n) / kRate;
        if (phase >= 1.0) {
            phase -= 1.0;
            pulses[static_cast<std::size_t>(i)] = 1.0;
        }
    }
    for (const auto& [hz, bandwidth] : {std::pair{650.0, 90.0}, {1150.0, 100.0}, {2500.0, 150.0}})
        pulses = benchsignals::resonate(pulses, hz, bandwidth, kRate);
    return waveFileBytes(benchsignals::toFloat(pulses, 0.02), kRate);
}

const std::string& tenSecondRecording()
{
    static const std::string bytes = vowelRecording(10.0);
    return bytes;
}

struct OpenRecording {
    MyDocument doc;
    std::unique_ptr<mainTable> table;
    explicit OpenRecording(bool showTable = true, const std::string& recording = tenSecondRecording())
    {
        int error = 0;
        doc.readFromData(recording, "stk", &error);
        doc.buildDataTableDictionary();
        table = std::make_unique<mainTable>(&doc);
        table->resize(1000, 600);
        if (showTable)
            table->show();
    }
};

void waitForSpectrogram(viewSpectrogram& view)
{
    while (view.isComputing() || !view.getHandle())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
}

// From the command to the first painted window: the pitch track is computed on the way, the
// spectrogram is started on its worker.
void BM_OpenToFirstPaint(benchmark::State& state)
{
    OpenRecording recording;
    for (auto _ : state) {
        auto controller = std::make_unique<dataentryTraceContoller>(&recording.doc, recording.table.get());
        controller->window()->show();
        controller->window()->repaint();
        state.PauseTiming();
        controller.reset();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}

// After the first paint: the spectrogram and formant tracks computed, delivered and painted.
void BM_SpectrogramAfterFirstPaint(benchmark::State& state)
{
    OpenRecording recording;
    for (auto _ : state) {
        state.PauseTiming();
        auto controller = std::make_unique<dataentryTraceContoller>(&recording.doc, recording.table.get());
        controller->window()->show();
        controller->window()->repaint();
        state.ResumeTiming();
        waitForSpectrogram(*controller->_viewSpectrogram());
        controller->_viewSpectrogram()->repaint();
        state.PauseTiming();
        controller.reset();
        QApplication::processEvents();
        state.ResumeTiming();
    }
}

// One mouse-move of an F1 drag: the value, the amplitude traced with it, the table selecting
// and scrolling to the column, and the repaint of what changed (argument 1: the table is on
// screen and repaints too; 0: it is hidden).
void BM_TraceDragMove(benchmark::State& state)
{
    OpenRecording recording(state.range(0) != 0);
    dataentryTraceContoller controller(&recording.doc, recording.table.get());
    controller.window()->show();
    viewSpectrogram& view = *controller._viewSpectrogram();
    waitForSpectrogram(view);
    controller.button(dataentryTraceContoller::F1)->click();
    const auto send = [&](QEvent::Type type, QPointF at, Qt::MouseButton button, Qt::MouseButtons held) {
        sendMouse(view, type, at, button, held);
    };
    send(QEvent::MouseButtonPress, {5.0, 100.0}, Qt::LeftButton, Qt::LeftButton);
    double x = 5.0;
    for (auto _ : state) {
        x = x + 3.0 > view.width() - 5 ? 5.0 : x + 3.0;
        send(QEvent::MouseMove, {x, 60.0 + x / 20.0}, Qt::NoButton, Qt::LeftButton);
        QApplication::processEvents();
    }
    send(QEvent::MouseButtonRelease, {x, 100.0}, Qt::LeftButton, Qt::NoButton);
}

// Undo of Enter All Data on an hour-long recording: the snapshot restored, the table and the
// trace window's tracks rebuilt.
void BM_UndoEnterAllDataOnAnHour(benchmark::State& state)
{
    OpenRecording recording(true, vowelRecording(3600.0));
    // Opened through the table, which then tells the window of every undo.
    mainTable::setTraceDataEntryFactory(
        [](mainTable* t) -> DataEntryController* { return new dataentryTraceContoller(t->document(), t); });
    recording.table->_dataentryTrace();
    auto& controller = *static_cast<dataentryTraceContoller*>(recording.table->traceDataEntry());
    waitForSpectrogram(*controller._viewSpectrogram());
    for (auto _ : state) {
        state.PauseTiming();
        controller.actionEnterAllData();
        while (controller.enterAllDataPending())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        QApplication::processEvents();
        state.ResumeTiming();
        recording.table->undo();
        QApplication::processEvents();
    }
}

} // namespace

BENCHMARK(BM_UndoEnterAllDataOnAnHour)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_OpenToFirstPaint)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SpectrogramAfterFirstPaint)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TraceDragMove)->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

int main(int argc, char** argv)
{
    return runGuiBenchmarks(argc, argv);
}
