// Building the table data (_dataTableDictionary) from channel 0's parameter records and grid.
#include "document/MyDocument.h"

#include "document/DocumentException.h"
#include "document/TableColumnSource.h"

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

CellArray TableColumnSource::column(long long col) const
{
    CellArray cells = ImageAndTextCell::newColumn(kParameterCount);
    const std::uint64_t anchorBits = col > 0 ? anchors(col) : 0;
    for (int row = 0; row < kParameterCount; ++row) {
        ImageAndTextCell& cell = *cells[row];
        cell.set_bSelected(shown[row]);
        if (col == 0) {
            cell.adoptDefinition(nameModel[row]);
            continue;
        }
        const int v = value(col, row);
        cell.adoptDefinition(frameModel[row]);
        cell.set_nValue(v);
        cell.set_bAnchor((anchorBits >> row) & 1u);
        cell.setInttoStringValue(v);
    }
    return cells;
}

static_assert(kParameterCount <= 64, "a frame's anchor flags are one 64-bit word");

namespace
{

// The frames 0 .. columns - 1 of channel 0 as the table data shows them: the grid's values (the
// records' values past its end) and the anchor list's flags. Runs of equal blocks, as in a
// document declared long that holds a few frames, share one block.
FrameImage gridImage(const Channels& c, int columns)
{
    std::vector<std::uint64_t> anchorRows(static_cast<std::size_t>(columns), 0);
    for (std::size_t i = 0; i + 1 < c.m_pAnchorPosition.size(); i += 2) {
        const int row = c.m_pAnchorPosition[i];
        const int frame = c.m_pAnchorPosition[i + 1];
        if (row >= 0 && row < kParameterCount && frame >= 0 && frame < columns)
            anchorRows[static_cast<std::size_t>(frame)] |= std::uint64_t{1} << row;
    }
    const DataGrid& grid = c.m_snppDataImage_Col_Row; // read only: stores nothing
    FrameImage::Builder image(columns);
    for (std::size_t b = 0; b < image.blockCount(); ++b) {
        FrameImage::Block& block = image.open();
        for (int frame = image.firstFrame(b); frame < image.endFrame(b); ++frame) {
            const int at = frame - image.firstFrame(b);
            if (static_cast<std::size_t>(frame) < grid.size()) {
                const GridColumn& column = grid[static_cast<std::size_t>(frame)];
                std::copy_n(column.begin(), kParameterCount,
                            block.values[static_cast<std::size_t>(at)].begin());
            } else {
                for (int row = 0; row < kParameterCount; ++row)
                    block.setValue(at, row, c.m_Parameters[row].nValue);
            }
            block.anchors[static_cast<std::size_t>(at)] = anchorRows[static_cast<std::size_t>(frame)];
        }
        image.close(b, nullptr, nullptr);
    }
    return image.take();
}

// The frames of a new document: every frame holds the records' values, so one block serves all.
FrameImage recordImage(const Channels& c, int columns)
{
    auto block = std::make_shared<FrameImage::Block>();
    for (int frame = 0; frame < FrameImage::kBlockFrames; ++frame)
        for (int row = 0; row < kParameterCount; ++row)
            block->setValue(frame, row, c.m_Parameters[row].nValue);
    FrameImage::Builder image(columns);
    for (std::size_t b = 0; b < image.blockCount(); ++b)
        image.share(b, block);
    return image.take();
}

} // namespace

void MyDocument::buildDataTableDictionary()
{
    updateInterval(); // repairs an interval below 1 before anything is built
    const Channels& c = *m_Channel[0];
    const int columns = std::max(c.m_nColumnNum, 0);
    if (columns > kMaxFrames)
        throw DocumentException::tooManyFrames(columns, kMaxFrames);
    _dataTableDictionary.removeAllObjects(); // the old cells go before the new columns' data comes
    FrameImage frames;
    try {
        frames = m_bReadFile != 0 ? gridImage(c, columns) : recordImage(c, columns);
    } catch (const std::bad_alloc&) {
        throw DocumentException::memoryError();
    }
    buildTableDataFrom(std::move(frames));
}

void MyDocument::buildTableDataFrom(FrameImage frames)
{
    const int interval = updateInterval();
    const int columns = std::max(m_Channel[0]->m_nColumnNum, 0);
    if (columns > kMaxFrames)
        throw DocumentException::tooManyFrames(columns, kMaxFrames);
    _dataTableDictionary.removeAllObjects();
    try {
        fillDataTableDictionary(columns, interval, std::move(frames));
    } catch (const std::bad_alloc&) {
        _dataTableDictionary.removeAllObjects();
        throw DocumentException::memoryError();
    }
}

void MyDocument::fillDataTableDictionary(int columns, int interval, FrameImage frames)
{
    Channels& c = *m_Channel[0];
    auto source = std::make_shared<TableColumnSource>();
    source->frames = std::move(frames);

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
                                           std::move(source));
}
