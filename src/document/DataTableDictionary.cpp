#include "document/DataTableDictionary.h"

#include "document/TableColumnSource.h"

#include <charconv>
#include <utility>

DataTableDictionary::DataTableDictionary(const DataTableDictionary& other)
{
    *this = other;
}

DataTableDictionary& DataTableDictionary::operator=(const DataTableDictionary& other)
{
    if (this == &other)
        return *this;
    m_map = other.m_map;
    m_waiting = other.m_waiting;
    m_nPending = other.m_nPending;
    m_nInterval = other.m_nInterval;
    m_source = other.m_source;
    // The index points into this dictionary's own map.
    m_byIndex.assign(other.m_byIndex.size(), nullptr);
    for (auto& [key, column] : m_map)
        setIndexed(key, &column);
    return *this;
}

long long DataTableDictionary::pendingIndex(long long key) const
{
    if (m_nPending == 0 || key < 0 || key % m_nInterval != 0)
        return -1;
    const long long index = key / m_nInterval;
    return static_cast<std::size_t>(index) < m_waiting.size() && m_waiting[index] ? index : -1;
}

namespace
{
// The number whose exact decimal text the key is ("010" or "+10" name no number), or -1.
long long keyNumber(const std::string& key)
{
    long long number = 0;
    const char* end = key.data() + key.size();
    const auto parsed = std::from_chars(key.data(), end, number);
    if (parsed.ec != std::errc() || parsed.ptr != end || key.empty())
        return -1;
    char text[24];
    const auto written = std::to_chars(text, text + sizeof text, number);
    if (std::string_view(text, static_cast<std::size_t>(written.ptr - text)) != key)
        return -1;
    return number;
}
} // namespace

long long DataTableDictionary::pendingIndex(const std::string& key) const
{
    return m_nPending == 0 ? -1 : pendingIndex(keyNumber(key));
}

CellArray* DataTableDictionary::indexed(long long key) const
{
    if (key < 0 || m_nInterval < 1 || key % m_nInterval != 0)
        return nullptr;
    const long long index = key / m_nInterval;
    return static_cast<std::size_t>(index) < m_byIndex.size() ? m_byIndex[index] : nullptr;
}

void DataTableDictionary::setIndexed(const std::string& key, CellArray* column) const
{
    if (m_byIndex.empty())
        return;
    const long long number = keyNumber(key);
    if (number >= 0 && number % m_nInterval == 0 &&
        static_cast<std::size_t>(number / m_nInterval) < m_byIndex.size())
        m_byIndex[number / m_nInterval] = column;
}

CellArray* DataTableDictionary::make(long long index, const std::string& key) const
{
    CellArray cells = m_source->column(index); // a failure leaves the column announced
    CellArray& stored = m_map[key] = std::move(cells);
    forget(index);
    m_byIndex[static_cast<std::size_t>(index)] = &stored;
    return &stored;
}

void DataTableDictionary::forget(long long index) const
{
    m_waiting[static_cast<std::size_t>(index)] = false;
    if (--m_nPending == 0) {
        m_waiting = {};
        m_source = nullptr; // with the data it made the columns from
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
    if (CellArray* column = indexed(key))
        return column;
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
    CellArray& stored = m_map[key] = std::move(column);
    if (index >= 0)
        forget(index);
    setIndexed(key, &stored);
}

void DataTableDictionary::removeObjectForKey(const std::string& key)
{
    const long long index = pendingIndex(key);
    if (index >= 0)
        forget(index);
    setIndexed(key, nullptr);
    m_map.erase(key);
}

void DataTableDictionary::removeAllObjects()
{
    m_map.clear();
    m_waiting = {};
    m_byIndex = {};
    m_nPending = 0;
    m_source = nullptr;
}

void DataTableDictionary::setPendingColumns(std::size_t columns, long long interval,
                                            std::shared_ptr<const TableColumnSource> source)
{
    removeAllObjects();
    if (columns == 0 || interval < 1 || !source)
        return;
    m_waiting.assign(columns, true);
    m_byIndex.assign(columns, nullptr);
    m_nPending = columns;
    m_nInterval = interval;
    m_source = std::move(source);
    m_map.reserve(columns);
}

DataTableDictionary::Peek DataTableDictionary::peek(long long key) const
{
    if (const CellArray* column = indexed(key))
        return {column, -1};
    // A key inside the announced range that the index does not hold is not in the map either.
    const bool inIndex = m_nInterval >= 1 && key >= 0 && key % m_nInterval == 0 &&
                         static_cast<std::size_t>(key / m_nInterval) < m_byIndex.size();
    if (!inIndex && !m_map.empty()) {
        const auto it = m_map.find(keyFor(key));
        if (it != m_map.end())
            return {&it->second, -1};
    }
    return {nullptr, pendingIndex(key)};
}

bool DataTableDictionary::valueAt(long long key, int row, int& value) const
{
    const Peek column = peek(key);
    if (column.cells) {
        if (row < 0 || static_cast<std::size_t>(row) >= column.cells->size() || !(*column.cells)[row])
            return false;
        value = (*column.cells)[row]->_nValue();
        return true;
    }
    if (column.pending < 0 || row < 0 || row >= kParameterCount)
        return false;
    value = column.pending == 0 ? 0 : m_source->value(column.pending, row); // names hold 0
    return true;
}

bool DataTableDictionary::allPending(long long first, long long count) const
{
    if (m_nPending == 0 || first < 0 || static_cast<std::size_t>(first + count) > m_waiting.size())
        return false;
    for (long long index = first; index < first + count; ++index)
        if (!m_waiting[static_cast<std::size_t>(index)])
            return false;
    return true;
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
