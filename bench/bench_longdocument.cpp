// A document of one hour (360,000 frames of 10 ms, varied values) open in the workbench: what
// one change costs. Each case reports the time and, as PeakAdded_MB, how far the process's peak
// resident memory rose above what it held before the step (the peak is reset before each step).
//  - a typed edit in the table at the column in view, with its undo and redo snapshots and the
//    repaint it asks for (targets: 100 ms or less, 150 MB or less);
//  - saving the document to a file (target: 1 s or less);
//  - opening the graphical and the trace data-entry windows up to their first paint (target:
//    1 s or less each);
//  - Add Frames (100 ms) and Remove Frames (10 frames) at the start, in the middle and at the
//    end, with the table's refresh, and their undo and redo (targets: 100 ms, 150 MB);
//  - Interpolate All between anchors at both ends of the hour (targets: 1 s, 150 MB);
//  - copying ten frames, pasting them and removing all anchors (targets: 100 ms, 150 MB);
//  - Options > Parameters' OK with new limits, colours and shown rows: the cells take them and
//    the hour is synthesized again, with the table's refresh (targets: 1 s, 150 MB);
//  - Options > File's OK shortening the hour by ten seconds at the same interval, with the
//    question whether frames holding values go and the table's refresh (targets: 1 s, 150 MB).
// Runs under the offscreen platform; a fresh document is opened (outside the timing) for the
// cases whose first run would leave work behind for the next.
#include "GuiBenchMain.h"
#include "LongDocumentText.h"
#include "dataentry/gui/graphical/dataentryGraphicalController.h"
#include "dataentry/gui/trace/dataentryTraceContoller.h"
#include "document/Log.h"
#include "table/TableEditing.h"
#include "table/gui/mainTable.h"

#include <QApplication>
#include <QHeaderView>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
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

// An hour less one second: room for the frames the Add Frames cases add.
const std::string& almostHourText()
{
    static const std::string text = longDocumentText(kFrames - 100);
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
    explicit OpenHour(const std::string& text = hourText())
    {
        int error = 0;
        if (!doc.readFromData(text, "stk", &error))
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

// The frame column a case works at: 0 the start, 1 the middle, 2 the end.
int frameAt(int where, int frames)
{
    return where == 0 ? 1 : where == 1 ? frames / 2 : frames;
}

// Selects the frames first .. last by their headers, as a click and a drag do.
void selectFrames(mainTable& table, int first, int last)
{
    emit table.horizontalHeader()->sectionPressed(first);
    emit table.horizontalHeader()->sectionEntered(last);
}

// Medians of five, each on a fresh document.
void medianOfFive(benchmark::internal::Benchmark* b)
{
    b->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5)->ReportAggregatesOnly(true);
}

// The start, the middle and the end.
void atThreePlaces(benchmark::internal::Benchmark* b)
{
    medianOfFive(b->Arg(0)->Arg(1)->Arg(2));
}

// One command per iteration on a freshly opened and prepared document (both outside the
// timing), with the events it leaves; `check` answers what went wrong, or null.
struct FreshCommand {
    std::function<void(OpenHour&)> prepare, command;
    std::function<const char*(OpenHour&)> check;
};

void onFreshDocument(benchmark::State& state, const std::string& text, const FreshCommand& step)
{
    double peak = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        auto open = std::make_unique<OpenHour>(text);
        step.prepare(*open);
        const PeakWatch watch;
        state.ResumeTiming();
        step.command(*open);
        QApplication::processEvents();
        state.PauseTiming();
        peak = std::max(peak, watch.addedMB());
        if (const char* error = step.check(*open))
            state.SkipWithError(error);
        open.reset();
        state.ResumeTiming();
    }
    state.counters["PeakAdded_MB"] = peak;
}

// A frame command at a place: the frame count must change.
template <typename Command>
void frameCommand(benchmark::State& state, const std::string& text, Command command)
{
    int frames = 0;
    onFreshDocument(state, text,
                    {[&](OpenHour& open) { frames = open.doc.getChannel(0)->m_nColumnNum; },
                     [&](OpenHour& open) { command(open, frames); },
                     [&](OpenHour& open) {
                         return open.doc.getChannel(0)->m_nColumnNum == frames
                                    ? "the frame count did not change"
                                    : nullptr;
                     }});
}

void BM_AddFramesOnOneHour(benchmark::State& state)
{
    const int where = static_cast<int>(state.range(0));
    frameCommand(state, almostHourText(), [where](OpenHour& open, int frames) {
        open.doc._nindexModifyColumn = where;
        open.doc._nDurationModifyColumn = 100;
        selectFrames(*open.table, frameAt(where, frames), frameAt(where, frames));
        open.table->modifyColumns();
    });
}
BENCHMARK(BM_AddFramesOnOneHour)->Apply(atThreePlaces);

void BM_RemoveFramesOnOneHour(benchmark::State& state)
{
    const int where = static_cast<int>(state.range(0));
    frameCommand(state, hourText(), [where](OpenHour& open, int frames) {
        const int first = std::min(frameAt(where, frames), frames - 9);
        selectFrames(*open.table, first, first + 9);
        open.table->_editRemoveColumns();
    });
}
BENCHMARK(BM_RemoveFramesOnOneHour)->Apply(atThreePlaces);

