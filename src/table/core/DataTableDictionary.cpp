#include "table/core/DataTableDictionary.h"

CellArray* DataTableDictionary::objectForKey(const std::string& key)
{
    auto it = m_map.find(key);
    return it == m_map.end() ? nullptr : &it->second;
}

const CellArray* DataTableDictionary::objectForKey(const std::string& key) const
{
    auto it = m_map.find(key);
    return it == m_map.end() ? nullptr : &it->second;
}

CellRef DataTableDictionary::cellAt(long long key, int row) const
{
    const CellArray* column = objectForKey(key);
    if (!column || row < 0 || static_cast<std::size_t>(row) >= column->size())
        return nullptr;
    return (*column)[row];
}
