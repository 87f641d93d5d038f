#include "table/TableEditing.h"

#include "HourDocument.h"
#include "support/DocumentTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

namespace
{
// A factory-new document (20 frames of 10 ms) with its table data built.
struct NewDocument {
    MyDocument doc;
    NewDocument() { doc.buildDataTableDictionary(); }
    CellRef cell(int row, int tableColumn) { return frameCell(doc, tableColumn, row); }
    int value(int row, int tableColumn) { return frameValue(doc, tableColumn, row); }
    void setAnchor(int row, int tableColumn, int value)
    {
        setValue(doc, tableColumn, row, value);
        cell(row, tableColumn)->set_bAnchor(true);
    }
};
} // namespace

TEST(TableEditing, RowCellsAndReplaceFollowTableColumns)
{
    NewDocument d;
    CellArray row = rowCellsArray(d.doc, Row::f1);
    ASSERT_EQ(row.size(), 20u);
    EXPECT_EQ(row[0], d.cell(Row::f1, 1));
    EXPECT_EQ(row[19], d.cell(Row::f1, 20));
    EXPECT_TRUE(rowCellsArray(d.doc, 48).empty());
    EXPECT_TRUE(rowCellsArray(d.doc, -1).empty());

    auto replacement = std::make_shared<ImageAndTextCell>();
    replaceCellAt(d.doc, replacement, Row::f1, 7);
    EXPECT_EQ(d.cell(Row::f1, 7), replacement);
    // Outside the table: ignored, no crash.
    replaceCellAt(d.doc, replacement, 60, 7);
    replaceCellAt(d.doc, replacement, Row::f1, 21);
    EXPECT_EQ(d.doc._dataTableDictionary.count(), 21u);

    // A missing column keeps its place in the row as an empty entry (the frame count is the
    // dictionary's count less the name column).
    d.doc._dataTableDictionary.removeObjectForKey("50");
    row = rowCellsArray(d.doc, Row::f0);
    ASSERT_EQ(row.size(), 19u);
    EXPECT_EQ(row[4], nullptr);
}

TEST(TableEditing, TypedEntryClampsRecordsAndSkipsSameValue)
{
    NewDocument d;
    const CellRef before = d.cell(Row::av, 3);

    // The value already shown: nothing happens.
    EXPECT_EQ(typeValue(d.doc, Row::av, 3, 60), TypedEntryOutcome::Unchanged);
    EXPECT_TRUE(d.doc._arrayUndo.empty());
    EXPECT_FALSE(d.doc.isDocumentEdited());
    EXPECT_EQ(d.cell(Row::av, 3), before);

    // Above the maximum: the maximum, in a new cell (its undo step: UndoHistoryTest.cpp).
    EXPECT_EQ(typeValue(d.doc, Row::av, 3, 9999), TypedEntryOutcome::Stored);
    EXPECT_EQ(d.value(Row::av, 3), 87);
    EXPECT_EQ(d.cell(Row::av, 3)->stringValue(), "87");
    EXPECT_NE(d.cell(Row::av, 3), before);
    EXPECT_EQ(before->_nValue(), 60) << "the old cell object is left as it was";
    EXPECT_FALSE(d.cell(Row::av, 3)->_bAnchor());

    // Below the minimum: the minimum.
    typeValue(d.doc, Row::f1, 5, 100);
    EXPECT_EQ(d.value(Row::f1, 5), 200);
    // In range: kept; neighbours untouched.
    typeValue(d.doc, Row::f1, 6, 730);
    EXPECT_EQ(d.value(Row::f1, 6), 730);
    EXPECT_EQ(d.value(Row::f1, 7), 500);

    // The name column and rows outside the table take no typed value.
    EXPECT_EQ(typeValue(d.doc, Row::av, 0, 5), TypedEntryOutcome::Unchanged);
    EXPECT_EQ(typeValue(d.doc, 48, 3, 5), TypedEntryOutcome::Unchanged);
    EXPECT_EQ(typeValue(d.doc, Row::av, 40, 5), TypedEntryOutcome::Unchanged);
}

