// A document of one hour (360,000 frames of 10 ms, varied values) open in the workbench: what
// one change costs. Each case reports the time and, as PeakAdded_MB, how far the process's peak
// resident memory rose above what it held before the step (the peak is reset before each step).
//  - a typed edit in the table at the column in view, with its undo and redo snapshots and the
//    repaint it asks for (targets: 100 ms or less, 150 MB or less);
//  - saving the document to a file (target: 1 s or less);
//  - opening the graphical and the trace data-entry windows up to their first paint (target:
//    1 s or less each).
// Runs under the offscreen platform; a fresh document is opened (outside the timing) for the
// cases whose first run would leave work behind for the next.
#include "GuiBenchMain.h"
#include "LongDocumentText.h"
#include "dataentry/gui/graphical/dataentryGraphicalController.h"
#include "dataentry/gui/trace/dataentryTraceContoller.h"
#include "document/Log.h"
#include "table/gui/mainTable.h"

#include <QApplication>
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <unistd.h>

namespace
{

constexpr int kFrames = 360000;

const std::string& hourText()
{
    static const std::string text = longDocumentText(kFrames);
    return text;
}

// Measures how far the peak resident memory rises over a step: hand memory freed by earlier
// steps back to the system (or the step would reuse it unseen), reset the peak to what is
// resident now, run the step, read the peak.
class PeakWatch
{
public:
    PeakWatch()
    {
        malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << "5";
        m_dStart = statusMB("VmRSS:");
    }
    double addedMB() const { return statusMB("VmHWM:") - m_dStart; }

private:
    double m_dStart = 0.0;
};

// The hour's document read from its text, with its table window shown and painted once.
struct OpenHour {
    MyDocument doc;
    std::unique_ptr<mainTable> table;
    OpenHour()
    {
        int error = 0;
        if (!doc.readFromData(hourText(), "stk", &error))
            throw std::runtime_error("the one-hour document was not read");
        doc.buildDataTableDictionary();
        table = std::make_unique<mainTable>(&doc);
        table->resize(1100, 700);
        table->show();
        QApplication::processEvents();
    }
};

void BM_TypedEditOnOneHour(benchmark::State& state)
{
    OpenHour open;
    QAbstractItemModel* model = open.table->model();
    const int column = 5;
    int value = 600;
    double peak = 0.0;
    for (auto _ : state) {
        value = value == 600 ? 700 : 600;
        const PeakWatch watch;
        model->setData(model->index(Row::f1, column), QString::number(value), Qt::EditRole);
        QCoreApplication::processEvents();
        peak = std::max(peak, watch.addedMB());
    }
    if (open.doc._dataTableDictionary.cellAt(10LL * column, Row::f1)->_nValue() != value)
        state.SkipWithError("the typed value did not arrive");
    state.counters["PeakAdded_MB"] = peak;
    state.counters["VmRSS_MB"] = statusMB("VmRSS:");
}
BENCHMARK(BM_TypedEditOnOneHour)->Unit(benchmark::kMillisecond)->Iterations(12);

void BM_SaveOneHour(benchmark::State& state)
{
    OpenHour open;
    open.table->model()->setData(open.table->model()->index(Row::f1, 5), "650", Qt::EditRole);
    const std::string path = (std::filesystem::temp_directory_path() /
                              ("tessaphon-bench-hour-" + std::to_string(::getpid()) + ".stk"))
                                 .string();
    double peak = 0.0;
    for (auto _ : state) {
        const PeakWatch watch;
        std::string error;
        if (!open.doc.writeSafelyToURL(path, "stk", &error)) {
            state.SkipWithError(error.c_str());
            break;
        }
        peak = std::max(peak, watch.addedMB());
    }
    state.counters["file_MB"] = std::filesystem::file_size(path) / 1048576.0;
    state.counters["PeakAdded_MB"] = peak;
    std::filesystem::remove(path);
}
BENCHMARK(BM_SaveOneHour)->Unit(benchmark::kMillisecond)->Iterations(5);

template <typename Controller> void openDataEntryWindow(benchmark::State& state)
{
    double peak = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        auto open = std::make_unique<OpenHour>();
        const PeakWatch watch;
        state.ResumeTiming();
        auto controller = std::make_unique<Controller>(&open->doc, open->table.get());
        controller->window()->resize(1205, 826);
        controller->window()->show();
        QApplication::processEvents();
        state.PauseTiming();
        peak = std::max(peak, watch.addedMB());
        controller.reset();
        open.reset();
        state.ResumeTiming();
    }
    state.counters["PeakAdded_MB"] = peak;
}

void BM_OpenGraphicalWindowOnOneHour(benchmark::State& state)
{
    openDataEntryWindow<dataentryGraphicalController>(state);
}
BENCHMARK(BM_OpenGraphicalWindowOnOneHour)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_OpenTraceWindowOnOneHour(benchmark::State& state)
{
    openDataEntryWindow<dataentryTraceContoller>(state);
}
BENCHMARK(BM_OpenTraceWindowOnOneHour)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char** argv)
{
    Log::setSink([](const std::string&) {});
    return runGuiBenchmarks(argc, argv);
}
