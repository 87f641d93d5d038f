#include "dataentry/TraceTrackLists.h"

#include "document/MyDocument.h"
#include "document/TableColumnSource.h"

#include <stdexcept>
#include <string>

TraceTrackLists::TraceTrackLists(std::vector<int> rows) : m_rows(std::move(rows))
{
    for (int slot = 0; slot < slotCount(); ++slot) {
        _arrayTracedValues.emplace_back(this, slot, false);
        _arrayGridValues.emplace_back(this, slot, true);
    }
}

void TraceTrackLists::setup(MyDocument& doc)
{
    m_pDoc = &doc;
    m_nInterval = doc.updateInterval();
    const std::size_t count = doc._dataTableDictionary.count();
    m_nColumns = count < 2 ? 0 : static_cast<int>(count - 1);
    m_bShowsGrid = _bViewGridData;
    m_placeholders.clear();
    m_live.assign(m_bShowsGrid ? 0 : m_rows.size(),
                  std::vector<char>(static_cast<std::size_t>(m_nColumns), 0));
}

CellRef TraceTrackLists::placeholder(std::size_t index) const
{
    CellRef& cell = m_placeholders[index];
    if (!cell) {
        cell = std::make_shared<ImageAndTextCell>();
        cell->set_nValue(-1);
    }
    return cell;
}

std::size_t TraceTrackLists::CellList::size() const
{
    return static_cast<std::size_t>(m_pOwner->m_nColumns);
}

CellRef TraceTrackLists::CellList::operator[](std::size_t index) const
{
    const TraceTrackLists& o = *m_pOwner;
    if (index >= size())
        throw std::out_of_range("index " + std::to_string(index) + " beyond the " + std::to_string(size()) +
                                " frame columns");
    if (m_bShown && !o.m_bShowsGrid && !o.m_live[static_cast<std::size_t>(m_nSlot)][index])
        return o.placeholder(index);
    return o.m_pDoc->_dataTableDictionary.cellAt(o.keyOf(index), o.row(m_nSlot));
}

bool TraceTrackLists::CellList::value(std::size_t index, int& value) const
{
    const TraceTrackLists& o = *m_pOwner;
    if (index >= size())
        return false;
    if (m_bShown && !o.m_bShowsGrid && !o.m_live[static_cast<std::size_t>(m_nSlot)][index]) {
        value = -1;
        return true;
    }
    return o.m_pDoc->_dataTableDictionary.valueAt(o.keyOf(index), o.row(m_nSlot), value);
}

void TraceTrackLists::setValue(int slot, int index, int value)
{
    if (index < 0 || index >= m_nColumns)
        throw std::out_of_range("index " + std::to_string(index) + " beyond the " +
                                std::to_string(m_nColumns) + " frame columns");
    const CellRef cell =
        _arrayTracedValues.at(static_cast<std::size_t>(slot))[static_cast<std::size_t>(index)];
    if (!cell)
        return;
    cell->set_nValue(value);
    if (!m_bShowsGrid)
        m_live[static_cast<std::size_t>(slot)][static_cast<std::size_t>(index)] = 1;
}

void TraceTrackLists::markEntered(int slot, int index)
{
    if (!m_bShowsGrid)
        m_live.at(static_cast<std::size_t>(slot)).at(static_cast<std::size_t>(index)) = 1;
}

void TraceTrackLists::writeBack(MyDocument& doc, int slot, bool clamp) const
{
    const auto rowIndex = static_cast<std::size_t>(row(slot));
    const DataTableDictionary& data = doc._dataTableDictionary;
    const TableColumnSource* source = data.pendingSource();
    for (std::size_t index = 0; index < static_cast<std::size_t>(m_nColumns); ++index) {
        const DataTableDictionary::Peek column = data.peek(keyOf(index));
        if (column.pending > 0 && source) {
            // A column not made holds its value as its text, within the limits of its row's
            // cells unless the limits changed since: only such a value needs its cell made.
            const int value = source->value(column.pending, row(slot));
            const ImageAndTextCell& model = source->frameModel[rowIndex];
            if (!clamp || (value <= model._nMaxValue() && value >= model._nMinValue()))
                continue;
        }
        const CellRef cell = _arrayTracedValues.at(static_cast<std::size_t>(slot))[index];
        if (!cell)
            continue;
        int value = cell->_nValue();
        if (clamp) {
            // First down to the maximum, then up to the minimum.
            if (value > cell->_nMaxValue())
                value = cell->_nMaxValue();
            if (value < cell->_nMinValue())
                value = cell->_nMinValue();
            cell->set_nValue(value);
        }
        cell->setIntValue(value);
    }
}
