// The costs a user feels in the shell with a large time sheet: starting up
// with a full year of work (and the memory it takes), quitting, typing into a
// timer's job field, adding a timer's time, deleting every row, undoing that,
// and pasting many rows. Each action includes rewriting its files on disk
// through the POSIX layer, since every change is saved before the action
// returns.
#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/tkBenchProcess.h"
#include "bench/tkTimeSheetBenchData.h"
#include "platform/tkFileManagerPosix.h"
#include "platform/tkUserInfoPosix.h"
#include "preferences/tkPaths.h"
#include "shell/tkHeadlessAppFrontEnd.h"
#include "shell/tkLaunchSequence.h"
#include "timers/tkHeadlessTimerUI.h"
#include "timers/tkHeadlessTimerWindow.h"
#include "timers/tkTimerArray.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"

namespace {

constexpr int kTimers = 50;
constexpr int kRows = 100000;

void writeFile(const std::filesystem::path& path, const std::string& text) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

std::string timersText() {
    std::string text = "<timerArray>\n";
    for (int i = 0; i < kTimers; ++i) {
        const std::string tag = "timer " + std::to_string(i);
        text += "\t<" + tag + "><title>Client " + std::to_string(i) +
                "</title><startTime>0</startTime><priorRunningTime>" + std::to_string(i * 61000) +
                "</priorRunningTime><detailMode>true</detailMode><started>false</started><id>id" +
                std::to_string(i) +
                "</id><record><date>3/4/24</date><duration>00:00:00</duration>" + "<employee>EMP" +
                std::to_string(i % 7) + "</employee><job number>J" + std::to_string(1000 + i) +
                "</job number><fee code>F" + std::to_string(i % 5) +
                "</fee code><description>Work for client " + std::to_string(i) +
                "</description></record></" + tag + ">\n";
    }
    return text +
           "\t<frontMostTimerNumber>0</frontMostTimerNumber>\n\t<timerOpen>true</timerOpen>\n"
           "\t<globalDetailMode>true</globalDetailMode>\n\t<drawerOpen>true</drawerOpen>\n"
           "</timerArray>";
}

std::string sheetText() {
    std::string text;
    text.reserve(static_cast<size_t>(kRows) * 64);
    for (int i = 0; i < kRows; ++i) {
        // A year of rows, already in date order as the program writes them.
        text += std::to_string(1 + (i / 8400) % 12) + "/" + std::to_string(1 + (i / 280) % 28) +
                "/24\t0" + std::to_string(i % 9) + ":" + std::to_string(10 + i % 50) + ":00\tEMP" +
                std::to_string(i % 7) + "\tJ" + std::to_string(1000 + i % 300) + "\tF" +
                std::to_string(i % 5) + "\tTask number " + std::to_string(i) + "\n";
    }
    return text;
}

// One home with the three files, made once per process; the environment
// points the program at it. Kept on the heap so that it outlives the static
// destructors and the exit handler can still remove it.
const std::filesystem::path& benchHome() {
    static const std::filesystem::path* home = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "tkbench.XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            std::abort();
        }
        auto* root = new std::filesystem::path(pattern);
        ::setenv("HOME", root->c_str(), 1);
        ::setenv("XDG_DATA_HOME", (*root / "data").c_str(), 1);
        setUserInfoSource([] { return std::string("Bench User"); }, posixDataFolder);
        const std::filesystem::path folder = *root / "data" / "Tekamo";
        writeFile(folder / "Chronolet Preferences.txt",
                  "<tkPreferences><singleWindowMode>true</singleWindowMode>"
                  "<timesheetOpen>true</timesheetOpen><sortBy>date</sortBy></tkPreferences>");
        writeFile(folder / "Chronolet Timers.txt", timersText());
        // Kept, not freed: the measured children are forked from this process, and a freed
        // block this large would change how their allocator places a load, as it never is
        // in a fresh process.
        static const std::string* const sheet = new std::string(sheetText());
        writeFile(folder / "Bench User's Time Sheet.txt", *sheet);
        return root;
    }();
    static const bool cleanupRegistered = [] {
        // Forked children inherit the handler; only this process removes the home.
        static const pid_t owner = ::getpid();
        std::atexit([] {
            if (::getpid() != owner) {
                return;
            }
            std::error_code error;
            std::filesystem::remove_all(*home, error);
        });
        return true;
    }();
    (void)cleanupRegistered;
    return *home;
}

bool launched() {
    return tkTimerArray::instance().numTimers() == kTimers &&
           tkTimeSheet::instance().rowCount() == kRows;
}

void launch(tkHeadlessAppFrontEnd& frontEnd, std::unique_ptr<tkLaunchSequence>& sequence) {
    sequence = std::make_unique<tkLaunchSequence>(
        frontEnd, [] { return std::make_unique<tkFileManagerPosix>(); });
    sequence->applicationDidFinishLaunching();
}

// Every launch builds process-wide singletons, so each measured launch runs
// in a fresh child that reports its own time, and the memory that the launch
// added per time sheet row.
void BM_HeadlessLaunch(benchmark::State& state) {
    benchHome();
    double cpuSeconds = 0;
    double bytesPerRow = 0;
    for (auto _ : state) {
        const ChildReport child = inChild(3, [](int fd) {
            const double before = residentBytes();
            const auto start = std::chrono::steady_clock::now();
            tkHeadlessAppFrontEnd frontEnd;
            std::unique_ptr<tkLaunchSequence> sequence;
            launch(frontEnd, sequence);
            const double seconds = secondsSince(start);
            // Wall time is what the user waits; processor time shows how much
            // of it a busy machine added.
            report(fd,
                   {launched() ? seconds : -1.0, static_cast<double>(std::clock()) / CLOCKS_PER_SEC,
                    (residentBytes() - before) / kRows});
        });
        if (child.values.empty() || child.values[0] < 0) {
            state.SkipWithError("the launch did not load the files");
            break;
        }
        state.SetIterationTime(child.values[0]);
        cpuSeconds += child.values[1];
        bytesPerRow = child.values[2];
    }
    state.counters["cpu_ms"] =
        benchmark::Counter(cpuSeconds * 1000, benchmark::Counter::kAvgIterations);
    state.counters["bytes_per_row"] = bytesPerRow;
}
BENCHMARK(BM_HeadlessLaunch)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

