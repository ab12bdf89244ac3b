// The three costs a user feels in the shell: starting up with a full year of
// work, typing into a timer's job field, and adding a timer's time to a large
// time sheet. Each of the last two includes rewriting its files on disk,
// since every change is saved before the action returns.
#include <benchmark/benchmark.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "platform/tkFileManagerPosix.h"
#include "platform/tkUserInfoPosix.h"
#include "preferences/tkPaths.h"
#include "shell/tkHeadlessAppFrontEnd.h"
#include "shell/tkLaunchSequence.h"
#include "timers/tkHeadlessTimerUI.h"
#include "timers/tkHeadlessTimerWindow.h"
#include "timers/tkTimerArray.h"
#include "timesheet/tkTimeSheet.h"

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
        writeFile(folder / "Bench User's Time Sheet.txt", sheetText());
        return root;
    }();
    static const bool cleanupRegistered = [] {
        std::atexit([] {
            std::error_code error;
            std::filesystem::remove_all(*home, error);
        });
        return true;
    }();
    (void)cleanupRegistered;
    return *home;
}

// Every launch builds process-wide singletons, so each measured launch runs
// in a fresh child that reports its own time.
void BM_HeadlessLaunch(benchmark::State& state) {
    benchHome();
    double cpuSeconds = 0;
    for (auto _ : state) {
        int pipeEnds[2];
        if (::pipe(pipeEnds) != 0) {
            state.SkipWithError("pipe failed");
            break;
        }
        const pid_t child = ::fork();
        if (child == 0) {
            const auto start = std::chrono::steady_clock::now();
            tkHeadlessAppFrontEnd frontEnd;
            tkLaunchSequence sequence(frontEnd,
                                      [] { return std::make_unique<tkFileManagerPosix>(); });
            sequence.applicationDidFinishLaunching();
            const double seconds =
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
            const bool loaded = tkTimerArray::instance().numTimers() == kTimers &&
                                tkTimeSheet::instance().rowCount() == kRows;
            // Wall time is what the user waits; processor time shows how much
            // of it a busy machine added.
            const double report[2] = {loaded ? seconds : -1.0,
                                      static_cast<double>(std::clock()) / CLOCKS_PER_SEC};
            (void)!::write(pipeEnds[1], report, sizeof report);
            ::_exit(0);
        }
        ::close(pipeEnds[1]);
        double report[2] = {-1.0, 0.0};
        const bool got = ::read(pipeEnds[0], report, sizeof report) == sizeof report;
        const double seconds = report[0];
        cpuSeconds += report[1];
        ::close(pipeEnds[0]);
        ::waitpid(child, nullptr, 0);
        if (!got || seconds < 0) {
            state.SkipWithError("the launch did not load the files");
            break;
        }
        state.SetIterationTime(seconds);
    }
    state.counters["cpu_ms"] =
        benchmark::Counter(cpuSeconds * 1000, benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_HeadlessLaunch)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

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

}  // namespace
