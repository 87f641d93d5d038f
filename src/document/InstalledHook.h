#pragma once
// InstalledHook: the one slot of a function that a higher library (or a test) installs and a
// lower library calls, so that the lower one names no code above it: the synthesizer behind
// MyDocument::Synthesize, the configuration file a new document reads, the windows the table
// opens, the alert a test records instead of showing. `Tag` tells apart hooks of one function
// type. The slot is a function-local static, so a hook installed from another file's static
// initializer before main() finds its slot made. Installed at start or by a test; main thread.
#include <utility>

template <typename Tag, typename Function> class InstalledHook
{
public:
    static void install(Function function) { slot() = std::move(function); }
    static bool installed() { return static_cast<bool>(slot()); }
    static const Function& function() { return slot(); }

private:
    static Function& slot()
    {
        static Function installedFunction{};
        return installedFunction;
    }
};
