// Rebuilding the table data for a new length, update interval and sample rate (Options > File).
#include "table/TableEditing.h"

#include "document/DocumentException.h"
#include "document/TableColumnSource.h"

#include <algorithm>
#include <memory>

namespace
{
// The key of `dictionary` that is the largest not above `timeMS`, trying the time itself,
// then 1 ms less and so on, giving up below 2 ms; -1 when none is found.
long long findKeyAtOrBelow(const DataTableDictionary& dictionary, long long timeMS)
{
    for (long long t = timeMS; t >= 2; --t)
        if (dictionary.objectForKey(t))
            return t;
    return -1;
}

// Copies of the cells of `from` into `to` (same row order), each showing its value.
void copyColumnCells(const CellArray& from, CellArray& to)
{
    const std::size_t rows = std::min(from.size(), to.size());
    CellArray copies = ImageAndTextCell::newColumn(rows);
    for (std::size_t row = 0; row < rows; ++row) {
        if (!from[row])
            continue;
        copies[row]->copy(*from[row]);
        copies[row]->setInttoStringValue(copies[row]->_nValue());
        to[row] = std::move(copies[row]);
    }
}

// A new name column: the records' names, definitions and shown flags.
CellArray freshNames(const MyDocument& doc)
{
    const Channels& c = *doc.getChannel(0);
    CellArray names = ImageAndTextCell::newColumn(kParameterCount);
    for (int row = 0; row < kParameterCount; ++row) {
        CellDefinition d;
        d.name = c.m_Parameters[row].strName;
        d.definition = c.m_Parameters[row].strDefinition;
        names[row]->setDefinition(d);
        names[row]->set_bSelected(c.m_Parameters[row].bSelected != 0);
    }
    return names;
}

DataTableDictionary freshTableData(MyDocument& doc, int frames, long long interval)
{
    DataTableDictionary fresh;
    fresh.setObject("0", freshNames(doc));
    const FrameCellMaker maker(doc);
    fresh.reserve(static_cast<std::size_t>(std::max(frames, 0)) + 1);
    for (int k = 1; k <= frames; ++k)
        fresh.setObject(k * interval, maker.column(false));
    return fresh;
}

// At an unchanged interval every kept frame is its old column's copy, so the columns not made
// yet stay so (their source cut to the frames kept): only the names, the made columns' copies
// and the frames added are made. Answers false, changing nothing, unless the table data holds
// columns announced at this interval and every one of its frames (the general rebuild handles
// the rest). An interval of 1 ms is left to it too: it never carries the first frame over.
bool resizeKeepingPending(MyDocument& doc, int newFrames, long long interval)
{
    const DataTableDictionary& old = doc._dataTableDictionary;
    const TableColumnSource* source = old.pendingSource();
    const long long oldFrames = frameCount(doc);
    if (!source || interval < 2 || old.pendingInterval() != interval || doc.updateInterval() != interval)
        return false;
    for (long long k = 0; k <= oldFrames; ++k) {
        const DataTableDictionary::Peek peek = old.peek(k * interval);
        if (!peek.cells && peek.pending < 0)
            return false;
    }
    const int kept = static_cast<int>(std::min<long long>(oldFrames, newFrames));
    auto cut = std::make_shared<TableColumnSource>(*source);
    cut->frames = source->frames.spliced({kept, kept, 0, 0}, source->recordValue);
    DataTableDictionary resized;
    resized.setPendingColumns(static_cast<std::size_t>(newFrames) + 1, interval, std::move(cut));
    resized.setObject("0", freshNames(doc));
    const FrameCellMaker maker(doc);
    for (long long k = 1; k <= newFrames; ++k) {
        const CellArray* from = k <= kept ? old.peek(k * interval).cells : nullptr;
        if (k <= kept && !from)
            continue; // not made: made later from the source, as the old one would have been
        CellArray cells = maker.column(false);
        if (from)
            copyColumnCells(*from, cells);
        resized.setObject(k * interval, std::move(cells));
    }
    doc._dataTableDictionary = std::move(resized);
    return true;
}
} // namespace

