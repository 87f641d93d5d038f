// How table cells are stored: the shared row definitions, the displayed text, undo snapshots
// that give back every value, flag and anchor, and the memory a long document costs.
#include "support/DocumentTestSupport.h"
#include "support/TestDocuments.h"
#include "table/FrameEditing.h"
#include "table/TableEditing.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
// Documents of 10 ms frames on the synthesis channel alone.
std::unique_ptr<MyDocument> documentOf(int frames)
{
    return makeTestDocument(frames, 10, 1);
}
} // namespace

TEST(CellStorage, ChangingOneCellsLimitsOrColoursLeavesTheRestOfItsRow)
{
    auto doc = documentOf(5);
    const CellRef a = frameCell(*doc, 2, Row::f1);
    const CellRef b = frameCell(*doc, 3, Row::f1);
    ASSERT_TRUE(a->sharesDefinitionWith(*b));
    const int max = b->_nMaxValue();

    a->set_nMaxValue(max - 1);
    a->set_nsbgColor(Color::rgb(0.25, 0.5, 0.75));
    a->set_mColor(RGBColor16{1, 2, 3});
    EXPECT_EQ(a->_nsbgColor(), Color::rgb(0.25, 0.5, 0.75));
    EXPECT_EQ(a->_mColor(), (RGBColor16{1, 2, 3}));
    EXPECT_STREQ(a->_strName(), "f1");
    EXPECT_EQ(b->_nMaxValue(), max);
    EXPECT_EQ(b->_nsbgColor(), doc->groupBackgroundColor(Row::f1));

    // copy() takes everything but the text; the value and flags stay the cell's own.
    ImageAndTextCell c;
    c.setInttoStringValue(7);
    a->set_nValue(444);
    a->set_bAnchor(true);
    c.copy(*a);
    EXPECT_EQ(c._nMaxValue(), max - 1);
    EXPECT_EQ(c._nValue(), 444);
    EXPECT_TRUE(c._bAnchor());
    EXPECT_EQ(c.stringValue(), "7");
    a->set_nValue(1);
    EXPECT_EQ(c._nValue(), 444);
}

TEST(CellStorage, DisplayedTextIsKeptAsWrittenAndReadAsTheTableReadsIt)
{
    ImageAndTextCell cell;
    EXPECT_EQ(cell.stringValue(), "");
    EXPECT_EQ(cell.intValue(), 0);
    cell.setInttoStringValue(-2147483647 - 1);
    EXPECT_EQ(cell.stringValue(), "-2147483648");
    EXPECT_EQ(cell.intValue(), -2147483647 - 1);

    // Texts that are not a plain decimal stay as typed; their number is read from the front.
    const struct {
        const char* text;
        int value;
    } typed[] = {{" 12abc", 12}, {"  -15xyz", -15}, {"007", 7},
                 {"+5", 5},      {"x", 0},          {"99999999999", 2147483647}};
    for (const auto& t : typed) {
        cell.setStringValue(t.text);
        EXPECT_EQ(cell.stringValue(), t.text);
        EXPECT_EQ(cell.intValue(), t.value) << t.text;
        const ImageAndTextCell copied(cell);
        EXPECT_EQ(copied.stringValue(), t.text);
    }
    ImageAndTextCell assigned;
    assigned = cell;
    cell.setInttoStringValue(3);
    EXPECT_EQ(assigned.stringValue(), "99999999999");
    EXPECT_EQ(cell.stringValue(), "3");
}

TEST(CellStorage, DefinitionsNoLongerUsedAreGivenBack)
{
    const std::size_t before = CellDefinitions::liveCount();
    {
        auto doc = documentOf(50);
        // Distinct colours for every row of every frame: 2400 definitions while they live.
        for (int k = 1; k <= 50; ++k)
            for (int row = 0; row < kParameterCount; ++row)
                frameCell(*doc, k, row)->set_nsbgColor(Color::rgb(k / 64.0, row / 64.0, 0.5));
        EXPECT_GE(CellDefinitions::liveCount(), before + 50 * kParameterCount);
        saveParameters(*doc);
        // The parameter settings bring every frame cell of a row back to one definition.
        for (int k = 2; k <= 50; ++k)
            ASSERT_TRUE(frameCell(*doc, k, Row::f2)->sharesDefinitionWith(*frameCell(*doc, 1, Row::f2)));
    }
    EXPECT_EQ(CellDefinitions::liveCount(), before);
}

