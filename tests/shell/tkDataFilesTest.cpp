#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <functional>

#include "foundation/StringFormatException.h"
#include "foundation/tkFileWriteException.h"
#include "preferences/tkPreferences.h"
#include "shell/tkAppState.h"
#include "shell/tkDataFiles.h"
#include "shell/tkErrorReporting.h"
#include "shell/tkTimeSheetLocation.h"
#include "tests/platform/tkPlatformTestSupport.h"
#include "tests/shell/tkShellTestSupport.h"
#include "tests/support/tkThrown.h"
#include "timers/tkTimerArray.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"

namespace {

class tkDataFilesTest : public tkShellTest {
  protected:
    // The time sheet open as after a launch, over the faulty manager, with the preferences'
    // handlers attached.
    tkTimeSheet& openSheet(const std::string& text) {
        home.writeText(sheetPath(), text);
        installFaulty();
        tkAppState::instance().attachPreferencesHandlers();
        openTimeSheet();
        return tkTimeSheet::instance();
    }
    int32_t switchTo(const std::string& relative, bool load, bool create) {
        return switchTimeSheet(*fileFromPath(home.path(relative)), load, create);
    }
};

// The sheet is read with its lock taken on a lock file that no save replaces, and kept.
TEST_F(tkDataFilesTest, OpeningTheSheetReadsItAndKeepsItsLock) {
    openSheet(row("a") + row("b"));
    EXPECT_EQ(tkTimeSheet::instance().rowCount(), 2u);
    EXPECT_TRUE(timeSheetReady());
    EXPECT_FALSE(sheetLockIsFree(sheetPath()));
    // Deleted while running: the next save writes it again, under the same lock.
    const int32_t locks = faulty->faults().openLockedCalls;
    ::unlink(sheetPath().c_str());
    tkTimeSheet::instance().addEntry(rowRecord("c"));
    EXPECT_EQ(home.readText(sheetPath()), row("a") + row("b") + row("c"));
    EXPECT_FALSE(sheetLockIsFree(sheetPath()));
    EXPECT_EQ(faulty->faults().openLockedCalls, locks);
}

TEST_F(tkDataFilesTest, AnUnwritableSheetIsRefusedUnread) {
    home.writeText(sheetPath(), row("a"));
    ::chmod(sheetPath().c_str(), 0444);
    installFaulty().faults().honourModeBits = true;
    EXPECT_EQ(thrown<IOException>([] { openTimeSheet(); }),
              "IOException|Time sheet lacks write permissions " + sheetPath());
    EXPECT_EQ(tkTimeSheet::instance().rowCount(), 0u);
}

// Each user action writes each file it changed once, however many rows it touches, before it
// returns; saves with nothing dirty touch no file, and a detached handler saves nothing.
TEST_F(tkDataFilesTest, EachActionWritesEachChangedFileOnceBeforeItReturns) {
    installFaulty();
    saveTimers();
    savePreferences();
    saveTimeSheet();
    EXPECT_EQ(faulty->faults().writes + faulty->faults().creates, 0);
    EXPECT_FALSE(home.exists(home.supportFolder()));

    tkTimeSheet& sheet = openSheet(row("a") + row("b") + row("c") + row("d"));
    tkAppState::instance().attachTimeSheetHandler();  // the launch's second attach
    const struct {
        const char* action;
        std::function<void()> run;
        int32_t writes;
    } cases[] = {
        {"add", [&] { sheet.addEntry(rowRecord("e")); }, 1},
        {"delete every row", [&] { sheet.deleteAllRows(); }, 1},
        {"undo", [&] { sheet.undoManager().undo(); }, 1},
        {"redo", [&] { sheet.undoManager().redo(); }, 1},
        // Three rows with a new code: the time sheet and the preferences, once each.
        {"paste", [&] { sheet.pasteText(row("x") + row("y") + "4/5/6\t1\tNEW\tJOB\tFEE\tz\n"); },
         2},
        // The re-sort that follows stores the sort key in the preferences.
        {"edit a cell in the sort column", [&] { sheet.setCell(0, "date", "1/1/1"); }, 2},
        {"edit a cell elsewhere", [&] { sheet.setCell(0, "description", "changed"); }, 1},
        {"preferences", [&] { tkPreferences::instance().setTimeSheetOpen(false); }, 1},
    };
    for (const auto& c : cases) {
        const int32_t before = faulty->faults().writes;
        c.run();
        EXPECT_EQ(faulty->faults().writes - before, c.writes) << c.action;
        EXPECT_FALSE(sheet.isDirty() || tkPreferences::instance().isDirty()) << c.action;
        EXPECT_EQ(home.readText(sheetPath()), sheet.tabbedText()) << c.action;
    }
    EXPECT_TRUE(fileHas(preferencesPath(), "<timesheetOpen>false"));
    // The codes of the good lines stay in the lists when a later line is refused: on disk too.
    EXPECT_THROW(sheet.pasteText("4/5/6\t1\tNEWE\tJOB\tFEE\tz\nbad line\n"), StringFormatException);
    EXPECT_TRUE(fileHas(preferencesPath(), "NEWE"));
    tkAppState::instance().detachPreferencesHandlers();
    tkPreferences::instance().setTimeSheetOpen(true);
    EXPECT_TRUE(tkPreferences::instance().isDirty());
    EXPECT_FALSE(fileHas(preferencesPath(), "<timesheetOpen>true"));
}

// A failed write (here a full disk) keeps each change pending and tells the user once per file,
// with the file and the reason; the next save that works writes it, and after that a new
// failure is told again.
TEST_F(tkDataFilesTest, FailedSavesKeepTheChangeTellOnceAndWriteItLater) {
    std::vector<std::string> reports;
    setErrorReporter([&](const tkException& e) { reports.push_back(e.message()); });
    tkTimeSheet& sheet = openSheet(row("a"));
    tkAppState::instance().attachTimersHandler();
    faulty->faults().diskFull = true;
    sheet.addEntry(rowRecord("b"));
    sheet.addEntry(rowRecord("c"));
    tkTimerArray::instance().setDrawerOpen(false);
    tkPreferences::instance().setTimeSheetOpen(false);
    tkPreferences::instance().setSingleWindowMode(false);
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
    sheet.addEntry(rowRecord("d"));
    saveTimers();
    savePreferences();
    EXPECT_EQ(home.readText(sheetPath()), row("a") + row("b") + row("c") + row("d"));
    EXPECT_TRUE(fileHas(timersPath(), "<drawerOpen>false"));
    EXPECT_TRUE(fileHas(preferencesPath(), "<timesheetOpen>false"));
    faulty->faults().diskFull = true;
    sheet.addEntry(rowRecord("e"));
    EXPECT_EQ(reports.size(), 4u);
    setErrorReporter(nullptr);
}

// A switch answers each failure with its code and changes nothing; one that works names the
// new file in the preferences only after writing it whole, once, and frees the old file.
TEST_F(tkDataFilesTest, SwitchingSheetsWritesTheNewFileOnceOrChangesNothing) {
    openSheet(row("a"));
    faulty->faults().honourModeBits = true;
    home.writeText("readonly.txt", row("theirs"));
    ::chmod(home.path("readonly.txt").c_str(), 0444);
    home.writeText("bad.txt", "no tabs\n");
    home.writeText("held.txt", "");
    tkFileManagerPosix other;
    const int32_t held = other.lockFile(timeSheetLockPath(home.path("held.txt")), 0).fd;
    ASSERT_GE(held, 0);
    EXPECT_EQ(switchTo("readonly.txt", true, false), 2);
    EXPECT_EQ(switchTo("bad.txt", true, false), 3);
    EXPECT_EQ(switchTo("held.txt", true, false), 4);
    faulty->faults().createFails = true;
    EXPECT_EQ(switchTo("cannot/exist.txt", true, false), 1);
    faulty->faults().createFails = false;
    other.closeLocked(held);
    EXPECT_EQ(tkPreferences::instance().timeSheetFile(), sheetPath());
    EXPECT_EQ(tkTimeSheet::instance().rowCount(), 1u);
    EXPECT_FALSE(sheetLockIsFree(sheetPath()));

    std::string text;
    for (int i = 0; i < 100; ++i) {
        text += row("x" + std::to_string(i));
    }
    home.writeText("other.txt", text);
    faulty->faults().replaced.clear();
    EXPECT_EQ(switchTo("other.txt", true, false), 0);
    EXPECT_EQ(faulty->faults().replaced,
              (std::vector<std::string>{home.path("other.txt"), preferencesPath()}));
    EXPECT_EQ(home.readText("other.txt"), row("a") + text);
    EXPECT_FALSE(tkTimeSheet::instance().isDirty());
    EXPECT_TRUE(sheetLockIsFree(sheetPath()));
    EXPECT_FALSE(sheetLockIsFree(home.path("other.txt")));

    EXPECT_EQ(switchTo("new/sheet.txt", false, true), 0);
    EXPECT_EQ(home.readText("new/sheet.txt"), row("a") + text);
    EXPECT_EQ(tkPreferences::instance().timeSheetFile(), home.path("new/sheet.txt"));
    EXPECT_TRUE(sheetLockIsFree(home.path("other.txt")));
}

// A broken timers file is never deleted: when the place in /tmp is taken (any local user can
// plant a file there) it goes to a free name in the data folder, and wherever it lands only its
// owner can read it.
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
    home.writeText("codes.txt", "old codes");
    writeFileSafely("new codes", *fileFromPath(home.path("codes.txt")));
    EXPECT_EQ(home.readText("codes.txt"), "new codes");
    faulty->faults().swapFails = true;
    EXPECT_EQ(thrown<tkFileWriteException>(
                  [&] { writeFileSafely("newer codes", *fileFromPath(home.path("codes.txt"))); }),
              "FileWriteException|Could not write to file codes.txt");
    EXPECT_EQ(home.readText("codes.txt"), "new codes");
    EXPECT_EQ(home.readText("~codes.txt"), "newer codes");
}

}  // namespace

