#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "foundation/tkFileLockedException.h"
#include "preferences/tkPreferences.h"
#include "records/tkDefaultRecord.h"
#include "records/tkRecord.h"
#include "records/tkRecordFields.h"
#include "shell/tkDataFiles.h"
#include "shell/tkDataLocks.h"
#include "tests/shell/tkShellTestSupport.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timesheet/tkTimeSheet.h"

namespace {

// The promise, for each file and each way of failing: a process killed with SIGKILL at a random
// instant leaves files that load, none cut short, and every change that returned with its file
// saved is on disk (a failed save keeps its change pending and promises nothing yet). A worker
// launches and makes change after change, reporting each after it returned; it is killed after
// a random delay, and a fresh process loads the files and checks them.

constexpr int kRounds = 50;
constexpr int kBase = 200;  // rows; a tenth as many timers

enum Change { kRow = 1, kTitle = 2, kDefault = 4, kSwitch = 8 };

struct Report {
    int32_t step;
    bool saved[3];  // sheet, timers, preferences
};

std::string name(char what, int round, int32_t step) {
    return std::string(1, what) + std::to_string(round) + "s" + std::to_string(step);
}

class tkFaultMatrixTest : public tkShellTest {
  protected:
    struct Case {
        int changes = 0;
        bool unprivileged = false;      // the worker runs as an ordinary user
        bool injectedFullDisk = false;  // the disk fills at a random step
        int padding = 0;                // added to each row, to fill a small disk
    };

    static std::string rowName(const Case& c, int round, int32_t step) {
        return name('r', round, step) + std::string(static_cast<size_t>(c.padding), '.');
    }
    std::string otherSheet(int round, int32_t step) const {
        return home.path("others/" + name('o', round, step) + ".txt");
    }
    // Twenty rows of the sheet a switch at this step loads.
    static std::string otherRows(int round, int32_t step) {
        std::string text;
        for (int i = 0; i < 20; ++i) {
            text += row(name('x', round, step) + "_" + std::to_string(i));
        }
        return text;
    }

    // Base content whose loss would show a file cut short.
    void makeBaseFiles(const std::string& sheet) {
        home.writeText(preferencesPath(), "<tkPreferences><timeSheetFile>" + sheet +
                                              "</timeSheetFile></tkPreferences>");
        std::string rows;
        std::vector<std::string> titles;
        for (int i = 0; i < kBase; ++i) {
            rows += row("base" + std::to_string(i));
            if (i % 10 == 0) {
                titles.push_back("base" + std::to_string(i));
            }
        }
        home.writeText(sheet, rows);
        home.writeText(timersPath(), timersText(titles));
    }

    // Step -1 only says that the launch is done.
    void work(const Case& c, int round, int32_t fullFrom, int reports) {
        if (c.unprivileged && ::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) {
            ::_exit(3);
        }
        c.injectedFullDisk ? launchFaulty() : launch();
        for (int32_t step = -1;; ++step) {
            int32_t switched = 0;
            if (faulty != nullptr) {
                faulty->faults().diskFull = step >= fullFrom;
            }
            if (step >= 0 && (c.changes & kSwitch)) {
                const bool load = step % 2 == 1;
                switched =
                    switchTimeSheet(*fileFromPath(load ? otherSheet(round, step)
                                                       : home.path("n/" + name('n', round, step))),
                                    load, !load);
            }
            if (step >= 0 && (c.changes & (kRow | kSwitch))) {
                tkTimeSheet::instance().addEntry(std::make_shared<tkRecord>(
                    "1/2/3", "00:01:00", "EMP", "JOB", "FEE", rowName(c, round, step)));
            }
            if (step >= 0 && (c.changes & kTitle)) {
                tkTimerArray::instance().timerAt(0)->setTitle(name('t', round, step));
            }
            if (step >= 0 && (c.changes & kDefault)) {
                setDefaultField(kFieldDescription, name('d', round, step));
            }
            const Report report{
                step,
                {switched == 0 && !tkTimeSheet::instance().isDirty(),
                 !tkTimerArray::instance().isDirty(), !tkPreferences::instance().isDirty()}};
            if (::write(reports, &report, sizeof report) != sizeof report) {
                ::_exit(2);
            }
        }
    }

