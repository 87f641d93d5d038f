#include "stimulus/PendingStimuli.h"

#include "document/AtomicFile.h"
#include "document/DocumentException.h"

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <unistd.h>

PendingStimuli::PendingStimuli() : m_owner(::getpid())
{
    std::string folder = (std::filesystem::temp_directory_path() / "tessaphon-stimuli-XXXXXX").string();
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
// byte order (the file never leaves the process tree that made it).
void PendingStimuli::keep(std::size_t index, const Stimulus& stimulus) const
{
    const std::vector<float>& samples = stimulus.samples();
    const std::int32_t rate = stimulus.rate();
    const int error = writeFileAtomically(path(index), [&](const PieceWriter& write) {
        return write(reinterpret_cast<const char*>(&rate), sizeof rate) &&
               write(reinterpret_cast<const char*>(samples.data()), samples.size() * sizeof(float));
    });
    if (error != 0)
        throw DocumentException(path(index), std::string("cannot write: ") + std::strerror(error));
}

Stimulus PendingStimuli::take(std::size_t index) const
{
    std::ifstream in(path(index), std::ios::binary | std::ios::ate);
    const std::streamoff size = in ? static_cast<std::streamoff>(in.tellg()) : -1;
    std::int32_t rate = 0;
    if (size < std::streamoff(sizeof rate) || (size - std::streamoff(sizeof rate)) % sizeof(float) != 0)
        throw DocumentException(path(index), "the prepared stimulus is missing or damaged");
    std::vector<float> samples(static_cast<std::size_t>(size - std::streamoff(sizeof rate)) / sizeof(float));
    in.seekg(0);
    in.read(reinterpret_cast<char*>(&rate), sizeof rate);
    in.read(reinterpret_cast<char*>(samples.data()), std::streamsize(samples.size() * sizeof(float)));
    if (!in)
        throw DocumentException(path(index), "the prepared stimulus could not be read");
    std::filesystem::remove(path(index));
    return Stimulus(std::move(samples), rate);
}
