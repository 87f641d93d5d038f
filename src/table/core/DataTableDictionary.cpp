#include "table/core/DataTableDictionary.h"

#include <charconv>
#include <utility>

long long DataTableDictionary::pendingIndex(long long key) const
{
    if (m_nPending == 0 || key < 0 || key % m_nInterval != 0)
        return -1;
    const long long index = key / m_nInterval;
    return static_cast<std::size_t>(index) < m_waiting.size() && m_waiting[index] ? index : -1;
}

long long DataTableDictionary::pendingIndex(const std::string& key) const
{
    if (m_nPending == 0)
        return -1;
    // Only the exact decimal text of a number is a key ("010" or "+10" name no column).
    long long number = 0;
    const char* end = key.data() + key.size();
    const auto parsed = std::from_chars(key.data(), end, number);
    if (parsed.ec != std::errc() || parsed.ptr != end || key.empty())
        return -1;
    char text[24];
    const auto written = std::to_chars(text, text + sizeof text, number);
    if (std::string_view(text, static_cast<std::size_t>(written.ptr - text)) != key)
        return -1;
    return pendingIndex(number);
}

CellArray* DataTableDictionary::make(long long index, const std::string& key) const
{
    CellArray cells = m_maker(index); // a failure leaves the column announced
    CellArray& stored = m_map[key] = std::move(cells);
    forget(index);
    return &stored;
}

void DataTableDictionary::forget(long long index) const
{
    m_waiting[static_cast<std::size_t>(index)] = false;
    if (--m_nPending == 0) {
        m_waiting = {};
        m_maker = nullptr; // with the data it made the columns from
    }
}

CellArray* DataTableDictionary::objectForKey(const std::string& key)
{
    return const_cast<CellArray*>(std::as_const(*this).objectForKey(key));
}

const CellArray* DataTableDictionary::objectForKey(const std::string& key) const
{
    auto it = m_map.find(key);
    if (it != m_map.end())
        return &it->second;
    const long long index = pendingIndex(key);
    return index < 0 ? nullptr : make(index, key);
}

CellArray* DataTableDictionary::objectForKey(long long key)
{
    return const_cast<CellArray*>(std::as_const(*this).objectForKey(key));
}

const CellArray* DataTableDictionary::objectForKey(long long key) const
{
    const std::string text = keyFor(key);
    auto it = m_map.find(text);
    if (it != m_map.end())
        return &it->second;
    const long long index = pendingIndex(key);
    return index < 0 ? nullptr : make(index, text);
}

void DataTableDictionary::setObject(const std::string& key, CellArray column)
{
    const long long index = pendingIndex(key);
    m_map[key] = std::move(column);
    if (index >= 0)
        forget(index);
}

void DataTableDictionary::removeObjectForKey(const std::string& key)
{
    const long long index = pendingIndex(key);
    if (index >= 0)
        forget(index);
    m_map.erase(key);
}

void DataTableDictionary::removeAllObjects()
{
    m_map.clear();
    m_waiting = {};
    m_nPending = 0;
    m_maker = nullptr;
}

void DataTableDictionary::setPendingColumns(std::size_t columns, long long interval, ColumnMaker maker)
{
    removeAllObjects();
    if (columns == 0 || interval < 1 || !maker)
        return;
    m_waiting.assign(columns, true);
    m_nPending = columns;
    m_nInterval = interval;
    m_maker = std::move(maker);
    m_map.reserve(columns);
}

CellRef DataTableDictionary::cellAt(long long key, int row) const
{
    const CellArray* column = objectForKey(key);
    if (!column || row < 0 || static_cast<std::size_t>(row) >= column->size())
        return nullptr;
    return (*column)[row];
}

const std::unordered_map<std::string, CellArray>& DataTableDictionary::map() const
{
    for (std::size_t index = 0; m_nPending > 0 && index < m_waiting.size(); ++index)
        if (m_waiting[index])
            make(static_cast<long long>(index), keyFor(static_cast<long long>(index) * m_nInterval));
    return m_map;
}
