#pragma once
// TraceTrackLists: the cell lists of one view of the trace window, one slot per track the view
// traces (pitch: f0; spectrogram: f1 .. f5; amplitudes: a1f .. a5f, av, apv).
//
// _arrayTracedValues[slot][k - 1] is the document's own cell of frame column k at the slot's
// row (shared, not copied: changing it changes the table). _arrayGridValues[slot] is what the
// view shows: the same cells when the grid's old values are shown, otherwise one placeholder
// of value -1 per column (shared by all slots of that column) until the column is traced or
// entered, when the live cell takes its place. Main thread only.
#include "document/DataTableDictionary.h"

#include <vector>

class MyDocument;

class TraceTrackLists
{
public:
    explicit TraceTrackLists(std::vector<int> rows) : m_rows(std::move(rows)) {}

    // Rebuilds both lists from the table data (repairing an update interval below 1 to 10).
    // A missing column key leaves a null cell at its index.
    void setup(MyDocument& doc);

    int slotCount() const { return static_cast<int>(m_rows.size()); }
    int row(int slot) const { return m_rows[static_cast<std::size_t>(slot)]; }
    int columnCount(int slot) const
    {
        return static_cast<int>(_arrayTracedValues[static_cast<std::size_t>(slot)].size());
    }

    // Sets the value of the slot's cell at list index `index` and shows it in the display list
    // when the old values are hidden. An index at or beyond the list's end throws
    // std::out_of_range (the caller decides whether that ends its work).
    void setValue(int slot, int index, int value);
    // Writes the slot's cells back into the table data at the slot's row, each one's text set
    // from its value; with `clamp` the value is first brought within the cell's limits.
    void writeBack(MyDocument& doc, int slot, bool clamp) const;

    bool _bViewGridData = true;
    std::vector<std::vector<CellRef>> _arrayTracedValues;
    std::vector<std::vector<CellRef>> _arrayGridValues;

private:
    std::vector<int> m_rows;
};
