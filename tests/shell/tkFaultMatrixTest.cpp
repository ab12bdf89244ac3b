#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "preferences/tkPreferences.h"
#include "records/tkDefaultRecord.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "records/tkRecordFields.h"
#include "shell/tkAppState.h"
#include "shell/tkDataFiles.h"
#include "shell/tkDataLocks.h"
#include "tests/shell/tkShellTestSupport.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timesheet/tkTimeSheet.h"

namespace {

// The promise under test, for each file and each way of failing: a process
// killed with SIGKILL at a random instant leaves files that load, none cut
// short, and every change whose call returned with its file saved is on disk.
// A worker launches over real files and makes change after change, reporting
// each one after it returned, with whether its file was saved (a save that
// failed keeps its change pending, and promises nothing yet). It is killed
// after a random delay; a fresh process then loads the files and checks them.

constexpr int kRounds = 50;
constexpr int kBaseRows = 200;
constexpr int kBaseTimers = 30;
constexpr int kBaseCodes = 200;

enum Change { kRow = 1, kTitle = 2, kDefault = 4, kSwitch = 8 };

struct Report {
    int32_t step;
    bool saved[3];  // sheet, timers, preferences
};

std::string name(char what, int round, int32_t step) {
    return std::string(1, what) + std::to_string(round) + "s" + std::to_string(step);
}

std::string otherRow(int round, int32_t step, int i) {
    return name('x', round, step) + "_" + std::to_string(i);
}

class tkFaultMatrixTest : public tkShellTest {
  protected:
    struct Case {
        int changes = 0;
        // The worker drops to an ordinary user's rights before its launch.
        bool unprivileged = false;
        // The worker's disk fills up from a random step on (the fault-
        // injecting manager, where no small file system can be mounted).
        bool injectedFullDisk = false;
        // Bytes added to each new row, so that a small disk fills in a few
        // steps.
        int padding = 0;
    };

    static std::string rowName(const Case& c, int round, int32_t step) {
        return name('r', round, step) + std::string(static_cast<size_t>(c.padding), '.');
    }

    std::string otherSheet(int round, int32_t step) const {
        return home.path("others/" + name('o', round, step) + ".txt");
    }

    // Base content made by the program itself: rows, timers and billing codes
    // whose loss would show a file cut short.
    void makeBaseFiles(const std::string& sheet) {
        home.writeText(preferencesPath(), "<tkPreferences><timeSheetFile>" + sheet +
                                              "</timeSheetFile></tkPreferences>");
        std::string rows;
        for (int i = 0; i < kBaseRows; ++i) {
            rows += row("base" + std::to_string(i));
        }
        home.writeText(sheet, rows);
        std::vector<std::string> titles;
        for (int i = 0; i < kBaseTimers; ++i) {
            titles.push_back("base" + std::to_string(i));
        }
        home.writeText(timersPath(), timersText(titles));
        ASSERT_EQ(
            inChild([&] {
                launch();
                // Saved once, not once per code.
                tkAppState::instance().detachPreferencesHandlers();
                for (int i = 0; i < kBaseCodes; ++i) {
                    // Codes keep letters only.
                    tkKnownRecordItems::instance().getOrAddEmployee(
                        {'B', static_cast<char>('A' + i / 26), static_cast<char>('A' + i % 26)});
                }
                savePreferences();
            }),
            0);
    }

    static void dropRights() {
        if (::geteuid() == 0 && (::setgid(65534) != 0 || ::setuid(65534) != 0)) {
            ::_exit(3);
        }
    }

