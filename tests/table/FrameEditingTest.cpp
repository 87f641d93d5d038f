// Inserting and removing frames on a document's table data. (Clearing anchors: the selection tests
// and the hour of UndoHistoryTest.cpp.)
#include "table/FrameEditing.h"

#include "document/DocumentException.h"
#include "support/DocumentTestSupport.h"
#include "support/TestDocuments.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace
{

// A document of `frames` frames of 10 ms whose f0 cells carry 1000 + frame number, so that
// every frame can be recognised wherever it ends up.
struct FiveFrames : ::testing::Test {
    MyDocument doc;
    std::vector<CellRef> f0Cells; // f0 cell of old frame k at index k - 1

    void SetUp() override { makeFrames(5); }

    void makeFrames(int frames)
    {
        setTestFrames(doc, frames, 10, 1, false);
        f0Cells.clear();
        for (int k = 1; k <= frames; ++k) {
            setValue(doc, k, Row::f0, 1000 + k);
            f0Cells.push_back(frameCell(doc, k, Row::f0));
        }
    }

    // The old frame number at table frame k, 0 for a new frame, -1 for a missing column.
    int originAt(int k) const
    {
        CellRef cell = doc._dataTableDictionary.cellAt(static_cast<long long>(k) * 10, Row::f0);
        if (!cell)
            return -1;
        for (std::size_t i = 0; i < f0Cells.size(); ++i)
            if (f0Cells[i] == cell)
                return static_cast<int>(i) + 1;
        return 0;
    }

    std::vector<int> layout() const
    {
        std::vector<int> origins;
        const int frames = static_cast<int>(doc._dataTableDictionary.count()) - 1;
        for (int k = 1; k <= frames; ++k)
            origins.push_back(originAt(k));
        return origins;
    }

    int frameCount() const { return doc.getChannel(0)->m_nColumnNum; }
    double lengthMS() const { return doc.getChannel(0)->m_dLengthMS; }
    std::size_t undoSteps() const { return doc._arrayUndo.size(); }

    void addFrames(int place, int durationMS, int selectedColumn = -1)
    {
        doc._nindexModifyColumn = place;
        doc._nDurationModifyColumn = durationMS;
        modifyColumns(doc, selectedColumn);
    }
};

using Origins = std::vector<int>;

} // namespace

TEST_F(FiveFrames, AddingAtTheEndAddsWholeIntervalsWithRecordValues)
{
    doc.getChannel(0)->m_Parameters[Row::av].nValue = 47;
    addFrames(FramesAtEnd, 35);
    EXPECT_EQ(layout(), (Origins{1, 2, 3, 4, 5, 0, 0, 0}));

    // New frames: one cell per parameter row, the record's current value as value and text,
    // limits and default of the record, no anchor; every frame has cells of its own.
    const CellArray& added = *doc._dataTableDictionary.objectForKey("60");
    ASSERT_EQ(added.size(), static_cast<std::size_t>(kParameterCount));
    EXPECT_EQ(added[Row::av]->_nValue(), 47);
    EXPECT_EQ(added[Row::av]->stringValue(), "47");
    EXPECT_EQ(added[Row::f2]->_nMaxValue(), 3000);
    EXPECT_STREQ(added[Row::gain]->_strName(), "gain");
    EXPECT_FALSE(added[Row::av]->_bAnchor());
    EXPECT_NE(added[Row::av], doc._dataTableDictionary.cellAt(70, Row::av));
    // The name column is carried over unchanged.
    EXPECT_EQ(doc._dataTableDictionary.objectForKey("0")->size(), static_cast<std::size_t>(kParameterCount));
}

