// Rows and frames are two selections: driven with the mouse on a shown table (names, frame
// headers, cells) under the offscreen platform, checked on what the frame and row commands
// then do to the document.
#include "FramesInTable.h"

namespace
{
// Ten frames; f1 and f2 have anchors at frames 1 and 5.
struct SelectionTable : FramesInTable {
    void SetUp() override
    {
        open(10, 900, 600);
        for (int row : {Row::f1, Row::f2}) {
            cell(1, row)->set_bAnchor(true);
            cell(1, row)->set_nValue(100);
            cell(5, row)->set_bAnchor(true);
            cell(5, row)->set_nValue(300);
        }
    }
    int anchors()
    {
        int n = 0;
        for (int k = 1; k <= doc.getChannel(0)->m_nColumnNum; ++k)
            for (int row = 0; row < kParameterCount; ++row)
                n += cell(k, row)->_bAnchor() ? 1 : 0;
        return n;
    }

    // The frame commands and the row commands, with what they left behind.
    void expectFrameCommandsSeeNoFrame()
    {
        const std::vector<int> before = f0s();
        const std::size_t shownAlerts = alerts.size();
        table->_editRemoveColumns();
        ASSERT_EQ(alerts.size(), shownAlerts + 1);
        EXPECT_EQ(alerts.back().title, "No Column Selected");
        EXPECT_EQ(alerts.back().message, "Select a colum or a range of clumns first.");
        EXPECT_EQ(alerts.back().button, "OK");
        doc._nindexModifyColumn = 1; // after the selected frame
        doc._nDurationModifyColumn = 20;
        table->modifyColumns();
        EXPECT_EQ(f0s(), before) << "no frame removed or added";
    }
    void expectRowCommandsSeeNoRow()
    {
        const std::size_t undo = doc._arrayUndo.size();
        table->_anchorRemoveSelection();
        table->_InterpolateSelection();
        EXPECT_EQ(anchors(), 4);
        EXPECT_EQ(cell(3, Row::f1)->_nValue(), 500) << "not interpolated (it would be 200)";
        EXPECT_EQ(doc._arrayUndo.size(), undo) << "no interpolation recorded";
    }
};
} // namespace

TEST_F(SelectionTable, AClickedCellSelectsItsRowButNeverItsFrame)
{
    clickHeader(*table, 3);
    clickCell(*table, Row::f2, 4);
    EXPECT_EQ(table->selectedRowSpan(), std::make_pair(int(Row::f2), int(Row::f2)));
    EXPECT_EQ(table->selectedColumnSpan(), std::make_pair(-1, -1));
    EXPECT_EQ(table->currentIndex(), table->model()->index(Row::f2, 4)) << "the cell stays ready for typing";
    expectFrameCommandsSeeNoFrame();

    // Shift extends the rows as the names do.
    clickCell(*table, Row::f1, 6, Qt::ShiftModifier);
    EXPECT_EQ(table->selectedRowSpan(), std::make_pair(int(Row::f2), int(Row::f1)));

    // Click a cell, then interpolate: the clicked row is filled between its anchors, no other,
    // as one undo step.
    clickCell(*table, Row::f2, 4);
    const std::size_t undo = doc._arrayUndo.size();
    table->_InterpolateSelection();
    EXPECT_EQ(value(3, Row::f2), 200);
    EXPECT_EQ(value(3, Row::f1), 500);
    EXPECT_EQ(doc._arrayUndo.size(), undo + 1);
    EXPECT_EQ(doc._arrayRedo.size(), doc._arrayUndo.size());
    EXPECT_TRUE(table->_bSynthesize);
    EXPECT_TRUE(doc.isDocumentEdited());
}

TEST_F(SelectionTable, KeysStepOverCollapsedRowsWhichTakeNoTypedValue)
{
    // At 11025 Hz f8, f7 and f6 (rows 5 .. 7) are collapsed between tl and f5.
    for (int row : {Row::f8, Row::f7, Row::f6})
        ASSERT_FALSE(doc._dataTableDictionary.cellAt(0, row)->_bSelected());
    const int f8Before = value(2, Row::f8);
    table->setFocus();
    table->setCurrentIndex(table->model()->index(Row::tl, 2));
    QTest::keyClick(table.get(), Qt::Key_Down);
    EXPECT_EQ(table->currentIndex().row(), int(Row::f5));
    // Typing after Down goes into f5, not into the hidden f8.
    typeIntoCurrentCell(*table, "4000");
    EXPECT_EQ(value(2, Row::f5), 4000);

    // A collapsed cell cannot even be made the current one, nor take anything typed.
    table->setCurrentIndex(table->model()->index(Row::f8, 2));
    EXPECT_NE(table->currentIndex().row(), int(Row::f8));
    EXPECT_FALSE(table->model()->setData(table->model()->index(Row::f8, 2), "6000", Qt::EditRole));
    EXPECT_EQ(value(2, Row::f8), f8Before);
}

