#include "cli/TaskRunner.h"

#include "cli/CliErrors.h"
#include "cli/ProgressBar.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <map>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

// One task in a child process of its own: the synthesizer keeps process-wide state from one
// synthesis to the next, so a document synthesized in a fresh process is synthesized exactly as
// a single command does it. The child reports its failure line through `reportFd`.
[[noreturn]] void runChild(int reportFd, const std::string& file, const std::function<void()>& work)
{
    int status = ExitOk;
    try {
        guardFile(file, work);
    } catch (const CliInputError& error) {
        const std::string line = cliErrorLine(error) + "\n";
        [[maybe_unused]] const ssize_t n = ::write(reportFd, line.data(), line.size());
        status = ExitBadInput;
    }
    std::fflush(stdout);
    std::fflush(stderr);
    ::_exit(status);
}

struct RunningTask {
    std::size_t index;
    int reportFd;
};

// Waits for one child; answers whether its task failed, after reporting the failure.
bool reapChild(std::map<pid_t, RunningTask>& running, ProgressBar& bar,
               const std::function<std::string(std::size_t)>& file)
{
    int status = 0;
    pid_t pid;
    while ((pid = ::waitpid(-1, &status, 0)) < 0 && errno == EINTR) {
    }
    const auto it = running.find(pid);
    if (it == running.end())
        return false;
    const RunningTask task = it->second;
    running.erase(it);
    std::string report;
    char buffer[512];
    for (ssize_t n; (n = ::read(task.reportFd, buffer, sizeof buffer)) > 0;)
        report.append(buffer, static_cast<std::size_t>(n));
    ::close(task.reportFd);
    const bool failed = !WIFEXITED(status) || WEXITSTATUS(status) != ExitOk;
    if (failed && report.empty())
        report = cliErrorLine({file(task.index), WIFSIGNALED(status)
                                                     ? "stopped by signal " + std::to_string(WTERMSIG(status))
                                                     : "failed"}) +
                 "\n";
    if (failed)
        bar.print(report);
    bar.advance();
    return failed;
}

} // namespace

std::size_t runTasks(std::size_t count, unsigned jobs, const std::string& label,
                     const std::function<std::string(std::size_t)>& file,
                     const std::function<void(std::size_t)>& work)
{
    if (jobs == 0)
        jobs = std::max(1u, std::thread::hardware_concurrency());
    // Tidy the heap once here rather than in every child: a child's first allocations would
    // otherwise consolidate the parent's freed chunks, copying each page they touch.
    ::malloc_trim(0);
    ProgressBar bar(label, count);
    std::map<pid_t, RunningTask> running;
    std::size_t failed = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (running.size() >= jobs)
            failed += reapChild(running, bar, file) ? 1 : 0;
        int report[2];
        if (::pipe(report) != 0) {
            bar.print(cliErrorLine({file(i), std::string("cannot start: ") + std::strerror(errno)}) + "\n");
            ++failed;
            continue;
        }
        std::fflush(stdout);
        std::fflush(stderr);
        const pid_t pid = ::fork();
        if (pid == 0) {
            ::close(report[0]);
            runChild(report[1], file(i), [&work, i] { work(i); });
        }
        ::close(report[1]);
        if (pid < 0) {
            ::close(report[0]);
            bar.print(cliErrorLine({file(i), std::string("cannot start: ") + std::strerror(errno)}) + "\n");
            ++failed;
            continue;
        }
        running[pid] = {i, report[0]};
    }
    while (!running.empty())
        failed += reapChild(running, bar, file) ? 1 : 0;
    return failed;
}
