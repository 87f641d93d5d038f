#include "dataentry/TraceTrackLists.h"

#include "document/MyDocument.h"

#include <stdexcept>
#include <string>

void TraceTrackLists::setup(MyDocument& doc)
{
    const int interval = doc.updateInterval();
    _arrayTracedValues.assign(m_rows.size(), {});
    _arrayGridValues.assign(m_rows.size(), {});
    const std::size_t count = doc._dataTableDictionary.count();
    if (count < 2)
        return;
    for (std::size_t k = 1; k < count; ++k) {
        const CellArray* column = doc._dataTableDictionary.objectForKey(static_cast<long long>(k) * interval);
        CellRef placeholder;
        if (!_bViewGridData) {
            placeholder = std::make_shared<ImageAndTextCell>();
            placeholder->set_nValue(-1);
        }
        for (std::size_t slot = 0; slot < m_rows.size(); ++slot) {
            const auto row = static_cast<std::size_t>(m_rows[slot]);
            CellRef cell = column && row < column->size() ? (*column)[row] : nullptr;
            _arrayTracedValues[slot].push_back(cell);
            _arrayGridValues[slot].push_back(_bViewGridData ? cell : placeholder);
        }
    }
}

void TraceTrackLists::setValue(int slot, int index, int value)
{
    std::vector<CellRef>& traced = _arrayTracedValues.at(static_cast<std::size_t>(slot));
    if (index < 0 || index >= static_cast<int>(traced.size()))
        throw std::out_of_range("index " + std::to_string(index) + " beyond the " +
                                std::to_string(traced.size()) + " frame columns");
    const CellRef& cell = traced[static_cast<std::size_t>(index)];
    if (!cell)
        return;
    cell->set_nValue(value);
    if (!_bViewGridData)
        _arrayGridValues[static_cast<std::size_t>(slot)][static_cast<std::size_t>(index)] = cell;
}

void TraceTrackLists::writeBack(MyDocument& doc, int slot, bool clamp) const
{
    const int interval = doc.updateInterval();
    const auto rowIndex = static_cast<std::size_t>(row(slot));
    const std::vector<CellRef>& traced = _arrayTracedValues.at(static_cast<std::size_t>(slot));
    for (std::size_t k = 1; k <= traced.size(); ++k) {
        const CellRef& cell = traced[k - 1];
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
        CellArray* column = doc._dataTableDictionary.objectForKey(static_cast<long long>(k) * interval);
        if (column && rowIndex < column->size())
            (*column)[rowIndex] = cell;
    }
}
