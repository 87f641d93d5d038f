// The table view's frozen name column and its play cursor, on real widgets under the
// offscreen platform; the checks are on the views' state, not on pixels.
#include "audio/AudioPlayer.h"
#include "document/MyDocument.h"
#include "support/TestDocuments.h"
#include "support/WidgetEvents.h"
#include "table/gui/Alert.h"
#include "table/gui/FrozenColumnView.h"
#include "table/gui/PlayCursor.h"
#include "table/gui/mainTable.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

namespace
{
// A table over a document of `lengthMS` at 10 ms frames, shown in a small window so that
// it scrolls both ways.
struct ShownTable {
    MyDocument doc;
    std::unique_ptr<mainTable> table;
    QStringList alerts;

    explicit ShownTable(double lengthMS)
    {
        setTestFrames(doc, static_cast<int>(lengthMS / 10), 10, 1);
        table = std::make_unique<mainTable>(&doc);
        table->resize(640, 300);
        table->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(table.get()));
        Alert::setHandler(
            [this](const QString& t, const QString& m, const QString&) { alerts << t + "|" + m; });
    }
    ~ShownTable()
    {
        table.reset();
        Alert::setHandler({});
    }
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

TEST(FrozenColumn, StaysAtTheLeftWhileTheFramesScrollAndFollowsRowsAndScrolling)
{
    ShownTable t(60000.0);
    ASSERT_EQ(t.table->model()->columnCount(), 6001);
    ASSERT_TRUE(t.frozen()->isVisible());
    EXPECT_FALSE(t.frozen()->isColumnHidden(0));
    for (int column : {1, 2, 3000, 6000})
        EXPECT_TRUE(t.frozen()->isColumnHidden(column)) << column;
    t.expectOverNameColumn();

    // Far right: the table shows the last frames, the names stay where they were.
    t.across()->setValue(t.across()->maximum());
    QCoreApplication::processEvents();
    EXPECT_GT(t.table->columnAt(t.table->columnWidth(0) + 5), 5900);
    EXPECT_EQ(t.frozen()->columnAt(5), 0);
    EXPECT_EQ(t.frozen()->indexAt(QPoint(5, 5)).data().toString(), "f0");
    t.expectOverNameColumn();

    // Vertical scrolling both ways, the wheel over the names included.
    QScrollBar* down = t.table->verticalScrollBar();
    ASSERT_GT(down->maximum(), 0) << "the window must be too low for all rows";
    down->setValue(down->maximum());
    EXPECT_EQ(t.frozen()->verticalScrollBar()->value(), down->maximum());
    EXPECT_EQ(t.frozen()->rowAt(5), t.table->rowAt(5));
    sendWheel(*t.frozen()->viewport(), t.frozen()->viewport()->rect().center(), 120, Qt::NoModifier);
    EXPECT_LT(down->value(), down->maximum());
    EXPECT_EQ(t.frozen()->rowAt(5), t.table->rowAt(5));

    // Showing a hidden parameter (f8) gives it a full row in both views.
    EXPECT_LT(t.frozen()->rowHeight(Row::f8), 3);
    t.doc._dataTableDictionary.cellAt(0, Row::f8)->set_bSelected(true);
    t.table->reloadData();
    EXPECT_GE(t.frozen()->rowHeight(Row::f8), 14);
    t.expectOverNameColumn();

    // The name column's width in step both ways.
    t.table->setColumnWidth(0, 90);
    EXPECT_EQ(t.frozen()->columnWidth(0), 90);
    t.expectOverNameColumn();
    t.frozen()->horizontalHeader()->resizeSection(0, 70);
    EXPECT_EQ(t.table->columnWidth(0), 70);
    t.expectOverNameColumn();

    // Removing a frame resets the model: the new frame columns are hidden in the names' view.
    t.table->selectaColumn(5);
    t.table->_editRemoveColumns();
    ASSERT_TRUE(t.alerts.isEmpty()) << t.alerts.join("\n").toStdString();
    ASSERT_EQ(t.table->model()->columnCount(), 6000);
    EXPECT_TRUE(t.frozen()->isColumnHidden(1));
    EXPECT_TRUE(t.frozen()->isColumnHidden(5999));
    t.expectOverNameColumn();
}

TEST(FrozenColumn, NamesSelectRowsWithoutEditingAndFramesNeverHideUnderThem)
{
    ShownTable t(3000.0);
    const QModelIndex f1Name = t.table->model()->index(Row::f1, 0);
    const QPoint at = t.frozen()->visualRect(f1Name).center();
    QTest::mouseClick(t.frozen()->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    EXPECT_EQ(t.table->selectedRowSpan(), std::make_pair(int(Row::f1), int(Row::f1)));
    EXPECT_EQ(t.table->selectedColumnSpan(), std::make_pair(-1, -1)) << "a row is no frame";
    QTest::mouseDClick(t.frozen()->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    EXPECT_EQ(t.table->findChild<QLineEdit*>(), nullptr) << "no editor opened on a name";
    EXPECT_EQ(t.table->model()->data(f1Name).toString(), "f1");

    // A frame brought back from the left lands next to the names, not under them.
    t.table->selectaColumn(200);
    t.putColumnAt(200, 10);
    t.table->selectaColumn(200);
    EXPECT_EQ(t.table->selectedColumnSpan(), std::make_pair(200, 200));
    EXPECT_EQ(t.leftOf(200), t.table->columnWidth(0));

    // Keyboard navigation to the left keeps the current frame clear of the names.
    t.table->setFocus();
    t.table->setCurrentIndex(t.table->model()->index(Row::f1, 200));
    QTest::keyClick(t.table.get(), Qt::Key_Left);
    EXPECT_EQ(t.table->currentIndex().column(), 199);
    EXPECT_GE(t.leftOf(199), t.table->columnWidth(0));
    const int across = t.across()->value();
    t.table->scrollTo(f1Name);
    EXPECT_EQ(t.across()->value(), across) << "the names never scroll sideways";
}

TEST(PlayCursor, SamplesMapToTheFrameColumnBeingHeard)
{
    // 11025 Hz, 10 ms: 110.25 samples a frame.
    EXPECT_EQ(PlayCursor::frameColumnAt(0, 11025, 10, 20), 1);
    EXPECT_EQ(PlayCursor::frameColumnAt(110, 11025, 10, 20), 1);
    EXPECT_EQ(PlayCursor::frameColumnAt(110.25, 11025, 10, 20), 2);
    EXPECT_EQ(PlayCursor::frameColumnAt(1102.5, 11025, 10, 20), 11);
    EXPECT_EQ(PlayCursor::frameColumnAt(20 * 110.25 - 1, 11025, 10, 20), 20);
    EXPECT_EQ(PlayCursor::frameColumnAt(20 * 110.25, 11025, 10, 20), -1) << "past the grid";
    EXPECT_EQ(PlayCursor::frameColumnAt(4410, 22050, 20, 20), 11);
    EXPECT_EQ(PlayCursor::frameColumnAt(1322999, 22050, 10, 6000), 6000);
    // Nothing to place.
    EXPECT_EQ(PlayCursor::frameColumnAt(100, 0, 10, 20), -1);
    EXPECT_EQ(PlayCursor::frameColumnAt(100, 11025, 0, 20), -1);
    EXPECT_EQ(PlayCursor::frameColumnAt(-1, 11025, 10, 20), -1);
    EXPECT_EQ(PlayCursor::frameColumnAt(std::numeric_limits<double>::quiet_NaN(), 11025, 10, 20), -1);
    EXPECT_EQ(PlayCursor::frameColumnAt(100, 11025, 10, 0), -1);
}

TEST(PlayCursor, FollowsThePositionUnlessTheUserScrollsAwayAndClearsAtTheEnd)
{
    ShownTable t(60000.0);
    const double rate = 11025;
    PlayCursor* cursor = t.table->playCursor();
    t.across()->setValue(t.across()->maximum()); // working at the end when playback starts
    const int atEnd = t.across()->value();
    QSignalSpy finished(cursor, &PlayCursor::finished);
    cursor->follow(rate, 60 * rate);
    EXPECT_EQ(t.table->playColumn(), 1);
    cursor->showPosition(samplesBefore(50, rate));
    EXPECT_EQ(t.table->playColumn(), 50);
    EXPECT_EQ(t.across()->value(), atEnd) << "playback took the table away from where the user works";

    // Looking at the start and playing again: the cursor is followed page by page.
    t.across()->setValue(0);
    cursor->follow(rate, 60 * rate);
    EXPECT_TRUE(t.table->isColumnOnScreen(1));
    cursor->showPosition(samplesBefore(50, rate));
    EXPECT_EQ(t.table->playColumn(), 50);
    EXPECT_TRUE(t.table->isColumnOnScreen(50));
    cursor->showPosition(samplesBefore(500, rate) + 3);
    EXPECT_EQ(t.table->playColumn(), 500);
    EXPECT_EQ(t.leftOf(500), t.table->columnWidth(0)) << "a new page starts next to the names";

    // The user scrolls away: the cursor moves on without pulling the view back.
    t.across()->setValue(0);
    cursor->showPosition(samplesBefore(501, rate));
    EXPECT_EQ(t.table->playColumn(), 501);
    EXPECT_EQ(t.across()->value(), 0);
    cursor->showPosition(samplesBefore(900, rate));
    EXPECT_EQ(t.across()->value(), 0);
    // Back to the cursor: following resumes.
    t.putColumnAt(900, 200);
    cursor->showPosition(samplesBefore(2000, rate));
    EXPECT_TRUE(t.table->isColumnOnScreen(2000));

    // Past the grid nothing is tinted; with the player idle the next step clears and stops.
    cursor->showPosition(60 * rate + 1);
    EXPECT_EQ(t.table->playColumn(), -1);
    cursor->showPosition(samplesBefore(6000, rate));
    EXPECT_EQ(t.table->playColumn(), 6000);
    ASSERT_FALSE(mainTable::sharedPlayer()->isPlaying());
    ASSERT_TRUE(finished.wait(2000));
    EXPECT_EQ(t.table->playColumn(), -1);
    EXPECT_FALSE(cursor->isFollowing());
}

TEST(PlayCursor, StartsWithARealPlaybackAndEndsWithIt)
{
    ShownTable t(200.0);
    PlayCursor* cursor = t.table->playCursor();
    QSignalSpy positions(cursor, &PlayCursor::positionChanged);
    QSignalSpy finished(cursor, &PlayCursor::finished);
    t.table->_bSynthesize = true;
    t.table->_PlayCurrent();
    ASSERT_TRUE(finished.wait(10000));
    ASSERT_GE(positions.count(), 1);
    EXPECT_DOUBLE_EQ(positions.first().at(0).toDouble(), 0.0);
    const Channels& c = *t.doc.getChannel(0);
    EXPECT_NEAR(positions.first().at(1).toDouble(), c.m_dwFileLength / c.m_dSampleRate, 0.01);
    EXPECT_EQ(t.table->playColumn(), -1);
    EXPECT_FALSE(cursor->isFollowing());
    EXPECT_FALSE(mainTable::sharedPlayer()->isPlaying());
}

TEST(TableView, AnHourLongDocumentMakesOnlyTheColumnsInViewAndShowsAndTakesItsLastFrame)
{
    MyDocument doc;
    Channels& c = *doc.getChannel(0);
    c.m_dLengthMS = MyDocument::kMaxLengthMS;
    c.m_nColumnNum = MyDocument::kMaxFrames;
    doc.SetUpDataGridMemory();
    c.m_snppDataImage_Col_Row[MyDocument::kMaxFrames - 1][Row::f1] = 777;
    c.m_pAnchorPosition = {Row::f1, MyDocument::kMaxFrames - 1};
    doc.m_bReadFile = 1;
    doc.buildDataTableDictionary();
    mainTable table(&doc);
    table.resize(640, 300);
    table.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&table));
    QAbstractItemModel* model = table.model();
    ASSERT_EQ(model->columnCount(), MyDocument::kMaxFrames + 1);
    EXPECT_TRUE(table.frozenColumn()->isColumnHidden(MyDocument::kMaxFrames));

    const QModelIndex last = model->index(Row::f1, MyDocument::kMaxFrames);
    table.scrollTo(last);
    table.viewport()->repaint();
    EXPECT_GT(table.columnViewportPosition(MyDocument::kMaxFrames), table.columnWidth(0) - 1);
    EXPECT_EQ(model->data(last, Qt::DisplayRole).toString(), "777");
    EXPECT_EQ(model->data(last, Qt::BackgroundRole).value<QColor>(), QColor(Qt::red));
    EXPECT_EQ(model->headerData(MyDocument::kMaxFrames, Qt::Horizontal, Qt::DisplayRole).toString(),
              "3600000");
    EXPECT_TRUE(model->flags(last) & Qt::ItemIsEditable);
    // Only what was shown was made: the first screen and the last one.
    EXPECT_GT(doc._dataTableDictionary.pendingCount(),
              static_cast<std::size_t>(MyDocument::kMaxFrames - 200));

    // The cell the view shows is the table data's own.
    doc._dataTableDictionary.cellAt(MyDocument::kMaxLengthMS, Row::f1)->setInttoStringValue(778);
    EXPECT_EQ(model->data(last, Qt::DisplayRole).toString(), "778");
}
