// The graphical data-entry window driven with real mouse events under the offscreen platform;
// the checks are on the document's cells and undo lists.
#include "DataEntryTestSupport.h"
#include "audio/AudioPlayer.h"
#include "dataentry/gui/graphical/dataentryGraphicalController.h"
#include "dataentry/gui/graphical/viewF0.h"
#include "dataentry/gui/graphical/viewFormants.h"
#include "dataentry/gui/graphical/viewOthers.h"
#include "table/gui/mainTable.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QImage>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <map>
#include <memory>

namespace
{

// A 20-frame document (10 ms frames, factory values) in a window whose plots are 400 pixels
// wide (20 pixels per frame); the F0 plot is 100 pixels high.
struct GraphicalEntry : ::testing::Test {
    MyDocument doc;
    std::unique_ptr<dataentryGraphicalController> controller;

    void SetUp() override
    {
        doc.buildDataTableDictionary();
        controller = std::make_unique<dataentryGraphicalController>(&doc, nullptr);
        showContentAt(*controller, 505, 426);
    }

    viewF0& f0View() { return *controller->_viewF0(); }
    int value(int frame, int row) { return frameValue(doc, frame + 1, row); }
};

} // namespace

// (The mapping between the edges, frame by frame: TimeAxisZoomTest.cpp.)
TEST_F(GraphicalEntry, EdgesGiveFullScaleAndZeroAndPointsOutsideAreIgnored)
{
    // A click without a drag changes no value but still records undo and redo.
    dragThrough(f0View(), {{10, 10}});
    EXPECT_EQ(doc._arrayUndo.size(), 1u);
    EXPECT_EQ(doc._arrayRedo.size(), 1u);
    for (int frame = 0; frame < 20; ++frame)
        ASSERT_EQ(value(frame, Row::f0), 1000);

    // Committed on release (the texts following: LongDocumentEntry); the frames the pointer
    // skipped and the other rows are untouched.
    dragThrough(f0View(), {{5, 0}, {5, 0}, {25, 100}, {45, 100.5}, {400, 10}, {-1, 10}});
    EXPECT_EQ(value(0, Row::f0), 3000);  // top edge: full scale, above f0's maximum, kept as drawn
    EXPECT_EQ(value(1, Row::f0), 0);     // bottom edge
    EXPECT_EQ(value(2, Row::f0), 1000);  // below the bottom edge: outside
    EXPECT_EQ(value(10, Row::f0), 1000); // skipped
    EXPECT_EQ(value(19, Row::f0), 1000); // the right edge maps past the last frame
    EXPECT_EQ(value(0, Row::av), 60);
    EXPECT_TRUE(doc.isDocumentEdited());
    EXPECT_TRUE(f0View()._arraytrace().empty());

    // The formant plot (200 high, scale 5000) in F2 mode.
    controller->actionParameter(dataentryGraphicalController::F2);
    dragThrough(*controller->_viewFormants(), {{390, 0}, {390, 0}, {390, 199}});
    EXPECT_EQ(value(19, Row::f2), 25); // trunc(1 x 5000 / 200)

    // The amplitude plot (95 high, scale 90) edits the active formant's amplitude row only.
    controller->actionParameter(dataentryGraphicalController::F1);
    ASSERT_EQ(controller->_viewOthers()->height(), 95);
    dragThrough(*controller->_viewOthers(), {{50, 0}, {50, 0}, {110, 95}});
    EXPECT_EQ(value(2, Row::a1f), 90);
    EXPECT_EQ(value(5, Row::a1f), 0);
    EXPECT_EQ(value(2, Row::a2f), 30);
    EXPECT_EQ(value(2, Row::f1), 500);
}

TEST_F(GraphicalEntry, ButtonsChooseTheActiveTracksAndStoreTheSwitches)
{
    viewFormants& formants = *controller->_viewFormants();
    viewOthers& others = *controller->_viewOthers();

    // The window opens in F0 mode; F2 activates the formant and its amplitude, AV only itself.
    EXPECT_FALSE(formants.hasActiveTrack() || others.hasActiveTrack());
    controller->button(dataentryGraphicalController::F2)->click();
    EXPECT_FALSE(f0View().hasActiveTrack());
    EXPECT_TRUE(formants._bActiveF(1) && others.isActive("a2f"));
    EXPECT_EQ(others.caption().left(3), "a2f");
    EXPECT_EQ(std::make_pair(doc.m_nF0, doc.m_nF2), std::make_pair(0, 1));
    controller->button(dataentryGraphicalController::AV)->click();
    EXPECT_FALSE(f0View().hasActiveTrack() || formants.hasActiveTrack());
    EXPECT_TRUE(others._bActiveF(5));
    EXPECT_EQ(std::make_pair(doc.m_nF2, doc.m_nAV), std::make_pair(0, 1));

    // A drag in a plot without an active track records nothing.
    dragThrough(f0View(), {{10, 10}, {10, 10}});
    EXPECT_EQ(value(0, Row::f0), 1000);
    EXPECT_TRUE(doc._arrayUndo.empty());

    // The A5F switch is read but never written back.
    doc.m_nA5F = 7;
    controller->button(dataentryGraphicalController::A5F)->click();
    EXPECT_TRUE(others.isActive("a5f"));
    EXPECT_EQ(doc.m_nA5F, 7);
    EXPECT_EQ(doc.m_nAV, 0);
}

