// Costs on the path of every edit and every save: a post (with and without
// listeners) and writing and reading a data file of tagged text.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"

namespace {

// A file shaped like the timers file: a few levels deep, many small leaves.
std::unique_ptr<tkTagNode> timersLikeTree(int timers) {
    auto root = std::make_unique<tkTagNode>("timers");
    root->addChild("frontmost", int32_t{0});
    for (int i = 0; i < timers; ++i) {
        tkTagNode* timer = root->addChild(std::make_unique<tkTagNode>("timer"));
        timer->addChild("title", "Client meeting & notes <draft>");
        timer->addChild("running", i % 2 == 0);
        timer->addChild("startTime", int64_t{1700000000000} + i);
        tkTagNode* record = timer->addChild(std::make_unique<tkTagNode>("record"));
        record->addChild("date", "1/3/24");
        record->addChild("duration", "01:30:00");
        record->addChild("employee", "JANE DOE");
        record->addChild("job number", "4711-02");
        record->addChild("fee code", "CONSULT");
        record->addChild("description", "Reviewed the draft\twith the client");
    }
    return root;
}

void BM_PostWithoutListeners(benchmark::State& state) {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    int sender = 0;
    const tkNotification note(kTimerBecameDirty, &sender, 0);
    for (auto _ : state) {
        center.postNotification(note);
    }
}
BENCHMARK(BM_PostWithoutListeners);

void BM_PostToObservers(benchmark::State& state) {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    int sender = 0;
    tkObserver observer;
    int64_t calls = 0;
    for (int64_t i = 0; i < state.range(0); ++i) {
        center.addObserver(
            &observer, [&calls](const tkNotification&) { ++calls; }, kTimeSheetBecameDirty,
            i % 2 == 0 ? static_cast<const void*>(&sender) : nullptr);
    }
    const tkNotification note(kTimeSheetBecameDirty, &sender, 0);
    for (auto _ : state) {
        center.postNotification(note);
    }
    benchmark::DoNotOptimize(calls);
    center.removeObserver(&observer, kTimeSheetBecameDirty, &sender);
    center.removeObserver(&observer, kTimeSheetBecameDirty, nullptr);
}
BENCHMARK(BM_PostToObservers)->Arg(2)->Arg(16);

void BM_WriteTimersFile(benchmark::State& state) {
    auto tree = timersLikeTree(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::string text = tree->toText(0);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(BM_WriteTimersFile)->Arg(10)->Arg(1000);

// Parses the text once per iteration and counts its bytes.
void parseEachIteration(benchmark::State& state, const std::string& text) {
    tkTagParser parser;
    for (auto _ : state) {
        auto tree = parser.parse(text);
        benchmark::DoNotOptimize(tree);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                            static_cast<int64_t>(text.size()));
}

void BM_ParseTimersFile(benchmark::State& state) {
    parseEachIteration(state, timersLikeTree(static_cast<int>(state.range(0)))->toText(0));
}
BENCHMARK(BM_ParseTimersFile)->Arg(10)->Arg(1000);

// A hostile file: elements nested as deep as the argument, each with its own
// name, around one leaf (100,000 levels are 1.6 MB). The time must grow with
// the size, not with its square.
void BM_ParseDeepNesting(benchmark::State& state) {
    const auto depth = static_cast<int>(state.range(0));
    std::string text;
    for (int i = 0; i < depth; ++i) {
        text += "<n" + std::to_string(i) + ">";
    }
    text += "leaf";
    for (int i = depth; i-- > 0;) {
        text += "</n" + std::to_string(i) + ">";
    }
    parseEachIteration(state, text);
}
BENCHMARK(BM_ParseDeepNesting)->Arg(20000)->Arg(100000)->Unit(benchmark::kMillisecond);

}  // namespace
