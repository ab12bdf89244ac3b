#include "shell/tkDataFiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/tkFileLockedException.h"
#include "foundation/tkFileWriteException.h"
#include "preferences/tkPreferences.h"
#include "records/tkRecord.h"
#include "shell/tkAppState.h"
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
    // True when another descriptor can take the lock, i.e. nobody holds it.
    bool lockIsFree(const std::string& path) {
        tkFileManagerPosix probe;
        const int32_t fd = probe.openLocked(path, 0);
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
    // Taken, dropped for the read, taken again.
    EXPECT_EQ(faulty->faults().openLockedCalls, 2);
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

TEST_F(tkDataFilesTest, SaveWhoseLockCantBeRetakenThrowsWithTextOnDiskAndFlagSet) {
    openSheet(row("a"));
    faulty->faults().lockFailures = 1;
    try {
        tkTimeSheet::instance().setDirty(true);
        FAIL() << "no exception";
    } catch (const tkFileLockedException& e) {
        EXPECT_EQ(e.message(),
                  "Cannot acquire file lock (perhaps the file is in use?) at " + sheetPath());
    }
    EXPECT_EQ(home.readText(sheetPath()), row("a"));
    EXPECT_TRUE(tkTimeSheet::instance().isDirty());
    EXPECT_EQ(timeSheetLock(), -1);

    // The next change tries again and gets the lock back.
    tkTimeSheet::instance().setDirty(true);
    EXPECT_FALSE(tkTimeSheet::instance().isDirty());
    EXPECT_GE(timeSheetLock(), 0);
    EXPECT_FALSE(lockIsFree(sheetPath()));
}

TEST_F(tkDataFilesTest, SheetDeletedWhileRunningIsWrittenAgainByTheNextSave) {
    openSheet(row("a"));
    ::unlink(sheetPath().c_str());
    tkTimeSheet::instance().addEntry(record("b"));
    EXPECT_EQ(home.readText(sheetPath()), row("a") + row("b"));
    EXPECT_FALSE(lockIsFree(sheetPath())) << "the lock sits on the new file";
}

TEST_F(tkDataFilesTest, FailedSaveKeepsTheDirtyFlagForTheNextTry) {
    installFaulty();
    tkAppState::instance().attachTimersHandler();
    faulty->faults().createFails = true;
    EXPECT_THROW(tkTimerArray::instance().setTimerOpen(false), IOException);
    EXPECT_TRUE(tkTimerArray::instance().isDirty());
    EXPECT_FALSE(home.exists(timersPath()));
    faulty->faults().createFails = false;
    saveTimers();
    EXPECT_FALSE(tkTimerArray::instance().isDirty());
    EXPECT_TRUE(home.exists(timersPath()));
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

TEST_F(tkDataFilesTest, SwitchAnswersEachFailureWithItsCode) {
    openSheet("");
    home.writeText("bad.txt", "no tabs\n");
    EXPECT_EQ(switchTimeSheet(*fileFromPath(home.path("bad.txt")), true, false), 3);

    home.writeText("held.txt", "");
    tkFileManagerPosix other;
    const int32_t held = other.openLocked(home.path("held.txt"), 0);
    ASSERT_GE(held, 0);
    EXPECT_EQ(switchTimeSheet(*fileFromPath(home.path("held.txt")), true, false), 4);
    other.closeLocked(held);

    faulty->faults().createFails = true;
    EXPECT_EQ(switchTimeSheet(*fileFromPath(home.path("cannot/exist.txt")), true, false), 1);
    EXPECT_EQ(tkPreferences::instance().timeSheetFile(), home.path("held.txt"))
        << "a failure before the switch leaves the last path";
}

// ---- the corrupt timers file, the safe write ----

TEST_F(tkDataFilesTest, MoveCorruptTimersMovesOrDeletes) {
    tkCorruptTimersGuard guard;
    installFaulty();
    home.writeText(timersPath(), "first");
    EXPECT_EQ(moveCorruptTimers(), "/tmp/corrupt_timers.txt");
    EXPECT_EQ(guard.contents(), "first");
    EXPECT_FALSE(home.exists(timersPath()));

    home.writeText(timersPath(), "second");
    testing::internal::CaptureStderr();
    EXPECT_EQ(moveCorruptTimers(), "");
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
