// The table's frame, anchor and interpolation commands and the add-frames dialog, run on a
// real table under the offscreen platform; the checks are on the document.
#include "FramesInTable.h"
#include "table/gui/addColumns.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QButtonGroup>
#include <QSpinBox>
#include <QTimer>

#include <memory>

namespace
{

// Five frames.
struct FrameCommands : FramesInTable {
    void SetUp() override { open(5, 700, 900); }
};

// Clicks a button of the modal dialog once it is up.
void answerDialog(std::function<void(addColumns&)> answer)
{
    QTimer::singleShot(0, [answer] {
        auto* dialog = qobject_cast<addColumns*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        answer(*dialog);
    });
}

} // namespace

TEST_F(FrameCommands, DialogShowsAndStoresTheRememberedSettingsOnlyOnOK)
{
    doc._nindexModifyColumn = 1;
    doc._nDurationModifyColumn = 70;
    addColumns dialog;
    answerDialog([](addColumns& d) {
        EXPECT_EQ(d._groupLocation()->checkedId(), 1);
        EXPECT_EQ(d._duration()->value(), 70);
        d._groupLocation()->button(0)->setChecked(true);
        d._duration()->setValue(40);
        d.canceltButton();
    });
    EXPECT_EQ(dialog.showInWindow(nullptr, &doc), 1001);
    EXPECT_EQ(doc._nindexModifyColumn, 1);
    EXPECT_EQ(doc._nDurationModifyColumn, 70);

    addColumns again;
    answerDialog([](addColumns& d) {
        d._groupLocation()->button(0)->setChecked(true);
        d._duration()->setValue(40);
        d.oktButton();
    });
    EXPECT_EQ(again.showInWindow(nullptr, &doc), 1000);
    EXPECT_EQ(doc._nindexModifyColumn, 0);
    EXPECT_EQ(doc._nDurationModifyColumn, 40);
}

TEST_F(FrameCommands, AddFramesCommandInsertsAfterTheSelectedFrame)
{
    doc._nindexModifyColumn = 1;
    doc._nDurationModifyColumn = 20;
    table->selectaColumn(2);
    answerDialog([](addColumns& d) { d.oktButton(); });
    table->_editAddColumns();

    EXPECT_EQ(f0s(), (std::vector<int>{1001, 1002, 1000, 1000, 1003, 1004, 1005}));
    EXPECT_DOUBLE_EQ(doc.getChannel(0)->m_dLengthMS, 70.0);
    EXPECT_EQ(table->model()->columnCount(), 8);
    EXPECT_TRUE(table->_bSynthesize);
    EXPECT_TRUE(doc.isDocumentEdited());
    EXPECT_EQ(doc._arrayUndo.size(), 1u);

    // Undo returns to the five frames.
    table->undo();
    EXPECT_EQ(f0s(), (std::vector<int>{1001, 1002, 1003, 1004, 1005}));
    EXPECT_EQ(table->model()->columnCount(), 6);
}

TEST_F(FrameCommands, RemoveFramesTakesTheSpanOrExplainsAnEmptySelection)
{
    table->clearSelection();
    table->_editRemoveColumns();
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].title, "No Column Selected");
    EXPECT_EQ(alerts[0].message, "Select a colum or a range of clumns first.");
    EXPECT_EQ(alerts[0].button, "OK");
    EXPECT_EQ(doc.getChannel(0)->m_nColumnNum, 5);
    EXPECT_EQ(doc._arrayUndo.size(), 1u);

    clickHeader(*table, 2);
    clickHeader(*table, 4, Qt::ControlModifier);
    table->_editRemoveColumns();
    EXPECT_EQ(alerts.size(), 1u);
    EXPECT_EQ(f0s(), (std::vector<int>{1001, 1005}));
    EXPECT_DOUBLE_EQ(doc.getChannel(0)->m_dLengthMS, 20.0);
    EXPECT_EQ(table->model()->columnCount(), 3);
    EXPECT_EQ(doc._arrayUndo.size(), 2u);
}

TEST_F(FrameCommands, InterpolatingTheSelectionFillsTheRowSpan)
{
    // Rows 3 (af) and 9 (f4) between anchors; the names of rows 2 and 8 clicked, so 2..8 are
    // interpolated.
    for (int row : {Row::af, Row::f4}) {
        setValue(1, row, 10);
        setValue(4, row, 0);
        cell(1, row)->set_bAnchor(true);
        cell(4, row)->set_bAnchor(true);
    }
    clickName(*table, Row::ah);
    clickName(*table, Row::f5, Qt::ControlModifier);
    table->_InterpolateSelection();

    EXPECT_EQ(value(2, Row::af), 6);    // 10 - 3.33 truncated
    EXPECT_EQ(value(2, Row::f4), 3250); // outside the span: untouched
    EXPECT_EQ(doc._arrayUndo.size(), 1u);
    EXPECT_EQ(doc._arrayRedo.size(), 1u);
    EXPECT_TRUE(table->_bSynthesize);
    EXPECT_TRUE(doc.isDocumentEdited());

    // Nothing selected: nothing recorded.
    table->clearSelection();
    table->_InterpolateSelection();
    EXPECT_EQ(doc._arrayUndo.size(), 1u);
}
