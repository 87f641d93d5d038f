#include "InterchangeRefusal.h"
#include "document/ParameterDefinition.h"
#include "interchange/Interchange.h"
#include "support/DocumentTestSupport.h"
#include "support/TestDocuments.h"
#include "table/TableClipboard.h"

#include <gtest/gtest.h>

#include <random>

namespace
{
// Every row of every frame at a value of its own inside the row's limits.
std::unique_ptr<MyDocument> scrambledDocument(double lengthMS, int interval)
{
    auto document = makeTestDocument(static_cast<int>(lengthMS / interval), interval, 1);
    std::mt19937 random(7);
    const Channels& c = *document->getChannel(0);
    for (int frame = 1; frame <= c.m_nColumnNum; ++frame)
        for (int row = 0; row < kParameterCount; ++row) {
            const ParameterDefinition& p = c.m_Parameters[row];
            setValue(*document, frame, row,
                     std::uniform_int_distribution<int>(p.nMinValue, p.nMaxValue)(random));
        }
    return document;
}

void expectSameValues(MyDocument& a, MyDocument& b)
{
    const int frames = a.getChannel(0)->m_nColumnNum;
    ASSERT_EQ(b.getChannel(0)->m_nColumnNum, frames);
    ASSERT_EQ(b.getChannel(0)->m_nUpdateIntervalMS, a.getChannel(0)->m_nUpdateIntervalMS);
    for (int frame = 1; frame <= frames; ++frame)
        for (int row = 0; row < kParameterCount; ++row)
            ASSERT_EQ(frameCell(b, frame, row)->_nValue(), frameCell(a, frame, row)->_nValue())
                << "row " << row << " frame " << frame;
}
} // namespace

TEST(TsvInterchange, RoundTripsEveryRowOfEveryFrame)
{
    for (const int interval : {20, 5, 3}) {
        SCOPED_TRACE(interval);
        auto document = scrambledDocument(40.0 * interval, interval);
        const std::string tsv = exportDocument(*document, InterchangeFormat::Tsv);
        // The table's own Copy layout with the frame times in front.
        const std::string copied = copyCellsAsText(*document, 0, kParameterCount - 1, 1, 40);
        EXPECT_EQ(tsv.substr(0, 8), "time_ms\t");
        EXPECT_EQ(tsv.substr(8, copied.find('\n') + 1), copied.substr(0, copied.find('\n') + 1));
        ImportedDocument back = importDocument(tsv, "frames.tsv");
        EXPECT_TRUE(back.warnings.empty());
        EXPECT_EQ(back.document->m_nClampedValues, 0);
        expectSameValues(*document, *back.document);
    }
}

TEST(TsvInterchange, ReadsSpreadsheetTablesAndRefusesBrokenOnes)
{
    // UTF-16 with CR LF as a spreadsheet's "Unicode text" writes it; a column with no row here;
    // a name in capitals; the table found by content when the name says nothing; two rows are
    // enough to give the frames' length.
    const std::string text = "time_ms\tF1\tcomment\r\n0\t300\tx\r\n5\t400\ty\r\n";
    std::string utf16 = "\xFF\xFE";
    for (const char ch : text)
        utf16 += std::string{ch, '\0'};
    ImportedDocument imported = importDocument(utf16, "frames.dat");
    EXPECT_EQ(imported.document->getChannel(0)->m_nColumnNum, 2);
    EXPECT_EQ(imported.document->getChannel(0)->m_nUpdateIntervalMS, 5);
    EXPECT_EQ(frameCell(*imported.document, 2, Row::f1)->_nValue(), 400);
    ASSERT_EQ(imported.warnings.size(), 1u);
    EXPECT_NE(imported.warnings[0].find("comment"), std::string::npos);

    expectRefused("f0\tav\n1000\t60\n", "bad.tsv", 1, "");
    expectRefused("time_ms\tf0\n0\t1000\n10\n", "bad.tsv", 3, "");
    expectRefused("time_ms\tf0\n0\t1000\n10\tx\n", "bad.tsv", 3, "");
    expectRefused("time_ms\tf0\n10\t1000\n0\t1000\n", "bad.tsv", 3, "");
    expectRefused("", "bad.tsv", 0, "empty");
    expectRefused("time_ms\tf0\n", "bad.tsv", 0, "no length");
}
