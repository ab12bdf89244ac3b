#include "shell/tkLaunchSequence.h"

#include <iostream>
#include <optional>

#include "foundation/IOException.h"
#include "foundation/StringFormatException.h"
#include "foundation/tkException.h"
#include "foundation/tkFileLockedException.h"
#include "foundation/tkFileManager.h"
#include "foundation/tkMalformedFileException.h"
#include "preferences/tkPaths.h"
#include "preferences/tkPreferences.h"
#include "records/tkKnownRecordItems.h"
#include "shell/tkAppState.h"
#include "shell/tkDataFiles.h"
#include "shell/tkDataLocks.h"
#include "timers/ItkTimerUI.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerControl.h"
#include "timers/tkTimerWindow.h"
#include "timesheet/tkTimeSheet.h"

namespace {

void logLine(const std::string& line) {
    std::cerr << line << std::endl;
}

std::optional<tkTSErrorWindow> windowForCode(int32_t code) {
    switch (code) {
        case 1:
        case 3:
            return tkTSErrorWindow::Read;
        case 2:
            return tkTSErrorWindow::Write;
        case 4:
            return tkTSErrorWindow::Locked;
        default:
            return std::nullopt;
    }
}

}  // namespace

tkLaunchSequence::tkLaunchSequence(ItkAppFrontEnd& frontEnd, FileManagerFactory makeFileManager)
    : _frontEnd(frontEnd), _makeFileManager(std::move(makeFileManager)) {}

void tkLaunchSequence::applicationDidFinishLaunching() {
    // 1. Everything below reaches the disk through this one object.
    tkFileManager::install(_makeFileManager());
    // One copy of the application owns its files. A second copy quits here,
    // before it reads or writes anything: the copy that runs has every change.
    if (!takeOwnershipStep()) {
        terminate();
        return;
    }
    // 2. Both exist before anything can post to them.
    tkAppState::instance();
    tkKnownRecordItems::instance();
    // 3. The error display is the front end, which exists already.

    // 4-5. Preferences first: they name the other two files.
    loadPreferencesStep();
    tkAppState::instance().attachPreferencesHandlers();
    // 6.
    loadTimersStep();
    // 7.
    openTimeSheetStep();
    if (_terminated) {
        return;
    }
    // 8. There is always a timer.
    tkTimerArray& timers = tkTimerArray::instance();
    if (timers.numTimers() == 0) {
        newTimer();
    }
    // 9. Never come up with no window at all; a closed timer window alone
    // stays closed.
    tkPreferences& preferences = tkPreferences::instance();
    if (!timers.isTimerOpen() && !preferences.isTimeSheetOpen()) {
        timers.setTimerOpen(true);
        preferences.setTimeSheetOpen(true);
    }
    // 10.
    if (timers.isTimerOpen()) {
        showTimerWindowStep();
    }
    // 11. The time sheet window reads timeSheetOpen itself.
    _frontEnd.loadTimeSheet();
    // 12. Attached a second time when openTimeSheet got to its end; the
    // second run of the handler finds the flag clear, so that is harmless.
    // Deliberately not after an error window closed without a choice: the
    // file it was about (unreadable, or another copy's) must not be written
    // over with this run's empty sheet.
    if (!_timeSheetAbandoned) {
        tkAppState::instance().attachTimeSheetHandler();
    } else {
        tkAppState::instance().warnWhileTimeSheetUnsaved();
    }
}

bool tkLaunchSequence::takeOwnershipStep() {
    std::string reason;
    switch (acquireDataFolderLock(&reason)) {
        case tkLockOutcome::Taken:
            sweepDataFolderTemporaries();
            return true;
        case tkLockOutcome::HeldElsewhere:
            _frontEnd.showErrorDialog(
                tkException("Already Running",
                            "Chronolet Plus is already running: another copy holds its files in " +
                                applicationSupportFolder() +
                                ".  This copy closes without changing them."),
                true);
            return false;
        case tkLockOutcome::Unavailable:
            // Without the lock nothing is saved (each save says why); the
            // launch goes on so that the user can see the data.
            _frontEnd.showErrorDialog(
                tkException("Files Not Locked", "Chronolet Plus could not lock its files in " +
                                                    applicationSupportFolder() + " (" + reason +
                                                    "), so changes can't be saved."),
                false);
            return true;
    }
    return true;
}

void tkLaunchSequence::loadPreferencesStep() {
    try {
        loadPreferences();
    } catch (const tkException& error) {
        // The launch goes on with the defaults; the file is moved aside or
        // kept, never written over (deliberately more than the bare report).
        _frontEnd.showErrorDialog(tkException(error.name(), setAsideUnreadablePreferences(error)),
                                  false);
    }
}

