// Building the table data (_dataTableDictionary) from channel 0's parameter records and grid.
#include "document/MyDocument.h"

#include "document/DocumentException.h"

#include <algorithm>
#include <array>
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

CellDefinition MyDocument::frameCellDefinition(const ParameterDefinition& p, const Color& background)
{
    CellDefinition d;
    d.name = p.strName;
    d.definition = p.strDefinition;
    d.defaultValue = p.nDefaultValue;
    d.minValue = p.nMinValue;
    d.maxValue = p.nMaxValue;
    d.colour = p.mColor;
    d.background = background;
    return d;
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

    // Anchor flags of a read document, by frame column and row, in one flat array.
    std::vector<std::uint8_t> anchors;
    if (fromGrid) {
        anchors.assign(static_cast<std::size_t>(columns) * kParameterCount, 0);
        for (std::size_t i = 0; i + 1 < c.m_pAnchorPosition.size(); i += 2) {
            const int row = c.m_pAnchorPosition[i];
            const int frame = c.m_pAnchorPosition[i + 1];
            if (row >= 0 && row < kParameterCount && frame >= 0 && frame < columns)
                anchors[static_cast<std::size_t>(frame) * kParameterCount + row] = 1;
        }
    }

    // One shared definition per row for the name column and one for the frame columns: every
    // cell of a row takes it from these models instead of setting its fields one by one.
    std::array<ImageAndTextCell, kParameterCount> nameModel, frameModel;
    for (int row = 0; row < kParameterCount; ++row) {
        const ParameterDefinition& p = c.m_Parameters[row];
        CellDefinition name;
        name.name = p.strName;
        name.definition = p.strDefinition;
        name.background = groupBackgroundColor(row);
        nameModel[row].setDefinition(name);
        frameModel[row].setDefinition(frameCellDefinition(p, name.background));
    }

    const DataGrid& grid = c.m_snppDataImage_Col_Row; // read only: unwritten columns stay unstored
    _dataTableDictionary.removeAllObjects();
    _dataTableDictionary.reserve(static_cast<std::size_t>(columns) + 1);
    // Cells are made for kColumnsPerBlock columns at a time.
    constexpr int kColumnsPerBlock = 64;
    std::shared_ptr<ImageAndTextCell[]> block;
    for (int col = 0; col <= columns; ++col) {
        const int inBlock = col % kColumnsPerBlock;
        if (inBlock == 0)
            block = ImageAndTextCell::newCells(
                static_cast<std::size_t>(std::min(kColumnsPerBlock, columns + 1 - col)) * kParameterCount);
        CellArray cells = ImageAndTextCell::columnOf(
            block, static_cast<std::size_t>(inBlock) * kParameterCount, kParameterCount);
        const int frame = col - 1;
        const bool gridColumn =
            fromGrid && col > 0 && static_cast<std::size_t>(frame) < c.m_snppDataImage_Col_Row.size();
        for (int row = 0; row < kParameterCount; ++row) {
            const ParameterDefinition& p = c.m_Parameters[row];
            ImageAndTextCell& cell = *cells[row];
            cell.set_bSelected(p.bSelected != 0);
            if (col == 0) {
                cell.adoptDefinition(nameModel[row]);
                continue;
            }
            const int value = gridColumn ? grid[frame][row] : p.nValue;
            cell.adoptDefinition(frameModel[row]);
            cell.set_nValue(value);
            cell.set_bAnchor(fromGrid && anchors[static_cast<std::size_t>(frame) * kParameterCount + row]);
            cell.setInttoStringValue(value);
        }
        _dataTableDictionary.setObject(static_cast<long long>(col) * interval, std::move(cells));
    }
}
