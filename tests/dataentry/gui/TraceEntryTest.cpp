// The trace window driven with real mouse and button events under the offscreen platform;
// the checks are on the document's cells, its undo list and the saved bytes.
#include "support/CliRunner.h" // first: its signals come before Qt's `signals` keyword

#include "DataEntryTestSupport.h"
#include "configuration/ConfigurationFile.h"
#include "dataentry/gui/DataEntrySupport.h"
#include "dataentry/gui/TimeAxisZoom.h"
#include "dataentry/gui/trace/dataentryTraceContoller.h"
#include "dataentry/gui/trace/viewAmplitudes.h"
#include "dataentry/gui/trace/viewPitch.h"
#include "dataentry/gui/trace/viewSpectrogram.h"
#include "table/TableEditing.h"
#include "table/gui/mainTable.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>

namespace
{

// `seconds` of a 120 Hz vowel (formants 700, 1220 and 2600 Hz) as the bytes of a WAVE file.
std::string vowelWave(double seconds)
{
    const TempDir folder;
    return slurp(writeVowel(folder / "vowel.wav", seconds));
}

// A document opened from a recording, and its trace window.
struct TraceWindow : ::testing::Test {
    MyDocument doc;
    std::unique_ptr<mainTable> table;
    std::unique_ptr<dataentryTraceContoller> controller;

    void open(double seconds)
    {
        ASSERT_TRUE(openBytes(doc, vowelWave(seconds))) << doc.lastReadError();
        table = std::make_unique<mainTable>(&doc);
        controller = std::make_unique<dataentryTraceContoller>(&doc, table.get());
        controller->window()->show();
        QApplication::processEvents();
    }
    bool spectrogramReady()
    {
        return waitFor([&] {
            return !controller->_viewSpectrogram()->isComputing() &&
                   controller->_viewSpectrogram()->getHandle();
        });
    }
    int value(int column, int row) { return frameValue(doc, column, row); }
};

} // namespace

