#pragma once
// The table data of a document: column identifier -> the column's cells in parameter row
// order. Key "0" is the parameter-name column; frame column k (k >= 1) has the key k x update
// interval in decimal ("10", "20", ...). The number of frame columns is count() - 1.
// Lookups by a missing key answer nullptr: callers tolerate missing columns.
#include "table/core/ImageAndTextCell.h"

#include <string>
#include <unordered_map>
#include <vector>

using CellArray = std::vector<CellRef>;

class DataTableDictionary
{
public:
    std::size_t count() const { return m_map.size(); }
    bool empty() const { return m_map.empty(); }

    CellArray* objectForKey(const std::string& key);
    const CellArray* objectForKey(const std::string& key) const;
    // The same with the key given as the number whose decimal text it is.
    CellArray* objectForKey(long long key) { return objectForKey(keyFor(key)); }
    const CellArray* objectForKey(long long key) const { return objectForKey(keyFor(key)); }

    void setObject(const std::string& key, CellArray column) { m_map[key] = std::move(column); }
    void setObject(long long key, CellArray column) { setObject(keyFor(key), std::move(column)); }
    void removeObjectForKey(const std::string& key) { m_map.erase(key); }
    void removeAllObjects() { m_map.clear(); }
    void reserve(std::size_t columns) { m_map.reserve(columns); }

    // The cell of a column and row, or nullptr when either is missing.
    CellRef cellAt(long long key, int row) const;

    static std::string keyFor(long long number) { return std::to_string(number); }

    const std::unordered_map<std::string, CellArray>& map() const { return m_map; }

private:
    std::unordered_map<std::string, CellArray> m_map;
};
