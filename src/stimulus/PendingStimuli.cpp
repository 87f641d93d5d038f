#include "stimulus/PendingStimuli.h"

#include "document/DocumentException.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

// Memory-backed /dev/shm unless TMPDIR says otherwise: the files live for a moment, and a
// disk's file system charges for every one made and removed.
std::filesystem::path pendingRoot()
{
    const char* tmpdir = std::getenv("TMPDIR");
    std::error_code error;
    if ((!tmpdir || !*tmpdir) && std::filesystem::is_directory("/dev/shm", error) &&
        ::access("/dev/shm", W_OK | X_OK) == 0)
        return "/dev/shm";
    return std::filesystem::temp_directory_path();
}

} // namespace

PendingStimuli::PendingStimuli() : m_owner(::getpid())
{
    std::string folder = (pendingRoot() / "tessaphon-stimuli-XXXXXX").string();
    if (!::mkdtemp(folder.data()))
        throw DocumentException(folder, std::string("cannot make the folder: ") + std::strerror(errno));
    m_strFolder = folder;
}

PendingStimuli::~PendingStimuli()
{
    if (::getpid() != m_owner)
        return;
    std::error_code ignored;
    std::filesystem::remove_all(m_strFolder, ignored);
}

std::string PendingStimuli::path(std::size_t index) const
{
    return m_strFolder + "/" + std::to_string(index) + ".f32";
}

// The file: the rate as a 32-bit integer, then the samples as 32-bit floats, in this machine's
// byte order (the file never leaves the process tree that made it). It is not synced to the
// disk: it lives for a moment and a crash loses nothing worth keeping.
void PendingStimuli::keep(std::size_t index, const Stimulus& stimulus) const
{
    const std::vector<float>& samples = stimulus.samples();
    const std::int32_t rate = stimulus.rate();
    std::ofstream out(path(index), std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(&rate), sizeof rate);
    out.write(reinterpret_cast<const char*>(samples.data()), std::streamsize(samples.size() * sizeof(float)));
    out.close();
    if (!out)
        throw DocumentException(path(index), std::string("cannot write: ") + std::strerror(errno));
}

Stimulus PendingStimuli::take(std::size_t index) const
{
    const std::string file = path(index);
    const int fd = ::open(file.c_str(), O_RDONLY);
    struct stat status {
    };
    if (fd < 0 || ::fstat(fd, &status) != 0 || status.st_size < off_t(sizeof(std::int32_t)) ||
        (status.st_size - off_t(sizeof(std::int32_t))) % off_t(sizeof(float)) != 0) {
        if (fd >= 0)
            ::close(fd);
        throw DocumentException(file, "the prepared stimulus is missing or damaged");
    }
    // Mapped rather than read: the samples are copied once, into the stimulus.
    const auto size = static_cast<std::size_t>(status.st_size);
    void* mapped = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, fd, 0);
    ::close(fd);
    if (mapped == MAP_FAILED)
        throw DocumentException(file, std::string("cannot read: ") + std::strerror(errno));
    std::int32_t rate = 0;
    std::memcpy(&rate, mapped, sizeof rate);
    const auto* first = reinterpret_cast<const float*>(static_cast<const char*>(mapped) + sizeof rate);
    std::vector<float> samples;
    try {
        samples.assign(first, first + (size - sizeof rate) / sizeof(float));
    } catch (...) {
        ::munmap(mapped, size);
        throw;
    }
    ::munmap(mapped, size);
    ::unlink(file.c_str());
    return Stimulus(std::move(samples), rate);
}
