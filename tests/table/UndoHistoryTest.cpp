// Undo and redo keep their snapshots as shared blocks of frames. These tests hold them to the
// plain behaviour: two lists of whole-document snapshot texts, ten deep, one shared position.
// A reference history kept here with snapshot texts runs beside the document through random
// sequences of typed edits, interpolations, whole-row changes, unrecorded changes, added and
// removed frames,
// undos and redos, and after every step the document must be exactly the one the reference
// restores. And on a document of an hour, an edit must cost what it changes.
#include "HourDocument.h"
#include "document/UndoStep.h"
#include "support/TestDocuments.h"
#include "table/FrameEditing.h"
#include "table/TableClipboard.h"
#include "table/TableEditing.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace
{

// The old undo and redo: whole snapshot texts, restored by reading them and building the table
// data from the grid read.
class TextHistory
{
public:
    void record(const std::string& before, const std::string& after)
    {
        save(m_undo, before);
        save(m_redo, after);
    }
    void undo(MyDocument& doc)
    {
        if (m_nIndex <= 0)
            return;
        --m_nIndex;
        if (m_undo.empty())
            return;
        restore(doc, m_undo[std::min<std::size_t>(static_cast<std::size_t>(m_nIndex), m_undo.size() - 1)]);
    }
    void redo(MyDocument& doc)
    {
        if (m_nIndex == -1 || m_nIndex >= static_cast<int>(m_redo.size()))
            return;
        const std::size_t i = std::min<std::size_t>(static_cast<std::size_t>(m_nIndex), m_redo.size() - 1);
        ++m_nIndex;
        restore(doc, m_redo[i]);
    }
    int index() const { return m_nIndex; }
    std::size_t undoCount() const { return m_undo.size(); }
    std::size_t redoCount() const { return m_redo.size(); }

private:
    void save(std::vector<std::string>& list, const std::string& text)
    {
        if (list.size() >= 10)
            list.erase(list.begin());
        list.push_back(text);
        m_nIndex = static_cast<int>(list.size());
    }
    static void restore(MyDocument& doc, const std::string& text)
    {
        ASSERT_TRUE(doc.Read_STK_FileTypeDoUndo(text));
        const std::uint8_t readFile = doc.m_bReadFile;
        doc.m_bReadFile = 1;
        doc.buildDataTableDictionary();
        doc.m_bReadFile = readFile;
    }

    std::vector<std::string> m_undo, m_redo;
    int m_nIndex = -1;
};

// Everything of a document an undo or redo may touch, as text, for comparing two documents.
std::string describe(MyDocument& doc)
{
    std::ostringstream out;
    const Channels& c = *doc.getChannel(0);
    out.precision(17);
    out << "frames " << c.m_nColumnNum << " length " << c.m_dLengthMS << " rate " << c.m_dSampleRate
        << " interval " << c.m_nUpdateIntervalMS << " cascade " << int(c.m_bCascade_Parallel) << " rows "
        << c.m_nParameterNumber << " columns " << doc._dataTableDictionary.count() << "\nanchors";
    for (int a : c.m_pAnchorPosition)
        out << ' ' << a;
    out << "\nshown";
    for (int row = 0; row < kParameterCount; ++row)
        out << ' ' << int(c.m_Parameters[row].bSelected);
    out << "\ncolours";
    for (int i = 0; i < 10; ++i)
        out << ' ' << doc.m_bgColor[i].red << ',' << doc.m_bgColor[i].green << ',' << doc.m_bgColor[i].blue;
    const DataGrid& grid = c.m_snppDataImage_Col_Row;
    out << "\ngrid " << grid.size() << " stored " << grid.storedColumns() << '\n';
    for (const GridColumn& column : grid)
        for (int row = 0; row < kParameterCount; ++row)
            out << column[row] << ' ';
    // The snapshot text holds every value and anchor of the table data; the file text the
    // frame cells' own shown flags.
    out << '\n' << doc.Save_STK_FileType(true) << '\n' << doc.parameterDocumentText(false);
    return out.str();
}

// A document edited through the real operations with its own undo and redo, and a twin edited
// the same way whose undo and redo are the reference's.
struct Twins {
    MyDocument doc, twin;
    TextHistory reference;
    std::mt19937 random;

    explicit Twins(unsigned seed, int frames) : random(seed)
    {
        setTestFrames(doc, frames, 10, 1);
        setTestFrames(twin, frames, 10, 1);
    }
    int pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
    int frames() const { return doc.getChannel(0)->m_nColumnNum; }

    // Runs an operation on both documents; `change` answers whether it recorded an undo step,
    // and the reference then records the texts before and after it.
    // The twin's columns are all made first, so that its frame edits move made columns while
    // the document's move columns not made yet: the two ways must give the same document.
    template <typename Change> void both(Change change)
    {
        twin._dataTableDictionary.map();
        const std::string before = twin.Save_STK_FileType(true);
        const bool recorded = change(doc);
        change(twin);
        if (recorded)
            reference.record(before, twin.Save_STK_FileType(true));
    }

    void typedEdit()
    {
        const int row = pick(0, kParameterCount - 1), column = pick(1, std::max(frames(), 1));
        const int value = pick(-50, 6000);
        const bool anchor = pick(0, 3) == 0;
        both([&](MyDocument& d) {
            d.getChannel(0)->m_bDoAnchor = anchor;
            return typeValue(d, row, column, value) != TypedEntryOutcome::Unchanged;
        });
    }
    // A whole track at once, as Enter All Data and a long stroke change it.
    void wholeRow()
    {
        const int row = pick(0, kParameterCount - 1), base = pick(0, 4000), slope = pick(-3, 3);
        both([&](MyDocument& d) {
            asOneUndoStep(d, [&] {
                CellArray cells = rowCellsArray(d, row);
                for (std::size_t k = 0; k < cells.size(); ++k)
                    if (cells[k]) {
                        const int v = base + slope * static_cast<int>(k);
                        cells[k]->set_nValue(v);
                        cells[k]->setInttoStringValue(v);
                    }
            });
            return true;
        });
    }
    // Changes no undo step records: anchors cleared, a row hidden or shown (by its name cell or
    // by its parameter setting), a cell set.
    void unrecorded()
    {
        const int kind = pick(0, 3), row = pick(0, kParameterCount - 1),
                  column = pick(1, std::max(frames(), 1));
        const int value = pick(-40000, 40000); // beyond 16 bits now and then
        both([&](MyDocument& d) {
            if (kind == 0)
                removeAnchors(d, row, row + 3);
            else if (kind == 3)
                d.getChannel(0)->m_Parameters[row].bSelected ^= 1;
            else if (CellRef name = d._dataTableDictionary.cellAt(0, row); kind == 1 && name)
                name->set_bSelected(!name->_bSelected());
            else if (CellRef cell = d._dataTableDictionary.cellAt(10LL * column, row)) {
                cell->set_nValue(value);
                cell->setInttoStringValue(value);
            }
            return false;
        });
    }
    void addFrames()
    {
        const int place = pick(0, 2), ms = pick(1, 700) * 10, after = pick(1, std::max(frames(), 1));
        both([&](MyDocument& d) {
            d._nindexModifyColumn = place;
            d._nDurationModifyColumn = ms;
            modifyColumns(d, after);
            return true;
        });
    }
    // Two anchors typed into one row, then Interpolate All (between those and any others).
    void interpolate()
    {
        const int row = pick(0, kParameterCount - 1);
        for (int anchor = 0; anchor < 2; ++anchor) {
            const int column = pick(1, std::max(frames(), 1)), value = pick(0, 6000);
            both([&](MyDocument& d) {
                d.getChannel(0)->m_bDoAnchor = 1;
                return typeValue(d, row, column, value) != TypedEntryOutcome::Unchanged;
            });
        }
        both([&](MyDocument& d) {
            interpolateAll(d);
            return true;
        });
    }
    // Now and then with no frame selected: a step that changes nothing.
    void removeFrames()
    {
        const bool none = pick(0, 5) == 0;
        const int first = none ? -1 : pick(1, std::max(frames(), 1));
        const int last = none ? -1 : std::min(first + pick(0, 400), frames());
        both([&](MyDocument& d) {
            removeColumns(d, first, last);
            return true;
        });
    }
};

} // namespace

