// A document of an hour in the table: typing, undo, redo and saving touch what they change and
// the columns on screen, never the whole document, and lose nothing.
#include "document/MyDocument.h"
#include "support/TestDocuments.h"
#include "support/TestFiles.h"
#include "table/gui/TableClicks.h"

#include <QTest>
#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

TEST(LongDocument, TypingUndoRedoAndSavingAnHourMakeOnlyTheColumnsShown)
{
    MyDocument doc;
    setTestFrames(doc, MyDocument::kMaxFrames, 10, 1);
    const Channels& c = *doc.getChannel(0);
    mainTable table(&doc);
    table.resize(900, 600);
    table.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&table));
    const std::size_t fewerThanAll = MyDocument::kMaxFrames - 300;
    auto value = [&](int column) {
        return doc._dataTableDictionary.cellAt(10LL * column, Row::f1)->_nValue();
    };
    const int before = value(200000);

    const auto type = [&](int row, int column, const char* text) {
        const QModelIndex index = table.model()->index(row, column);
        table.setCurrentIndex(index);
        table.scrollTo(index);
        table.activateWindow();
        table.setFocus();
        typeIntoCurrentCell(table, text);
    };
    type(Row::f1, 200000, "777");
    type(Row::f2, 200001, "1777");
    EXPECT_EQ(value(200000), 777);
    EXPECT_GT(doc._dataTableDictionary.pendingCount(), fewerThanAll);
    ASSERT_EQ(doc._arrayUndo.size(), 2u);

    table.undo();
    table.undo();
    EXPECT_EQ(value(200000), before);
    table.redo();
    EXPECT_EQ(value(200000), 777);
    EXPECT_EQ(table.model()->data(table.model()->index(Row::f1, 200000)).toString(), "777");
    EXPECT_EQ(table.model()->data(table.model()->index(Row::f2, 200001)).toString(),
              QString::number(c.m_Parameters[Row::f2].nValue));
    table.redo();
    EXPECT_EQ(table.model()->data(table.model()->index(Row::f2, 200001)).toString(), "1777");
    EXPECT_GT(doc._dataTableDictionary.pendingCount(), fewerThanAll);

    // Saved and read back, every frame is there: the two typed values and the rest.
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("tessaphon-hour-" + std::to_string(::getpid()) + ".stk");
    std::string error;
    ASSERT_TRUE(doc.writeSafelyToURL(path.string(), "stk", &error)) << error;
    EXPECT_GT(doc._dataTableDictionary.pendingCount(), fewerThanAll) << "saving made no columns";
    MyDocument read;
    int code = 0;
    ASSERT_TRUE(read.readFromData(slurp(path.string()), "stk", &code));
    read.buildDataTableDictionary();
    EXPECT_EQ(read.getChannel(0)->m_nColumnNum, MyDocument::kMaxFrames);
    EXPECT_EQ(read._dataTableDictionary.cellAt(2000000, Row::f1)->_nValue(), 777);
    EXPECT_EQ(read._dataTableDictionary.cellAt(2000010, Row::f2)->_nValue(), 1777);
    EXPECT_EQ(read._dataTableDictionary.cellAt(3600000, Row::f1)->_nValue(), before);
    std::filesystem::remove(path);
}