// Undo and then redo of Add Frames in the middle, each with the table's refresh.
void BM_UndoRedoAddFramesOnOneHour(benchmark::State& state)
{
    OpenHour open(almostHourText());
    open.doc._nindexModifyColumn = 1;
    open.doc._nDurationModifyColumn = 100;
    selectFrames(*open.table, kFrames / 2, kFrames / 2);
    open.table->modifyColumns();
    QApplication::processEvents();
    const int added = open.doc.getChannel(0)->m_nColumnNum;
    double peak = 0.0;
    for (auto _ : state) {
        const PeakWatch watch;
        open.table->undo();
        QApplication::processEvents();
        open.table->redo();
        QApplication::processEvents();
        peak = std::max(peak, watch.addedMB());
    }
    if (open.doc.getChannel(0)->m_nColumnNum != added)
        state.SkipWithError("redo did not bring the frames back");
    state.counters["PeakAdded_MB"] = peak;
}
BENCHMARK(BM_UndoRedoAddFramesOnOneHour)->Apply(medianOfFive);

// Interpolate All with f1 and f2 anchored at the second and the last frame but one: every frame
// between them changes (the widest span there is), with the table's refresh.
void BM_InterpolateAllOnOneHour(benchmark::State& state)
{
    auto prepare = [](OpenHour& open) {
        for (int row : {Row::f1, Row::f2})
            for (long long column : {2LL, kFrames - 1LL})
                open.doc._dataTableDictionary.cellAt(column * 10, row)->set_bAnchor(true);
    };
    auto check = [](OpenHour& open) -> const char* {
        const DataTableDictionary& data = open.doc._dataTableDictionary;
        const int first = data.cellAt(20, Row::f1)->_nValue();
        const int last = data.cellAt((kFrames - 1LL) * 10, Row::f1)->_nValue();
        int middle = 0;
        data.valueAt(kFrames / 2 * 10LL, Row::f1, middle);
        const double slope = static_cast<double>(last - first) / (kFrames - 3);
        return middle != static_cast<int>(std::trunc(first + (kFrames / 2 - 2) * slope))
                   ? "the middle frame was not interpolated"
                   : nullptr;
    };
    onFreshDocument(state, hourText(),
                    {prepare, [](OpenHour& open) { open.table->_InterpolateAll(); }, check});
}
BENCHMARK(BM_InterpolateAllOnOneHour)->Apply(medianOfFive);

// Ctrl+C on ten selected frames and Ctrl+V of them ten frames on, with the table's refresh; then
// Remove All Anchors.
void BM_CopyPasteAndClearAnchorsOnOneHour(benchmark::State& state)
{
    auto command = [](OpenHour& open) {
        open.table->copySelection();
        selectFrames(*open.table, 25, 25);
        open.table->pasteAtSelection();
        open.table->_anchorRemoveAll();
    };
    auto check = [](OpenHour& open) -> const char* {
        const DataTableDictionary& data = open.doc._dataTableDictionary;
        return data.cellAt(250, Row::f0)->_nValue() != data.cellAt(50, Row::f0)->_nValue()
                   ? "the frames were not pasted"
                   : nullptr;
    };
    onFreshDocument(state, hourText(),
                    {[](OpenHour& open) { selectFrames(*open.table, 5, 14); }, command, check});
}
BENCHMARK(BM_CopyPasteAndClearAnchorsOnOneHour)->Apply(medianOfFive);

// The parameter settings changed as the Options > Parameters panel leaves them (f1's limits and
// colour, f2 hidden), then its OK.
void BM_SaveParametersOnOneHour(benchmark::State& state)
{
    auto prepare = [](OpenHour& open) {
        Channels& c = *open.doc.getChannel(0);
        c.m_Parameters[Row::f1].nMaxValue = 1200;
        c.m_Parameters[Row::f1].nsSetColor = Color::rgb(0.8, 0.9, 1.0);
        c.m_Parameters[Row::f2].bSelected = 0;
    };
    auto check = [](OpenHour& open) -> const char* {
        const CellRef last = open.doc._dataTableDictionary.cellAt(kFrames * 10LL, Row::f1);
        return last->_nMaxValue() != 1200 ? "the last frame did not take the new limit" : nullptr;
    };
    onFreshDocument(state, hourText(),
                    {prepare, [](OpenHour& open) { open.table->saveParameters(); }, check});
}
BENCHMARK(BM_SaveParametersOnOneHour)->Apply(medianOfFive);

void BM_OptionsFileShortenOnOneHour(benchmark::State& state)
{
    auto prepare = [](OpenHour& open) {
        open.doc.m_dNewLengthMS = 3590000.0;
        open.doc.m_nNewUpdateIntervalMS = 10;
        open.doc.m_dNewSampleRate = 11025.0;
    };
    auto check = [](OpenHour& open) -> const char* {
        return open.doc.getChannel(0)->m_nColumnNum != kFrames - 1000 ? "the hour was not shortened"
                                                                      : nullptr;
    };
    // The panel's OK first asks whether frames holding values go, then rebuilds.
    auto command = [](OpenHour& open) {
        if (proposedShortening(open.doc).removedFrames == 1000)
            open.table->saveoptionsFile();
    };
    onFreshDocument(state, hourText(), {prepare, command, check});
}
BENCHMARK(BM_OptionsFileShortenOnOneHour)->Apply(medianOfFive);

} // namespace

int main(int argc, char** argv)
{
    Log::setSink([](const std::string&) {});
    return runGuiBenchmarks(argc, argv);
}