TEST_F(TraceWindow, OpensInF0ModeButtonsChooseTheTracksAndDragsWriteTheirRowsAndColumns)
{
    open(1.0);
    EXPECT_TRUE(controller->button(dataentryTraceContoller::F0)->isChecked());
    EXPECT_TRUE(controller->_viewPitch()->m_bHavePitch());

    doc.m_ColorTracing[3] = Color::rgb(0.0, 0.5, 1.0, 1.0);
    QTest::mouseClick(controller->button(dataentryTraceContoller::F3), Qt::LeftButton);
    for (int b = 0; b < dataentryTraceContoller::ButtonCount; ++b)
        EXPECT_EQ(controller->button(static_cast<dataentryTraceContoller::Button>(b))->isChecked(),
                  b == dataentryTraceContoller::F3 || b == dataentryTraceContoller::A3F)
            << b;
    EXPECT_FALSE(controller->_viewPitch()->_bActiveF0());
    EXPECT_TRUE(controller->_viewSpectrogram()->isActive(2));
    EXPECT_TRUE(controller->_viewAmplitudes()->isActive(2));
    EXPECT_EQ(controller->_viewAmplitudes()->tracingColor(2), toQColor(doc.m_ColorTracing[3]));
    EXPECT_EQ(doc.m_nF3, 1);
    EXPECT_EQ(doc.m_nA3F, 1);

    QTest::mouseClick(controller->button(dataentryTraceContoller::A5F), Qt::LeftButton);
    EXPECT_TRUE(controller->_viewAmplitudes()->isActive(4));
    EXPECT_FALSE(controller->_viewSpectrogram()->isActive(2));

    // The drags, each with its track chosen.
    QTest::mouseClick(controller->button(dataentryTraceContoller::F0), Qt::LeftButton);
    ASSERT_TRUE(spectrogramReady());
    viewPitch& pitch = *controller->_viewPitch();
    viewSpectrogram& spectrogram = *controller->_viewSpectrogram();
    viewAmplitudes& amplitudes = *controller->_viewAmplitudes();
    const int columns = doc.getChannel(0)->m_nColumnNum;

    // A press and a move, then a release, at one point in table column c of a view; the value of
    // `row` while the button is down (the release clamps it to the row's limits).
    const auto trace = [&](QWidget& view, int column, double y, int row) {
        const QPointF at((column - 0.5) * view.width() / columns, y);
        sendMouse(view, QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton);
        sendMouse(view, QEvent::MouseMove, at, Qt::NoButton, Qt::LeftButton);
        const int drawn = value(column, row);
        EXPECT_EQ(table->selectedColumnSpan(), std::make_pair(column, column));
        sendMouse(view, QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
        return drawn;
    };

    // Pitch: the top edge is 3000 while dragging, then clamped to f0's limits.
    EXPECT_EQ(trace(pitch, 11, 0.0, Row::f0), 3000);
    EXPECT_EQ(value(11, Row::f0), std::min(3000, frameCell(doc, 11, Row::f0)->_nMaxValue()));
    trace(pitch, 11, pitch.height(), Row::f0);
    EXPECT_EQ(value(11, Row::f0), std::max(0, frameCell(doc, 11, Row::f0)->_nMinValue()));

    // Spectrogram, F1: 5000 at the top; tracing f1 traces a1f from the spectrogram level under
    // the pointer.
    QTest::mouseClick(controller->button(dataentryTraceContoller::F1), Qt::LeftButton);
    EXPECT_EQ(trace(spectrogram, 21, 0.0, Row::f1), 5000);
    const double y700 = spectrogram.height() * (1.0 - 700.0 / 5000.0);
    const int a1f = trace(spectrogram, 21, y700, Row::a1f);
    EXPECT_EQ(value(21, Row::f1), 700);
    const SpectrogramComputation& s = *spectrogram.getHandle();
    const double expected =
        s.GetSpectrogramAmplitue(s.m_nDisplayVerticalRange, s.m_nDisplayRange, doc.m_nSpecDynamicRange, 90.0,
                                 static_cast<int>(spectrogram.height() - y700),
                                 static_cast<int>(20.5 * spectrogram.width() / columns));
    EXPECT_EQ(a1f, static_cast<int>(expected));
    EXPECT_GT(a1f, 70); // the first formant is loud

    // Amplitudes, A2F: 90 at the top edge (the mapping between the edges is the shared plot's,
    // checked by GraphicalEntry).
    QTest::mouseClick(controller->button(dataentryTraceContoller::A2F), Qt::LeftButton);
    EXPECT_EQ(trace(amplitudes, 31, 0.0, Row::a2f), 90);
}

TEST_F(TraceWindow, EnterAllDataAndEachDragAreOneUndoStepEach)
{
    open(1.0);
    ASSERT_TRUE(spectrogramReady());
    const int before = value(50, Row::f1);
    QTest::keyClick(controller->window(), Qt::Key_E, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&] { return !controller->enterAllDataPending(); }));
    const int entered = value(50, Row::f1);
    const int enteredF0 = value(20, Row::f0);
    ASSERT_NE(entered, before);
    // The label shows what fits of it, the rest ends in an ellipsis; nothing runs off its edge.
    const QLabel& label = *controller->statusLabel();
    EXPECT_LE(label.fontMetrics().horizontalAdvance(label.text()), label.width());
    EXPECT_TRUE(label.text() == controller->statusText() || label.text().endsWith(QChar(0x2026)));

    // A stroke on the pitch view at frame 20 (that each stroke is a step of its own is the
    // shared plot's, checked by GraphicalEntry and LongDocumentEntry).
    viewPitch& pitch = *controller->_viewPitch();
    const QPointF at(19.5 * pitch.width() / doc.getChannel(0)->m_nColumnNum, 0.0);
    dragThrough(pitch, {at, at});
    const int drawn = value(20, Row::f0);
    ASSERT_NE(drawn, enteredF0);

    // Each Ctrl+Z undoes the last edit only: the stroke, then the entry; redo brings them back
    // one at a time.
    const auto key = [&](Qt::KeyboardModifiers modifiers) {
        QTest::keyClick(controller->window(), Qt::Key_Z, modifiers);
    };
    key(Qt::ControlModifier);
    EXPECT_EQ(value(20, Row::f0), enteredF0);
    EXPECT_EQ(value(50, Row::f1), entered);
    key(Qt::ControlModifier);
    EXPECT_EQ(value(50, Row::f1), before);
    EXPECT_FALSE(doc.canUndo());
    key(Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(value(50, Row::f1), entered);
    EXPECT_EQ(value(20, Row::f0), enteredF0);
    key(Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(value(20, Row::f0), drawn);
    EXPECT_FALSE(doc.canRedo());
}

TEST_F(TraceWindow, EnterAllDataFillsEveryFrameWhateverTheWidthAndEqualsTheCommandLine)
{
    // 8 s: more frames (800) than the spectrogram view has pixel columns.
    open(8.0);
    controller->window()->resize(500, 400);
    const int columns = doc.getChannel(0)->m_nColumnNum;
    ASSERT_GT(columns, controller->_viewSpectrogram()->width());
    constexpr int kUntouched = 4321;
    for (int k = 1; k <= columns; ++k)
        doc._dataTableDictionary.cellAt(k * 10LL, Row::f1)->set_nValue(kUntouched);
    // Ctrl+E before the spectrogram is ready waits for it.
    QTest::keyClick(controller->window(), Qt::Key_E, Qt::ControlModifier);
    ASSERT_TRUE(spectrogramReady());
    ASSERT_TRUE(waitFor([&] { return !controller->enterAllDataPending(); }));
    EXPECT_TRUE(doc.canUndo());
    int untouched = 0;
    for (int k = 1; k <= columns; ++k)
        untouched += value(k, Row::f1) == kUntouched;
    EXPECT_EQ(untouched, 0) << "of " << columns << " frames";
    // The document saved is what `tessaphon-cli trace` makes of the same recording, byte for byte.
    const TempDir folder;
    std::string error;
    ASSERT_TRUE(doc.writeSafelyToURL(folder / "window.stk", "stk", &error)) << error;
    const std::string wav = writeVowel(folder / "vowel.wav", 8.0);
    ASSERT_EQ(runCli("trace " + wav + " -o " + folder / "cli.stk").exitCode, 0);
    EXPECT_TRUE(slurp(folder / "window.stk") == slurp(folder / "cli.stk"));
}

TEST_F(TraceWindow, FormantTrackingOffShowsItsSheetAndSwitchedOnWhileOpenIsEnteredAndReportedTruly)
{
    doc.m_bSpecDrawFormantTracking = 0;
    open(1.0);
    ASSERT_TRUE(spectrogramReady());
    EXPECT_FALSE(controller->_viewSpectrogram()->getHandle()->m_bHaveFormants);
    // Off: its own sheet, nothing entered, no undo step.
    controller->actionEnterAllData();
    ASSERT_NE(controller->sheet(), nullptr);
    EXPECT_EQ(controller->sheet()->text(),
              "Formant tracking is not on. Automatic formants are not available");
    EXPECT_EQ(controller->sheet()->informativeText(),
              "Close this window. Use Options->Spectrogram and turn on formant tracking.");
    EXPECT_FALSE(doc.canUndo());
    controller->sheet()->done(0);

    // The options panel switches tracking on and tells the window.
    doc.m_bSpecDrawFormantTracking = 1;
    controller->analysisSettingsChanged();
    ASSERT_TRUE(spectrogramReady());
    EXPECT_TRUE(controller->_viewSpectrogram()->getHandle()->m_bHaveFormants)
        << "the picture was computed again";
    controller->actionEnterAllData();
    ASSERT_TRUE(waitFor([&] { return !controller->enterAllDataPending(); }));
    EXPECT_NEAR(value(50, Row::f1), 700, 40);
    EXPECT_EQ(controller->statusText(), "Entered f0, f1 - f5 and a1f - a5f");
}

TEST_F(TraceWindow, APitchTrackLongerThanTheGridShowsItsSheet)
{
    // A 2 s recording loaded into a 1 s grid: the pitch track is longer than the grid.
    open(1.0);
    ASSERT_EQ(doc.Read_WAVE_FileType(vowelWave(2.0)), 0);
    controller->analysisSettingsChanged();
    ASSERT_TRUE(spectrogramReady());
    ASSERT_FALSE(doc.canUndo());
    controller->actionEnterAllData();
    ASSERT_TRUE(waitFor([&] { return !controller->enterAllDataPending(); }));
    ASSERT_NE(controller->sheet(), nullptr);
    EXPECT_EQ(controller->sheet()->text(), "Error in entering data values");
    EXPECT_TRUE(doc.canUndo()); // the undo step was saved before the entry
    EXPECT_GT(value(50, Row::f0), 0);
    controller->sheet()->done(0);
}

TEST_F(TraceWindow, ClosingWhileTheSpectrogramIsComputingIsSafe)
{
    // A long recording keeps the worker busy: a trace window opened by its table, computing when
    // the table (the document's window) goes.
    ASSERT_TRUE(openBytes(doc, vowelWave(30.0))) << doc.lastReadError();
    auto owner = std::make_unique<mainTable>(&doc);
    mainTable::setTraceDataEntryFactory(
        [](mainTable* t) -> DataEntryController* { return new dataentryTraceContoller(t->document(), t); });
    owner->_dataentryTrace();
    mainTable::setTraceDataEntryFactory({});
    auto* opened = dynamic_cast<dataentryTraceContoller*>(owner->traceDataEntry());
    ASSERT_NE(opened, nullptr);
    EXPECT_TRUE(opened->window()->windowTitle().startsWith("data entry by tracing over a model:: "));
    EXPECT_TRUE(opened->_viewSpectrogram()->isComputing());
    // An undo in the table rebuilds the window and keeps its pitch track.
    const int pitchFrames = opened->_viewPitch()->m_nFrameCount();
    ASSERT_GT(pitchFrames, 0);
    ASSERT_EQ(typeValue(doc, Row::f0, 5, 1234), TypedEntryOutcome::Stored);
    owner->undo();
    EXPECT_EQ(opened->_viewPitch()->m_nFrameCount(), pitchFrames);
    owner.reset();
    QTest::qWait(300);
}

TEST_F(TraceWindow, ViewOldDataShowsPlaceholdersAndIsRemembered)
{
    open(0.5);
    const std::string config = ConfigurationFile::defaultPath();
    ASSERT_TRUE(ConfigurationFile::write(config, doc));
    QTest::mouseClick(controller->_ViewOldData(), Qt::LeftButton);
    EXPECT_EQ(doc._bShowGridData, 0);
    TraceTrackLists& lists = controller->_viewAmplitudes()->lists();
    ASSERT_GT(lists.columnCount(0), 2);
    EXPECT_EQ(lists._arrayGridValues[0][1]->_nValue(), -1);
    // The flag went into the configuration file, which still reads as a whole.
    MyDocument reader;
    ASSERT_TRUE(ConfigurationFile::read(config, reader, ConfigurationFile::Scope::NewDocument));
    EXPECT_EQ(reader._bShowGridData, 0);
    QTest::mouseClick(controller->_ViewOldData(), Qt::LeftButton);
    ASSERT_TRUE(ConfigurationFile::read(config, reader, ConfigurationFile::Scope::NewDocument));
    EXPECT_EQ(reader._bShowGridData, 1);
    EXPECT_EQ(lists._arrayGridValues[0][1], lists._arrayTracedValues[0][1]);
}

TEST_F(TraceWindow, ZoomedInTheVisibleStretchIsComputedAgainAtScreenResolution)
{
    open(2.0);
    viewSpectrogram& view = *controller->_viewSpectrogram();
    ASSERT_TRUE(spectrogramReady());
    EXPECT_EQ(view.zoomedResult(), nullptr) << "nothing of its own at fit all";

    TimeAxisZoom& axis = *controller->timeAxis();
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(controller->window(), Qt::Key_Plus, Qt::ControlModifier);
    controller->scrollBar()->setValue(2000);
    ASSERT_FALSE(axis.isFitAll());
    EXPECT_NE(view.getHandle(), nullptr) << "the whole picture stays, stretched, until the stretch is ready";
    ASSERT_TRUE(waitFor([&] { return view.zoomedResult() != nullptr && !view.isComputingZoomed(); }));
    const auto [first, last] = axis.visibleMS(2000.0, view.width());
    EXPECT_NEAR(view.zoomedMS().first, first, 0.2);
    EXPECT_NEAR(view.zoomedMS().second, last, 0.2);
    const SpectrogramWorker::Result& zoomed = *view.zoomedResult();
    EXPECT_EQ(zoomed.width, view.width()) << "one analysis frame per pixel column of the stretch";
    EXPECT_FALSE(zoomed.image.isNull());

    // Fit all shows the whole recording's picture again.
    QTest::keyClick(controller->window(), Qt::Key_0, Qt::ControlModifier);
    ASSERT_TRUE(waitFor([&] { return view.zoomedResult() == nullptr; }));
}