TEST(TableEditing, TypedEntryWithAnchorAndInterpolateSwitches)
{
    NewDocument d;
    d.doc.getChannel(0)->m_bDoAnchor = 1;
    typeValue(d.doc, Row::f0, 2, 1000 + 100); // frame 1
    EXPECT_TRUE(d.cell(Row::f0, 2)->_bAnchor());
    EXPECT_EQ(d.doc._arrayUndo.size(), 1u);

    d.doc.getChannel(0)->m_bDoInterpolate = 1;
    EXPECT_EQ(typeValue(d.doc, Row::f0, 6, 1500), TypedEntryOutcome::StoredAndInterpolated);
    // Anchors at frames 1 (1100) and 5 (1500): frame 3, half way, becomes 1300.
    EXPECT_EQ(d.value(Row::f0, 4), 1300);
    EXPECT_FALSE(d.cell(Row::f0, 4)->_bAnchor());
    EXPECT_EQ(d.value(Row::f0, 7), 1000) << "frames beyond the last anchor are kept";
    // The typed entry and the interpolation each record an undo step; two redo records.
    EXPECT_EQ(d.doc._arrayUndo.size(), 3u);
    EXPECT_EQ(d.doc._arrayRedo.size(), 3u);
}

TEST(TableEditing, InterpolationFillsBetweenAnchorsTruncatingTowardZero)
{
    using Cells = std::vector<std::pair<int, int>>; // (table column, value)
    const struct {
        int row;
        Cells anchors, expected;
    } rows[] = {
        {Row::av, {{3, 10}, {7, 50}}, {{4, 20}, {5, 30}, {6, 40}, {1, 60}, {9, 60}}},
        {Row::ah, {{1, 10}, {4, 0}}, {{2, 6}, {3, 3}}}, // slope -10/3
        // Three anchors: each pair is filled separately, the middle one keeps its value.
        {Row::f1, {{1, 300}, {3, 700}, {5, 500}}, {{2, 500}, {3, 700}, {4, 600}}},
        // Negative fractions truncate toward zero, and are not clamped: 0 -> -5 over 2 frames.
        {Row::tl, {{10, 0}, {12, -5}}, {{11, -2}}},
        {Row::af, {{5, 40}}, {{4, 0}, {6, 0}, {20, 0}}}, // a single anchor leaves the row alone
    };
    NewDocument d;
    for (const auto& r : rows)
        for (const auto& [column, value] : r.anchors)
            d.setAnchor(r.row, column, value);
    const CellRef anchorCell = d.cell(Row::av, 3);
    const CellRef outside = d.cell(Row::av, 9);

    interpolateRows(d.doc, 0, 100); // rows beyond the table are ignored
    for (const auto& r : rows)
        for (const auto& [column, value] : r.expected)
            EXPECT_EQ(d.value(r.row, column), value) << "row " << r.row << " column " << column;
    EXPECT_EQ(d.cell(Row::av, 5)->stringValue(), "30");
    EXPECT_EQ(d.cell(Row::av, 3), anchorCell);
    EXPECT_EQ(d.cell(Row::av, 9), outside);
    EXPECT_TRUE(d.doc._arrayUndo.empty()) << "the row operation records nothing itself";

    // Only the span of rows asked for.
    NewDocument e;
    e.setAnchor(Row::f2, 1, 1000);
    e.setAnchor(Row::f2, 3, 2000);
    e.setAnchor(Row::f3, 1, 2000);
    e.setAnchor(Row::f3, 3, 2400);
    interpolateRows(e.doc, Row::f2, Row::f2);
    EXPECT_EQ(e.value(Row::f2, 2), 1500);
    EXPECT_EQ(e.value(Row::f3, 2), 2500); // the record value, not 2200
    // The whole-table command takes every row (its undo step: UndoHistoryTest.cpp).
    interpolateAll(e.doc);
    EXPECT_EQ(e.value(Row::f3, 2), 2200);
}

