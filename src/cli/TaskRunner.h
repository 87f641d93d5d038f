#pragma once
// The job runner of the batch commands: each task in a child process of its own, a few at once,
// under a progress bar. Call it from the main thread only.
#include <cstddef>
#include <functional>
#include <string>

// Runs tasks 0 .. count-1, up to `jobs` at once (0: one per core), each in a child process of
// its own, under a progress bar labelled `label`. Each task runs under guardFile(file(i), ...);
// a task that fails (or dies) is reported as its one line at once and the others go on.
// Returns the number of failed tasks.
std::size_t runTasks(std::size_t count, unsigned jobs, const std::string& label,
                     const std::function<std::string(std::size_t)>& file,
                     const std::function<void(std::size_t)>& work);
