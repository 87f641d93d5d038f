// The table view's frozen name column, its play cursor and a document of an hour in it, on real
// widgets under the offscreen platform; the checks are on the views' state, not on pixels.
#include "FramesInTable.h"
#include "audio/AudioPlayer.h"
#include "support/WidgetEvents.h"
#include "table/gui/PlayCursor.h"

#include <QScrollBar>
#include <QSignalSpy>

#include <cmath>
#include <limits>
#include <memory>

namespace
{
// A table in a small window, so that it scrolls both ways.
struct TableView : FramesInTable {
    void open(int frames) { FramesInTable::open(frames, 640, 300, false); }
    FrozenColumnView* frozen() const { return table->frozenColumn(); }
    QScrollBar* across() const { return table->horizontalScrollBar(); }
    // Left edge of a table column in the viewport.
    int leftOf(int column) const { return table->columnViewportPosition(column); }
    // Scrolls so that a column starts `x` pixels into the viewport.
    void putColumnAt(int column, int x) const { across()->setValue(across()->value() + leftOf(column) - x); }
    // The frozen view covers the name column exactly, header included.
    void expectOverNameColumn() const
    {
        const QRect viewport = table->viewport()->geometry();
        EXPECT_EQ(frozen()->geometry().topLeft(), QPoint(viewport.left(), table->horizontalHeader()->y()));
        EXPECT_EQ(frozen()->width(), table->columnWidth(0));
        EXPECT_EQ(frozen()->geometry().bottom(), viewport.bottom());
        EXPECT_EQ(frozen()->horizontalHeader()->height(), table->horizontalHeader()->height());
        EXPECT_EQ(frozen()->verticalScrollBar()->value(), table->verticalScrollBar()->value());
        for (int row = 0; row < table->model()->rowCount(); ++row)
            ASSERT_EQ(frozen()->rowHeight(row), table->rowHeight(row)) << "row " << row;
    }
};

int samplesBefore(int column, double rate)
{
    return static_cast<int>(std::ceil((column - 1) * 10 * rate / 1000.0));
}
} // namespace

TEST_F(TableView, FrozenColumnStaysAtTheLeftWhileTheFramesScrollAndFollowsRowsAndScrolling)
{
    open(6000);
    ASSERT_EQ(table->model()->columnCount(), 6001);
    ASSERT_TRUE(frozen()->isVisible());
    EXPECT_FALSE(frozen()->isColumnHidden(0));
    for (int column : {1, 2, 3000, 6000})
        EXPECT_TRUE(frozen()->isColumnHidden(column)) << column;
    expectOverNameColumn();

    // Far right: the table shows the last frames, the names stay where they were.
    across()->setValue(across()->maximum());
    QCoreApplication::processEvents();
    EXPECT_GT(table->columnAt(table->columnWidth(0) + 5), 5900);
    EXPECT_EQ(frozen()->columnAt(5), 0);
    EXPECT_EQ(frozen()->indexAt(QPoint(5, 5)).data().toString(), "f0");

    // Vertical scrolling both ways, the wheel over the names included.
    QScrollBar* down = table->verticalScrollBar();
    ASSERT_GT(down->maximum(), 0) << "the window must be too low for all rows";
    down->setValue(down->maximum());
    EXPECT_EQ(frozen()->verticalScrollBar()->value(), down->maximum());
    EXPECT_EQ(frozen()->rowAt(5), table->rowAt(5));
    sendWheel(*frozen()->viewport(), frozen()->viewport()->rect().center(), 120, Qt::NoModifier);
    EXPECT_LT(down->value(), down->maximum());
    EXPECT_EQ(frozen()->rowAt(5), table->rowAt(5));

    // Showing a hidden parameter (f8) gives it a full row in both views.
    EXPECT_LT(frozen()->rowHeight(Row::f8), 3);
    doc._dataTableDictionary.cellAt(0, Row::f8)->set_bSelected(true);
    table->reloadData();
    EXPECT_GE(frozen()->rowHeight(Row::f8), 14);
    expectOverNameColumn();

    // The name column's width in step both ways.
    table->setColumnWidth(0, 90);
    EXPECT_EQ(frozen()->columnWidth(0), 90);
    expectOverNameColumn();
    frozen()->horizontalHeader()->resizeSection(0, 70);
    EXPECT_EQ(table->columnWidth(0), 70);
    expectOverNameColumn();

    // Removing a frame resets the model: the new frame columns are hidden in the names' view.
    table->selectaColumn(5);
    table->_editRemoveColumns();
    ASSERT_TRUE(alerts.empty()) << alerts.front().message.toStdString();
    ASSERT_EQ(table->model()->columnCount(), 6000);
    EXPECT_TRUE(frozen()->isColumnHidden(1));
    EXPECT_TRUE(frozen()->isColumnHidden(5999));
    expectOverNameColumn();
}

