#include "document/Channels.h"

#include <algorithm>
#include <cstring>

Channels::Channels() = default;

std::size_t Channels::sampleCount() const
{
    if (!m_hData || m_dwFileLength <= 0.0)
        return 0;
    const std::size_t wanted = static_cast<std::size_t>(m_dwFileLength);
    return std::min(wanted, m_hData->size() / sizeof(float));
}

namespace
{
// A copy of a derived-signal block: same length; filled with the source's values or left zero.
std::unique_ptr<MemoryBlock> copyBlock(const std::unique_ptr<MemoryBlock>& source, bool fill)
{
    if (!source)
        return nullptr;
    auto block = fill ? MemoryBlock::newHandle(source->size()) : MemoryBlock::newHandleClear(source->size());
    if (block && fill)
        std::memcpy(block->bytes(), source->bytes(), source->size());
    return block;
}

// What Channels::copyStateFrom does beside the assignment of the state: the labels and the
// derived signals.
void copyLabelsAndTracks(Channels& d, const Channels& s)
{
    d.m_pArrayLabels.clear();
    const std::size_t labels = std::min<std::size_t>(std::max(s.m_nLabelCount, 0), s.m_pArrayLabels.size());
    for (std::size_t i = 0; i < labels; ++i)
        if (s.m_pArrayLabels[i])
            d.m_pArrayLabels.push_back(std::make_unique<Labels>(*s.m_pArrayLabels[i]));
    d.m_nLabelCount = s.m_nLabelCount;

    // Intensity and pitch are copied; velocity and acceleration get blocks of the same
    // length that stay zero.
    d.m_hdIntensity = copyBlock(s.m_hdIntensity, true);
    d.m_hdPitch = copyBlock(s.m_hdPitch, true);
    d.m_hdVelocity = copyBlock(s.m_hdVelocity, false);
    d.m_hdAcceleration = copyBlock(s.m_hdAcceleration, false);
}

} // namespace

namespace
{
// The samples a duplicate holds: truncate(m_dwFileLength) of them, as many as the source's block
// has copied and the rest zero. A source without samples yields an empty block, not a missing one.
std::size_t duplicateBytes(const Channels& s)
{
    const std::size_t count = s.m_dwFileLength > 0.0 ? static_cast<std::size_t>(s.m_dwFileLength) : 0;
    return count * sizeof(float);
}

std::unique_ptr<MemoryBlock> copySamples(const Channels& s)
{
    const std::size_t bytes = duplicateBytes(s);
    auto block = MemoryBlock::newHandle(bytes);
    if (!block)
        return block;
    const std::size_t copied = s.m_hData ? std::min(bytes, s.m_hData->size()) : 0;
    if (copied > 0)
        std::memcpy(block->bytes(), s.m_hData->bytes(), copied);
    std::memset(block->bytes() + copied, 0, bytes - copied);
    return block;
}
} // namespace

void Channels::Duplicate(const Channels& s)
{
    m_hData = copySamples(s);
    copyStateFrom(s);
}

void Channels::DuplicateTakingSamples(Channels& s)
{
    // The source's block is exactly what a copy would hold when it has the duplicate's size;
    // a block being played stays where the player took it from.
    if (s.m_hData && s.m_hData->size() == duplicateBytes(s) && !s.m_hData->isLocked())
        m_hData = std::move(s.m_hData);
    else
        m_hData = copySamples(s);
    copyStateFrom(s);
}

void Channels::copyStateFrom(const Channels& s)
{
    static_cast<ChannelState&>(*this) = s;
    copyLabelsAndTracks(*this, s);
}
