#include "document/DataGrid.h"

#include <algorithm>

void DataGrid::clear()
{
    m_stored.clear();
    m_stored.shrink_to_fit();
    m_nColumns = 0;
    m_nFilled = 0;
}

void DataGrid::assign(std::size_t columns, std::size_t filled, const GridColumn& fill)
{
    clear();
    m_nColumns = columns;
    m_nFilled = std::min(filled, columns);
    m_fill = fill;
}

void DataGrid::store(std::size_t count)
{
    count = std::min(count, m_nColumns);
    if (count <= m_stored.size())
        return;
    m_stored.reserve(count);
    for (std::size_t i = m_stored.size(); i < count; ++i)
        m_stored.push_back(made(i));
}

GridColumn& DataGrid::operator[](std::size_t i)
{
    if (i >= m_nColumns) {
        m_scratch = m_zero;
        return m_scratch;
    }
    if (i >= m_stored.size()) {
        // Grow geometrically so that writing column after column stays linear.
        if (i >= m_stored.capacity())
            m_stored.reserve(std::min(m_nColumns, std::max(i + 1, 2 * m_stored.capacity())));
        store(i + 1);
    }
    return m_stored[i];
}

const GridColumn& DataGrid::operator[](std::size_t i) const
{
    if (i < m_stored.size())
        return m_stored[i];
    return i < m_nColumns ? made(i) : m_zero;
}