TEST_F(SelectionTable, AFrameSelectedByItsHeaderOrTheDataEntryIsNoRow)
{
    clickHeader(*table, 4);
    EXPECT_EQ(table->selectedColumnSpan(), std::make_pair(4, 4));
    EXPECT_EQ(table->selectedRowSpan(), std::make_pair(-1, -1));
    expectRowCommandsSeeNoRow();

    table->selectaColumn(7);
    EXPECT_EQ(table->selectedColumnSpan(), std::make_pair(7, 7));
    expectRowCommandsSeeNoRow();

    // Remove Frames takes the whole span of the frames selected.
    clickHeader(*table, 2);
    clickHeader(*table, 4, Qt::ControlModifier);
    table->_editRemoveColumns();
    EXPECT_EQ(f0s(), (std::vector<int>{1001, 1005, 1006, 1007, 1008, 1009, 1010}));
    EXPECT_EQ(table->model()->columnCount(), 8);
    EXPECT_EQ(table->selectedColumnSpan(), std::make_pair(-1, -1))
        << "the removed frames are no longer selected";
}

TEST_F(SelectionTable, ANameSelectsItsRowAndNoFrameAndShiftAndCtrlExtendEachSelection)
{
    // A name selects its row and no frame.
    clickName(*table, Row::f1);
    EXPECT_EQ(table->selectedRowSpan(), std::make_pair(int(Row::f1), int(Row::f1)));
    EXPECT_EQ(table->selectedColumnSpan(), std::make_pair(-1, -1));
    expectFrameCommandsSeeNoFrame();

    // Rows: f1 (12), Shift f3 (10), Ctrl f5 (8).
    clickName(*table, Row::f3, Qt::ShiftModifier);
    EXPECT_EQ(table->selectedRowSpan(), std::make_pair(int(Row::f3), int(Row::f1)));
    clickName(*table, Row::f5, Qt::ControlModifier);
    EXPECT_EQ(table->selectedRowSpan(), std::make_pair(int(Row::f5), int(Row::f1)));
    table->_InterpolateSelection();
    EXPECT_EQ(value(3, Row::f1), 200);
    EXPECT_EQ(value(3, Row::f2), 200);
    // The row commands take the rows selected: one row's anchors go, and only its.
    clickName(*table, Row::f1);
    table->_anchorRemoveSelection();
    EXPECT_FALSE(cell(1, Row::f1)->_bAnchor());
    EXPECT_TRUE(cell(1, Row::f2)->_bAnchor());

    // A header press lets the rows go; Shift and Ctrl work on frames the same way.
    clickHeader(*table, 2);
    EXPECT_EQ(table->selectedRowSpan(), std::make_pair(-1, -1));
    clickHeader(*table, 4, Qt::ShiftModifier);
    clickHeader(*table, 6, Qt::ControlModifier);
    EXPECT_EQ(table->selectedColumnSpan(), std::make_pair(2, 6));
    clickHeader(*table, 6, Qt::ControlModifier);
    EXPECT_EQ(table->selectedColumnSpan(), std::make_pair(2, 4)) << "Ctrl toggles";

    // A name press lets the frames go.
    clickName(*table, Row::av);
    EXPECT_EQ(table->selectedColumnSpan(), std::make_pair(-1, -1));
    EXPECT_EQ(table->selectedRowSpan(), std::make_pair(int(Row::av), int(Row::av)));

    // Select All is every row and no frame.
    table->selectAll();
    EXPECT_EQ(table->selectedRowSpan(), std::make_pair(0, kParameterCount - 1));
    expectFrameCommandsSeeNoFrame();
    table->_anchorRemoveSelection();
    EXPECT_EQ(anchors(), 0);
}