    // Loads every file as a launch does and checks what the reports promised.
    void check(const Case& c, int round, const std::vector<Report>& reports) {
        installFaulty();
        ASSERT_NO_THROW(loadPreferences());
        ASSERT_NO_THROW(loadTimers());
        ASSERT_NO_THROW(openTimeSheet());
        std::multiset<std::string> rows;
        for (const auto& record : tkTimeSheet::instance().rows()) {
            rows.insert(record->description()->toString());
        }
        for (int i = 0; i < kBase; ++i) {
            ASSERT_EQ(rows.count("base" + std::to_string(i)), 1u) << i;
        }
        ASSERT_EQ(tkTimerArray::instance().numTimers(), static_cast<uint32_t>(kBase / 10));
        int32_t saved[3] = {-1, -1, -1};
        for (const Report& report : reports) {
            for (int file = 0; file < 3; ++file) {
                saved[file] = report.saved[file] ? report.step : saved[file];
            }
        }
        const int32_t last = reports.back().step;
        // What the last saved step wrote, or what a later one did.
        const auto fromStepOn = [&](const std::string& value, char what, int32_t from) {
            for (int32_t step = std::max(from, 0); step <= last + 1; ++step) {
                if (value == name(what, round, step)) {
                    return true;
                }
            }
            return from < 0;
        };
        for (int32_t step = 0; step <= last + 1; ++step) {
            // Never twice; once for certain when its save was reported.
            const size_t count = rows.count(rowName(c, round, step));
            EXPECT_EQ(count, step <= saved[0] ? 1u : std::min<size_t>(count, 1u))
                << name('r', round, step);
            // A sheet read in a switch keeps every row it had.
            const std::optional<std::string> other = home.readText(otherSheet(round, step));
            if ((c.changes & kSwitch) && step % 2 == 1 && other) {
                EXPECT_NE(other->find(otherRows(round, step)), std::string::npos) << step;
            }
        }
        if (c.changes & kTitle) {
            EXPECT_TRUE(fromStepOn(tkTimerArray::instance().timerAt(0)->getTitle(), 't', saved[1]));
        }
        if (c.changes & kDefault) {
            EXPECT_TRUE(fromStepOn(defaultRecord().description()->toString(), 'd', saved[2]));
        }
    }

    // kRounds rounds of a worker killed at a random instant.
    void runRounds(const Case& c) {
        const uint32_t seed = std::random_device{}();
        std::mt19937 random(seed);
        for (int round = 0; round < kRounds; ++round) {
            for (int32_t step = 1; (c.changes & kSwitch) && step < 60; step += 2) {
                home.writeText(otherSheet(round, step), otherRows(round, step));
            }
            int pipeEnds[2];
            ASSERT_EQ(::pipe(pipeEnds), 0);
            const int32_t fullFrom = std::uniform_int_distribution<int32_t>(0, 6)(random);
            const pid_t worker = ::fork();
            ASSERT_GE(worker, 0);
            if (worker == 0) {
                ::close(pipeEnds[0]);
                work(c, round, fullFrom, pipeEnds[1]);
            }
            ::close(pipeEnds[1]);
            std::vector<Report> reports(1);
            ASSERT_EQ(::read(pipeEnds[0], &reports[0], sizeof(Report)),
                      static_cast<ssize_t>(sizeof(Report)))
                << "the worker's launch failed, seed " << seed;
            // The random instant: anywhere in the first dozen or so changes.
            std::this_thread::sleep_for(
                std::chrono::microseconds(std::uniform_int_distribution<int>(0, 8000)(random)));
            ::kill(worker, SIGKILL);
            int status = 0;
            ASSERT_EQ(::waitpid(worker, &status, 0), worker);
            ASSERT_TRUE(WIFSIGNALED(status)) << "worker ended by itself, seed " << seed;
            for (Report report{}; ::read(pipeEnds[0], &report, sizeof report) == sizeof report;) {
                reports.push_back(report);
            }
            ::close(pipeEnds[0]);
            ASSERT_EQ(inChild([&] { check(c, round, reports); }), 0)
                << "round " << round << " after " << reports.size() - 1 << " changes, seed "
                << seed;
        }
    }

    // Hands the data folder to the ordinary user that a worker becomes.
    void handDataFolderOver() {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(home.dataFolder())) {
            ASSERT_EQ(::chown(entry.path().c_str(), 65534, 65534), 0);
        }
        ASSERT_EQ(::chown(home.dataFolder().c_str(), 65534, 65534), 0);
        ::chmod(home.root().c_str(), 0755);
    }
};

TEST_F(tkFaultMatrixTest, KilledWhileSavingEachFile) {
    for (const int changes : {kRow, kTitle, kDefault, kSwitch}) {
        makeBaseFiles(sheetPath());
        runRounds({changes});
    }
}

// A shared sheet of another user, everyone's to write: replaced whole, never rewritten in place.
TEST_F(tkFaultMatrixTest, KilledWhileSavingASheetOwnedByAnotherUser) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root to stand in for two users";
    }
    const std::string sheet = home.path("shared/sheet.txt");
    makeBaseFiles(sheet);
    ASSERT_EQ(::chown(sheet.c_str(), 12345, 12345), 0);
    ASSERT_EQ(::chmod(sheet.c_str(), 0666), 0);
    ASSERT_EQ(::chmod(home.path("shared").c_str(), 0777), 0);
    handDataFolderOver();
    runRounds({kRow, true});
}