TEST(UndoHistory, RandomEditsUndosAndRedosRestoreWhatWholeSnapshotsRestore)
{
    for (unsigned seed = 1; seed <= 6; ++seed) {
        // Over 256 frames: several blocks, some shared and some not.
        Twins t(seed, 300 + 150 * static_cast<int>(seed));
        for (int step = 0; step < 90; ++step) {
            const int action = t.pick(0, 99);
            if (action < 28)
                t.typedEdit();
            else if (action < 32)
                t.interpolate();
            else if (action < 40)
                t.wholeRow();
            else if (action < 48)
                t.unrecorded();
            else if (action < 53)
                t.addFrames();
            else if (action < 58)
                t.removeFrames();
            else if (action < 82) {
                t.doc.doUndo();
                t.reference.undo(t.twin);
            } else {
                t.doc.doRedo();
                t.reference.redo(t.twin);
            }
            ASSERT_EQ(t.doc._nUndoRedoIndex, t.reference.index()) << "seed " << seed << " step " << step;
            ASSERT_EQ(t.doc._arrayUndo.size(), t.reference.undoCount());
            ASSERT_EQ(t.doc._arrayRedo.size(), t.reference.redoCount());
            ASSERT_EQ(t.doc.canUndo(), t.reference.index() > 0);
            const std::string got = describe(t.doc), expected = describe(t.twin);
            ASSERT_TRUE(got == expected)
                << "seed " << seed << " step " << step << " action " << action << "\n"
                << got.substr(0, 400) << "\nexpected\n"
                << expected.substr(0, 400);
        }
        EXPECT_EQ(t.doc._arrayUndo.size(), 10u) << "the lists stay ten deep";
    }
}

