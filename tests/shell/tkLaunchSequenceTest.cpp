#include "shell/tkLaunchSequence.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "foundation/tkNotificationNames.h"
#include "foundation/tkTagParser.h"
#include "preferences/tkPreferences.h"
#include "records/tkRecord.h"
#include "shell/tkAppState.h"
#include "shell/tkDataFiles.h"
#include "shell/tkDataLocks.h"
#include "shell/tkErrorReporting.h"
#include "shell/tkTimeSheetLocation.h"
#include "tests/platform/tkPlatformTestSupport.h"
#include "tests/shell/tkShellTestSupport.h"
#include "tests/support/tkLockHolder.h"
#include "timers/tkHeadlessTimerUI.h"
#include "timers/tkHeadlessTimerWindow.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerController.h"
#include "timesheet/tkTimeSheet.h"

namespace {

class tkLaunchTest : public tkShellTest {
  protected:
    // A launch (over the faulty manager when `faults` is given) whose log stays out of the
    // test's output; returns the log.
    std::string quietLaunch(std::function<void(tkFileFaults&)> faults = nullptr) {
        testing::internal::CaptureStderr();
        faults ? launchFaulty(faults) : launch();
        return testing::internal::GetCapturedStderr();
    }
};

// ---- a normal start ----

TEST_F(tkLaunchTest, FirstStartWithNoFilesComesUpWithOneTimerAndAnEmptySheet) {
    launch();
    tkTimerArray& timers = tkTimerArray::instance();
    ASSERT_EQ(timers.numTimers(), 1u);
    EXPECT_EQ(timers.timerAt(0)->getTitle(), "Timer 1");
    EXPECT_TRUE(noPreferencesFound());
    EXPECT_TRUE(timeSheetReady());
    EXPECT_GE(timeSheetLock(), 0);
    EXPECT_EQ(home.readText(sheetPath()), "") << "the sheet is created, empty";
    EXPECT_TRUE(home.exists(timersPath())) << "the new timer is saved at once";
    EXPECT_TRUE(frontEnd.eventsOf(Kind::ErrorDialog).empty());
    EXPECT_TRUE(frontEnd.eventsOf(Kind::ErrorWindow).empty());
    ASSERT_EQ(frontEnd.eventsOf(Kind::LoadTimeSheet).size(), 1u);
    auto* window = dynamic_cast<tkHeadlessTimerWindow*>(timers.windowForTimer(0));
    ASSERT_NE(window, nullptr);
    EXPECT_GE(window->timesBroughtToFront(), 1u);
}

TEST_F(tkLaunchTest, SavedStateComesBackAtTheNextLaunch) {
    EXPECT_EQ(inChild([&] {
                  launch();
                  tkTimerArray::instance().timerAt(0)->setTitle("Kept title");
                  tkPreferences::instance().setSingleWindowMode(false);
                  auto record = std::make_shared<tkRecord>("3/4/05", "00:10:00", "ANN", "J1", "F1",
                                                           "kept row");
                  tkTimeSheet::instance().addEntry(record);
              }),
              0);
    launch();
    tkTimerArray& timers = tkTimerArray::instance();
    ASSERT_EQ(timers.numTimers(), 1u);
    EXPECT_EQ(timers.timerAt(0)->getTitle(), "Kept title");
    EXPECT_FALSE(tkPreferences::instance().isSingleWindowMode());
    ASSERT_EQ(tkTimeSheet::instance().rowCount(), 1u);
    EXPECT_EQ(tkTimeSheet::instance().rows()[0]->description()->toString(), "kept row");
}

// ---- the old places ----

TEST_F(tkLaunchTest, OnlyOldFilesAreReadAndLeftWhereTheyAre) {
    const std::string old = timersText({"Old A", "Old B"});
    home.writeText(oldTimersPath(), old);
    home.writeText(oldPreferencesPath(),
                   "<tkPreferences><timesheetOpen>false</timesheetOpen></tkPreferences>");
    launch();
    EXPECT_FALSE(tkPreferences::instance().isTimeSheetOpen());
    EXPECT_FALSE(noPreferencesFound());
    tkTimerArray& timers = tkTimerArray::instance();
    ASSERT_EQ(timers.numTimers(), 2u);
    EXPECT_EQ(timers.timerAt(1)->getTitle(), "Old B");
    EXPECT_EQ(home.readText(oldTimersPath()), old);

    timers.timerAt(0)->setTitle("Changed");
    EXPECT_EQ(home.readText(oldTimersPath()), old) << "never written";
    const std::optional<std::string> written = home.readText(timersPath());
    ASSERT_TRUE(written.has_value()) << "the first change creates the new file";
    EXPECT_NE(written->find("Changed"), std::string::npos);
}

// A new file wins even when it holds no timers; the old preferences are not read either.
TEST_F(tkLaunchTest, NewFilesWinOverOldOnesEvenWithoutTimers) {
    home.writeText(oldTimersPath(), timersText({"Old A", "Old B"}));
    home.writeText(timersPath(), timersText({}));
    home.writeText(oldPreferencesPath(),
                   "<tkPreferences><singleWindowMode>false</singleWindowMode></tkPreferences>");
    home.writeText(preferencesPath(),
                   "<tkPreferences><timesheetOpen>false</timesheetOpen></tkPreferences>");
    launch();
    tkTimerArray& timers = tkTimerArray::instance();
    ASSERT_EQ(timers.numTimers(), 1u) << "a fresh timer, none of the old ones";
    EXPECT_EQ(timers.timerAt(0)->getTitle(), "Timer 1");
    EXPECT_TRUE(tkPreferences::instance().isSingleWindowMode());
    EXPECT_FALSE(tkPreferences::instance().isTimeSheetOpen());
    EXPECT_FALSE(noPreferencesFound());
}

// ---- broken files ----

TEST_F(tkLaunchTest, MalformedTimersFileIsMovedAsideAndReported) {
    tkCorruptTimersGuard guard;
    const std::string broken = "<timerArray><timer 0><title>x</title>";
    home.writeText(timersPath(), broken);
    launch();

    EXPECT_EQ(guard.contents(), broken);
    const auto dialogs = frontEnd.eventsOf(Kind::ErrorDialog);
    ASSERT_EQ(dialogs.size(), 1u);
    EXPECT_EQ(dialogs[0].name, "Malformed File");
    EXPECT_FALSE(dialogs[0].modal);
    EXPECT_EQ(dialogs[0].message,
              "Chronolet Plus could not read the timer file from " + timersPath() +
                  ".  This file has been moved to /tmp/corrupt_timers.txt.  Details of the error: "
                  "File has unmatched timerArray tag.");

    EXPECT_EQ(permissionsOf(tkCorruptTimersGuard::kPath), 0600u) << "in a folder everyone reads";

    // The application is usable: a fresh timer, and every change of this
    // run reaches a fresh timers file.
    tkTimerArray& timers = tkTimerArray::instance();
    ASSERT_EQ(timers.numTimers(), 1u);
    timers.timerAt(0)->setTitle("Kept after the recovery");
    const std::optional<std::string> saved = home.readText(timersPath());
    ASSERT_TRUE(saved.has_value());
    EXPECT_NE(saved->find("Kept after the recovery"), std::string::npos) << *saved;
}

// A broken preferences file is kept under a free name and named in the
// message; the defaults are used and saved without touching it.
TEST_F(tkLaunchTest, BadPreferencesAreSetAsideNamedAndDefaultsUsed) {
    const std::string broken = "<tkPreferences><singleWindowMode>false";
    home.writeText(preferencesPath(), broken);
    launch();
    const std::string keptAs = home.supportFolder() + "/Chronolet Preferences (unreadable).txt";
    const auto dialogs = frontEnd.eventsOf(Kind::ErrorDialog);
    ASSERT_EQ(dialogs.size(), 1u);
    EXPECT_FALSE(dialogs[0].modal);
    EXPECT_EQ(dialogs[0].message, "Chronolet Plus could not read its preferences file " +
                                      preferencesPath() + ".  The file has been kept as " + keptAs +
                                      ", and the default settings are used.  Details of the "
                                      "error: File has unmatched tkPreferences tag.");
    EXPECT_TRUE(tkPreferences::instance().isSingleWindowMode());
    EXPECT_EQ(home.readText(keptAs), broken);
    EXPECT_EQ(permissionsOf(keptAs), 0600u);
    tkPreferences::instance().setSingleWindowMode(false);
    EXPECT_NE(home.readText(preferencesPath())->find("false"), std::string::npos);
    EXPECT_EQ(home.readText(keptAs), broken);
    EXPECT_EQ(tkTimerArray::instance().numTimers(), 1u);
}

// Whatever stands at the sheet's path, a modal dialog says what and where, the read window
// opens on that file, which stays as it was, and the application comes up with the file
// chosen there instead.
TEST_F(tkLaunchTest, UnusableSheetIsNamedWithTheReasonAndTheAppComesUpWithAnother) {
    struct Case {
        const char* name;
        int (*make)(const char* path);
        const char* before;  // the message: before + path + after
        const char* after;
        const char* log;
        bool regularFile;
    };
    const char* const notRegular = ": it is not a regular file (a device, pipe or socket).";
    const Case cases[] = {
        {"bad.txt", [](const char* p) { return tkTestFiles::write(p, "no tabs\n"), 0; },
         "The time sheet ", " is badly formatted: Not enough tabs in line: no tabs",
         "Time sheet badly formatted.", true},
        {"unwritable.txt",
         [](const char* p) { return tkTestFiles::write(p, row("a")), ::chmod(p, 0444); },
         "Time sheet lacks write permissions ", "", "Cannot read the time sheet file.", true},
        {"folder", [](const char* p) { return ::mkdir(p, 0700); }, "Cannot read ",
         ": it is a folder, not a file.", "Cannot read the time sheet file.", false},
        {"pipe", [](const char* p) { return ::mkfifo(p, 0600); }, "Cannot read ", notRegular,
         "Cannot read the time sheet file.", false},
        {"device", [](const char* p) { return ::symlink("/dev/zero", p); }, "Cannot read ",
         notRegular, "Cannot read the time sheet file.", false},
    };
    for (const Case& c : cases) {
        const std::string path = home.path(c.name);
        const std::string fresh = path + " instead.txt";
        ASSERT_EQ(c.make(path.c_str()), 0) << c.name;
        const auto found = c.regularFile ? home.readText(path) : std::nullopt;
        home.writeText(preferencesPath(), "<tkPreferences><timeSheetFile>" + path +
                                              "</timeSheetFile></tkPreferences>");
        EXPECT_EQ(inChild([&] {
                      frontEnd.scriptAnswer({tkTSErrorAnswer::Action::CreateNew, fresh});
                      const std::string log =
                          quietLaunch([](tkFileFaults& faults) { faults.honourModeBits = true; });
                      EXPECT_NE(log.find(std::string(c.log) + "\n"), std::string::npos) << log;
                      const auto& events = frontEnd.events();
                      ASSERT_GE(events.size(), 2u);
                      EXPECT_EQ(events[0].kind, Kind::ErrorDialog);
                      EXPECT_TRUE(events[0].modal);
                      EXPECT_EQ(events[0].message, c.before + path + c.after);
                      EXPECT_EQ(events[1].kind, Kind::ErrorWindow);
                      EXPECT_EQ(events[1].window, tkTSErrorWindow::Read);
                      EXPECT_EQ(events[1].directory, home.root());
                      EXPECT_EQ(events[1].fileName, c.name);
                      EXPECT_EQ(frontEnd.eventsOf(Kind::ErrorWindow).size(), 1u);
                      EXPECT_EQ(frontEnd.eventsOf(Kind::LoadTimeSheet).size(), 1u);
                      EXPECT_EQ(tkPreferences::instance().timeSheetFile(), fresh);
                      EXPECT_EQ(home.readText(fresh), "");
                      if (c.regularFile) {
                          EXPECT_EQ(home.readText(path), found);
                      }
                  }),
                  0)
            << c.name;
    }
}

TEST_F(tkLaunchTest, LaunchSweepsOnlyTheTemporariesOfKilledProcesses) {
    const std::string dead = ".tkw." + std::to_string(endedProcessId());
    const std::string live = ".tkw." + std::to_string(::getpid());
    const std::string folder = home.supportFolder() + "/.";
    const std::vector<std::string> swept = {folder + "Chronolet Timers.txt" + dead,
                                            folder + "Chronolet Preferences.txt" + dead + ".2",
                                            folder + "Test User's Time Sheet.txt" + dead};
    for (const std::string& path : swept) {
        home.writeText(path, "half a save");
    }
    home.writeText(folder + "Chronolet Timers.txt" + live, "a save in progress");
    launch();
    for (const std::string& path : swept) {
        EXPECT_FALSE(home.exists(path)) << path;
    }
    EXPECT_TRUE(home.exists(folder + "Chronolet Timers.txt" + live));
}

// ---- a second copy of the program ----

TEST_F(tkLaunchTest, SecondCopyIsLockedOutAndTheFirstGoesOnUndisturbed) {
    home.writeText(sheetPath(), row("first copy's row"));
    int ready[2], proceed[2];
    ASSERT_EQ(::pipe(ready) | ::pipe(proceed), 0);
    const pid_t first = ::fork();
    ASSERT_GE(first, 0);
    if (first == 0) {
        // The first copy: a full launch, then it waits (or sees this test end), then it saves.
        ::close(proceed[1]);
        launch();
        const char ok = timeSheetLock() >= 0 ? '1' : '0';
        (void)!::write(ready[1], &ok, 1);
        char go = 0;
        (void)!::read(proceed[0], &go, 1);
        tkTimeSheet::instance().addEntry(rowRecord("after"));
        ::_exit(tkTimeSheet::instance().rowCount() == 2 ? 0 : 1);
    }
    char ok = 0;
    ASSERT_EQ(::read(ready[0], &ok, 1), 1);
    ASSERT_EQ(ok, '1');
    const auto timersBefore = home.readText(timersPath());
    const auto preferencesBefore = home.readText(preferencesPath());

    launch();  // the second copy

    // It says why and quits before it reads or writes anything: nothing of
    // the first copy's is lost or written over.
    const auto& events = frontEnd.events();
    ASSERT_EQ(events.size(), 2u);
    EXPECT_EQ(events[0].kind, Kind::ErrorDialog);
    EXPECT_TRUE(events[0].modal);
    EXPECT_EQ(events[0].message,
              "Chronolet Plus is already running: another copy holds its files in " +
                  home.supportFolder() + ".  This copy closes without changing them.");
    EXPECT_EQ(events[1].kind, Kind::Quit);
    EXPECT_EQ(tkTimeSheet::instance().rowCount(), 0u);
    EXPECT_EQ(home.readText(timersPath()), timersBefore);
    EXPECT_EQ(home.readText(preferencesPath()), preferencesBefore);

    const char go = 'g';
    ASSERT_EQ(::write(proceed[1], &go, 1), 1);
    int status = 0;
    ASSERT_EQ(::waitpid(first, &status, 0), first);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(home.readText(sheetPath()), row("first copy's row") + row("after"));
}

TEST_F(tkLaunchTest, LockedSheetStillBringsUpTheTimersAfterTheWindowEnds) {
    home.writeText(sheetPath(), "");
    home.writeText(timersPath(), timersText({"Running on"}));
    // Another user's copy that shares the sheet: it holds the sheet's lock, not this user's
    // data folder. The user picks another file from the locked window.
    tkLockHolder otherCopy(sheetPath());
    ASSERT_TRUE(otherCopy.holds());
    frontEnd.scriptAnswer({tkTSErrorAnswer::Action::CreateNew, home.path("other sheet.txt")});
    quietLaunch();
    EXPECT_FALSE(frontEnd.quitRequested());
    EXPECT_EQ(tkTimerArray::instance().timerAt(0)->getTitle(), "Running on");
    EXPECT_EQ(tkPreferences::instance().timeSheetFile(), home.path("other sheet.txt"));
    EXPECT_TRUE(home.exists("other sheet.txt"));
    EXPECT_EQ(frontEnd.eventsOf(Kind::LoadTimeSheet).size(), 1u);
}

// ---- the error windows' answers ----

TEST_F(tkLaunchTest, BadChoiceInTheErrorWindowBringsTheUserBack) {
    home.writeText(sheetPath(), "bad line\n");
    home.writeText("also bad.txt", "still\tbad\n");
    home.writeText("good.txt", row("from good"));
    frontEnd.scriptAnswer({tkTSErrorAnswer::Action::ChooseAnother, home.path("also bad.txt")});
    frontEnd.scriptAnswer({tkTSErrorAnswer::Action::ChooseAnother, home.path("good.txt")});
    quietLaunch();
    const auto windows = frontEnd.eventsOf(Kind::ErrorWindow);
    ASSERT_EQ(windows.size(), 2u);
    EXPECT_EQ(windows[0].window, tkTSErrorWindow::Read);
    EXPECT_EQ(windows[1].window, tkTSErrorWindow::Read) << "code 3 is the read window again";
    EXPECT_EQ(windows[1].fileName, "Test User's Time Sheet.txt")
        << "a failed choice leaves the preferences as they were";
    ASSERT_EQ(tkTimeSheet::instance().rowCount(), 1u);
    EXPECT_EQ(tkTimeSheet::instance().rows()[0]->description()->toString(), "from good");
    EXPECT_EQ(tkPreferences::instance().timeSheetFile(), home.path("good.txt"));
    EXPECT_GE(timeSheetLock(), 0);
}

// Quit ends the launch after the timers are read; Escape or the close button goes on with it,
// and time added then is said to be unsaved until a file is chosen. Either way the file
// the window was about stays as it was, also through the quit's rewrite.
TEST_F(tkLaunchTest, QuitOrClosingTheErrorWindowLeavesTheSheetAsItWas) {
    for (const bool closed : {false, true}) {
        EXPECT_EQ(inChild([&] {
                      home.writeText(sheetPath(), "bad line\n");
                      home.writeText(timersPath(), timersText({"Still here"}));
                      if (closed) {
                          frontEnd.scriptAnswer({tkTSErrorAnswer::Action::Closed, ""});
                      }
                      quietLaunch();
                      EXPECT_EQ(frontEnd.quitRequested(), !closed);
                      EXPECT_EQ(sequence->terminated(), !closed);
                      EXPECT_EQ(frontEnd.eventsOf(Kind::ErrorWindow).size(), 1u);
                      EXPECT_EQ(frontEnd.eventsOf(Kind::LoadTimeSheet).size(), closed ? 1u : 0u);
                      EXPECT_EQ(tkTimerArray::instance().timerAt(0)->getTitle(), "Still here");
                      EXPECT_FALSE(timeSheetReady());
                      if (closed) {
                          // Time added in such a run is said to be unsaved, once; choosing a
                          // file keeps it, and the unreadable file stays as it was found.
                          std::vector<std::string> told;
                          setErrorReporter([&](const tkException& e) { told.push_back(e.name()); });
                          tkTimeSheet::instance().addEntry(rowRecord("first"));
                          tkTimeSheet::instance().addEntry(rowRecord("second"));
                          EXPECT_EQ(told, std::vector<std::string>{"Time Sheet Not Saved"});
                          const std::string chosen = home.supportFolder() + "/chosen.txt";
                          EXPECT_EQ(moveTimeSheet(chosen), 0);
                          tkTimeSheet::instance().addEntry(rowRecord("third"));
                          EXPECT_EQ(told.size(), 1u);
                          setErrorReporter(nullptr);
                          EXPECT_EQ(home.readText(chosen),
                                    row("first") + row("second") + row("third"));
                          sequence->applicationWillTerminate();
                      }
                      EXPECT_EQ(home.readText(sheetPath()), "bad line\n");
                  }),
                  0)
            << (closed ? "closed" : "quit");
    }
}

// A switch's failure code opens its window: 2 the write window, 4 the locked one, 1 and 3 the
// read window; 0 and any other code none.
TEST_F(tkLaunchTest, RespondToCodesOpensTheMatchingWindow) {
    launch();
    using Window = std::optional<tkTSErrorWindow>;
    const std::pair<int32_t, Window> cases[] = {
        {0, std::nullopt},          {1, tkTSErrorWindow::Read},   {2, tkTSErrorWindow::Write},
        {3, tkTSErrorWindow::Read}, {4, tkTSErrorWindow::Locked}, {5, std::nullopt}};
    for (const auto& [code, expected] : cases) {
        tkHeadlessAppFrontEnd probe;
        tkLaunchSequence(probe, nullptr).respondToTSFileErrorCode(code);
        const auto windows = probe.eventsOf(Kind::ErrorWindow);
        EXPECT_LE(windows.size(), 1u) << "code " << code;
        EXPECT_EQ(windows.empty() ? std::nullopt : Window(windows[0].window), expected)
            << "code " << code;
    }
}

// ---- windows at launch ----

// Both windows closed at the last quit come back, and both flags are saved for the next
// launch; a closed timer window alone stays closed.
TEST_F(tkLaunchTest, ClosedWindowsComeBackOnlyWhenBothWereClosed) {
    for (const bool sheetClosed : {true, false}) {
        EXPECT_EQ(
            inChild([&] {
                home.writeText(timersPath(), timersText({"A"}, false));
                if (sheetClosed) {
                    home.writeText(preferencesPath(),
                                   "<tkPreferences><timesheetOpen>"
                                   "false</timesheetOpen></tkPreferences>");
                }
                launch();
                EXPECT_EQ(tkTimerArray::instance().isTimerOpen(), sheetClosed);
                EXPECT_TRUE(tkPreferences::instance().isTimeSheetOpen());
                if (sheetClosed) {
                    EXPECT_TRUE(fileHas(timersPath(), "<timerOpen>true</timerOpen>"));
                    EXPECT_TRUE(fileHas(preferencesPath(), "<timesheetOpen>true</timesheetOpen>"));
                }
            }),
            0)
            << sheetClosed;
    }
}

// ---- shutdown ----

TEST_F(tkLaunchTest, QuittingRewritesAnUnchangedSheetAndDetachesTheOtherHandlers) {
    home.writeText(sheetPath(), row("one"));
    launch();
    // Someone else's edit, made while we ran, shows that quitting writes.
    ::unlink(sheetPath().c_str());
    EXPECT_TRUE(sequence->applicationShouldTerminate());
    sequence->applicationWillTerminate();
    EXPECT_EQ(home.readText(sheetPath()), row("one"));

    const std::string timersBefore = *home.readText(timersPath());
    tkTimerArray::instance().timerAt(0)->setTitle("after quit");
    EXPECT_EQ(home.readText(timersPath()), timersBefore) << "timers handler detached";
    // The sheet's codes joined the known lists at launch, so the preferences
    // file may exist already; after quitting it must not change again.
    const auto preferencesBefore = home.readText(preferencesPath());
    tkPreferences::instance().setSingleWindowMode(false);
    EXPECT_EQ(home.readText(preferencesPath()), preferencesBefore)
        << "preferences handler detached";
}

}  // namespace
