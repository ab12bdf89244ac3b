// The timers' share of the work behind a tick, a keystroke and a save or load
// of the timers file, with a realistic number of timers.
#include <benchmark/benchmark.h>

#include <string>

#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "timers/tkHeadlessTimerUI.h"
#include "timers/tkHeadlessTimerWindow.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerControl.h"
#include "timers/tkTimerController.h"

namespace {

constexpr int kTimers = 50;

tkHeadlessTimerUI* ui() {
    return static_cast<tkHeadlessTimerWindow*>(tkTimerArray::instance().windowForTimer(0))
        ->headlessUI();
}

// kTimers timers, every third one running.
void fillTimers() {
    auto& timers = tkTimerArray::instance();
    timers.removeAll();
    for (int i = 0; i < kTimers; ++i) {
        createNewTimer(timers.windowForTimer(0));
        if (i % 3 == 0) {
            timers.timerAt(i)->start();
        }
    }
}

// One firing of the refresh ticker.
void BM_RefreshAll(benchmark::State& state) {
    fillTimers();
    for (auto _ : state) {
        tkTimerArray::instance().refreshAll();
    }
    benchmark::DoNotOptimize(ui()->displayedTime());
}
BENCHMARK(BM_RefreshAll);

// A keystroke in a job field: the shown timer's record is replaced.
void BM_RecordEdited(benchmark::State& state) {
    fillTimers();
    ui()->setEmployee("ann");
    ui()->setJobNumber("J-100");
    ui()->setFeeCode("F");
    std::string description;
    for (auto _ : state) {
        description += 'x';
        if (description.size() > 200) {
            description.clear();
        }
        ui()->setDescription(description);
        ui()->recordEdited();
    }
}
BENCHMARK(BM_RecordEdited);

// The text of the timers file, as a save builds it.
void BM_TimersToText(benchmark::State& state) {
    fillTimers();
    for (auto _ : state) {
        std::string text = tkTimerArray::instance().toTag()->toText(0);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(BM_TimersToText);

// Loading the timers file's text, as at launch.
void BM_LoadTimers(benchmark::State& state) {
    fillTimers();
    const std::string text = tkTimerArray::instance().toTag()->toText(0);
    for (auto _ : state) {
        auto node = tkTagParser().parse(text);
        tkTimerArray::instance().fromTag(*node);
    }
}
BENCHMARK(BM_LoadTimers);

// A timers file far beyond any real one (a hostile or runaway file): the load
// must grow as n log n, not with the square of the number of timers.
void BM_LoadManyTimers(benchmark::State& state) {
    std::string text = "<timerArray>\n";
    for (int64_t i = 0; i < state.range(0); ++i) {
        const std::string tag = "timer " + std::to_string(i);
        text += "\t<" + tag + "><title>Client " + std::to_string(i % 977) +
                "</title><startTime>0</startTime><priorRunningTime>61000</priorRunningTime>"
                "<detailMode>true</detailMode><started>false</started><id>id" +
                std::to_string(i) + "</id></" + tag + ">\n";
    }
    text += "\t<frontMostTimerNumber>0</frontMostTimerNumber>\n</timerArray>";
    for (auto _ : state) {
        auto node = tkTagParser().parse(text);
        tkTimerArray::instance().fromTag(*node);
    }
}
BENCHMARK(BM_LoadManyTimers)->Arg(50000)->Unit(benchmark::kMillisecond);

}  // namespace