TEST(UndoHistory, AnEditOnAnHourCostsTheBlocksItChangesAndMakesNoColumns)
{
    MyDocument doc;
    openHour(doc);
    Channels& c = *doc.getChannel(0);
    const DataTableDictionary& data = doc._dataTableDictionary;
    const std::size_t pending = data.pendingCount();

    ASSERT_EQ(typeValue(doc, Row::f1, 200000, 1234), TypedEntryOutcome::Stored);
    ASSERT_EQ(typeValue(doc, Row::f2, 3, 1700), TypedEntryOutcome::Stored);
    EXPECT_EQ(data.pendingCount(), pending - 1) << "only the column typed into was made";
    // Each snapshot holds one block of its own beside the ones it shares: the block of the
    // frame changed.
    const std::size_t block = sizeof(FrameImage::Block);
    EXPECT_EQ(doc._arrayRedo[0].frames().bytesNotIn(doc._arrayUndo[0].frames()), block);
    EXPECT_EQ(doc._arrayUndo[1].frames().bytesNotIn(doc._arrayRedo[0].frames()), 0u);
    EXPECT_EQ(doc._arrayRedo[1].frames().bytesNotIn(doc._arrayUndo[1].frames()), block);
    // (Writing the document reads the columns not made without making them: TableEditingTest.cpp.)

    doc.doUndo();
    doc.doUndo();
    EXPECT_EQ(data.cellAt(2000000, Row::f1)->_nValue(), 300 + 199999 % 400);
    EXPECT_EQ(data.cellAt(30, Row::f2)->_nValue(), 1500);
    EXPECT_EQ(c.m_snppDataImage_Col_Row[199999][Row::f1], 300 + 199999 % 400);
    doc.doRedo();
    doc.doRedo();
    EXPECT_EQ(data.cellAt(2000000, Row::f1)->_nValue(), 1234);
    EXPECT_EQ(data.cellAt(30, Row::f2)->_nValue(), 1700);
    EXPECT_GT(data.pendingCount(), pending - 10) << "a restore makes no columns either";
}

TEST(UndoHistory, RunsOfEqualFramesShareOneBlock)
{
    // 2000 frames are eight blocks: the undo image of an untouched new document holds one.
    MyDocument doc;
    setTestFrames(doc, 2000, 10, 1);
    ASSERT_EQ(typeValue(doc, Row::f0, 700, 1234), TypedEntryOutcome::Stored);
    EXPECT_EQ(doc._arrayUndo[0].frames().bytesNotIn(FrameImage{}), sizeof(FrameImage::Block));
}

TEST(UndoHistory, FramesAddedAndRemovedOnAnHourMoveTheFramesAndMakeNoColumns)
{
    MyDocument doc;
    openHour(doc);
    const DataTableDictionary& data = doc._dataTableDictionary;
    const std::size_t pending = data.pendingCount();
    auto f1 = [&](long long column) { return data.cellAt(column * 10, Row::f1)->_nValue(); };
    const int record = doc.getChannel(0)->m_Parameters[Row::f1].nValue;

    // Frames 20-29 (shown, made) and 100001-100266 go; then 256 frames (whole blocks) come after
    // frame 200000.
    ASSERT_TRUE(removeColumns(doc, 20, 29));
    ASSERT_TRUE(removeColumns(doc, 100001, 100266));
    doc._nindexModifyColumn = FramesAfterSelection;
    doc._nDurationModifyColumn = 2560;
    ASSERT_TRUE(modifyColumns(doc, 200000));
    EXPECT_EQ(doc.getChannel(0)->m_nColumnNum, MyDocument::kMaxFrames - 20);
    EXPECT_GT(data.pendingCount(), pending - 300) << "the frames moved without being made";
    // (Frame by frame, moved columns not made equal moved made ones: the random history.) The
    // blocks after 256 inserted frames are the old ones, shared whole.
    EXPECT_EQ(f1(20), hourF1(30)) << "a made column moved down";
    EXPECT_EQ(f1(100001), hourF1(100277));
    for (long long k : {200257, 200513, 300000, 359980})
        EXPECT_EQ(f1(k), hourF1(static_cast<int>(k) + 20)) << k;
    EXPECT_EQ(data.cellAt(3599810, Row::f1), nullptr);

    doc.doUndo();
    doc.doUndo();
    doc.doUndo();
    EXPECT_EQ(f1(20), hourF1(20));
    EXPECT_EQ(f1(100001), hourF1(100001));
    EXPECT_EQ(f1(360000), hourF1(360000));
    doc.doRedo();
    doc.doRedo();
    doc.doRedo();
    EXPECT_EQ(f1(200256), record);
    EXPECT_EQ(f1(200257), hourF1(200277));
    EXPECT_GT(data.pendingCount(), pending - 300);
}