TEST_F(GraphicalEntry, PlotsTileTheHeightOneTwoOneAndFollowResizes)
{
    showContentAt(*controller, 705, 626); // H = 600
    EXPECT_EQ(controller->_viewF0()->geometry(), QRect(100, 5, 600, 150));
    EXPECT_EQ(controller->_viewFormants()->geometry(), QRect(100, 155, 600, 300));
    EXPECT_EQ(controller->_viewOthers()->geometry(), QRect(100, 455, 600, 145));
    // The buttons sit in the left margin beside their plots.
    const QRect f3 = controller->button(dataentryGraphicalController::F3)->geometry();
    EXPECT_TRUE(f3.right() < 100 && f3.top() >= 155 && f3.bottom() < 455) << f3.top();
    const QRect a5f = controller->button(dataentryGraphicalController::A5F)->geometry();
    EXPECT_TRUE(a5f.top() >= 455 && a5f.bottom() < 600) << a5f.top();
}

TEST_F(GraphicalEntry, ColoursAndVoicingDecideWhatTheF0PlotShows)
{
    controller->actionColor(0, Qt::red);
    controller->actionColor(3, Qt::blue);
    EXPECT_EQ(doc.m_ColorTracing[0], Color::rgb(1, 0, 0));
    EXPECT_EQ(controller->_viewFormants()->_tracingColor(2), QColor(Qt::blue));

    // Frame 4 unvoiced (av 10): its f0 point is hidden, frame 5's (av 11) is drawn. Both
    // points would sit at x = 20 k, y = 100 - 1000 x 100 / 3000 = 67.
    doc._dataTableDictionary.cellAt(50, Row::av)->set_nValue(10);
    doc._dataTableDictionary.cellAt(60, Row::av)->set_nValue(11);
    const QImage image = f0View().grab().toImage();
    auto isRed = [&](int x, int y) { return image.pixelColor(x, y) == QColor(Qt::red); };
    EXPECT_FALSE(isRed(81, 68));
    EXPECT_TRUE(isRed(101, 68));
}

