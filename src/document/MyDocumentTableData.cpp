// Building the table data (_dataTableDictionary) from channel 0's parameter records and grid.
#include "document/MyDocument.h"

#include "document/DocumentException.h"

#include <memory>
#include <new>

Color MyDocument::groupBackgroundColor(int row) const
{
    int group = 0;
    if (row >= 1 && row <= 4)
        group = 1;
    else if (row >= 5 && row <= 12)
        group = 2;
    else if (row >= 13 && row <= 20)
        group = 3;
    else if (row == 21)
        group = 4;
    else if (row >= 22 && row <= 29)
        group = 5;
    else if (row >= 30 && row <= 37)
        group = 6;
    else if (row >= 38 && row <= 41)
        group = 7;
    else if (row >= 42 && row <= 47)
        group = 8;
    if (group == 0)
        return Color::white(); // f0 keeps the cell's default white
    return m_bgColor[group];
}

void MyDocument::buildDataTableDictionary()
{
    Channels& c = *m_Channel[0];
    const int interval = updateInterval();
    const int columns = c.m_nColumnNum < 0 ? 0 : c.m_nColumnNum;
    const bool fromGrid = m_bReadFile != 0;
    if (columns > kMaxFrames)
        throw DocumentException::tooManyFrames(columns, kMaxFrames);
    try {
        fillDataTableDictionary(columns, interval, fromGrid);
    } catch (const std::bad_alloc&) {
        _dataTableDictionary.removeAllObjects();
        throw DocumentException::memoryError();
    }
}

void MyDocument::fillDataTableDictionary(int columns, int interval, bool fromGrid)
{
    Channels& c = *m_Channel[0];

    // Anchor flags of a read document, by (frame column, row).
    std::vector<std::vector<bool>> anchors;
    if (fromGrid) {
        anchors.assign(static_cast<std::size_t>(columns) + 1, std::vector<bool>(kParameterCount, false));
        for (std::size_t i = 0; i + 1 < c.m_pAnchorPosition.size(); i += 2) {
            const int row = c.m_pAnchorPosition[i];
            const int frame = c.m_pAnchorPosition[i + 1];
            if (row >= 0 && row < kParameterCount && frame >= 0 && frame < columns)
                anchors[frame][row] = true;
        }
    }

    _dataTableDictionary.removeAllObjects();
    for (int col = 0; col <= columns; ++col) {
        CellArray cells;
        cells.reserve(kParameterCount);
        for (int row = 0; row < kParameterCount; ++row) {
            const ParameterDefinition& p = c.m_Parameters[row];
            auto cell = std::make_shared<ImageAndTextCell>();
            cell->set_strName(p.strName);
            cell->set_strDefinition(p.strDefinition);
            cell->set_bSelected(p.bSelected != 0);
            if (col > 0) {
                int value = p.nValue;
                const int frame = col - 1;
                if (fromGrid && static_cast<std::size_t>(frame) < c.m_snppDataImage_Col_Row.size())
                    value = c.m_snppDataImage_Col_Row[frame][row];
                cell->set_nDefaultValue(p.nDefaultValue);
                cell->set_nValue(value);
                cell->set_nMinValue(p.nMinValue);
                cell->set_nMaxValue(p.nMaxValue);
                cell->set_mColor(p.mColor);
                cell->set_bAnchor(fromGrid && anchors[frame][row]);
                cell->setInttoStringValue(value);
            }
            cell->set_nsbgColor(groupBackgroundColor(row));
            cells.push_back(std::move(cell));
        }
        _dataTableDictionary.setObject(static_cast<long long>(col) * interval, std::move(cells));
    }
}