TEST(UndoHistory, InterpolatingCopyingPastingAndClearingAnchorsOnAnHourMakeNoColumns)
{
    MyDocument doc;
    openHour(doc);
    const DataTableDictionary& data = doc._dataTableDictionary;
    for (long long column : {2LL, 359999LL})
        data.cellAt(column * 10, Row::f1)->set_bAnchor(true);
    const std::size_t pending = data.pendingCount();
    auto f1 = [&](long long column) { return data.cellAt(column * 10, Row::f1)->_nValue(); };
    const int first = hourF1(2), last = hourF1(359999);
    auto line = [&](long long column) {
        return static_cast<int>(
            std::trunc(first + (column - 2) * (static_cast<double>(last - first) / 359997)));
    };

    interpolateAll(doc);
    EXPECT_EQ(data.pendingCount(), pending);
    for (long long column : {3LL, 30LL, 180000LL, 359998LL})
        EXPECT_EQ(f1(column), line(column)) << column;
    EXPECT_EQ(f1(360000), hourF1(360000)) << "past the last anchor";
    EXPECT_EQ(data.cellAt(1800010, Row::f2)->_nValue(), doc.getChannel(0)->m_Parameters[Row::f2].nValue);
    doc.doUndo();
    EXPECT_EQ(f1(180001), hourF1(180001));
    doc.doRedo();
    EXPECT_EQ(f1(180001), line(180001));

    const std::string copied = copyCellsAsText(doc, Row::f1, Row::f1, 180000, 180002);
    EXPECT_EQ(copied, "f1\n" + std::to_string(line(180000)) + "\n" + std::to_string(line(180001)) + "\n" +
                          std::to_string(line(180002)) + "\n");
    ASSERT_TRUE(pasteCellsFromText(doc, Row::f1, 300000, copied).pasted);
    removeAllAnchors(doc);
    EXPECT_GT(data.pendingCount(), pending - 10) << "copy, paste and anchors made only what they touched";
    EXPECT_EQ(f1(300002), line(180002));
    EXPECT_FALSE(data.cellAt(2500000, Row::f2)->_bAnchor()) << "an anchor of a column not made";
    EXPECT_FALSE(data.cellAt(20, Row::f1)->_bAnchor());

    // Values beyond 16 bits in frames not made yet, computed in double precision: two thirds of
    // the way from 10^7 to 10^7 + 1 is 10^7 (in single precision 10^7 + 1). The second pass
    // replaces the wide value the first wrote into a frame (100005) it left unmade.
    for (int pass = 1; pass <= 2; ++pass) {
        for (long long column : {100000LL, 100006LL}) {
            data.cellAt(column * 10, Row::f3)->set_bAnchor(true);
            data.cellAt(column * 10, Row::f3)->set_nValue(pass * 10000000 + (column == 100006LL ? 2 : 0));
        }
        interpolateRows(doc, Row::f3, Row::f3);
        EXPECT_EQ(data.cellAt(pass == 1 ? 1000020 : 1000050, Row::f3)->_nValue(), pass * 10000000 + pass - 1);
    }
    // A frame removed before them moves the wide values not made yet into new blocks.
    ASSERT_TRUE(removeColumns(doc, 50000, 50000));
    EXPECT_EQ(data.cellAt(1000030, Row::f3)->_nValue(), 20000001) << "frame 100004 moved down";
    // Narrow values replace the wide ones between the anchors (now at 99999 and 100005).
    for (long long column : {99999LL, 100005LL})
        data.cellAt(column * 10, Row::f3)->set_nValue(column == 99999LL ? 100 : 106);
    interpolateRows(doc, Row::f3, Row::f3);
    EXPECT_EQ(data.cellAt(1000020, Row::f3)->_nValue(), 103);
}
