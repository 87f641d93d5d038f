#include "document/AtomicFile.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

bool writeAll(int fd, const char* bytes, std::size_t size)
{
    std::size_t done = 0;
    while (done < size) {
        const ssize_t n = ::write(fd, bytes + done, size - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

} // namespace

int writeFileAtomically(const std::string& path, const std::string& bytes)
{
    return writeFileAtomically(
        path, [&bytes](const PieceWriter& write) { return write(bytes.data(), bytes.size()); });
}

int writeFileAtomically(const std::string& path, const std::function<bool(const PieceWriter&)>& produce)
{
    namespace fs = std::filesystem;
    const fs::path target(path);
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    std::string temporary = (folder / ("." + target.filename().string() + ".XXXXXX")).string();
    const int fd = ::mkstemp(temporary.data());
    if (fd < 0)
        return errno;
    struct stat old {
    };
    ::fchmod(fd, ::stat(path.c_str(), &old) == 0 ? (old.st_mode & 07777) : 0644);
    errno = 0;
    bool produced = false;
    try {
        produced = produce([fd](const char* bytes, std::size_t size) { return writeAll(fd, bytes, size); });
    } catch (...) {
        ::close(fd);
        ::unlink(temporary.c_str());
        throw;
    }
    const bool written = produced && ::fsync(fd) == 0;
    const int writeError = errno != 0 ? errno : EIO;
    const bool closed = ::close(fd) == 0;
    if (!written || !closed || ::rename(temporary.c_str(), path.c_str()) != 0) {
        const int error = !written ? writeError : errno;
        ::unlink(temporary.c_str());
        return error != 0 ? error : EIO;
    }
    // Make the rename itself durable; a folder that cannot be synced does not undo the write.
    const int folderFd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    if (folderFd >= 0) {
        ::fsync(folderFd);
        ::close(folderFd);
    }
    return 0;
}
