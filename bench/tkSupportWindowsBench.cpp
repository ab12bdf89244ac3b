// What the support windows cost on a large time sheet: moving the sheet to
// another file (Set… in the preferences) and renaming a billing code that its
// rows hold, which rewrites the sheet's file. Both end with everything on
// disk, as the user's action does.
#include <benchmark/benchmark.h>
#include <stdlib.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "bench/tkTimeSheetBenchData.h"
#include "platform/tkFileManagerPosix.h"
#include "platform/tkUserInfoPosix.h"
#include "preferences/tkPaths.h"
#include "records/tkKnownRecordItems.h"
#include "shell/tkBillCodeController.h"
#include "shell/tkHeadlessAppFrontEnd.h"
#include "shell/tkHeadlessBillCodeUI.h"
#include "shell/tkLaunchSequence.h"
#include "shell/tkTimeSheetLocation.h"
#include "timesheet/tkTimeSheet.h"

namespace {

constexpr int kRows = 100000;

// A home with a 100,000-row sheet, launched once per process; removed at exit.
const std::filesystem::path& launchedHome() {
    static const std::filesystem::path* home = [] {
        std::string pattern = (std::filesystem::temp_directory_path() / "tkbench.XXXXXX").string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            std::abort();
        }
        auto* root = new std::filesystem::path(pattern);
        ::setenv("HOME", root->c_str(), 1);
        ::setenv("XDG_DATA_HOME", (*root / "data").c_str(), 1);
        setUserInfoSource([] { return std::string("Bench User"); }, posixDataFolder);
        const std::filesystem::path sheet =
            *root / "data" / "Tekamo" / "Bench User's Time Sheet.txt";
        std::filesystem::create_directories(sheet.parent_path());
        std::ofstream(sheet, std::ios::binary) << generatedTimeSheetText(kRows);
        static tkHeadlessAppFrontEnd frontEnd;
        tkLaunchSequence sequence(frontEnd, [] { return std::make_unique<tkFileManagerPosix>(); });
        sequence.applicationDidFinishLaunching();
        if (tkTimeSheet::instance().rowCount() != kRows) {
            std::abort();
        }
        std::atexit([] {
            std::error_code error;
            std::filesystem::remove_all(*home, error);
        });
        return root;
    }();
    return *home;
}

void BM_MoveTimeSheet(benchmark::State& state) {
    const std::filesystem::path& home = launchedHome();
    const std::string places[2] = {(home / "elsewhere.txt").string(), defaultTimeSheetFilePath()};
    int next = 0;
    for (auto _ : state) {
        if (moveTimeSheet(places[next]) != 0) {
            state.SkipWithError("the move failed");
            break;
        }
        next = 1 - next;
    }
    state.counters["rows"] = tkTimeSheet::instance().rowCount();
}
BENCHMARK(BM_MoveTimeSheet)->Unit(benchmark::kMillisecond)->Iterations(20);

void BM_RenameCodeHeldByRows(benchmark::State& state) {
    launchedHome();
    tkHeadlessBillCodeUI ui("employee");
    tkBillCodeController controller(ui, "employee");
    const std::string names[2] = {"X1", "E1"};
    int next = 0;
    for (auto _ : state) {
        // One employee of twelve: about 8,000 rows show the new code.
        const std::vector<std::string> codes = tkKnownRecordItems::instance().employees();
        const auto at = std::find(codes.begin(), codes.end(), names[1 - next]) - codes.begin();
        if (!controller.renameRow(static_cast<int32_t>(at - 1), names[next])) {
            state.SkipWithError("the rename failed");
            break;
        }
        next = 1 - next;
    }
}
BENCHMARK(BM_RenameCodeHeldByRows)->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace
