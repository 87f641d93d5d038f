#pragma once
// Runs tessaphon-cli as a user would and collects its exit status and output.
#include "support/TestFiles.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>
#include <sys/wait.h>

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

// A fresh temporary folder for one test, removed with it.
struct TempDir {
    std::filesystem::path path;
    TempDir()
    {
        path = std::filesystem::temp_directory_path() /
               ("tessaphon-test-" + std::to_string(::getpid()) + "-" + std::to_string(counter()++));
        std::filesystem::create_directories(path);
    }
    ~TempDir() { std::filesystem::remove_all(path); }
    std::string operator/(const std::string& name) const { return (path / name).string(); }
    static int& counter()
    {
        static int n = 0;
        return n;
    }
};