TEST(GraphicalEntryFromTheTable,
     FollowsThePointerEditsTheTablesOwnCellsUndoesThroughTheTableAndPlaysByItsKeys)
{
    MyDocument doc;
    mainTable table(&doc);
    mainTable::setGraphicalDataEntryFactory([](mainTable* t) -> DataEntryController* {
        return new dataentryGraphicalController(t->document(), t);
    });
    table._dataentryGraphical();
    mainTable::setGraphicalDataEntryFactory({});
    auto* controller = dynamic_cast<dataentryGraphicalController*>(table.graphicalDataEntry());
    ASSERT_NE(controller, nullptr);
    showContentAt(*controller, 505, 426);
    viewF0& plot = *controller->_viewF0();
    ParameterTableModel& model = *table.tableModel();
    auto shown = [&](int column) {
        return model.data(model.index(Row::f0, column), Qt::DisplayRole).toString();
    };

    // Moving without a button selects the frame's column in the table.
    sendMouse(plot, QEvent::MouseMove, {130, 10}, Qt::NoButton, Qt::NoButton);
    EXPECT_EQ(table.selectedColumnSpan(), std::make_pair(7, 7));

    // An edit through the table data is what the table shows; an edit through the plot changes
    // that same cell, and the table data and the table see it.
    const CellRef frame3 = doc._dataTableDictionary.cellAt(40, Row::f0);
    frame3->set_nValue(2000);
    frame3->setInttoStringValue(2000);
    EXPECT_EQ(model.cellAt(Row::f0, 4), frame3);
    EXPECT_EQ(shown(4), "2000");
    dragThrough(plot, {{70, 10}, {70, 10}});
    EXPECT_EQ(doc._dataTableDictionary.cellAt(40, Row::f0), frame3);
    EXPECT_EQ(frame3->_nValue(), 2700);
    EXPECT_EQ(shown(4), "2700");
    EXPECT_EQ(shown(3), "1000");
    EXPECT_EQ(table.selectedColumnSpan(), std::make_pair(4, 4));
    EXPECT_TRUE(table._bSynthesize);

    // The table's undo restores the value, and the views take the cells the undo put in the
    // table: a new drag edits those, not the replaced ones.
    controller->undo();
    EXPECT_EQ(frameValue(doc, 4, Row::f0), 2000);
    dragThrough(plot, {{70, 50}, {70, 50}});
    EXPECT_EQ(frameValue(doc, 4, Row::f0), 1500);

    // A clicked track button keeps no focus: Space plays and leaves the buttons as they were.
    QWidget* window = controller->window();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    QTest::mouseClick(controller->button(dataentryGraphicalController::F2), Qt::LeftButton);
    EXPECT_FALSE(controller->button(dataentryGraphicalController::F2)->hasFocus());
    QSignalSpy synthesized(&table, &mainTable::synthesized);
    QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : window, Qt::Key_Space);
    EXPECT_TRUE(synthesized.wait(3000)) << "Space synthesized and played the table";
    EXPECT_TRUE(controller->button(dataentryGraphicalController::F2)->isChecked());
    EXPECT_FALSE(controller->button(dataentryGraphicalController::F0)->isChecked());

    // The Play menu names the same keys as the document window's.
    std::map<QString, QString> keys;
    for (QAction* menu : static_cast<QMainWindow*>(window)->menuBar()->actions())
        if (menu->menu())
            for (QAction* action : menu->menu()->actions())
                keys[action->text()] = action->shortcut().toString();
    EXPECT_EQ(keys["Play Current"], "Space");
    EXPECT_EQ(keys["Play Selection"], "Shift+Space");
    EXPECT_EQ(keys["Play Previous"], "Ctrl+Shift+Space");
    EXPECT_EQ(keys["Play Model"], "Ctrl+M");
}

TEST(GraphicalEntryFromTheTable, PlayAfterEachStrokeIsRememberedAndPlaysTheUtteranceOrTheStroke)
{
    // 10 s: a stroke plays its own frames with 300 ms around them.
    MyDocument doc;
    setTestFrames(doc, 1000);
    mainTable table(&doc);
    auto controller = std::make_unique<dataentryGraphicalController>(&doc, &table);
    controller->window()->show();
    QApplication::processEvents();
    QAction* option = controller->playAfterStrokeAction();
    ASSERT_NE(option, nullptr);
    EXPECT_FALSE(option->isChecked()) << "off by default";
    QSignalSpy started(&table, &mainTable::playbackStarted);
    viewF0& plot = *controller->_viewF0();
    const auto stroke = [&](double from, double to) {
        dragThrough(plot, {{from, 20}, {(from + to) / 2, 25}, {to, 30}});
    };
    stroke(100, 120);
    QTest::qWait(200);
    EXPECT_EQ(started.count(), 0) << "nothing plays while the option is off";

    option->trigger();
    ASSERT_TRUE(option->isChecked());
    stroke(100, 120);
    ASSERT_EQ(started.count(), 1) << "played on release, at once";
    const StrokeSpan& span = plot.lastStroke();
    ASSERT_FALSE(span.empty());
    const Channels& c = *doc.getChannel(0);
    const double perFrame = std::floor(10 * c.m_dSampleRate / 1000);
    EXPECT_DOUBLE_EQ(started.last().at(2).toDouble(), (span.first() - 30 - 1) * perFrame);
    EXPECT_DOUBLE_EQ(started.last().at(1).toDouble(), (span.last() - span.first() + 61) * perFrame);

    // Remembered for the next window; a document of 3 s or less is played whole.
    controller.reset();
    MyDocument shortDoc;
    setTestFrames(shortDoc, 300);
    mainTable shortTable(&shortDoc);
    dataentryGraphicalController next(&shortDoc, &shortTable);
    next.window()->show();
    QApplication::processEvents();
    EXPECT_TRUE(next.playAfterStrokeAction()->isChecked());
    QSignalSpy whole(&shortTable, &mainTable::playbackStarted);
    dragThrough(*next._viewF0(), {{50, 20}, {60, 20}});
    ASSERT_EQ(whole.count(), 1);
    EXPECT_DOUBLE_EQ(whole.last().at(2).toDouble(), 0.0);
    EXPECT_DOUBLE_EQ(whole.last().at(1).toDouble(), shortDoc.getChannel(0)->m_dwFileLength);
    next.playAfterStrokeAction()->setChecked(false);
    mainTable::sharedPlayer()->stopPlay();
}