    void work(const Case& c, int round, int32_t fullFrom, int reports) {
        if (c.unprivileged) {
            dropRights();
        }
        if (c.injectedFullDisk) {
            launchFaulty();
        } else {
            launch();
        }
        const Report launched{-1, {false, false, false}};
        if (::write(reports, &launched, sizeof launched) != sizeof launched) {
            ::_exit(2);
        }
        for (int32_t step = 0;; ++step) {
            if (faulty != nullptr) {
                faulty->faults().diskFull = step >= fullFrom;
            }
            int32_t switched = 0;
            if (c.changes & kSwitch) {
                const std::string target = step % 2 == 0
                                               ? home.path("new/" + name('n', round, step) + ".txt")
                                               : otherSheet(round, step);
                switched = switchTimeSheet(*fileFromPath(target), step % 2 == 1, step % 2 == 0);
            }
            if (c.changes & (kRow | kSwitch)) {
                tkTimeSheet::instance().addEntry(std::make_shared<tkRecord>(
                    "1/2/3", "00:01:00", "EMP", "JOB", "FEE", rowName(c, round, step)));
            }
            if (c.changes & kTitle) {
                tkTimerArray::instance().timerAt(0)->setTitle(name('t', round, step));
            }
            if (c.changes & kDefault) {
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
        // Nothing cut short: everything that was there before is still there.
        std::multiset<std::string> rows;
        for (const auto& record : tkTimeSheet::instance().rows()) {
            rows.insert(record->description()->toString());
        }
        for (int i = 0; i < kBaseRows; ++i) {
            ASSERT_EQ(rows.count("base" + std::to_string(i)), 1u) << i;
        }
        ASSERT_EQ(tkTimerArray::instance().numTimers(), static_cast<uint32_t>(kBaseTimers));
        EXPECT_EQ(tkTimerArray::instance().timerAt(kBaseTimers - 1)->getTitle(),
                  "base" + std::to_string(kBaseTimers - 1));
        EXPECT_GE(tkKnownRecordItems::instance().employees().size(),
                  static_cast<size_t>(kBaseCodes));
        // Each change is on disk from the step whose report found its file
        // saved; the step in flight may be there too.
        int32_t saved[3] = {-1, -1, -1};
        for (const Report& report : reports) {
            for (int file = 0; file < 3; ++file) {
                if (report.step >= 0 && report.saved[file]) {
                    saved[file] = report.step;
                }
            }
        }
        const int32_t last = reports.empty() ? -1 : reports.back().step;
        for (int32_t step = 0; step <= last + 1; ++step) {
            const size_t count = rows.count(rowName(c, round, step));
            EXPECT_LE(count, 1u) << "no row twice";
            if (step <= saved[0]) {
                EXPECT_EQ(count, 1u) << name('r', round, step);
            }
        }
        const auto atOrAfter = [&](const std::string& value, char what, int32_t from) {
            for (int32_t step = from; step <= last + 1; ++step) {
                if (value == name(what, round, step)) {
                    return true;
                }
            }
            return from < 0;
        };
        if (c.changes & kTitle) {
            const std::string title = tkTimerArray::instance().timerAt(0)->getTitle();
            EXPECT_TRUE(atOrAfter(title, 't', saved[1])) << title;
        }
        if (c.changes & kDefault) {
            const std::string text = defaultRecord().description()->toString();
            EXPECT_TRUE(atOrAfter(text, 'd', saved[2])) << text;
        }
        // A sheet that was read in a switch keeps every row it had.
        for (int32_t step = 1; (c.changes & kSwitch) && step <= last + 1; step += 2) {
            const std::optional<std::string> other = home.readText(otherSheet(round, step));
            for (int i = 0; other && i < 20; ++i) {
                EXPECT_NE(other->find(row(otherRow(round, step, i))), std::string::npos);
            }
        }
    }

    // Runs kRounds rounds of a worker killed at a random instant.
    void runRounds(const Case& c) {
        const uint32_t seed = std::random_device{}();
        std::mt19937 random(seed);
        for (int round = 0; round < kRounds; ++round) {
            for (int32_t step = 1; (c.changes & kSwitch) && step < 60; step += 2) {
                std::string text;
                for (int i = 0; i < 20; ++i) {
                    text += row(otherRow(round, step, i));
                }
                home.writeText(otherSheet(round, step), text);
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
            Report report{};
            ASSERT_EQ(::read(pipeEnds[0], &report, sizeof report),
                      static_cast<ssize_t>(sizeof report))
                << "the worker's launch failed, seed " << seed;
            // The random instant: anywhere in the first dozen or so changes.
            std::this_thread::sleep_for(
                std::chrono::microseconds(std::uniform_int_distribution<int>(0, 8000)(random)));
            ::kill(worker, SIGKILL);
            int status = 0;
            ASSERT_EQ(::waitpid(worker, &status, 0), worker);
            ASSERT_TRUE(WIFSIGNALED(status)) << "worker ended by itself, seed " << seed;
            std::vector<Report> reports;
            while (::read(pipeEnds[0], &report, sizeof report) ==
                   static_cast<ssize_t>(sizeof report)) {
                reports.push_back(report);
            }
            ::close(pipeEnds[0]);
            ASSERT_EQ(inChild([&] { check(c, round, reports); }), 0)
                << "round " << round << " after " << reports.size() << " changes, seed " << seed;
        }
    }

    // Hands the data folder (and with it the files' folder) to the ordinary
    // user that an unprivileged worker becomes.
    void handDataFolderOver() {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(home.dataFolder())) {
            ASSERT_EQ(::chown(entry.path().c_str(), 65534, 65534), 0);
        }
        ASSERT_EQ(::chown(home.dataFolder().c_str(), 65534, 65534), 0);
        ::chmod(home.root().c_str(), 0755);
    }
};

TEST_F(tkFaultMatrixTest, KilledWhileSavingTheTimeSheet) {
    makeBaseFiles(sheetPath());
    runRounds({kRow});
}

TEST_F(tkFaultMatrixTest, KilledWhileSavingTheTimers) {
    makeBaseFiles(sheetPath());
    runRounds({kTitle});
}

TEST_F(tkFaultMatrixTest, KilledWhileSavingThePreferences) {
    makeBaseFiles(sheetPath());
    runRounds({kDefault});
}

TEST_F(tkFaultMatrixTest, KilledWhileSwitchingTimeSheets) {
    makeBaseFiles(sheetPath());
    runRounds({kSwitch});
}

// A shared sheet of another user, everyone's to write: it is replaced whole,
// never rewritten in place.
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

// The sheet's folder takes no new file: every save is refused and pending,
// and the file stays whole.
TEST_F(tkFaultMatrixTest, KilledWhileSavesToAReadOnlyFolderAreRefused) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root to make a folder that an ordinary user can't write";
    }
    const std::string sheet = home.path("locked/sheet.txt");
    makeBaseFiles(sheet);
    home.writeText(timeSheetLockPath(sheet), "");
    ASSERT_EQ(::chmod(sheet.c_str(), 0666), 0);
    ASSERT_EQ(::chmod(home.path("locked").c_str(), 0555), 0);
    handDataFolderOver();
    runRounds({kRow | kTitle, true});
}

// Files that can be read but not written: every save is refused and pending.
TEST_F(tkFaultMatrixTest, KilledWhileSavesOfReadOnlyFilesAreRefused) {
    makeBaseFiles(sheetPath());
    if (::geteuid() == 0) {
        handDataFolderOver();
    }
    for (const std::string& path : {timersPath(), preferencesPath()}) {
        if (::geteuid() == 0) {
            ASSERT_EQ(::chown(path.c_str(), 0, 0), 0);
        }
        ASSERT_EQ(::chmod(path.c_str(), 0444), 0);
    }
    runRounds({kTitle | kDefault, ::geteuid() == 0});
}

// A full file system: a 64 KiB tmpfs where one can be mounted (in a mount
// namespace of its own, gone with the test's processes), otherwise the
// fault-injecting file manager.
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
    std::cout << "full disk: no tmpfs could be mounted, the fault-injecting file manager ran"
              << std::endl;
    makeBaseFiles(sheetPath());
    runRounds({kRow | kTitle | kDefault, false, true});
}

}  // namespace
