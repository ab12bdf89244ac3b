#include "shell/tkLaunchSequence.h"

#include <iostream>
#include <optional>

#include "foundation/IOException.h"
#include "foundation/StringFormatException.h"
#include "foundation/tkException.h"
#include "foundation/tkFileLockedException.h"
#include "foundation/tkFileManager.h"
#include "foundation/tkMalformedFileException.h"
#include "preferences/tkPreferences.h"
#include "records/tkKnownRecordItems.h"
#include "shell/tkAppState.h"
#include "shell/tkDataFiles.h"
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
    }
}

void tkLaunchSequence::loadPreferencesStep() {
    try {
        loadPreferences();
    } catch (const tkException& error) {
        // The launch goes on with the defaults.
        _frontEnd.showErrorDialog(error, false);
    }
}

void tkLaunchSequence::loadTimersStep() {
    try {
        loadTimers();
    } catch (const tkMalformedFileException& error) {
        const std::string path = tkPreferences::instance().timersFile();
        const std::string movedTo = moveCorruptTimers();
        std::string message = "Chronolet Plus could not read the timer file from " + path;
        if (!movedTo.empty()) {
            message += ".  This file has been moved to " + movedTo + ".";
        } else {
            // Two full stops in a row: the pieces are joined as they stand,
            // and that is how the message has always read.
            message += ".  This file could not be moved; it has been deleted.";
            message += ".";
        }
        message += "  Details of the error: " + error.message();
        _frontEnd.showErrorDialog(tkException("Malformed File", message), false);
        // The timers handler stays off for this run: loadTimers left before
        // attaching it, and the direct saves of the controller keep the file
        // current instead.
    }
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
    } catch (const IOException&) {
        logLine("Cannot read the time sheet file.");
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
    // The other two files are current by design; only their handlers go.
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