namespace {

// The path display: P of at most 35 bytes stays; a longer one keeps its name N (n bytes)
// behind an ellipsis.
//
//   n >= 35   "…" + first 34 bytes of N        (no "/")
//   n == 34   "…/" + N                         (36 characters)
//   n <  34   first 33-n bytes of P + "…/" + N
TEST(tkTimeSheetLocation, ShortenedLocationKeepsTheNameWhenItCan) {
    const std::string dots = "\u2026";
    const std::string name10 = "sheet1.txt";
    const std::string name34(34, 'n');
    const std::string name50 = std::string(40, 'm') + "0123456789";
    const std::string a22(22, 'a');
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"/" + a22 + "a/" + name10, "/" + a22 + "a/" + name10},
        {"/" + a22 + "aa/" + name10, "/" + a22 + dots + "/" + name10},
        {"/" + a22 + "aaaaaa/" + name10, "/" + a22 + dots + "/" + name10},
        {"/home/" + name34, dots + "/" + name34},
        {"/x/" + name50, dots + name50.substr(0, 34)},
        {"", ""},
    };
    for (const auto& [path, shown] : cases) {
        EXPECT_EQ(shortenedLocation(path), shown) << path;
    }
}

class tkTimeSheetLocationTest : public tkShellTest {
  protected:
    void SetUp() override {
        tkShellTest::SetUp();
        home.writeText(sheetPath(), row("a") + row("b"));
        launchFaulty();
    }
    static std::string location() { return tkPreferences::instance().timeSheetFile(); }
};

