#pragma once

// The main of the benchmarks of the Qt layer: an application on the offscreen platform (fonts
// and widgets need one, a display doesn't), then Google Benchmark's usual run. `atEnd` runs
// while the application still exists, to take down what the benchmarks left.

#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <QApplication>
#include <functional>

inline int runQtBenchmarks(int argc, char** argv, const std::function<void()>& atEnd = nullptr) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    if (atEnd) {
        atEnd();
    }
    return 0;
}
