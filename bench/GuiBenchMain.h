#pragma once
// The main function of the GUI benchmarks: the test environment (offscreen platform, private
// folders, ALSA writing into a file), one QApplication around the whole run, and `beforeExit`
// for what must go before the application does (windows kept across benchmarks).
#include "support/TestEnvironment.h"

#include <QApplication>
#include <benchmark/benchmark.h>

#include <functional>

inline int runGuiBenchmarks(int argc, char** argv, const std::function<void()>& beforeExit = {})
{
    const std::string folder = prepareTestEnvironment();
    {
        QApplication app(argc, argv);
        benchmark::Initialize(&argc, argv);
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
        if (beforeExit)
            beforeExit();
    }
    removeTestEnvironment(folder);
    return 0;
}