// Every save refused: read-only timers and preferences files and, where root can make one, a
// sheet in a folder that takes no new file. All stay whole.
TEST_F(tkFaultMatrixTest, KilledWhilePermissionsRefuseTheSaves) {
    const bool root = ::geteuid() == 0;
    const std::string sheet = root ? home.path("locked/sheet.txt") : sheetPath();
    makeBaseFiles(sheet);
    if (root) {
        home.writeText(timeSheetLockPath(sheet), "");
        ASSERT_EQ(::chmod(sheet.c_str(), 0666), 0);
        ASSERT_EQ(::chmod(home.path("locked").c_str(), 0555), 0);
        handDataFolderOver();
    }
    for (const std::string& path : {timersPath(), preferencesPath()}) {
        ASSERT_EQ(root ? ::chown(path.c_str(), 0, 0) : 0, 0);
        ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    }
    runRounds({kRow | kTitle | kDefault, root});
}

// A full file system: a 64 KiB tmpfs where one can be mounted (in a mount namespace of its own,
// gone with the test's processes), otherwise the fault-injecting file manager.
TEST_F(tkFaultMatrixTest, KilledWhileTheDiskIsFull) {
    const int verdict = inChild([&] {
        if (::unshare(CLONE_NEWNS) != 0 ||
            ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            !std::filesystem::create_directories(home.dataFolder()) ||
            ::mount("tmpfs", home.dataFolder().c_str(), "tmpfs", 0, "size=64k,mode=0700") != 0) {
            ::_exit(77);
        }
        std::cout << "full disk: a 64 KiB tmpfs" << std::endl;
        makeBaseFiles(sheetPath());
        runRounds({kRow | kTitle | kDefault, false, false, 300});
    });
    if (verdict != 77) {
        EXPECT_EQ(verdict, 0);
        return;
    }
    std::cout << "full disk: no tmpfs could be mounted; the fault-injecting file manager ran"
              << std::endl;
    makeBaseFiles(sheetPath());
    runRounds({kRow | kTitle | kDefault, false, true});
}

}  // namespace

namespace {

// One owner of the time sheet, always, shown with real processes.
using tkSecondCopyTest = tkShellTest;

// Every save replaces the sheet's file, and at no moment of it may another user's copy that
// shares the sheet (a data folder of its own) open it.
TEST_F(tkSecondCopyTest, NoOtherProcessGetsTheSheetWhileItsOwnerSavesOverAndOver) {
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t owner = ::fork();
    ASSERT_GE(owner, 0);
    if (owner == 0) {
        launch();
        (void)!::write(ready[1], "1", 1);
        for (int i = 0;; ++i) {
            tkTimeSheet::instance().addEntry(rowRecord("saved " + std::to_string(i)));
        }
    }
    char launched = 0;
    ASSERT_EQ(::read(ready[0], &launched, 1), 1);
    const int verdict = inChild([&] {
        (void)!std::freopen("/dev/null", "w", stdout);
        ::setenv("XDG_DATA_HOME", home.path("other user").c_str(), 1);
        installFaulty();
        tkPreferences::instance().setTimeSheetFile(sheetPath(), false);
        for (int attempt = 0; attempt < 3000; ++attempt) {
            try {
                openTimeSheet();
                ADD_FAILURE() << "admitted at attempt " << attempt;
                return;
            } catch (const tkFileLockedException&) {
            }
        }
    });
    ::kill(owner, SIGKILL);
    ::waitpid(owner, nullptr, 0);
    EXPECT_EQ(verdict, 0) << "a second process got the sheet while its owner saved";
}

// Twenty copies start at once; one refused because another runs quits, and is started again
// until it gets in. No record is lost.
TEST_F(tkSecondCopyTest, TwentyCopiesAddingAtOnceWithRetriesLoseNoRecord) {
    constexpr int kCopies = 20;
    std::vector<pid_t> adders;
    for (int i = 0; i < kCopies; ++i) {
        const pid_t adder = ::fork();
        ASSERT_GE(adder, 0);
        if (adder == 0) {
            (void)!std::freopen("/dev/null", "w", stdout);
            (void)!std::freopen("/dev/null", "w", stderr);
            for (int status = 2; status == 2;) {
                status = inChild([&] {
                    launch();
                    if (frontEnd.quitRequested()) {
                        ::_exit(2);
                    }
                    tkTimeSheet::instance().addEntry(rowRecord("copy " + std::to_string(i)));
                    sequence->terminate();
                });
                if (status != 2) {
                    ::_exit(status);
                }
            }
        }
        adders.push_back(adder);
    }
    for (const pid_t adder : adders) {
        int status = 0;
        ASSERT_EQ(::waitpid(adder, &status, 0), adder);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    launch();
    std::multiset<std::string> found;
    for (const auto& added : tkTimeSheet::instance().rows()) {
        found.insert(added->description()->toString());
    }
    for (int i = 0; i < kCopies; ++i) {
        EXPECT_EQ(found.count("copy " + std::to_string(i)), 1u) << i;
    }
}

}  // namespace
