#include "cli/FileBytes.h"

#include "document/BulkMemory.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

FileBytes::FileBytes(FileBytes&& other) noexcept
    : m_pBytes(std::exchange(other.m_pBytes, nullptr)), m_nSize(std::exchange(other.m_nSize, 0)),
      m_nCapacity(std::exchange(other.m_nCapacity, 0))
{
}

FileBytes& FileBytes::operator=(FileBytes&& other) noexcept
{
    if (this != &other) {
        reset();
        m_pBytes = std::exchange(other.m_pBytes, nullptr);
        m_nSize = std::exchange(other.m_nSize, 0);
        m_nCapacity = std::exchange(other.m_nCapacity, 0);
    }
    return *this;
}

FileBytes::~FileBytes()
{
    reset();
}

void FileBytes::reset() noexcept
{
    bulk::release(m_pBytes, m_nCapacity);
    m_pBytes = nullptr;
    m_nSize = 0;
    m_nCapacity = 0;
}

bool FileBytes::reserve(std::size_t capacity)
{
    if (capacity <= m_nCapacity)
        return true;
    auto* bytes = static_cast<char*>(bulk::allocate(capacity, bulk::Fill::Uninitialised));
    if (!bytes)
        return false;
    if (m_nSize > 0)
        std::memcpy(bytes, m_pBytes, m_nSize);
    bulk::release(m_pBytes, m_nCapacity);
    m_pBytes = bytes;
    m_nCapacity = capacity;
    return true;
}

int FileBytes::read(const std::string& path)
{
    reset();
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return errno;
    // One read of the size the file has now (one byte more shows that it has not grown); a
    // file that cannot be sized is read in growing steps to its end.
    struct stat st {
    };
    const std::size_t expected = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_size > 0
                                     ? static_cast<std::size_t>(st.st_size)
                                     : 0;
    int error = 0;
    if (!reserve(std::max<std::size_t>(expected + 1, 65536)))
        error = EIO;
    while (error == 0) {
        if (m_nSize == m_nCapacity && !reserve(2 * m_nCapacity)) {
            error = EIO;
            break;
        }
        const ssize_t n = ::read(fd, m_pBytes + m_nSize, m_nCapacity - m_nSize);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            error = errno;
        if (n <= 0)
            break;
        m_nSize += static_cast<std::size_t>(n);
    }
    ::close(fd);
    if (error != 0)
        reset();
    return error;
}
