#pragma once
// A relocatable memory block: allocated zero-filled, its size queryable, locked while its
// bytes are accessed, unlocked afterwards, disposed of by its owner (by destroying it).
// Locking is bookkeeping only (the block never moves) but callers keep the discipline so
// that a reader can tell a block in use. Not thread-safe; the audio thread only reads bytes
// of a block the main thread keeps locked.
#include <cstddef>
#include <cstdint>
#include <memory>

class MemoryBlock
{
public:
    // Zero-filled block of `bytes` bytes, or nullptr when the memory cannot be had.
    static std::unique_ptr<MemoryBlock> newHandleClear(std::size_t bytes);

    std::size_t size() const { return m_nSize; }
    void* lock()
    {
        ++m_nLockCount;
        return m_pBytes.get();
    }
    void unlock()
    {
        if (m_nLockCount > 0)
            --m_nLockCount;
    }
    bool isLocked() const { return m_nLockCount > 0; }

    // Direct access for code that holds the block locked or only reads it.
    std::uint8_t* bytes() { return m_pBytes.get(); }
    const std::uint8_t* bytes() const { return m_pBytes.get(); }
    float* floats() { return reinterpret_cast<float*>(m_pBytes.get()); }
    const float* floats() const { return reinterpret_cast<const float*>(m_pBytes.get()); }
    double* doubles() { return reinterpret_cast<double*>(m_pBytes.get()); }
    const double* doubles() const { return reinterpret_cast<const double*>(m_pBytes.get()); }

private:
    MemoryBlock(std::unique_ptr<std::uint8_t[]> bytes, std::size_t size)
        : m_pBytes(std::move(bytes)), m_nSize(size)
    {
    }
    std::unique_ptr<std::uint8_t[]> m_pBytes;
    std::size_t m_nSize = 0;
    int m_nLockCount = 0;
};