TEST(TableEditing, CheckDataRangeClampsEveryFrameInPlace)
{
    NewDocument d;
    const CellRef c3 = d.cell(Row::f2, 3);
    c3->set_nValue(9000);
    d.cell(Row::f2, 8)->set_nValue(10);
    checkDataRange(d.doc, Row::f2);
    EXPECT_EQ(d.cell(Row::f2, 3), c3);
    EXPECT_EQ(c3->_nValue(), 3000);
    EXPECT_EQ(c3->stringValue(), "3000");
    EXPECT_EQ(d.value(Row::f2, 8), 550);
    EXPECT_EQ(d.value(Row::f2, 9), 1500);
    checkDataRange(d.doc, 70); // no such row: nothing
}

TEST(TableEditing, AdjustSampleRateFollowsTheHighFormants)
{
    NewDocument d;
    Channels& c = *d.doc.getChannel(0);
    c.m_dSampleRate = 16000;
    AdjustSampleRate(d.doc, false);
    EXPECT_DOUBLE_EQ(c.m_dSampleRate, 11025.0);
    EXPECT_EQ(c.m_bIncraseSampleRate, 0);
    EXPECT_EQ(d.doc.m_nFFTfrequencyRange, 5000);
    EXPECT_EQ(d.doc.m_nSpecfrequencyRange, 5000);
    EXPECT_EQ(d.doc.m_nLPCNumberofCoefficients, 14);
    EXPECT_EQ(d.doc.m_nSpecLPCNumberofCoefficients, 14);
    EXPECT_EQ(c.m_bSynthesize, 1);

    for (int row : kHighFormantRows) {
        c.m_Parameters[row].bSelected = 1;
        AdjustSampleRate(d.doc, false);
        EXPECT_DOUBLE_EQ(c.m_dSampleRate, 22050.0) << "row " << row;
        EXPECT_EQ(c.m_bIncraseSampleRate, 1);
        EXPECT_EQ(d.doc.m_nFFTfrequencyRange, 11000);
        EXPECT_EQ(d.doc.m_nLPCNumberofCoefficients, 26);
        EXPECT_EQ(d.doc.m_nSpecLPCNumberofCoefficients, 26);
        c.m_Parameters[row].bSelected = 0;
    }
    AdjustSampleRate(d.doc, false);
    EXPECT_DOUBLE_EQ(c.m_dSampleRate, 11025.0);
}

TEST(TableEditing, SaveParametersAppliesSettingsKeepingValues)
{
    NewDocument d;
    Channels& c = *d.doc.getChannel(0);
    d.cell(Row::f1, 4)->set_nValue(777);
    c.m_Parameters[Row::f1].nMaxValue = 900;
    c.m_Parameters[Row::f1].nMinValue = 250;
    c.m_Parameters[Row::f1].nDefaultValue = 450;
    c.m_Parameters[Row::f6].bSelected = 1;
    c.m_Parameters[Row::av].nsSetColor = Color::rgb(1, 0, 0);

    saveParameters(d.doc);
    for (int col = 0; col <= 20; ++col) {
        EXPECT_EQ(d.cell(Row::f1, col)->_nMaxValue(), 900);
        EXPECT_EQ(d.cell(Row::f1, col)->_nMinValue(), 250);
        EXPECT_EQ(d.cell(Row::f1, col)->_nDefaultValue(), 450);
        EXPECT_TRUE(d.cell(Row::f6, col)->_bSelected());
        EXPECT_EQ(d.cell(Row::av, col)->_nsbgColor(), Color::rgb(1, 0, 0));
    }
    EXPECT_EQ(d.value(Row::f1, 4), 777);
    EXPECT_EQ(d.value(Row::f1, 5), 500);
    // Showing f6 switched synthesis to 22050 Hz (the synthesis itself: HourAndTwin, below).
    EXPECT_DOUBLE_EQ(c.m_dSampleRate, 22050.0);
    EXPECT_TRUE(d.doc.isDocumentEdited());
}

