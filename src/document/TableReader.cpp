#include "document/TableReader.h"

#include "document/DocumentException.h"
#include "document/TableColumnSource.h"

#include <algorithm>

TableReader::TableReader(MyDocument& document) : m_document(document), m_channel(*document.getChannel(0))
{
    m_nInterval = document.updateInterval();
    m_nFrames = std::max(m_channel.m_nColumnNum, 0);
    m_bBuilt = !document._dataTableDictionary.empty();
    if (m_bBuilt) {
        m_names = document._dataTableDictionary.objectForKey(0LL); // the one column made, if need be
        return;
    }
    // The same limit as building the table data, which would refuse it.
    if (m_nFrames > MyDocument::kMaxFrames)
        throw DocumentException::tooManyFrames(m_nFrames, MyDocument::kMaxFrames);
    if (!m_channel.m_snppDataImage_Col_Row.empty())
        collectAnchors();
}

void TableReader::readColumn(int column, FrameCell (&cells)[kParameterCount])
{
    if (!m_bBuilt) {
        for (int row = 0; row < kParameterCount; ++row)
            cells[row] = unbuiltCell(column, row);
        return;
    }
    const DataTableDictionary& data = m_document._dataTableDictionary;
    const DataTableDictionary::Peek peek = data.peek(static_cast<long long>(column) * m_nInterval);
    if (peek.cells) {
        const CellArray& made = *peek.cells;
        for (int row = 0; row < kParameterCount; ++row) {
            if (static_cast<std::size_t>(row) < made.size() && made[row]) {
                const ImageAndTextCell& c = *made[row];
                cells[row] = {c._nValue(), c._bSelected(), c._bAnchor()};
            } else {
                // A frame column missing a row (the column count changed without a rebuild) is
                // written from the parameter record.
                const ParameterDefinition& p = m_channel.m_Parameters[row];
                cells[row] = {p.nValue, p.bSelected != 0, false};
            }
        }
        return;
    }
    if (peek.pending >= 0) {
        const TableColumnSource& source = *data.pendingSource();
        const std::uint64_t anchors = source.anchors(peek.pending);
        for (int row = 0; row < kParameterCount; ++row)
            cells[row] = {source.value(peek.pending, row), source.shown[row], ((anchors >> row) & 1u) != 0};
        return;
    }
    for (int row = 0; row < kParameterCount; ++row) {
        const ParameterDefinition& p = m_channel.m_Parameters[row];
        cells[row] = {p.nValue, p.bSelected != 0, false};
    }
}

bool TableReader::rowSelected(int row) const
{
    if (!m_names || static_cast<std::size_t>(row) >= m_names->size() || !(*m_names)[row])
        return m_channel.m_Parameters[row].bSelected != 0;
    return (*m_names)[row]->_bSelected();
}

void TableReader::collectAnchors()
{
    const auto& list = m_channel.m_pAnchorPosition;
    for (std::size_t i = 0; i + 1 < list.size(); i += 2) {
        const long long row = list[i], frame = list[i + 1];
        if (row >= 0 && row < kParameterCount && frame >= 0 && frame < m_nFrames)
            m_anchors.push_back(frame * kParameterCount + row);
    }
    std::sort(m_anchors.begin(), m_anchors.end());
}

FrameCell TableReader::unbuiltCell(int column, int row)
{
    const ParameterDefinition& p = m_channel.m_Parameters[row];
    const DataGrid& grid = m_channel.m_snppDataImage_Col_Row;
    const std::size_t frame = static_cast<std::size_t>(column - 1);
    const bool fromGrid = !grid.empty();
    const long long number = static_cast<long long>(frame) * kParameterCount + row;
    while (m_nNextAnchor < m_anchors.size() && m_anchors[m_nNextAnchor] < number)
        ++m_nNextAnchor;
    const bool anchor = m_nNextAnchor < m_anchors.size() && m_anchors[m_nNextAnchor] == number;
    const int value = fromGrid && frame < grid.size() ? grid[frame][row] : p.nValue;
    return {value, p.bSelected != 0, anchor};
}

FrameImage::BlockRef TableReader::untouchedBlock(std::size_t b, int first, int end) const
{
    const DataTableDictionary& data = m_document._dataTableDictionary;
    const TableColumnSource* source = m_bBuilt ? data.pendingSource() : nullptr;
    // Frame f is table column f + 1, announced as index f + 1 when the keys use this interval.
    if (!source || data.pendingInterval() != m_nInterval || end > source->frames.frames() ||
        !data.allPending(first + 1, end - first))
        return nullptr;
    return source->frames.block(b);
}

FrameImage TableReader::image(const FrameImage& previous)
{
    FrameImage::Builder image(m_nFrames);
    FrameCell cells[kParameterCount];
    for (std::size_t b = 0; b < image.blockCount(); ++b) {
        const int first = image.firstFrame(b), end = image.endFrame(b);
        if (FrameImage::BlockRef untouched = untouchedBlock(b, first, end)) {
            image.share(b, std::move(untouched));
            continue;
        }
        FrameImage::Block& block = image.open();
        for (int frame = first; frame < end; ++frame) {
            readColumn(frame + 1, cells);
            std::uint64_t anchors = 0;
            for (int row = 0; row < kParameterCount; ++row) {
                block.setValue(frame - first, row, cells[row].value);
                anchors |= static_cast<std::uint64_t>(cells[row].anchor) << row;
            }
            block.anchors[static_cast<std::size_t>(frame - first)] = anchors;
        }
        const TableColumnSource* source =
            m_bBuilt ? m_document._dataTableDictionary.pendingSource() : nullptr;
        image.close(b, previous.block(b), source ? source->frames.block(b) : nullptr);
    }
    return image.take();
}
