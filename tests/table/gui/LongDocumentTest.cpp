// A document of an hour in the table: the view makes only the columns it shows, shows and takes
// the last frame, and typing, undo and redo touch what they change and the columns on screen.
// (Saving an hour without making its columns: UndoHistoryTest.cpp.)
#include "FramesInTable.h"

namespace
{
struct LongDocument : FramesInTable {
};
} // namespace

TEST_F(LongDocument, TheViewMakesOnlyTheColumnsShownAndTakesTheLastFrameAndTypingInTheMiddle)
{
    // As read from a file: the last frame's f1 holds 777 and an anchor.
    const int last = MyDocument::kMaxFrames;
    Channels& c = *doc.getChannel(0);
    c.m_dLengthMS = MyDocument::kMaxLengthMS;
    c.m_nColumnNum = last;
    doc.SetUpDataGridMemory();
    c.m_snppDataImage_Col_Row[last - 1][Row::f1] = 777;
    c.m_pAnchorPosition = {Row::f1, last - 1};
    doc.m_bReadFile = 1;
    doc.buildDataTableDictionary();
    show(640, 300);
    QAbstractItemModel* model = table->model();
    ASSERT_EQ(model->columnCount(), last + 1);
    EXPECT_TRUE(table->frozenColumn()->isColumnHidden(last));

    const QModelIndex lastCell = model->index(Row::f1, last);
    table->scrollTo(lastCell);
    table->viewport()->repaint();
    EXPECT_GT(table->columnViewportPosition(last), table->columnWidth(0) - 1);
    EXPECT_EQ(shown(last, Row::f1), "777");
    EXPECT_EQ(model->data(lastCell, Qt::BackgroundRole).value<QColor>(), QColor(Qt::red));
    EXPECT_EQ(model->headerData(last, Qt::Horizontal, Qt::DisplayRole).toString(), "3600000");
    EXPECT_TRUE(model->flags(lastCell) & Qt::ItemIsEditable);
    // The cell the view shows is the table data's own.
    cell(last, Row::f1)->setInttoStringValue(778);
    EXPECT_EQ(shown(last, Row::f1), "778");

    const int f1Before = value(200000, Row::f1), f2Before = value(200001, Row::f2);
    type(200000, Row::f1, "777");
    type(200001, Row::f2, "1777");
    EXPECT_EQ(value(200000, Row::f1), 777);
    ASSERT_EQ(doc._arrayUndo.size(), 2u);
    table->undo();
    table->undo();
    EXPECT_EQ(value(200000, Row::f1), f1Before);
    table->redo();
    EXPECT_EQ(shown(200000, Row::f1), "777");
    EXPECT_EQ(shown(200001, Row::f2), QString::number(f2Before));
    table->redo();
    EXPECT_EQ(shown(200001, Row::f2), "1777");
    // Made: the first screen, the last one and the ones typed into.
    EXPECT_GT(doc._dataTableDictionary.pendingCount(), static_cast<std::size_t>(last - 300));
}
