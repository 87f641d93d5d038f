// Both data-entry windows over a document of an hour: opening them makes no columns of the
// table data, a stroke changes and makes only the frames under it, and undo and redo give the
// frames back, all driven with real mouse events.
#include "DataEntryTestSupport.h"
#include "dataentry/gui/graphical/dataentryGraphicalController.h"
#include "dataentry/gui/graphical/viewF0.h"
#include "dataentry/gui/trace/dataentryTraceContoller.h"
#include "dataentry/gui/trace/viewPitch.h"

#include <gtest/gtest.h>

#include <QApplication>

#include <map>

namespace
{

// The frames whose value in `row` differs from `usual`, read without making columns.
std::map<int, int> changedFrames(const MyDocument& doc, int row, int usual)
{
    std::map<int, int> changed;
    for (int frame = 0; frame < doc.getChannel(0)->m_nColumnNum; ++frame) {
        int value = 0;
        if (doc._dataTableDictionary.valueAt(10LL * (frame + 1), row, value) && value != usual)
            changed[frame] = value;
    }
    return changed;
}

template <typename Controller> void strokeUndoRedo(QWidget& (*plotOf)(Controller&))
{
    MyDocument doc;
    setTestFrames(doc, MyDocument::kMaxFrames);
    const std::size_t fewerThanAll = MyDocument::kMaxFrames - 2000;
    Controller controller(&doc, nullptr);
    controller.window()->resize(1205, 826);
    controller.window()->show();
    QApplication::processEvents();
    EXPECT_GT(doc._dataTableDictionary.pendingCount(), fewerThanAll) << "opening made columns";

    const int usual = doc.getChannel(0)->m_Parameters[Row::f0].nValue;
    QWidget& plot = plotOf(controller);
    dragThrough(plot, {{300, 20}, {305, 20}, {310, 20}});
    const std::map<int, int> stroke = changedFrames(doc, Row::f0, usual);
    ASSERT_FALSE(stroke.empty());
    // A pixel holds some 300 frames; the stroke's frames lie within its few pixels.
    EXPECT_LT(stroke.rbegin()->first - stroke.begin()->first, 4000);
    EXPECT_GT(doc._dataTableDictionary.pendingCount(), fewerThanAll) << "the stroke made its columns only";
    const CellRef drawn = doc._dataTableDictionary.cellAt(10LL * (stroke.begin()->first + 1), Row::f0);
    EXPECT_EQ(drawn->stringValue(), std::to_string(drawn->_nValue())) << "committed with its text";

    doc.doUndo();
    EXPECT_TRUE(changedFrames(doc, Row::f0, usual).empty());
    doc.doRedo();
    EXPECT_EQ(changedFrames(doc, Row::f0, usual), stroke);
}

} // namespace

TEST(LongDocumentEntry, TheGraphicalWindowOnAnHourCostsWhatItsStrokeChanges)
{
    strokeUndoRedo<dataentryGraphicalController>(
        [](dataentryGraphicalController& c) -> QWidget& { return *c._viewF0(); });
}

TEST(LongDocumentEntry, TheTraceWindowOnAnHourCostsWhatItsStrokeChanges)
{
    // f0 is the pitch view's track when the window opens.
    strokeUndoRedo<dataentryTraceContoller>(
        [](dataentryTraceContoller& c) -> QWidget& { return *c._viewPitch(); });
}
