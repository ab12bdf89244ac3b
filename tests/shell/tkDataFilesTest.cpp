#include "shell/tkDataFiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>

#include "foundation/tkFileLockedException.h"
#include "foundation/tkFileWriteException.h"
#include "preferences/tkPreferences.h"
#include "records/tkRecord.h"
#include "shell/tkAppState.h"
#include "shell/tkDataLocks.h"
#include "shell/tkErrorReporting.h"
#include "tests/platform/tkPlatformTestSupport.h"
#include "tests/shell/tkShellTestSupport.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timesheet/tkTimeSheet.h"

namespace {

class tkDataFilesTest : public tkShellTest {
  protected:
    // The time sheet open as after a launch, over the faulty manager.
    void openSheet(const std::string& text) {
        home.writeText(sheetPath(), text);
        installFaulty();
        openTimeSheet();
    }
    // True when another descriptor can take the sheet's lock: nobody holds it.
    bool lockIsFree(const std::string& path) {
        tkFileManagerPosix probe;
        const int32_t fd = probe.lockFile(timeSheetLockPath(path), 0).fd;
        if (fd < 0) {
            return false;
        }
        probe.closeLocked(fd);
        return true;
    }
    static std::shared_ptr<tkRecord> record(const std::string& description) {
        return std::make_shared<tkRecord>("1/2/3", "01:00:00", "EMP", "JOB", "FEE", description);
    }
};

// ---- reading ----

TEST_F(tkDataFilesTest, OpenTimeSheetReadsTheRowsAndKeepsTheLock) {
    openSheet(row("a") + row("b"));
    EXPECT_EQ(tkTimeSheet::instance().rowCount(), 2u);
    EXPECT_TRUE(timeSheetReady());
    EXPECT_FALSE(lockIsFree(sheetPath()));
    // Taken once, on a lock file that no save replaces, and kept.
    EXPECT_EQ(faulty->faults().openLockedCalls, 1);
}

TEST_F(tkDataFilesTest, OpenTimeSheetRefusesAnUnwritableFile) {
    home.writeText(sheetPath(), row("a"));
    ::chmod(sheetPath().c_str(), 0444);
    installFaulty().faults().honourModeBits = true;
    try {
        openTimeSheet();
        FAIL() << "no exception";
    } catch (const IOException& e) {
        EXPECT_EQ(e.message(), "Time sheet lacks write permissions " + sheetPath());
    }
    EXPECT_EQ(tkTimeSheet::instance().rowCount(), 0u);
}

// ---- saving ----

TEST_F(tkDataFilesTest, SavesWithNothingDirtyTouchNoFile) {
    installFaulty();
    saveTimers();
    savePreferences();
    saveTimeSheet();
    EXPECT_EQ(faulty->faults().writes, 0);
    EXPECT_EQ(faulty->faults().creates, 0);
    EXPECT_FALSE(home.exists(home.supportFolder()));
}

TEST_F(tkDataFilesTest, HandlersSaveInsideThePostAndStopWhenDetached) {
    installFaulty();
    tkAppState::instance().attachPreferencesHandlers();
    tkPreferences::instance().setTimeSheetOpen(false);
    EXPECT_FALSE(tkPreferences::instance().isDirty()) << "cleared after the write";
    const std::optional<std::string> saved = home.readText(preferencesPath());
    ASSERT_TRUE(saved.has_value());
    EXPECT_NE(saved->find("<timesheetOpen>false</timesheetOpen>"), std::string::npos);

    tkAppState::instance().detachPreferencesHandlers();
    tkPreferences::instance().setTimeSheetOpen(true);
    EXPECT_TRUE(tkPreferences::instance().isDirty());
    EXPECT_EQ(home.readText(preferencesPath()), saved);
}

TEST_F(tkDataFilesTest, DoubleAttachedSheetHandlerWritesOnce) {
    openSheet("");
    tkAppState::instance().attachTimeSheetHandler();  // the launch's second attach
    const int32_t before = faulty->faults().writes;
    tkTimeSheet::instance().addEntry(record("new"));
    EXPECT_EQ(faulty->faults().writes - before, 1);
    EXPECT_EQ(home.readText(sheetPath()), row("new"));
}

// A failed write (here a full disk) keeps each change pending, tells the
// user once per file with the file and the reason, and the next save that
// works writes it.
TEST_F(tkDataFilesTest, FailedSavesKeepTheChangeTellOnceAndWriteItLater) {
    std::vector<std::string> reports;
    setErrorReporter([&](const tkException& e) { reports.push_back(e.message()); });
    openSheet(row("a"));
    tkAppState::instance().attachTimersHandler();
    tkAppState::instance().attachPreferencesHandlers();
    faulty->faults().diskFull = true;
    tkTimeSheet::instance().addEntry(record("b"));
    tkTimeSheet::instance().addEntry(record("c"));
    tkTimerArray::instance().setDrawerOpen(false);
    tkPreferences::instance().setTimeSheetOpen(false);

    ASSERT_EQ(reports.size(), 3u) << "one per file, not one per change";
    for (const std::string& path : {sheetPath(), timersPath(), preferencesPath()}) {
        const std::string expected = "Could not save " + path + ": No space left on device.";
        EXPECT_EQ(std::count_if(reports.begin(), reports.end(),
                                [&](const std::string& r) { return r.find(expected) == 0; }),
                  1)
            << path;
    }
    EXPECT_EQ(home.readText(sheetPath()), row("a"));
    EXPECT_FALSE(home.exists(timersPath()));

    faulty->faults().diskFull = false;
    tkTimeSheet::instance().addEntry(record("d"));
    saveTimers();
    savePreferences();
    EXPECT_EQ(home.readText(sheetPath()), row("a") + row("b") + row("c") + row("d"));
    EXPECT_NE(home.readText(timersPath())->find("<drawerOpen>false</drawerOpen>"),
              std::string::npos);
    EXPECT_NE(home.readText(preferencesPath())->find("<timesheetOpen>false"), std::string::npos);

    // After a save that worked, a new failure is told again.
    faulty->faults().diskFull = true;
    tkTimeSheet::instance().addEntry(record("e"));
    EXPECT_EQ(reports.size(), 4u);
    setErrorReporter(nullptr);
}

TEST_F(tkDataFilesTest, SheetDeletedWhileRunningIsWrittenAgainByTheNextSave) {
    openSheet(row("a"));
    ::unlink(sheetPath().c_str());
    tkTimeSheet::instance().addEntry(record("b"));
    EXPECT_EQ(home.readText(sheetPath()), row("a") + row("b"));
    EXPECT_FALSE(lockIsFree(sheetPath())) << "the lock sits on the new file";
}

// ---- switching the time sheet ----

TEST_F(tkDataFilesTest, SwitchToReadOnlyFileAnswersTwoAndChangesNothing) {
    openSheet(row("a"));
    faulty->faults().honourModeBits = true;
    home.writeText("readonly.txt", row("theirs"));
    ::chmod(home.path("readonly.txt").c_str(), 0444);
    EXPECT_EQ(switchTimeSheet(*fileFromPath(home.path("readonly.txt")), true, false), 2);
    EXPECT_EQ(tkPreferences::instance().timeSheetFile(), sheetPath());
    EXPECT_FALSE(lockIsFree(sheetPath())) << "the old file stays locked";
    EXPECT_EQ(tkTimeSheet::instance().rowCount(), 1u);
}

TEST_F(tkDataFilesTest, SwitchToNewFileWritesThePresentRowsAndFreesTheOldFile) {
    openSheet(row("a") + row("b"));
    const std::string target = home.path("new/sheet.txt");
    EXPECT_EQ(switchTimeSheet(*fileFromPath(target), false, true), 0);
    EXPECT_EQ(home.readText(target), row("a") + row("b"));
    EXPECT_EQ(tkPreferences::instance().timeSheetFile(), target);
    EXPECT_EQ(home.readText(sheetPath()), row("a") + row("b"));
    EXPECT_TRUE(lockIsFree(sheetPath()));
    EXPECT_FALSE(lockIsFree(target));
}

TEST_F(tkDataFilesTest, SwitchWithLoadAddsTheRowsOfTheOtherFile) {
    openSheet(row("a"));
    home.writeText("other.txt", row("x") + row("y"));
    EXPECT_EQ(switchTimeSheet(*fileFromPath(home.path("other.txt")), true, false), 0);
    EXPECT_EQ(tkTimeSheet::instance().rowCount(), 3u);
    EXPECT_FALSE(lockIsFree(home.path("other.txt")));
    EXPECT_TRUE(lockIsFree(sheetPath()));
}

// The rows of the other file go in without a write per row; then the new
// file is written once and whole, and only then do the preferences name it.
TEST_F(tkDataFilesTest, SwitchWritesTheNewFileOnceBeforeThePreferencesNameIt) {
    openSheet(row("a"));
    tkAppState::instance().attachPreferencesHandlers();
    std::string other;
    for (int i = 0; i < 100; ++i) {
        other += row("x" + std::to_string(i));
    }
    home.writeText("other.txt", other);
    faulty->faults().replaced.clear();
    EXPECT_EQ(switchTimeSheet(*fileFromPath(home.path("other.txt")), true, false), 0);
    EXPECT_EQ(faulty->faults().replaced,
              (std::vector<std::string>{home.path("other.txt"), preferencesPath()}));
    EXPECT_EQ(home.readText("other.txt"), row("a") + other);
    EXPECT_FALSE(tkTimeSheet::instance().isDirty());
}

TEST_F(tkDataFilesTest, SwitchAnswersEachFailureWithItsCode) {
    openSheet("");
    home.writeText("bad.txt", "no tabs\n");
    EXPECT_EQ(switchTimeSheet(*fileFromPath(home.path("bad.txt")), true, false), 3);

    home.writeText("held.txt", "");
    tkFileManagerPosix other;
    const int32_t held = other.lockFile(timeSheetLockPath(home.path("held.txt")), 0).fd;
    ASSERT_GE(held, 0);
    EXPECT_EQ(switchTimeSheet(*fileFromPath(home.path("held.txt")), true, false), 4);
    other.closeLocked(held);

    faulty->faults().createFails = true;
    EXPECT_EQ(switchTimeSheet(*fileFromPath(home.path("cannot/exist.txt")), true, false), 1);
    EXPECT_EQ(tkPreferences::instance().timeSheetFile(), sheetPath())
        << "no failed switch changes the preferences";
    EXPECT_FALSE(lockIsFree(sheetPath()));
}

// ---- the corrupt timers file, the safe write ----

// A broken timers file is never deleted: when the place in /tmp is taken
// (any local user can plant a file there) it goes to a free name in the data
// folder, and wherever it lands only its owner can read it.
TEST_F(tkDataFilesTest, CorruptTimersAreMovedPrivatelyAndNeverDeleted) {
    tkCorruptTimersGuard guard;
    installFaulty();
    home.writeText(timersPath(), "first");
    ::chmod(timersPath().c_str(), 0644);
    EXPECT_EQ(moveCorruptTimers(), "/tmp/corrupt_timers.txt");
    EXPECT_EQ(guard.contents(), "first");
    EXPECT_EQ(permissionsOf(tkCorruptTimersGuard::kPath), 0600u);

    testing::internal::CaptureStderr();
    for (const std::string suffix : {" (unreadable).txt", " (unreadable 2).txt"}) {
        home.writeText(timersPath(), "broken" + suffix);
        const std::string movedTo = moveCorruptTimers();
        EXPECT_EQ(movedTo, home.supportFolder() + "/Chronolet Timers" + suffix);
        EXPECT_EQ(home.readText(movedTo), "broken" + suffix);
        EXPECT_EQ(permissionsOf(movedTo), 0600u);
    }
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(guard.contents(), "first") << "never moved over an existing file";
    EXPECT_FALSE(home.exists(timersPath()));
}

TEST_F(tkDataFilesTest, WriteFileSafelyThrowsWhenTheSwapFailsAndKeepsBothVersions) {
    installFaulty();
    home.writeText("billing codes.txt", "old codes");
    writeFileSafely("new codes", *fileFromPath(home.path("billing codes.txt")));
    EXPECT_EQ(home.readText("billing codes.txt"), "new codes");

    faulty->faults().swapFails = true;
    try {
        writeFileSafely("newer codes", *fileFromPath(home.path("billing codes.txt")));
        FAIL() << "no exception";
    } catch (const tkFileWriteException& e) {
        EXPECT_EQ(e.message(), "Could not write to file billing codes.txt");
    }
    EXPECT_EQ(home.readText("billing codes.txt"), "new codes");
    EXPECT_EQ(home.readText("~billing codes.txt"), "newer codes");
}

}  // namespace
