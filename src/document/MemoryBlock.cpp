#include "document/MemoryBlock.h"

#include <new>

std::unique_ptr<MemoryBlock> MemoryBlock::newHandleClear(std::size_t bytes)
{
    // Storage is 8-byte aligned for doubles; at least one byte so that an empty block
    // exists (a channel with 0 samples has an empty block, not a missing one).
    std::unique_ptr<std::uint8_t[]> storage(new (std::nothrow)
                                                std::uint8_t[bytes == 0 ? 8 : bytes + (8 - bytes % 8) % 8]());
    if (!storage)
        return nullptr;
    return std::unique_ptr<MemoryBlock>(new MemoryBlock(std::move(storage), bytes));
}
