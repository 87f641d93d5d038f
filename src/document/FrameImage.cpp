#include "document/FrameImage.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <unordered_set>

int FrameImage::Block::value(int frame, int row) const
{
    const std::int16_t narrow = values[static_cast<std::size_t>(frame)][static_cast<std::size_t>(row)];
    if (wide.empty())
        return narrow;
    const auto key = static_cast<std::uint32_t>(frame * kParameterCount + row);
    const auto it =
        std::lower_bound(wide.begin(), wide.end(), std::pair<std::uint32_t, std::int32_t>{key, INT_MIN});
    return it != wide.end() && it->first == key ? it->second : narrow;
}

void FrameImage::Block::setValue(int frame, int row, int value)
{
    if (value >= INT16_MIN && value <= INT16_MAX) {
        values[static_cast<std::size_t>(frame)][static_cast<std::size_t>(row)] =
            static_cast<std::int16_t>(value);
        return;
    }
    // Blocks are filled frame by frame, rows in order, so wide values arrive in order.
    values[static_cast<std::size_t>(frame)][static_cast<std::size_t>(row)] = 0;
    wide.emplace_back(static_cast<std::uint32_t>(frame * kParameterCount + row), value);
}

void FrameImage::Block::replaceValue(int frame, int row, int value)
{
    const auto key = static_cast<std::uint32_t>(frame * kParameterCount + row);
    const auto it =
        std::lower_bound(wide.begin(), wide.end(), std::pair<std::uint32_t, std::int32_t>{key, INT_MIN});
    const bool listed = it != wide.end() && it->first == key;
    auto& narrow = values[static_cast<std::size_t>(frame)][static_cast<std::size_t>(row)];
    if (value >= INT16_MIN && value <= INT16_MAX) {
        if (listed)
            wide.erase(it);
        narrow = static_cast<std::int16_t>(value);
        return;
    }
    narrow = 0;
    if (listed)
        it->second = value;
    else
        wide.insert(it, {key, value});
}

FrameImage::Builder::Builder(int frames)
{
    m_nFrames = std::max(frames, 0);
    m_blocks.resize(static_cast<std::size_t>((m_nFrames + kBlockFrames - 1) / kBlockFrames));
}

int FrameImage::Builder::endFrame(std::size_t b) const
{
    return std::min(firstFrame(b) + kBlockFrames, m_nFrames);
}

void FrameImage::Builder::share(std::size_t b, BlockRef block)
{
    m_blocks[b] = std::move(block);
}

FrameImage::Block& FrameImage::Builder::open()
{
    if (!m_open)
        m_open = std::make_shared<Block>();
    else
        *m_open = Block{};
    return *m_open;
}

void FrameImage::Builder::close(std::size_t b, const BlockRef& candidate1, const BlockRef& candidate2)
{
    const BlockRef before = b > 0 ? m_blocks[b - 1] : nullptr;
    for (const BlockRef& same : {candidate1, candidate2, before}) {
        if (same && *same == *m_open) {
            m_blocks[b] = same; // the block written is reused for the next one
            return;
        }
    }
    m_blocks[b] = std::move(m_open);
}

FrameImage FrameImage::Builder::take()
{
    m_open.reset();
    FrameImage image;
    image.m_nFrames = m_nFrames;
    image.m_blocks = std::move(m_blocks);
    return image;
}

long long FrameImage::anchorCount() const
{
    long long count = 0;
    for (int frame = 0; frame < m_nFrames; ++frame)
        count += std::popcount(anchors(frame));
    return count;
}

bool FrameImage::hasWideValues() const
{
    return std::any_of(m_blocks.begin(), m_blocks.end(), [](const BlockRef& b) { return !b->wide.empty(); });
}

std::size_t FrameImage::bytesNotIn(const FrameImage& other) const
{
    std::unordered_set<const Block*> shared;
    for (const BlockRef& b : other.m_blocks)
        shared.insert(b.get());
    std::unordered_set<const Block*> counted;
    std::size_t bytes = 0;
    for (const BlockRef& b : m_blocks)
        if (!shared.count(b.get()) && counted.insert(b.get()).second)
            bytes += sizeof(Block) + b->wide.capacity() * sizeof(b->wide[0]);
    return bytes;
}

FrameImage::BlockRef FrameImage::wholeBlock(int first, int end) const
{
    if (first < 0 || first % kBlockFrames != 0 || end > m_nFrames)
        return nullptr;
    const std::size_t b = static_cast<std::size_t>(first / kBlockFrames);
    return std::min(first + kBlockFrames, m_nFrames) == end ? m_blocks[b] : nullptr;
}

void FrameImage::copyFrame(int frame, Block& block, int at, const Fill& fill) const
{
    const auto to = static_cast<std::size_t>(at);
    if (frame < 0 || frame >= m_nFrames) {
        for (int row = 0; row < kParameterCount; ++row)
            block.setValue(at, row, fill[static_cast<std::size_t>(row)]);
        block.anchors[to] = 0;
        return;
    }
    const Block& from = *m_blocks[static_cast<std::size_t>(frame / kBlockFrames)];
    const int i = frame % kBlockFrames;
    if (from.wide.empty())
        block.values[to] = from.values[static_cast<std::size_t>(i)];
    else
        for (int row = 0; row < kParameterCount; ++row)
            block.setValue(at, row, from.value(i, row));
    block.anchors[to] = from.anchors[static_cast<std::size_t>(i)];
}

FrameImage FrameImage::spliced(const Splice& splice, const Fill& fill) const
{
    const int at = std::clamp(splice.at, 0, std::max(splice.frames, 0));
    const int removed = std::clamp(splice.removed, 0, std::max(splice.frames, 0) - at);
    const int inserted = std::max(splice.inserted, 0);
    const int shift = inserted - removed;
    const int kept = std::max(splice.frames, 0);
    // Frame f of the new image is frame sourceOf(f) here; -1 for an inserted frame.
    auto sourceOf = [&](int f) {
        if (f < at)
            return f;
        return f < at + inserted ? -1 : f - shift;
    };
    Builder image(kept + shift);
    for (std::size_t b = 0; b < image.blockCount(); ++b) {
        const int first = image.firstFrame(b), end = image.endFrame(b);
        const bool before = end <= at, after = first >= at + inserted;
        const int from = before ? first : first - shift;
        if (BlockRef same = before || after ? wholeBlock(from, from + end - first) : nullptr) {
            image.share(b, std::move(same));
            continue;
        }
        Block& block = image.open();
        for (int f = first; f < end; ++f)
            copyFrame(sourceOf(f), block, f - first, fill);
        image.close(b, nullptr, nullptr);
    }
    return image.take();
}
