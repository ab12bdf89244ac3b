// A tick of a running timer in the real timer window, offscreen: what it costs until the
// window has repainted, and which widgets it repaints. Only the time display may: the counter
// other_paints says how many paints went anywhere else (goal 0).
#include <benchmark/benchmark.h>
#include <stdlib.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <cstdint>
#include <filesystem>
#include <map>

#include "foundation/tkClock.h"
#include "platform/tkUserInfoPosix.h"
#include "preferences/tkPaths.h"
#include "timers/tkRefreshTicker.h"
#include "timers/tkTimerArray.h"
#include "ui/tkCLTAppDelegate.h"
#include "ui/tkTimerWindowQt.h"
#include "ui/tkTimerWindowQtC.h"

namespace {

// The benchmark's own clock, so that every tick shows a new second.
int64_t now = 1'700'000'000'000;

class PaintCounter : public QObject {
  public:
    std::map<QObject*, int> paints;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            ++paints[watched];
        }
        return false;
    }
};

void BM_RunningTimerTick(benchmark::State& state) {
    setCurrentTimeSource([] { return now; });
    setUserInfoSource([] { return std::string("Bench User"); }, posixDataFolder);
    tkCLTAppDelegate delegate;
    delegate.applicationDidFinishLaunching();
    auto* bridge = static_cast<tkTimerWindowQtC*>(tkTimerArray::instance().windowForTimer(0));
    tkTimerWindowQt* window = bridge->window();
    window->show();
    window->findChild<QAbstractButton*>(QStringLiteral("startStopButton"))->click();
    auto* display = window->findChild<QLineEdit*>(QStringLiteral("timeDisplay"));
    QCoreApplication::processEvents();

    PaintCounter counter;
    QList<QWidget*> widgets = window->findChildren<QWidget*>();
    widgets.append(window);
    for (QWidget* widget : widgets) {
        widget->installEventFilter(&counter);
    }
    // Whatever the start left to paint is painted before the ticks are counted.
    QElapsedTimer settle;
    settle.start();
    while (settle.elapsed() < 200) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    counter.paints.clear();
    for (auto _ : state) {
        now += 1000;
        const int before = counter.paints[display];
        currentRefreshTicker()->fire();
        QElapsedTimer waited;
        waited.start();
        while (counter.paints[display] == before && waited.elapsed() < 10000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        }
    }
    int others = 0;
    for (const auto& [widget, count] : counter.paints) {
        others += widget == display ? 0 : count;
    }
    state.counters["display_paints"] = counter.paints[display];
    state.counters["other_paints"] = others;
    for (QWidget* widget : widgets) {
        widget->removeEventFilter(&counter);
    }
    tkCLTAppDelegate::closeAllWindows();
}
BENCHMARK(BM_RunningTimerTick)->Iterations(200)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    const std::filesystem::path home =
        std::filesystem::temp_directory_path() / ("tk-tick-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(home / "run");
    std::filesystem::permissions(home / "run", std::filesystem::perms::owner_all);
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_DATA_HOME", (home / "data").c_str(), 1);
    setenv("XDG_CONFIG_HOME", (home / "config").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", (home / "run").c_str(), 1);
    {
        QApplication application(argc, argv);
        benchmark::Initialize(&argc, argv);
        if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
            return 1;
        }
        benchmark::RunSpecifiedBenchmarks();
        benchmark::Shutdown();
    }
    std::filesystem::remove_all(home);
    return 0;
}