// A move writes every row to the new place, which the preferences then name and this copy
// locks, before the old file goes; a failed one leaves the old sheet named, locked and whole.
TEST_F(tkTimeSheetLocationTest, MoveWritesEveryRowToTheNewPlaceBeforeTheOldFileGoes) {
    home.writeText("taken.txt", "theirs\n");
    ::chmod(home.path("taken.txt").c_str(), 0444);
    EXPECT_EQ(moveTimeSheet(home.path("taken.txt")), kTimeSheetTargetTaken);
    EXPECT_EQ(home.readText("taken.txt"), "theirs\n");
    faulty->faults().createFails = true;
    EXPECT_EQ(moveTimeSheet(home.path("new/sheet.txt")), 1);
    EXPECT_FALSE(home.exists("new/sheet.txt"));
    faulty->faults().createFails = false;
    EXPECT_EQ(location(), sheetPath());
    EXPECT_EQ(home.readText(sheetPath()), row("a") + row("b"));
    EXPECT_FALSE(sheetLockIsFree(sheetPath()));

    const std::string target = home.path("elsewhere/new sheet.txt");
    EXPECT_EQ(moveTimeSheet(target), 0);
    EXPECT_EQ(home.readText(target), row("a") + row("b"));
    EXPECT_FALSE(home.exists(sheetPath()));
    EXPECT_EQ(location(), target);
    EXPECT_FALSE(sheetLockIsFree(target)) << "the new file is this copy's now";
    EXPECT_TRUE(fileHas(preferencesPath(), target));
    tkTimeSheet::instance().addEntry(rowRecord("c"));
    EXPECT_EQ(home.readText(target), row("a") + row("b") + row("c"));
    EXPECT_EQ(moveTimeSheet(target), 0) << "the present place: nothing to do";
}

// Back to the default place, which must be free; only a move that worked resets the rest.
TEST_F(tkTimeSheetLocationTest, RestoreDefaultLocationMovesBackAndResetsTheRest) {
    const std::string other = home.path("other.txt");
    ASSERT_EQ(moveTimeSheet(other), 0);
    tkPreferences::instance().setSingleWindowMode(false);
    home.writeText(sheetPath(), "left behind\n");
    EXPECT_EQ(restoreDefaultLocation(), kTimeSheetTargetTaken);
    EXPECT_FALSE(tkPreferences::instance().isSingleWindowMode()) << "a failed move resets nothing";
    EXPECT_EQ(location(), other);
    ::unlink(sheetPath().c_str());
    EXPECT_EQ(restoreDefaultLocation(), 0);
    EXPECT_EQ(location(), sheetPath());
    EXPECT_EQ(home.readText(sheetPath()), row("a") + row("b"));
    EXPECT_FALSE(home.exists(other));
    EXPECT_TRUE(tkPreferences::instance().isSingleWindowMode());
    EXPECT_EQ(restoreDefaultLocation(), 0) << "already there: only the reset";
}

}  // namespace
