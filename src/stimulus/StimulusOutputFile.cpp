#include "stimulus/StimulusOutputFile.h"

#include "document/AtomicFile.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <mutex>
#include <sstream>

namespace
{

std::mutex g_pathMutex;
std::string g_path;

} // namespace

void StimulusOutputFile::setDefaultPath(const std::string& path)
{
    const std::lock_guard lock(g_pathMutex);
    g_path = path;
}

std::string StimulusOutputFile::defaultPath()
{
    const std::lock_guard lock(g_pathMutex);
    return g_path;
}

std::string StimulusOutputFile::encode(const StimulusOutput& output)
{
    std::ostringstream text;
    text << "# Tessaphon audio output (Save Audio), one option a line as tessaphon-cli names it\n";
    text << "rate " << output.rate << "\n";
    text << "normalize " << output.normalizeText() << "\n";
    text << "allow-clip " << (output.allowClip ? "on" : "off") << "\n";
    text << "ramp " << output.rampMS << "\n";
    text << "pad " << output.padBeforeMS << "," << output.padAfterMS << "\n";
    text << "bits " << output.bits << "\n";
    text << "format " << (output.format == StimulusOutput::Format::Flac ? "flac" : "wav") << "\n";
    return text.str();
}

bool StimulusOutputFile::decode(const std::string& text, StimulusOutput& output)
{
    StimulusOutput read;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        if (line.empty() || line.front() == '#')
            continue;
        const std::size_t space = line.find(' ');
        const std::string name = line.substr(0, space);
        const std::string value = space == std::string::npos ? "" : line.substr(space + 1);
        // A rate of 0 is how the file says "the synthesis rate".
        if (name == "rate" && value == "0") {
            read.rate = 0;
            continue;
        }
        if (!read.set(name, value, nullptr))
            return false;
    }
    // Settings equal to the defaults are plain output, whatever the file spelled out.
    read.given = false;
    output = read;
    return true;
}

StimulusOutput StimulusOutputFile::load()
{
    StimulusOutput output;
    const std::string path = defaultPath();
    if (path.empty())
        return output;
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return output;
    const std::string text{std::istreambuf_iterator<char>(in), {}};
    decode(text, output);
    return output;
}

bool StimulusOutputFile::store(const StimulusOutput& output, std::string* error)
{
    const std::string path = defaultPath();
    if (path.empty()) {
        if (error)
            *error = "no place to keep the audio output settings";
        return false;
    }
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    if (const int code = writeFileAtomically(path, encode(output)); code != 0) {
        if (error)
            *error = path + ": " + std::strerror(code);
        return false;
    }
    return true;
}
