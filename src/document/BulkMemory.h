#pragma once
// Storage for large buffers (audio blocks, analysis images): memory taken straight from the
// system in whole pages, so that it arrives zero-filled at no cost, and advised to be backed by
// 2 MB pages where the system allows it. A buffer of minutes of audio is then mapped in with a
// few faults instead of one per 4 KB page. Small requests go to the ordinary heap.
// Any thread; a buffer is freed with the size it was allocated with.
#include <cstddef>
#include <new>

namespace bulk
{

// Buffers of at least this many bytes are mapped in whole large pages (2 MB each, so a buffer
// may hold up to 2 MB more than it asked for); smaller ones come from the heap.
constexpr std::size_t kMappedBytes = std::size_t{512} << 10;

enum class Fill { Zeroed, Uninitialised };

// `bytes` bytes (at least one), 16-byte aligned; nullptr when the memory cannot be had (always
// for a terabyte or more).
// Uninitialised memory holds unspecified bytes: the caller writes every byte it reads.
void* allocate(std::size_t bytes, Fill fill);
void release(void* pointer, std::size_t bytes) noexcept;

// A standard allocator over the same storage, for containers that grow large. Containers
// value-initialise their elements all the same; the gain is in the page faults.
template <typename T> struct Allocator {
    using value_type = T;
    Allocator() = default;
    template <typename U> Allocator(const Allocator<U>&) noexcept {}
    T* allocate(std::size_t n)
    {
        if (n > static_cast<std::size_t>(-1) / sizeof(T))
            throw std::bad_array_new_length();
        void* p = bulk::allocate(n * sizeof(T), Fill::Uninitialised);
        if (!p)
            throw std::bad_alloc();
        return static_cast<T*>(p);
    }
    void deallocate(T* p, std::size_t n) noexcept { bulk::release(p, n * sizeof(T)); }
    template <typename U> bool operator==(const Allocator<U>&) const noexcept { return true; }
};

} // namespace bulk