TEST_F(TableView, FramesNeverHideUnderTheFrozenNamesWhichNeverScrollSideways)
{
    open(300);
    // A frame brought back from the left lands next to the names, not under them.
    table->selectaColumn(200);
    putColumnAt(200, 10);
    table->selectaColumn(200);
    EXPECT_EQ(table->selectedColumnSpan(), std::make_pair(200, 200));
    EXPECT_EQ(leftOf(200), table->columnWidth(0));

    // Keyboard navigation to the left keeps the current frame clear of the names.
    table->setFocus();
    table->setCurrentIndex(table->model()->index(Row::f1, 200));
    QTest::keyClick(table.get(), Qt::Key_Left);
    EXPECT_EQ(table->currentIndex().column(), 199);
    EXPECT_GE(leftOf(199), table->columnWidth(0));
    const int sideways = across()->value();
    table->scrollTo(table->model()->index(Row::f1, 0));
    EXPECT_EQ(across()->value(), sideways) << "the names never scroll sideways";
}

TEST(PlayCursor, SamplesMapToTheFrameColumnBeingHeard)
{
    // 11025 Hz, 10 ms: 110.25 samples a frame.
    EXPECT_EQ(PlayCursor::frameColumnAt(0, 11025, 10, 20), 1);
    EXPECT_EQ(PlayCursor::frameColumnAt(110, 11025, 10, 20), 1);
    EXPECT_EQ(PlayCursor::frameColumnAt(110.25, 11025, 10, 20), 2);
    EXPECT_EQ(PlayCursor::frameColumnAt(20 * 110.25 - 1, 11025, 10, 20), 20);
    EXPECT_EQ(PlayCursor::frameColumnAt(20 * 110.25, 11025, 10, 20), -1) << "past the grid";
    EXPECT_EQ(PlayCursor::frameColumnAt(4410, 22050, 20, 20), 11);
    // Nothing to place.
    EXPECT_EQ(PlayCursor::frameColumnAt(100, 0, 10, 20), -1);
    EXPECT_EQ(PlayCursor::frameColumnAt(100, 11025, 0, 20), -1);
    EXPECT_EQ(PlayCursor::frameColumnAt(-1, 11025, 10, 20), -1);
    EXPECT_EQ(PlayCursor::frameColumnAt(std::numeric_limits<double>::quiet_NaN(), 11025, 10, 20), -1);
    EXPECT_EQ(PlayCursor::frameColumnAt(100, 11025, 10, 0), -1);
}

