#include "table/FrameEditing.h"

#include "document/DocumentException.h"
#include "document/TableColumnSource.h"
#include "document/TableValueWriter.h"
#include "document/UndoStep.h"
#include "table/TableEditing.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <memory>
#include <new>

namespace
{

// Frames the document holds: trunc(length) / interval, never more than the table data has
// (a length that claims more frames than exist would only add lookups of missing keys). A
// length that is not a number of ms at all counts every frame of the table data.
int existingFrames(MyDocument& doc, int interval)
{
    const double length = doc.getChannel(0)->m_dLengthMS;
    const long long inTable = frameCount(doc);
    if (!std::isfinite(length) || length < 0.0)
        return static_cast<int>(inTable);
    const long long frames =
        static_cast<long long>(std::min(length, static_cast<double>(INT_MAX))) / interval;
    return static_cast<int>(std::min(frames, inTable));
}

// Frames taken out of and put into the table data, counted as FrameImage::Splice counts them
// (frame k is table column k + 1).
using Splice = FrameImage::Splice;

// The table column a column of the old table data becomes, or -1 when it is taken out.
long long movedColumn(const Splice& s, long long column)
{
    if (column <= s.at)
        return column;
    return column <= s.at + s.removed ? -1 : column + s.inserted - s.removed;
}

// The columns not made yet stay so: they are announced again in the new table data, made from
// the old source's frames as the splice moves them.
void announceMovedColumns(const TableColumnSource& old, const Splice& s, long long interval,
                          DataTableDictionary& newData)
{
    auto source = std::make_shared<TableColumnSource>(old);
    source->frames = old.frames.spliced(s, old.recordValue);
    const long long columns = static_cast<long long>(s.frames) - s.removed + s.inserted + 1;
    newData.setPendingColumns(static_cast<std::size_t>(columns), interval, std::move(source));
}

// The table data after the splice. Made columns move with their frames and keep their cells
// (shared, not copied), columns not made yet stay so, missing columns stay missing, and the
// inserted frames are new cells. The old table data stays whole until the new one replaces it.
DataTableDictionary splicedTableData(MyDocument& doc, const Splice& s, long long interval)
{
    const DataTableDictionary& oldData = doc._dataTableDictionary;
    if (oldData.pendingSource() && oldData.pendingInterval() != interval)
        oldData.map(); // announced under other keys: made, and carried as made columns
    DataTableDictionary newData;
    const TableColumnSource* source = oldData.pendingSource();
    if (source)
        announceMovedColumns(*source, s, interval, newData);
    for (long long column = 0; column <= s.frames; ++column) {
        const long long to = movedColumn(s, column);
        if (to < 0)
            continue;
        const DataTableDictionary::Peek peek = oldData.peek(column * interval);
        if (peek.cells)
            newData.setObject(to * interval, *peek.cells);
        else if (peek.pending < 0 && source)
            newData.removeObjectForKey(DataTableDictionary::keyFor(to * interval));
    }
    const FrameCellMaker maker(doc);
    for (long long k = 1; k <= s.inserted; ++k)
        newData.setObject((s.at + k) * interval, maker.column(true));
    return newData;
}

// The table data of a document whose window has not built it yet.
void ensureTableData(MyDocument& doc)
{
    if (doc._dataTableDictionary.empty())
        doc.buildDataTableDictionary();
}

// Puts the rebuilt table data in place and recomputes the frame count and the length.
void installTableData(MyDocument& doc, DataTableDictionary newData, int interval)
{
    doc._dataTableDictionary = std::move(newData);
    Channels& c = *doc.getChannel(0);
    c.m_nColumnNum = static_cast<int>(doc._dataTableDictionary.count()) - 1;
    c.m_dLengthMS = static_cast<double>(interval) * c.m_nColumnNum;
}

void clearAnchorRows(MyDocument& doc, int firstRow, int lastRow)
{
    firstRow = std::max(firstRow, 0);
    lastRow = std::min(lastRow, kParameterCount - 1);
    if (firstRow > lastRow)
        return;
    const std::uint64_t rows = ((std::uint64_t{1} << (lastRow - firstRow + 1)) - 1) << firstRow;
    TableValueWriter table(doc);
    for (long long column = 1; column <= table.frames(); ++column)
        if (table.anchors(column) & rows)
            table.clearAnchors(column, rows);
    table.finish();
}

} // namespace

CellArray newFrameCells(const MyDocument& doc)
{
    // Inserted frames are marked shown whatever the record says; a row's height follows the
    // name column's flag, not these.
    return FrameCellMaker(doc).column(true);
}

namespace
{

// Builds the table data after the splice and puts it in place.
void spliceFrames(MyDocument& doc, const Splice& s, int interval)
{
    DataTableDictionary newData;
    try {
        newData = splicedTableData(doc, s, interval);
    } catch (const std::bad_alloc&) {
        throw DocumentException::memoryError();
    }
    installTableData(doc, std::move(newData), interval);
}

bool insertFrames(MyDocument& doc, int firstSelectedColumn)
{
    const int place = doc._nindexModifyColumn;
    if (place == FramesAfterSelection && firstSelectedColumn < 0)
        return false;

    ensureTableData(doc);
    const int interval = doc.updateInterval();
    const int nOld = existingFrames(doc, interval);
    const int nNew = std::max(doc._nDurationModifyColumn / interval, 0);
    const long long total = static_cast<long long>(nOld) + nNew;
    if (total > MyDocument::kMaxFrames || total * interval > MyDocument::kMaxLengthMS)
        throw DocumentException::tooManyFrames(total, MyDocument::kMaxFrames); // nothing built yet
    Splice s{nOld, nOld, 0, nNew};
    if (place == FramesAtBeginning)
        s.at = 0;
    else if (place == FramesAfterSelection)
        s.at = std::min(std::max(firstSelectedColumn, 1), nOld); // the name column stands for frame 1
    spliceFrames(doc, s, interval);
    return true;
}

bool deleteFrames(MyDocument& doc, int firstSelectedColumn, int lastSelectedColumn)
{
    if (firstSelectedColumn < 0 || lastSelectedColumn < 0)
        return false;
    const int first = std::max(firstSelectedColumn, 1);
    const int last = std::max(lastSelectedColumn, first - 1);

    ensureTableData(doc);
    const int interval = doc.updateInterval();
    const int nOld = existingFrames(doc, interval);
    const int at = std::min(first - 1, nOld);
    spliceFrames(doc, {nOld, at, std::max(std::min(last, nOld) - at, 0), 0}, interval);
    return true;
}

} // namespace

bool modifyColumns(MyDocument& doc, int firstSelectedColumn)
{
    return asOneUndoStep(doc, [&] { return insertFrames(doc, firstSelectedColumn); });
}

bool removeColumns(MyDocument& doc, int firstSelectedColumn, int lastSelectedColumn)
{
    return asOneUndoStep(doc, [&] { return deleteFrames(doc, firstSelectedColumn, lastSelectedColumn); });
}

void removeAnchors(MyDocument& doc, int firstRow, int lastRow)
{
    if (firstRow < 0 || lastRow < firstRow)
        return;
    clearAnchorRows(doc, firstRow, lastRow);
}

void removeAllAnchors(MyDocument& doc)
{
    clearAnchorRows(doc, 0, INT_MAX);
}