// From the end of the last save at a quit to the end of the process, as the
// parent sees it: what remains is the process's own teardown.
void BM_QuitAfterLaunch(benchmark::State& state) {
    benchHome();
    for (auto _ : state) {
        const ChildReport child = inChild(1, [](int fd) {
            tkHeadlessAppFrontEnd frontEnd;
            std::unique_ptr<tkLaunchSequence> sequence;
            launch(frontEnd, sequence);
            sequence->terminate();
            report(fd, {launched() && !tkTimeSheet::instance().isDirty() ? 1.0 : -1.0});
            // As main() ends: every static object is destroyed on the way out.
            std::exit(0);
        });
        if (child.values.empty() || child.values[0] < 0) {
            state.SkipWithError("the launch or the last save failed");
            break;
        }
        state.SetIterationTime(child.secondsToExit);
    }
}
BENCHMARK(BM_QuitAfterLaunch)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

// The two action benchmarks share one launch in this process.
tkHeadlessTimerUI& launchedUI() {
    static tkHeadlessAppFrontEnd frontEnd;
    static tkHeadlessTimerUI* ui = [] {
        benchHome();
        tkLaunchSequence sequence(frontEnd, [] { return std::make_unique<tkFileManagerPosix>(); });
        sequence.applicationDidFinishLaunching();
        tkTimerArray& timers = tkTimerArray::instance();
        auto* window = dynamic_cast<tkHeadlessTimerWindow*>(timers.windowForTimer(0));
        return window != nullptr ? window->headlessUI() : nullptr;
    }();
    if (ui == nullptr) {
        std::abort();
    }
    return *ui;
}

void BM_KeystrokeInJobField(benchmark::State& state) {
    tkHeadlessTimerUI& ui = launchedUI();
    std::string job = "J1000";
    for (auto _ : state) {
        // What the job field does per keystroke: the record is replaced and
        // the timers file rewritten inside the post.
        job.back() = static_cast<char>('0' + (job.back() - '0' + 1) % 10);
        ui.setJobNumber(job);
        ui.recordEdited();
    }
}
BENCHMARK(BM_KeystrokeInJobField)->Unit(benchmark::kMicrosecond);

void BM_AddTimerToLargeSheet(benchmark::State& state) {
    tkHeadlessTimerUI& ui = launchedUI();
    for (auto _ : state) {
        // Both files are on disk before this returns.
        ui.addToTimeSheet();
    }
    state.counters["rows"] = tkTimeSheet::instance().rowCount();
}
BENCHMARK(BM_AddTimerToLargeSheet)->Unit(benchmark::kMillisecond)->Iterations(50);

// The save alone, as at a quit: the file's text is ready, so this is what writing it through
// the POSIX layer costs, the floor under every action above.
void BM_SaveLargeSheet(benchmark::State& state) {
    launchedUI();
    for (auto _ : state) {
        tkTimeSheet::instance().setDirty(true);
    }
}
BENCHMARK(BM_SaveLargeSheet)->Unit(benchmark::kMillisecond)->Iterations(50);

// A failed or missing save shows as a dirty sheet once the action returned.
void checkSaved(benchmark::State& state) {
    if (tkTimeSheet::instance().isDirty()) {
        state.SkipWithError("the time sheet file was not written");
    }
}

// The action timed; then, untimed, the check that it saved and its undo, so that every
// round starts from the same rows.
template <class Action>
void timedThenUndone(benchmark::State& state, Action action) {
    launchedUI();
    tkTimeSheet& sheet = tkTimeSheet::instance();
    for (auto _ : state) {
        action(sheet);
        state.PauseTiming();
        checkSaved(state);
        sheet.undoManager().undo();
        state.ResumeTiming();
    }
}

// Every row of the sheet, one undo step.
void BM_DeleteAllRowsOfLargeSheet(benchmark::State& state) {
    timedThenUndone(state, [](tkTimeSheet& sheet) { sheet.deleteAllRows(); });
}
BENCHMARK(BM_DeleteAllRowsOfLargeSheet)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_UndoDeleteAllRowsOfLargeSheet(benchmark::State& state) {
    launchedUI();
    tkTimeSheet& sheet = tkTimeSheet::instance();
    for (auto _ : state) {
        state.PauseTiming();
        sheet.deleteAllRows();
        state.ResumeTiming();
        sheet.undoManager().undo();
        state.PauseTiming();
        checkSaved(state);
        state.ResumeTiming();
    }
    state.counters["rows"] = sheet.rowCount();
}
BENCHMARK(BM_UndoDeleteAllRowsOfLargeSheet)->Unit(benchmark::kMillisecond)->Iterations(5);

// Ten thousand copied rows from all over the years, pasted as one step into the large sheet.
void BM_Paste10000RowsIntoLargeSheet(benchmark::State& state) {
    const std::string clipboard = generatedTimeSheetText(10000, 7);
    timedThenUndone(state, [&clipboard](tkTimeSheet& sheet) { sheet.pasteText(clipboard); });
}
BENCHMARK(BM_Paste10000RowsIntoLargeSheet)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
