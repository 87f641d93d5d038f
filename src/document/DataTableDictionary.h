#pragma once
// The table data of a document: column identifier -> the column's cells in parameter row
// order. Key "0" is the parameter-name column; frame column k (k >= 1) has the key k x update
// interval in decimal ("10", "20", ...). The number of frame columns is count() - 1.
// Lookups by a missing key answer nullptr: callers tolerate missing columns.
//
// Columns may be announced before they are made (setPendingColumns): a document of an hour
// has 360,000 columns of 48 cells, of which a window shows a few dozen. Such a column counts
// and answers like any other; its cells are made the first time its key is looked up (or the
// whole map is read), so what a lookup answers is the same as if every column had been made
// at once. A column replaced or removed before it was made is never made.
// Main thread only: a lookup may make a column, also through the const interface.
#include "document/ImageAndTextCell.h"

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

using CellArray = std::vector<CellRef>;
struct TableColumnSource;

class DataTableDictionary
{
public:
    DataTableDictionary() = default;
    // A copy shares the cells (they are shared objects) and the announced columns' source.
    DataTableDictionary(const DataTableDictionary& other);
    DataTableDictionary& operator=(const DataTableDictionary& other);
    DataTableDictionary(DataTableDictionary&&) = default;
    DataTableDictionary& operator=(DataTableDictionary&&) = default;

    std::size_t count() const { return m_map.size() + m_nPending; }
    bool empty() const { return count() == 0; }

    CellArray* objectForKey(const std::string& key);
    const CellArray* objectForKey(const std::string& key) const;
    // The same with the key given as the number whose decimal text it is.
    CellArray* objectForKey(long long key);
    const CellArray* objectForKey(long long key) const;

    void setObject(const std::string& key, CellArray column);
    void setObject(long long key, CellArray column) { setObject(keyFor(key), std::move(column)); }
    void removeObjectForKey(const std::string& key);
    void removeAllObjects();
    void reserve(std::size_t columns) { m_map.reserve(columns); }

    // Announces the columns k = 0 .. columns - 1 under the keys k x interval (interval >= 1),
    // each made from `source` when first looked up. Replaces everything the dictionary held.
    void setPendingColumns(std::size_t columns, long long interval,
                           std::shared_ptr<const TableColumnSource> source);
    // Gives the columns still to be made a new source: one that makes the same columns, but for
    // values changed in them (TableValueWriter).
    void replacePendingSource(std::shared_ptr<const TableColumnSource> source)
    {
        if (m_nPending > 0)
            m_source = std::move(source);
    }
    // Columns announced and not made yet.
    std::size_t pendingCount() const { return m_nPending; }

    // A column as it stands, for readers that must not make columns (saving, undo snapshots):
    // the made column, or else the index of the announced column (its cells are those `source`
    // would make), or neither when the key names no column.
    struct Peek {
        const CellArray* cells = nullptr;
        long long pending = -1;
    };
    Peek peek(long long key) const;
    // The value in `row` of the column keyed `key` as it stands, without making the column;
    // false when there is no such column or cell. For views that read many columns and
    // change few.
    bool valueAt(long long key, int row, int& value) const;
    // What the announced columns are made from (null when none is waiting).
    const TableColumnSource* pendingSource() const { return m_nPending > 0 ? m_source.get() : nullptr; }
    // The interval of the announced keys.
    long long pendingInterval() const { return m_nInterval; }
    // Whether the announced columns first .. first + count - 1 are all still to be made.
    bool allPending(long long first, long long count) const;

    // The cell of a column and row, or nullptr when either is missing.
    CellRef cellAt(long long key, int row) const;

    static std::string keyFor(long long number) { return std::to_string(number); }

    // Every column, the announced ones made first.
    const std::unordered_map<std::string, CellArray>& map() const;
    // The columns made so far, making none: with pendingSource(), everything the table holds.
    const std::unordered_map<std::string, CellArray>& madeColumns() const { return m_map; }

private:
    // The announced column index of a key, or -1 when the key names no column still to make.
    long long pendingIndex(long long key) const;
    long long pendingIndex(const std::string& key) const;
    CellArray* make(long long index, const std::string& key) const;
    void forget(long long index) const;

    mutable std::unordered_map<std::string, CellArray> m_map;
    // The made columns of the announced keys by column index (nullptr when not made or
    // removed): numeric lookups of those keys need no hashing.
    CellArray* indexed(long long key) const;
    void setIndexed(const std::string& key, CellArray* column) const;

    // Announced columns: one flag per column index, true while it is still to be made.
    mutable std::vector<bool> m_waiting;
    mutable std::vector<CellArray*> m_byIndex;
    mutable std::size_t m_nPending = 0;
    long long m_nInterval = 0;
    mutable std::shared_ptr<const TableColumnSource> m_source;
};