// The hour of HourDocument.h, in which one made cell has a definition of its own, and its twin,
// which has every column made first: what the document answers must be what the twin answers.
namespace
{
struct HourAndTwin : ::testing::Test {
    MyDocument doc, twin;
    std::size_t pending = 0;

    void SetUp() override
    {
        for (MyDocument* d : {&doc, &twin}) {
            openHour(*d);
            d->_dataTableDictionary.cellAt(300, Row::f1)->set_strName("f1*");
        }
        twin._dataTableDictionary.map();
        pending = doc._dataTableDictionary.pendingCount();
    }

    // The whole text (whose writing makes no column), then the document's cells of `columns`
    // against the twin's, every field.
    void expectSameCells(std::initializer_list<long long> columns)
    {
        const std::size_t notMade = doc._dataTableDictionary.pendingCount();
        // (Compared whole, not through a diff of two hour-long texts, which takes gigabytes.)
        EXPECT_TRUE(doc.parameterDocumentText(true) == twin.parameterDocumentText(true));
        EXPECT_EQ(doc._dataTableDictionary.pendingCount(), notMade);
        for (long long column : columns)
            for (int row = 0; row < kParameterCount; ++row) {
                const CellRef got = doc._dataTableDictionary.cellAt(column * 10, row),
                              want = twin._dataTableDictionary.cellAt(column * 10, row);
                ASSERT_TRUE(got && want) << column;
                EXPECT_TRUE(got->definition() == want->definition()) << column << " " << row;
                EXPECT_EQ(got->_nValue(), want->_nValue()) << column << " " << row;
                EXPECT_EQ(got->_bSelected(), want->_bSelected()) << column << " " << row;
                EXPECT_EQ(got->_bAnchor(), want->_bAnchor()) << column << " " << row;
            }
    }
};
} // namespace

TEST_F(HourAndTwin, SaveParametersMakesNoColumnAndGivesEveryColumnTheSettings)
{
    for (MyDocument* d : {&doc, &twin}) {
        auto& p = d->getChannel(0)->m_Parameters;
        p[Row::f1].nMaxValue = 1200;
        p[Row::f1].nMinValue = 100;
        p[Row::f1].nDefaultValue = 450;
        p[Row::av].nsSetColor = Color::rgb(1, 0, 0);
        p[Row::f2].bSelected = 0;
        p[Row::f1].nValue = 999; // the records' values are not the frames'
    }
    const DataTableDictionary& data = doc._dataTableDictionary;
    // The engine carries its state on from one synthesis to the next on a thread: each
    // document synthesizes on a fresh one, so that both start alike.
    std::thread([this] { saveParameters(doc); }).join();
    std::thread([this] { saveParameters(twin); }).join();
    EXPECT_EQ(data.pendingCount(), pending) << "no column made";

    Channels &a = *doc.getChannel(0), &b = *twin.getChannel(0);
    ASSERT_EQ(a.m_dwFileLength, b.m_dwFileLength);
    ASSERT_TRUE(a.samples() && b.samples());
    EXPECT_TRUE(
        std::equal(a.samples(), a.samples() + static_cast<std::size_t>(a.m_dwFileLength), b.samples()))
        << "the synthesis of the columns not made";
    expectSameCells({0, 1, 30, 40, 41, 250000, 360000});
    const CellRef made = data.cellAt(400, Row::f1), later = data.cellAt(3000000, Row::f1);
    EXPECT_EQ(later->_nMaxValue(), 1200);
    EXPECT_EQ(later->_nValue(), 300 + 299999 % 400);
    EXPECT_TRUE(made->sharesDefinitionWith(*later)) << "a row's frames keep sharing one definition";
    EXPECT_FALSE(data.cellAt(3000000, Row::f2)->_bSelected());
    EXPECT_EQ(data.cellAt(3000000, Row::av)->_nsbgColor(), Color::rgb(1, 0, 0));
}

