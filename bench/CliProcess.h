#pragma once
// Whole-process timings of tessaphon-cli for the benchmarks: each iteration starts the program
// (TESSAPHON_CLI, set by the build) and waits for it; the counter cpu_s gives the CPU time of
// the processes per iteration (user + system), which the machine's load does not inflate.
#include <benchmark/benchmark.h>

#include <spawn.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

extern char** environ;

namespace cliprocess
{

inline double childCpuSeconds()
{
    rusage usage{};
    ::getrusage(RUSAGE_CHILDREN, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// Runs tessaphon-cli with the arguments; false when it did not succeed.
inline bool run(const std::vector<std::string>& arguments)
{
    std::vector<char*> argv{const_cast<char*>(TESSAPHON_CLI)};
    for (const std::string& a : arguments)
        argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    pid_t pid = 0;
    if (::posix_spawn(&pid, TESSAPHON_CLI, nullptr, nullptr, argv.data(), environ) != 0)
        return false;
    int status = 0;
    ::waitpid(pid, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

inline void timeCommand(benchmark::State& state, const std::vector<std::string>& arguments)
{
    const double cpuBefore = childCpuSeconds();
    for (auto _ : state)
        if (!run(arguments))
            state.SkipWithError("tessaphon-cli failed");
    state.counters["cpu_s"] =
        benchmark::Counter((childCpuSeconds() - cpuBefore), benchmark::Counter::kAvgIterations);
}

} // namespace cliprocess
