#include "table/FrameEditing.h"

#include "document/DocumentException.h"
#include "document/UndoStep.h"
#include "table/TableEditing.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <new>

namespace
{

// Frames the document holds: trunc(length) / interval, never more than the table data has
// (a length that claims more frames than exist would only add lookups of missing keys). A
// length that is not a number of ms at all counts every frame of the table data.
int existingFrames(MyDocument& doc, int interval)
{
    const double length = doc.getChannel(0)->m_dLengthMS;
    const long long inTable = doc._dataTableDictionary.empty() ? 0 : doc._dataTableDictionary.count() - 1;
    if (!std::isfinite(length) || length < 0.0)
        return static_cast<int>(inTable);
    const long long frames =
        static_cast<long long>(std::min(length, static_cast<double>(INT_MAX))) / interval;
    return static_cast<int>(std::min(frames, inTable));
}

// Puts old frame `from` (if present) into the new table data as frame `to`. The cells are
// shared, not copied; the old table data stays whole until the new one replaces it.
void carryFrame(const DataTableDictionary& oldData, DataTableDictionary& newData, int from, int to,
                int interval)
{
    const CellArray* cells = oldData.objectForKey(static_cast<long long>(from) * interval);
    if (cells)
        newData.setObject(static_cast<long long>(to) * interval, *cells);
}

void addNewFrames(const MyDocument& doc, DataTableDictionary& newData, int firstFrame, int count,
                  int interval)
{
    const FrameCellMaker maker(doc);
    for (int k = 0; k < count; ++k)
        newData.setObject(static_cast<long long>(firstFrame + k) * interval, maker.column(true));
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
    for (CellArray* column : frameColumns(doc)) {
        if (!column)
            continue;
        const int last = std::min(lastRow, static_cast<int>(column->size()) - 1);
        for (int row = std::max(firstRow, 0); row <= last; ++row)
            (*column)[row]->set_bAnchor(false);
    }
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
    const DataTableDictionary& oldData = doc._dataTableDictionary;
    DataTableDictionary newData;
    try {
        carryFrame(oldData, newData, 0, 0, interval);
        if (place == FramesAtBeginning) {
            addNewFrames(doc, newData, 1, nNew, interval);
            for (int c = 1; c <= nOld; ++c)
                carryFrame(oldData, newData, c, nNew + c, interval);
        } else if (place == FramesAfterSelection) {
            // The name column stands for frame 1: "after" it means after the first frame.
            const int p = std::min(std::max(firstSelectedColumn, 1), nOld);
            for (int c = 1; c <= p; ++c)
                carryFrame(oldData, newData, c, c, interval);
            addNewFrames(doc, newData, p + 1, nNew, interval);
            for (int c = p + 1; c <= nOld; ++c)
                carryFrame(oldData, newData, c, c + nNew, interval);
        } else {
            for (int c = 1; c <= nOld; ++c)
                carryFrame(oldData, newData, c, c, interval);
            addNewFrames(doc, newData, nOld + 1, nNew, interval);
        }
    } catch (const std::bad_alloc&) {
        throw DocumentException::memoryError();
    }
    installTableData(doc, std::move(newData), interval);
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
    const DataTableDictionary& oldData = doc._dataTableDictionary;
    DataTableDictionary newData;
    try {
        for (int c = 0; c < first && c <= nOld; ++c)
            carryFrame(oldData, newData, c, c, interval);
        for (int c = last + 1; c <= nOld; ++c)
            carryFrame(oldData, newData, c, first + (c - last - 1), interval);
    } catch (const std::bad_alloc&) {
        throw DocumentException::memoryError();
    }
    installTableData(doc, std::move(newData), interval);
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
