#include "document/BulkMemory.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>

namespace bulk
{
namespace
{

// Under the address sanitizer every buffer comes from the heap, where overruns are caught.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kMapLargeBuffers = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kMapLargeBuffers = false;
#else
constexpr bool kMapLargeBuffers = true;
#endif
#else
constexpr bool kMapLargeBuffers = true;
#endif

constexpr std::size_t kLargestBytes = (std::size_t{1} << 40) - (std::size_t{4} << 20);
constexpr std::size_t kHugePage = std::size_t{2} << 20;

std::size_t roundUp(std::size_t bytes, std::size_t unit)
{
    return (bytes + unit - 1) / unit * unit;
}

// The length mapped for a buffer: whole large pages, so that they back it to its last byte (a
// partly covered large page would fall back to small pages, one fault each).
std::size_t mappedLength(std::size_t bytes)
{
    return roundUp(bytes, kHugePage);
}

// Whole pages from the system, zero-filled by it, starting on a 2 MB boundary so that the large
// pages can back them from the first byte on.
void* mapPages(std::size_t bytes)
{
    const std::size_t length = mappedLength(bytes);
    // Map a large page more than needed and give back the ends outside the aligned range.
    void* raw =
        ::mmap(nullptr, length + kHugePage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (raw == MAP_FAILED)
        return nullptr;
    const auto start = reinterpret_cast<std::uintptr_t>(raw);
    const std::uintptr_t aligned = roundUp(start, kHugePage);
    if (aligned > start)
        ::munmap(raw, aligned - start);
    const std::uintptr_t end = start + length + kHugePage;
    if (end > aligned + length)
        ::munmap(reinterpret_cast<void*>(aligned + length), end - (aligned + length));
    void* p = reinterpret_cast<void*>(aligned);
#ifdef MADV_HUGEPAGE
    ::madvise(p, length, MADV_HUGEPAGE); // advice only: without large pages the mapping still works
#endif
    return p;
}

} // namespace

void* allocate(std::size_t bytes, Fill fill)
{
    if (bytes == 0)
        bytes = 1;
    // Nothing here needs a terabyte: a request that large is refused before any rounding could
    // wrap (and before the address sanitizer's allocator would stop the program over it).
    if (bytes > kLargestBytes)
        return nullptr;
    if (kMapLargeBuffers && bytes >= kMappedBytes)
        return mapPages(bytes);
    const std::size_t rounded = roundUp(bytes, 16);
    return fill == Fill::Zeroed ? std::calloc(1, rounded) : std::aligned_alloc(16, rounded);
}

void release(void* pointer, std::size_t bytes) noexcept
{
    if (!pointer)
        return;
    if (bytes == 0)
        bytes = 1;
    if (kMapLargeBuffers && bytes >= kMappedBytes)
        ::munmap(pointer, mappedLength(bytes));
    else
        std::free(pointer);
}

} // namespace bulk
