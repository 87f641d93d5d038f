#pragma once
// TraceTrackLists: the cell lists of one view of the trace window, one slot per track the view
// traces (pitch: f0; spectrogram: f1 .. f5; amplitudes: a1f .. a5f, av, apv).
//
// _arrayTracedValues[slot][k - 1] is the document's own cell of frame column k at the slot's
// row (shared, not copied: changing it changes the table). _arrayGridValues[slot] is what the
// view shows: the same cells when the grid's old values are shown, otherwise one placeholder
// of value -1 per column (shared by all slots of that column) until the column is traced or
// entered, when the live cell takes its place.
//
// The lists hold no cells of their own: an entry is looked up when it is asked for, and views
// read values through value(), which makes no column of the table data. So a window over a
// document of an hour costs what it draws and what is traced, not the document's length.
// Main thread only.
#include "document/DataTableDictionary.h"

#include <unordered_map>
#include <vector>

class MyDocument;

class TraceTrackLists
{
public:
    // One slot's list, traced or shown. Entries are answered from the table data as it stands.
    class CellList
    {
    public:
        CellList(const TraceTrackLists* owner, int slot, bool shown)
            : m_pOwner(owner), m_nSlot(slot), m_bShown(shown)
        {
        }
        std::size_t size() const;
        bool empty() const { return size() == 0; }
        // The entry at `index` (its table column made now if it was not); null for a missing
        // column. Out of range throws std::out_of_range.
        CellRef operator[](std::size_t index) const;
        // The entry's value without making its column: false for a missing cell.
        bool value(std::size_t index, int& value) const;

    private:
        const TraceTrackLists* m_pOwner;
        int m_nSlot;
        bool m_bShown;
    };

    explicit TraceTrackLists(std::vector<int> rows);
    // The lists point at the object that made them: it stays where it was made.
    TraceTrackLists(const TraceTrackLists&) = delete;
    TraceTrackLists& operator=(const TraceTrackLists&) = delete;

    // Takes the document's frame columns anew (repairing an update interval below 1 to 10):
    // the lists cover table columns 1 .. count - 1 of its table data, and when the old values
    // are hidden every entry of the display lists is a placeholder again.
    void setup(MyDocument& doc);

    int slotCount() const { return static_cast<int>(m_rows.size()); }
    int row(int slot) const { return m_rows[static_cast<std::size_t>(slot)]; }
    int columnCount(int) const { return m_nColumns; }

    // Sets the value of the slot's cell at list index `index` and shows it in the display list
    // when the old values are hidden. An index at or beyond the list's end throws
    // std::out_of_range (the caller decides whether that ends its work).
    void setValue(int slot, int index, int value);
    // Shows the slot's list index `index` in the display list when the old values are hidden, as
    // setValue does, for a value written into the table data without the list.
    void markEntered(int slot, int index);
    // Writes the slot's cells back into the table data at the slot's row, each one's text set
    // from its value; with `clamp` the value is first brought within the cell's limits.
    void writeBack(MyDocument& doc, int slot, bool clamp) const;

    bool _bViewGridData = true;
    std::vector<CellList> _arrayTracedValues;
    std::vector<CellList> _arrayGridValues;

private:
    long long keyOf(std::size_t index) const { return static_cast<long long>(index + 1) * m_nInterval; }
    CellRef placeholder(std::size_t index) const;

    std::vector<int> m_rows;
    MyDocument* m_pDoc = nullptr;
    int m_nColumns = 0;
    long long m_nInterval = 10;
    bool m_bShowsGrid = true;              // _bViewGridData when the lists were set up
    std::vector<std::vector<char>> m_live; // hidden old values: per slot, index traced since set-up
    mutable std::unordered_map<std::size_t, CellRef> m_placeholders; // made when asked for
};