TEST_F(HourAndTwin, SaveOptionsFileAtTheSameIntervalKeepsTheColumnsNotMade)
{
    // Shortened by 10 s (the question asked first), then lengthened again: the frames added are
    // fresh ones.
    for (double length : {3590000.0, 3600000.0}) {
        for (MyDocument* d : {&doc, &twin}) {
            d->m_dNewLengthMS = length;
            d->m_nNewUpdateIntervalMS = 10;
            d->m_dNewSampleRate = 11025;
            d->getChannel(0)->m_Parameters[Row::f1].nValue = 999;
        }
        const Shortening got = proposedShortening(doc), want = proposedShortening(twin);
        EXPECT_EQ(got.removedFrames, want.removedFrames);
        EXPECT_EQ(got.removesValues, want.removesValues);
        EXPECT_EQ(got.removedFrames, length < 3600000.0 ? 1000 : 0);
        saveoptionsFile(doc);
        saveoptionsFile(twin);
    }
    EXPECT_GE(doc._dataTableDictionary.pendingCount(), pending - 1000);
    EXPECT_EQ(doc.getChannel(0)->m_nColumnNum, 360000);
    expectSameCells({0, 1, 30, 41, 250000, 358999, 359000, 359001, 360000});
    EXPECT_EQ(doc._dataTableDictionary.cellAt(3590010, Row::f1)->_nValue(), 999);
}

TEST(TableEditing, SaveOptionsFileCarriesValuesOverByTime)
{
    // More frames: 20 frames of 10 ms become 40 frames of 5 ms; old frame k (time 10k) lands
    // on the new frame at 10k, the frames between keep the record values.
    NewDocument d;
    for (int col = 1; col <= 20; ++col)
        d.cell(Row::f0, col)->set_nValue(2000 + col);
    d.cell(Row::f1, 2)->set_bAnchor(true);
    d.doc.m_dNewLengthMS = 200;
    d.doc.m_nNewUpdateIntervalMS = 5;
    d.doc.m_dNewSampleRate = 22050;
    saveoptionsFile(d.doc);
    Channels& c = *d.doc.getChannel(0);
    EXPECT_EQ(c.m_nUpdateIntervalMS, 5);
    EXPECT_EQ(c.m_nColumnNum, 40);
    EXPECT_DOUBLE_EQ(c.m_dSampleRate, 22050.0);
    ASSERT_EQ(d.doc._dataTableDictionary.count(), 41u);
    EXPECT_EQ(d.doc._arrayUndo.size(), 1u);
    EXPECT_EQ(d.value(Row::f0, 2), 2001);  // key 10
    EXPECT_EQ(d.value(Row::f0, 1), 1000);  // key 5: nothing landed
    EXPECT_EQ(d.value(Row::f0, 40), 2020); // key 200
    EXPECT_EQ(d.cell(Row::f0, 40)->stringValue(), "2020");
    EXPECT_TRUE(d.cell(Row::f1, 4)->_bAnchor());
    EXPECT_STREQ(d.cell(Row::f0, 0)->_strName(), "f0");

    // Fewer frames: 40 frames of 5 ms become 5 frames of 40 ms (trunc(215) / 40 = 5); new
    // frame k takes the old frame at 40k.
    d.doc.m_dNewLengthMS = 215;
    d.doc.m_nNewUpdateIntervalMS = 40;
    saveoptionsFile(d.doc);
    ASSERT_EQ(d.doc._dataTableDictionary.count(), 6u);
    EXPECT_EQ(d.value(Row::f0, 1), 2004);
    EXPECT_EQ(d.value(Row::f0, 5), 2020);
    EXPECT_DOUBLE_EQ(c.m_dLengthMS, 215.0);

    // Interval 0 is taken as 10; a longer utterance keeps the old frames at their times.
    d.doc.m_dNewLengthMS = 300;
    d.doc.m_nNewUpdateIntervalMS = 0;
    saveoptionsFile(d.doc);
    EXPECT_EQ(c.m_nUpdateIntervalMS, 10);
    EXPECT_EQ(d.value(Row::f0, 4), 2004);
    EXPECT_EQ(d.value(Row::f0, 8), 2008);
    EXPECT_EQ(d.value(Row::f0, 5), 1000);
}