TEST_F(FiveFrames, AddingAtTheBeginningOrAfterTheSelectedFrameOrNothingIsOneUndoStep)
{
    struct Case {
        int place, durationMS, selected;
        bool done;
        Origins expected;
    };
    const Case cases[] = {
        {FramesAtBeginning, 20, -1, true, {0, 0, 1, 2, 3, 4, 5}},
        {FramesAfterSelection, 20, 2, true, {1, 2, 0, 0, 3, 4, 5}},
        {FramesAfterSelection, 10, 0, true, {1, 0, 2, 3, 4, 5}}, // the name column stands for frame 1
        {FramesAfterSelection, 10, 5, true, {1, 2, 3, 4, 5, 0}}, // after the last frame
        {FramesAtEnd, 5, -1, true, {1, 2, 3, 4, 5}},             // less than a frame
        {FramesAfterSelection, 100, -1, false, {1, 2, 3, 4, 5}}, // no selection
        {FramesAtBeginning, -40, -1, true, {1, 2, 3, 4, 5}},
    };
    for (const Case& c : cases) {
        makeFrames(5);
        const std::size_t steps = undoSteps();
        doc._nindexModifyColumn = c.place;
        doc._nDurationModifyColumn = c.durationMS;
        EXPECT_EQ(modifyColumns(doc, c.selected), c.done) << c.place << " after " << c.selected;
        EXPECT_EQ(layout(), c.expected) << c.place << " after " << c.selected;
        EXPECT_EQ(frameCount(), static_cast<int>(c.expected.size()));
        EXPECT_DOUBLE_EQ(lengthMS(), 10.0 * c.expected.size());
        EXPECT_EQ(undoSteps(), steps + 1);
    }

    // More than an hour of frames is refused before anything is built; removing without a
    // selection removes nothing.
    doc._nindexModifyColumn = FramesAtEnd;
    doc._nDurationModifyColumn = 3600000;
    EXPECT_THROW(modifyColumns(doc, -1), DocumentException);
    EXPECT_EQ(layout(), (Origins{1, 2, 3, 4, 5}));
    EXPECT_FALSE(removeColumns(doc, -1, -1));
    EXPECT_EQ(layout(), (Origins{1, 2, 3, 4, 5}));
}

TEST_F(FiveFrames, AddingUsesTheRepairedIntervalAndTheLengthsFrameCount)
{
    // An interval below 1 is read as 10 and written back.
    doc.getChannel(0)->m_nUpdateIntervalMS = 0;
    addFrames(FramesAtEnd, 20);
    EXPECT_EQ(doc.getChannel(0)->m_nUpdateIntervalMS, 10);
    EXPECT_EQ(layout(), (Origins{1, 2, 3, 4, 5, 0, 0}));

    // The old frames are counted from the length: 45 ms at 10 ms is 4 frames, so old frame
    // 5 is dropped when the table data is rebuilt.
    makeFrames(5);
    doc.getChannel(0)->m_dLengthMS = 45.0;
    addFrames(FramesAtEnd, 10);
    EXPECT_EQ(layout(), (Origins{1, 2, 3, 4, 0}));

    // A length that claims more frames than the table holds adds no holes.
    makeFrames(5);
    doc.getChannel(0)->m_dLengthMS = 1e12;
    addFrames(FramesAtEnd, 10);
    EXPECT_EQ(layout(), (Origins{1, 2, 3, 4, 5, 0}));
    // A length that is no number keeps every frame of the table data.
    doc.getChannel(0)->m_dLengthMS = std::nan("");
    addFrames(FramesAtBeginning, 10);
    EXPECT_EQ(layout(), (Origins{0, 1, 2, 3, 4, 5, 0}));
    EXPECT_DOUBLE_EQ(lengthMS(), 70.0);
}

// (The undo step of each removal, and what its undo restores: UndoHistoryTest.cpp.)
TEST_F(FiveFrames, RemovingTakesTheWholeSpanOfTheSelection)
{
    struct Case {
        int first, last;
        Origins expected;
    };
    const Case cases[] = {
        {2, 4, {1, 5}},    // frames 2 and 4 selected: 2, 3 and 4 go
        {0, 2, {3, 4, 5}}, // the name column counts as frame 1
        {1, 5, {}},        // everything
        {4, 9, {1, 2, 3}}, // past the last frame: up to the end and no further
    };
    for (const Case& c : cases) {
        makeFrames(5);
        EXPECT_TRUE(removeColumns(doc, c.first, c.last));
        EXPECT_EQ(layout(), c.expected) << c.first << ".." << c.last;
        EXPECT_EQ(frameCount(), static_cast<int>(c.expected.size()));
        EXPECT_DOUBLE_EQ(lengthMS(), 10.0 * c.expected.size());
        EXPECT_NE(doc._dataTableDictionary.objectForKey("0"), nullptr); // the name column stays
    }
}
