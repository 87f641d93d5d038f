#include "document/TableValueWriter.h"

#include "document/TableColumnSource.h"

TableValueWriter::TableValueWriter(MyDocument& document) : m_data(document._dataTableDictionary)
{
    m_nInterval = document.updateInterval();
    const std::size_t count = m_data.count();
    m_nColumns = count < 2 ? 0 : static_cast<long long>(count) - 1;
    if (m_data.pendingSource() && m_data.pendingInterval() != m_nInterval)
        m_data.map(); // announced under other keys: read and changed as made columns
    m_source = m_data.pendingSource();
    if (m_source)
        m_edited.resize(m_source->frames.blockCount());
}

long long TableValueWriter::pendingFrame(long long column) const
{
    if (!m_source)
        return -1;
    const DataTableDictionary::Peek peek = m_data.peek(column * m_nInterval);
    if (peek.cells || peek.pending < 1 || peek.pending - 1 >= m_source->frames.frames())
        return -1;
    return peek.pending - 1;
}

bool TableValueWriter::value(long long column, int row, int& value) const
{
    const long long frame = pendingFrame(column);
    if (frame < 0)
        return m_data.valueAt(column * m_nInterval, row, value);
    value = current(frame).value(static_cast<int>(frame % FrameImage::kBlockFrames), row);
    return true;
}

const FrameImage::Block& TableValueWriter::current(long long frame) const
{
    const auto b = static_cast<std::size_t>(frame / FrameImage::kBlockFrames);
    return m_edited[b] ? *m_edited[b] : *m_source->frames.block(b);
}

std::uint64_t TableValueWriter::anchors(long long column) const
{
    const long long frame = pendingFrame(column);
    if (frame >= 0)
        return current(frame).anchors[static_cast<std::size_t>(frame % FrameImage::kBlockFrames)];
    const DataTableDictionary::Peek peek = m_data.peek(column * m_nInterval);
    if (peek.pending > 0)
        return m_source->anchors(peek.pending); // past the image's frames: none
    std::uint64_t bits = 0;
    if (peek.cells)
        for (std::size_t row = 0; row < peek.cells->size() && row < kParameterCount; ++row)
            if ((*peek.cells)[row] && (*peek.cells)[row]->_bAnchor())
                bits |= std::uint64_t{1} << row;
    return bits;
}

const ImageAndTextCell* TableValueWriter::definitionCell(long long column, int row) const
{
    if (row < 0)
        return nullptr;
    const DataTableDictionary::Peek peek = m_data.peek(column * m_nInterval);
    if (peek.cells)
        return static_cast<std::size_t>(row) < peek.cells->size() ? (*peek.cells)[row].get() : nullptr;
    if (peek.pending > 0 && m_source && row < kParameterCount)
        return &m_source->frameModel[static_cast<std::size_t>(row)];
    return nullptr;
}

FrameImage::Block& TableValueWriter::editable(long long frame)
{
    const auto b = static_cast<std::size_t>(frame / FrameImage::kBlockFrames);
    if (!m_edited[b])
        m_edited[b] = std::make_shared<FrameImage::Block>(*m_source->frames.block(b));
    return *m_edited[b];
}

bool TableValueWriter::setValue(long long column, int row, int value)
{
    const long long frame = pendingFrame(column);
    if (frame >= 0) {
        if (row < 0 || row >= kParameterCount)
            return false;
        editable(frame).replaceValue(static_cast<int>(frame % FrameImage::kBlockFrames), row, value);
        return true;
    }
    CellArray* cells = m_data.objectForKey(column * m_nInterval);
    if (!cells || row < 0 || static_cast<std::size_t>(row) >= cells->size() || !(*cells)[row])
        return false;
    auto cell = std::make_shared<ImageAndTextCell>();
    cell->copy(*(*cells)[row]);
    cell->set_nValue(value);
    cell->setInttoStringValue(value);
    (*cells)[row] = std::move(cell);
    return true;
}

void TableValueWriter::clearAnchors(long long column, std::uint64_t rows)
{
    const long long frame = pendingFrame(column);
    const auto at = static_cast<std::size_t>(frame % FrameImage::kBlockFrames);
    if (frame >= 0) {
        if (current(frame).anchors[at] & rows)
            editable(frame).anchors[at] &= ~rows;
        return;
    }
    CellArray* cells = m_data.objectForKey(column * m_nInterval);
    for (std::size_t row = 0; cells && row < cells->size() && row < kParameterCount; ++row)
        if (((rows >> row) & 1u) && (*cells)[row])
            (*cells)[row]->set_bAnchor(false);
}

void TableValueWriter::finish()
{
    if (!m_source)
        return;
    const FrameImage& old = m_source->frames;
    FrameImage::Builder image(old.frames());
    bool changed = false;
    for (std::size_t b = 0; b < image.blockCount(); ++b) {
        changed = changed || m_edited[b];
        image.share(b, m_edited[b] ? m_edited[b] : old.block(b));
    }
    if (!changed)
        return;
    auto source = std::make_shared<TableColumnSource>(*m_source);
    source->frames = image.take();
    m_data.replacePendingSource(std::move(source));
    m_source = nullptr;
    m_edited.clear();
}
