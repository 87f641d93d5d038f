#pragma once
// A relocatable memory block: allocated zero-filled (or, for a buffer its maker overwrites at
// once, uninitialised), its size queryable, locked while its bytes are accessed, unlocked
// afterwards, disposed of by its owner (by destroying it). Locking is bookkeeping only (the
// block never moves) but callers keep the discipline so that a reader can tell a block in use.
// Large blocks are whole pages from the system (see BulkMemory.h). Not thread-safe; the audio
// thread only reads bytes of a block the main thread keeps locked.
#include <cstddef>
#include <cstdint>
#include <memory>

class MemoryBlock
{
public:
    // Zero-filled block of `bytes` bytes, or nullptr when the memory cannot be had.
    static std::unique_ptr<MemoryBlock> newHandleClear(std::size_t bytes);
    // A block whose bytes are unspecified until written, or nullptr: only for a maker that
    // writes every byte before anything reads the block.
    static std::unique_ptr<MemoryBlock> newHandle(std::size_t bytes);

    ~MemoryBlock();
    MemoryBlock(const MemoryBlock&) = delete;
    MemoryBlock& operator=(const MemoryBlock&) = delete;

    std::size_t size() const { return m_nSize; }
    void* lock()
    {
        ++m_nLockCount;
        return m_pBytes;
    }
    void unlock()
    {
        if (m_nLockCount > 0)
            --m_nLockCount;
    }
    bool isLocked() const { return m_nLockCount > 0; }

    // Direct access for code that holds the block locked or only reads it.
    std::uint8_t* bytes() { return m_pBytes; }
    const std::uint8_t* bytes() const { return m_pBytes; }
    float* floats() { return reinterpret_cast<float*>(m_pBytes); }
    const float* floats() const { return reinterpret_cast<const float*>(m_pBytes); }
    double* doubles() { return reinterpret_cast<double*>(m_pBytes); }
    const double* doubles() const { return reinterpret_cast<const double*>(m_pBytes); }

private:
    MemoryBlock(std::uint8_t* bytes, std::size_t size, std::size_t storage)
        : m_pBytes(bytes), m_nSize(size), m_nStorage(storage)
    {
    }
    static std::unique_ptr<MemoryBlock> make(std::size_t bytes, bool clear);

    std::uint8_t* m_pBytes = nullptr;
    std::size_t m_nSize = 0;
    std::size_t m_nStorage = 0; // bytes allocated: the size rounded up to whole doubles
    int m_nLockCount = 0;
};
