#include "document/MemoryBlock.h"

#include "document/BulkMemory.h"

#include <cstring>
#include <new>

std::unique_ptr<MemoryBlock> MemoryBlock::make(std::size_t bytes, bool clear)
{
    // Storage is 8-byte aligned for doubles and rounded up to whole doubles; at least one
    // double so that an empty block exists (a channel with 0 samples has an empty block, not a
    // missing one).
    if (bytes > SIZE_MAX - 8)
        return nullptr;
    const std::size_t storage = bytes == 0 ? 8 : bytes + (8 - bytes % 8) % 8;
    auto* p = static_cast<std::uint8_t*>(
        bulk::allocate(storage, clear ? bulk::Fill::Zeroed : bulk::Fill::Uninitialised));
    if (!p)
        return nullptr;
    // The rounding beyond the size is never written by a maker: keep it zero.
    if (!clear && storage > bytes)
        std::memset(p + bytes, 0, storage - bytes);
    std::unique_ptr<MemoryBlock> block(new (std::nothrow) MemoryBlock(p, bytes, storage));
    if (!block)
        bulk::release(p, storage);
    return block;
}

std::unique_ptr<MemoryBlock> MemoryBlock::newHandleClear(std::size_t bytes)
{
    return make(bytes, true);
}

std::unique_ptr<MemoryBlock> MemoryBlock::newHandle(std::size_t bytes)
{
    return make(bytes, false);
}

MemoryBlock::~MemoryBlock()
{
    bulk::release(m_pBytes, m_nStorage);
}