TEST_F(TableView, PlayCursorFollowsThePositionUnlessTheUserScrollsAwayAndClearsAtTheEnd)
{
    open(6000);
    const double rate = 11025;
    PlayCursor* cursor = table->playCursor();
    across()->setValue(across()->maximum()); // working at the end when playback starts
    const int atEnd = across()->value();
    QSignalSpy finished(cursor, &PlayCursor::finished);
    cursor->follow(rate, 60 * rate);
    EXPECT_EQ(table->playColumn(), 1);
    cursor->showPosition(samplesBefore(50, rate));
    EXPECT_EQ(table->playColumn(), 50);
    EXPECT_EQ(across()->value(), atEnd) << "playback took the table away from where the user works";

    // Looking at the start and playing again: the cursor is followed page by page.
    across()->setValue(0);
    cursor->follow(rate, 60 * rate);
    EXPECT_TRUE(table->isColumnOnScreen(1));
    cursor->showPosition(samplesBefore(50, rate));
    EXPECT_TRUE(table->isColumnOnScreen(50));
    cursor->showPosition(samplesBefore(500, rate) + 3);
    EXPECT_EQ(table->playColumn(), 500);
    EXPECT_EQ(leftOf(500), table->columnWidth(0)) << "a new page starts next to the names";

    // The user scrolls away: the cursor moves on without pulling the view back.
    across()->setValue(0);
    cursor->showPosition(samplesBefore(501, rate));
    EXPECT_EQ(across()->value(), 0);
    cursor->showPosition(samplesBefore(900, rate));
    EXPECT_EQ(across()->value(), 0);
    // Back to the cursor: following resumes.
    putColumnAt(900, 200);
    cursor->showPosition(samplesBefore(2000, rate));
    EXPECT_TRUE(table->isColumnOnScreen(2000));

    // Past the grid nothing is tinted; with the player idle the next step clears and stops.
    cursor->showPosition(60 * rate + 1);
    EXPECT_EQ(table->playColumn(), -1);
    cursor->showPosition(samplesBefore(6000, rate));
    EXPECT_EQ(table->playColumn(), 6000);
    ASSERT_FALSE(mainTable::sharedPlayer()->isPlaying());
    ASSERT_TRUE(finished.wait(2000));
    EXPECT_EQ(table->playColumn(), -1);
    EXPECT_FALSE(cursor->isFollowing());
}

TEST_F(TableView, PlayCursorStartsWithARealPlaybackAndEndsWithIt)
{
    open(20);
    PlayCursor* cursor = table->playCursor();
    QSignalSpy positions(cursor, &PlayCursor::positionChanged);
    QSignalSpy finished(cursor, &PlayCursor::finished);
    table->_bSynthesize = true;
    table->_PlayCurrent();
    ASSERT_TRUE(finished.wait(10000));
    ASSERT_GE(positions.count(), 1);
    EXPECT_DOUBLE_EQ(positions.first().at(0).toDouble(), 0.0);
    const Channels& c = *doc.getChannel(0);
    EXPECT_NEAR(positions.first().at(1).toDouble(), c.m_dwFileLength / c.m_dSampleRate, 0.01);
    EXPECT_EQ(table->playColumn(), -1);
    EXPECT_FALSE(cursor->isFollowing());
    EXPECT_FALSE(mainTable::sharedPlayer()->isPlaying());
}

// A document of an hour: the view makes only the columns it shows, shows and takes the last
// frame, and typing, undo and redo touch what they change and the columns on screen. (Saving
// an hour without making its columns: UndoHistoryTest.cpp.)
TEST_F(TableView, AnHourMakesOnlyTheColumnsShownAndTakesTheLastFrameAndTypingInTheMiddle)
{
    // As read from a file: the last frame's f1 holds 777 and an anchor.
    const int last = MyDocument::kMaxFrames;
    readTestFrames(doc, last, [](Channels& c) {
        c.m_snppDataImage_Col_Row[last - 1][Row::f1] = 777;
        c.m_pAnchorPosition = {Row::f1, last - 1};
    });
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
    QSignalSpy redrawn(model, &QAbstractItemModel::dataChanged);
    type(200000, Row::f1, "777");
    ASSERT_EQ(redrawn.count(), 1);
    EXPECT_EQ(redrawn[0][0].toModelIndex(), model->index(Row::f1, 200000)) << "the typed cell is redrawn";
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