TEST(CellStorage, ColumnsAreMadeWhenFirstLookedUpAndAnswerAsIfMadeAtOnce)
{
    constexpr int frames = 200;
    MyDocument doc;
    readTestFrames(doc, frames, [](Channels& c) {
        for (int k = 0; k < frames; ++k)
            for (int row = 0; row < kParameterCount; ++row)
                c.m_snppDataImage_Col_Row[k][row] = static_cast<std::int16_t>(k * 50 + row);
        c.m_pAnchorPosition = {Row::f1, 0, Row::gain, 199, Row::f0, 77};
    });
    Channels& c = *doc.getChannel(0);
    DataTableDictionary& data = doc._dataTableDictionary;
    EXPECT_EQ(data.count(), frames + 1u);
    EXPECT_EQ(data.pendingCount(), frames + 1u);

    // Changing the grid afterwards does not reach the columns still to be made.
    c.m_snppDataImage_Col_Row[150][Row::f2] = -1;
    // Looked up from the end backwards, by number and by text: the grid's values and anchors.
    for (int k = frames; k >= 1; --k) {
        const CellArray* byNumber = data.objectForKey(k * 10LL);
        ASSERT_TRUE(byNumber) << k;
        ASSERT_EQ(byNumber, data.objectForKey(std::to_string(k * 10))) << k;
        for (int row = 0; row < kParameterCount; ++row) {
            const ImageAndTextCell& cell = *(*byNumber)[row];
            const bool anchor =
                (row == Row::f1 && k == 1) || (row == Row::gain && k == 200) || (row == Row::f0 && k == 78);
            ASSERT_EQ(cell._nValue(), (k - 1) * 50 + row) << k << "/" << row;
            ASSERT_EQ(cell.intValue(), cell._nValue());
            ASSERT_EQ(cell._bAnchor(), anchor) << k << "/" << row;
            ASSERT_EQ(cell._bSelected(), c.m_Parameters[row].bSelected != 0);
            ASSERT_STREQ(cell._strName(), c.m_Parameters[row].strName);
        }
    }
    EXPECT_EQ(data.pendingCount(), 1u); // the name column
    // A looked-up cell is the stored one: a change through it is seen by the next lookup.
    data.cellAt(30, Row::f3)->set_nValue(4321);
    EXPECT_EQ(data.cellAt(30, Row::f3)->_nValue(), 4321);

    // Keys that are not the exact decimal of a column name none.
    for (const char* key : {"010", "+10", "15", "2010", "-10", ""})
        EXPECT_EQ(data.objectForKey(std::string(key)), nullptr) << key;
    EXPECT_EQ(data.objectForKey(2010LL), nullptr);
}

TEST(CellStorage, ColumnsReplacedRemovedOrCopiedBeforeTheyAreMadeStayThatWay)
{
    auto doc = documentOf(10);
    DataTableDictionary& data = doc->_dataTableDictionary;
    CellArray own = ImageAndTextCell::newColumn(kParameterCount);
    own[Row::f1]->set_nValue(999);
    data.setObject(30LL, own);
    data.removeObjectForKey("50");
    EXPECT_EQ(data.count(), 10u);
    EXPECT_EQ(data.cellAt(30, Row::f1), own[Row::f1]);
    EXPECT_EQ(data.objectForKey(50LL), nullptr);

    // A copy keeps its own index of the columns: it answers after the original is gone.
    auto copy = std::make_unique<DataTableDictionary>(data);
    doc.reset();
    EXPECT_EQ(copy->cellAt(30, Row::f1)->_nValue(), 999);
    EXPECT_EQ(copy->objectForKey(50LL), nullptr);
    EXPECT_EQ(copy->map().size(), 10u);
    EXPECT_EQ(copy->pendingCount(), 0u);
    copy->removeAllObjects();
    EXPECT_TRUE(copy->empty());
    EXPECT_EQ(copy->objectForKey(100LL), nullptr);
}
