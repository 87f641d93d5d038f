#pragma once
// The bytes of an input file, read in one go into memory of their own: a long document lands in
// large pages (see document/BulkMemory.h) with one read call, and nothing is copied after it.
// Files that cannot be sized (pipes) are read to their end. Move-only; any thread.
#include <cstddef>
#include <string>
#include <string_view>

class FileBytes
{
public:
    FileBytes() = default;
    FileBytes(FileBytes&& other) noexcept;
    FileBytes& operator=(FileBytes&& other) noexcept;
    FileBytes(const FileBytes&) = delete;
    FileBytes& operator=(const FileBytes&) = delete;
    ~FileBytes();

    // Reads the whole file; answers 0 or the system's error number (EIO for a failed
    // allocation), leaving the bytes empty on failure.
    int read(const std::string& path);

    std::string_view view() const { return {m_pBytes, m_nSize}; }
    std::size_t size() const { return m_nSize; }

private:
    bool reserve(std::size_t capacity);
    void reset() noexcept;

    char* m_pBytes = nullptr;
    std::size_t m_nSize = 0;
    std::size_t m_nCapacity = 0;
};