namespace
{
long long proposedInterval(const MyDocument& doc)
{
    return doc.m_nNewUpdateIntervalMS < 1 ? 10 : doc.m_nNewUpdateIntervalMS;
}

// Capped far beyond any document, so that the frame count stays representable.
double proposedLength(const MyDocument& doc)
{
    return doc.m_dNewLengthMS < 0.0 ? 0.0 : std::min(doc.m_dNewLengthMS, 1e15);
}

// Channel 0 takes the new rate, length, interval and frame count.
void storeFrameSettings(MyDocument& doc, double length, long long interval, int frames)
{
    Channels& c = *doc.getChannel(0);
    c.m_dSampleRate = doc.m_dNewSampleRate > 0.0 ? doc.m_dNewSampleRate : c.m_dSampleRate;
    c.m_dLengthMS = length;
    c.m_nUpdateIntervalMS = static_cast<std::int32_t>(interval);
    c.m_nColumnNum = frames;
    c.m_bSynthesize = 1;
    doc.updateChangeCount(MyDocument::ChangeDone);
}
} // namespace

Shortening proposedShortening(MyDocument& doc)
{
    const long long newInterval = proposedInterval(doc);
    const long long newEnd = static_cast<long long>(proposedLength(doc)) / newInterval * newInterval;
    const long long oldInterval = doc.updateInterval();
    const Channels& c = *doc.getChannel(0);
    const DataTableDictionary& data = doc._dataTableDictionary;
    const long long frames = frameCount(doc);
    Shortening shortening;
    // Values read as they stand: the frames of an hour are looked at, not made.
    for (long long k = newEnd / oldInterval + 1; k <= frames; ++k) {
        ++shortening.removedFrames;
        for (int row = 0; row < kParameterCount && !shortening.removesValues; ++row) {
            int value = 0;
            shortening.removesValues =
                data.valueAt(k * oldInterval, row, value) && value != c.m_Parameters[row].nValue;
        }
    }
    return shortening;
}

void saveoptionsFile(MyDocument& doc)
{
    const long long newInterval = proposedInterval(doc);
    const double newLength = proposedLength(doc);
    const long long frames = static_cast<long long>(newLength) / newInterval;
    if (frames > MyDocument::kMaxFrames || newLength > MyDocument::kMaxLengthMS)
        throw DocumentException::tooManyFrames(frames, MyDocument::kMaxFrames); // nothing changed yet
    const int newFrames = static_cast<int>(frames);
    doc.saveUndo();
    const long long oldInterval = doc.updateInterval();
    const long long oldFrames = frameCount(doc);

    if (oldInterval == newInterval && resizeKeepingPending(doc, newFrames, newInterval)) {
        storeFrameSettings(doc, newLength, newInterval, newFrames);
        return;
    }
    DataTableDictionary fresh = freshTableData(doc, newFrames, newInterval);
    const DataTableDictionary& old = doc._dataTableDictionary;
    if (oldFrames < newFrames) {
        // Each old frame lands on the new frame that starts at or before its time.
        for (long long k = 1; k <= oldFrames; ++k) {
            const CellArray* from = old.objectForKey(k * oldInterval);
            const long long key = findKeyAtOrBelow(fresh, k * oldInterval);
            if (from && key >= 0)
                copyColumnCells(*from, *fresh.objectForKey(key));
        }
    } else {
        // Each new frame takes the old frame that starts at or before its time.
        for (long long k = 1; k <= newFrames; ++k) {
            const long long key = findKeyAtOrBelow(old, k * newInterval);
            if (key >= 0)
                copyColumnCells(*old.objectForKey(key), *fresh.objectForKey(k * newInterval));
        }
    }
    doc._dataTableDictionary = std::move(fresh);
    storeFrameSettings(doc, newLength, newInterval, newFrames);
}
