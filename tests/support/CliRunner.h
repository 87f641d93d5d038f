#pragma once
// Runs tessaphon-cli as a user would and collects its exit status and output; saves the documents
// the commands are given.
#include "document/MyDocument.h"
#include "support/TestChannels.h"
#include "support/TestDocuments.h"
#include "support/TestFiles.h"
#include "support/TestSignals.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <vector>

struct CliResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

// `shellPrefix` runs before the program in the same shell (e.g. "ulimit -v 40000;").
inline CliResult runCliAfter(const std::string& shellPrefix, const std::string& arguments)
{
    const auto dir = std::filesystem::temp_directory_path();
    const auto errFile = dir / ("tessaphon-cli-stderr-" + std::to_string(::getpid()));
    const std::string command =
        shellPrefix + " " + std::string(TESSAPHON_CLI) + " " + arguments + " 2>" + errFile.string();
    CliResult result;
    if (std::FILE* pipe = ::popen(command.c_str(), "r")) {
        std::array<char, 4096> buffer;
        std::size_t n;
        while ((n = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0)
            result.out.append(buffer.data(), n);
        const int status = ::pclose(pipe);
        result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    result.err = slurp(errFile);
    std::filesystem::remove(errFile);
    return result;
}

inline CliResult runCli(const std::string& arguments)
{
    return runCliAfter("", arguments);
}

// Runs a command that must succeed: when it does not, its exit code and error output end the test.
inline CliResult runCliOk(const std::string& arguments)
{
    CliResult result = runCli(arguments);
    if (result.exitCode != 0)
        throw std::runtime_error(arguments + ": exit " + std::to_string(result.exitCode) + ", " + result.err);
    return result;
}

// The lines of `text`, without their line ends.
inline std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

// Saves a document of `frames` frames of 10 ms whose rows (Row::...) hold one value each in every
// frame; the other rows keep their factory values.
inline void saveTestDocument(const std::string& path, int frames,
                             std::initializer_list<std::pair<int, int>> rows)
{
    auto document = makeTestDocument(frames);
    for (const auto& [row, value] : rows)
        setRowValue(*document, row, value);
    std::string error;
    ASSERT_TRUE(document->writeSafelyToURL(path, "stk", &error)) << error;
}

// Writes samples as a WAVE file with the document's own writer; the path.
inline std::string writeWave(const std::string& path, const std::vector<float>& samples, double sampleRate)
{
    std::ofstream(path, std::ios::binary) << waveFileBytes(samples, sampleRate);
    return path;
}

// Writes one steady vowel (120 Hz; formants at 700, 1220 and 2600 Hz) of `seconds` at 11025 Hz
// as a WAVE file; the path.
inline std::string writeVowel(const std::string& path, double seconds, double gain = 0.05)
{
    const int count = static_cast<int>(seconds * 11025);
    return writeWave(
        path,
        signals::toFloat(
            signals::vowel(count, 120.0, 11025.0, {{700.0, 130.0}, {1220.0, 70.0}, {2600.0, 160.0}}), gain),
        11025.0);
}

// The big-endian 32-bit number at `at` (PNG header fields).
inline std::uint32_t bigEndian32(const std::string& bytes, std::size_t at)
{
    std::uint32_t v = 0;
    for (std::size_t i = at; i < at + 4; ++i)
        v = v << 8 | std::uint8_t(bytes[i]);
    return v;
}
