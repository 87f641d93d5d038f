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

namespace
{

// What the columns of the table data are made from, taken when the table data is built: the
// grid's values (a copy: the grid may be read into again while columns are still to be made),
// the anchor flags and, per row, the shown flag and the shared definitions of the name and
// frame cells. A column made from it later is the column an immediate build would have made.
struct ColumnSource {
    std::array<ImageAndTextCell, kParameterCount> nameModel, frameModel;
    std::array<bool, kParameterCount> shown{};
    std::array<int, kParameterCount> recordValue{};
    DataGrid grid;                         // empty for a new document; holds only stored columns
    std::vector<std::uint64_t> anchorRows; // by frame: bit r set = an anchor on row r

    CellArray column(long long col) const
    {
        CellArray cells = ImageAndTextCell::newColumn(kParameterCount);
        const long long frame = col - 1;
        const bool gridColumn = col > 0 && static_cast<std::size_t>(frame) < grid.size();
        const std::uint64_t anchors =
            col > 0 && static_cast<std::size_t>(frame) < anchorRows.size() ? anchorRows[frame] : 0;
        for (int row = 0; row < kParameterCount; ++row) {
            ImageAndTextCell& cell = *cells[row];
            cell.set_bSelected(shown[row]);
            if (col == 0) {
                cell.adoptDefinition(nameModel[row]);
                continue;
            }
            const int value = gridColumn ? grid[frame][row] : recordValue[row];
            cell.adoptDefinition(frameModel[row]);
            cell.set_nValue(value);
            cell.set_bAnchor((anchors >> row) & 1u);
            cell.setInttoStringValue(value);
        }
        return cells;
    }
};

static_assert(kParameterCount <= 64, "a frame's anchor flags are one 64-bit word");

} // namespace

void MyDocument::fillDataTableDictionary(int columns, int interval, bool fromGrid)
{
    Channels& c = *m_Channel[0];
    _dataTableDictionary.removeAllObjects(); // the old cells go before the new columns' data comes
    auto source = std::make_shared<ColumnSource>();

    if (fromGrid) {
        // A copy of the grid costs its stored columns only: a truncated long document stays small.
        source->grid = c.m_snppDataImage_Col_Row;
        source->anchorRows.assign(static_cast<std::size_t>(columns), 0);
        for (std::size_t i = 0; i + 1 < c.m_pAnchorPosition.size(); i += 2) {
            const int row = c.m_pAnchorPosition[i];
            const int frame = c.m_pAnchorPosition[i + 1];
            if (row >= 0 && row < kParameterCount && frame >= 0 && frame < columns)
                source->anchorRows[frame] |= std::uint64_t{1} << row;
        }
    }

    // One shared definition per row for the name column and one for the frame columns: every
    // cell of a row takes it from these models instead of setting its fields one by one.
    for (int row = 0; row < kParameterCount; ++row) {
        const ParameterDefinition& p = c.m_Parameters[row];
        CellDefinition name;
        name.name = p.strName;
        name.definition = p.strDefinition;
        name.background = groupBackgroundColor(row);
        source->nameModel[row].setDefinition(name);
        source->frameModel[row].setDefinition(frameCellDefinition(p, name.background));
        source->shown[row] = p.bSelected != 0;
        source->recordValue[row] = p.nValue;
    }

    // The columns are made when first looked up: opening a long document makes only what its
    // window shows.
    _dataTableDictionary.setPendingColumns(static_cast<std::size_t>(columns) + 1, interval,
                                           [source](long long col) { return source->column(col); });
}