void tkLaunchSequence::loadTimersStep() {
    // The file that was read: the present one, or the old one when the
    // present place held nothing. Only the present one is ever written.
    const std::string present = tkPreferences::instance().timersFile();
    const bool fromPresent = tkFileManager::instance().exists(*fileFromPath(present));
    const std::string path = fromPresent ? present : fileFromPath(timersFilePath(true))->path();
    std::string title = "Malformed File";
    std::string message = "Chronolet Plus could not read the timer file from " + path + ".  ";
    try {
        loadTimers();
        return;
    } catch (const IOException& error) {
        // The file itself could not be read, so what it holds is unknown:
        // it stays where it is, untouched.
        title = "Timers Not Read";
        if (fromPresent) {
            keepAsFound(path);
            message +=
                "This file has been left where it is, and timer changes are not saved "
                "while this copy runs.";
        } else {
            message += "This file has been left where it is.";
        }
        message += "  Details of the error: " + error.message();
    } catch (const tkException& error) {
        const std::string movedTo = fromPresent ? moveCorruptTimers() : "";
        if (!movedTo.empty()) {
            message += "This file has been moved to " + movedTo + ".";
        } else if (fromPresent) {
            message +=
                "This file could not be moved; it has been left where it is, and timer "
                "changes are not saved while this copy runs.";
        } else {
            message += "This file has been left where it is.";
        }
        message += "  Details of the error: " + error.message();
    }
    _frontEnd.showErrorDialog(tkException(title, message), false);
    // Deliberately attached although the load failed: the timers of this run
    // are saved to a fresh file, where they would otherwise be lost.
    tkAppState::instance().attachTimersHandler();
}

void tkLaunchSequence::openTimeSheetStep() {
    std::optional<tkTSErrorWindow> window;
    try {
        openTimeSheet();
    } catch (const StringFormatException& error) {
        logLine("Time sheet badly formatted.");
        _frontEnd.showErrorDialog(error, true);
        window = tkTSErrorWindow::Read;
    } catch (const tkFileLockedException& error) {
        logLine("file locked exception");
        _frontEnd.showErrorDialog(error, true);
        window = tkTSErrorWindow::Locked;
    } catch (const IOException& error) {
        logLine("Cannot read the time sheet file.");
        // The reason (a folder, no write permission, ...) is shown, not only
        // logged: the window alone can't tell the user what is wrong.
        _frontEnd.showErrorDialog(error, true);
        window = tkTSErrorWindow::Read;
    } catch (const tkException& error) {
        _frontEnd.showErrorDialog(error, false);
    }
    if (window) {
        runErrorWindow(*window);
    }
}

void tkLaunchSequence::showTimerWindowStep() {
    tkTimerArray& timers = tkTimerArray::instance();
    showTimerInWindow(timers.getFrontMost(), timers.isDrawerOpen(), false);
    // Asked again: showing may have moved the front timer.
    tkTimerWindow* window = timers.windowForTimer(timers.getFrontMost());
    window->getUI()->setDetailMode(timers.isGlobalDetailMode());
    window->bringToFront();
}

void tkLaunchSequence::runErrorWindow(tkTSErrorWindow which) {
    std::optional<tkTSErrorWindow> window = which;
    // A bad choice in the window's file panel brings the user back to an
    // error window, until a file works or the user quits.
    while (window) {
        const std::unique_ptr<tkFile> present =
            fileFromPath(tkPreferences::instance().timeSheetFile());
        const tkTSErrorAnswer answer =
            _frontEnd.runTimeSheetErrorWindow(*window, present->directory(), present->name());
        if (answer.action == tkTSErrorAnswer::Action::Quit) {
            terminate();
            return;
        }
        if (answer.action == tkTSErrorAnswer::Action::Closed) {
            // No choice is not a quit: the launch goes on without a sheet.
            _timeSheetAbandoned = true;
            return;
        }
        const bool chooseAnother = answer.action == tkTSErrorAnswer::Action::ChooseAnother;
        const std::unique_ptr<tkFile> chosen = fileFromPath(answer.path);
        window = windowForCode(switchTimeSheet(*chosen, chooseAnother, !chooseAnother));
    }
}

void tkLaunchSequence::respondToTSFileErrorCode(int32_t code) {
    if (const std::optional<tkTSErrorWindow> window = windowForCode(code)) {
        runErrorWindow(*window);
    }
}

void tkLaunchSequence::newTimer() {
    _timerMenuIsChanging = true;
    tkTimerArray& timers = tkTimerArray::instance();
    if (timers.numWindows() == 0) {
        makeFirstWindow();
    }
    createNewTimer(timers.windowForTimer(0));
    _timerMenuIsChanging = false;
}

void tkLaunchSequence::applicationWillTerminate() {
    // Written at every orderly exit, changed or not.
    tkTimeSheet::instance().setDirty(true);
    // The other two are current by design, unless a save failed: this is
    // the last chance for a change that is still pending. Then their
    // handlers go.
    saveTimers();
    savePreferences();
    tkAppState::instance().detachPreferencesHandlers();
    tkAppState::instance().detachTimersHandler();
}

bool tkLaunchSequence::applicationShouldHandleReopen(bool hasVisibleWindows) {
    if (!hasVisibleWindows) {
        _frontEnd.showTimeSheetWindow();
    }
    return true;
}

void tkLaunchSequence::terminate() {
    if (_terminated) {
        return;
    }
    _terminated = true;
    applicationWillTerminate();
    _frontEnd.quitApplication();
}
