#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "shell/ItkAppFrontEnd.h"

class tkFileManager;

// The order in which the application comes up and goes down, behind any
// front end. Preferences come first because they name the other two files;
// each save handler is attached only after its file was read, so that a load
// never writes what it is reading; and no failing file ends the launch.
class tkLaunchSequence {
  public:
    using FileManagerFactory = std::function<std::unique_ptr<tkFileManager>()>;

    // `frontEnd` must outlive the sequence. `makeFileManager` builds the
    // platform's file manager at the first step of the launch.
    tkLaunchSequence(ItkAppFrontEnd& frontEnd, FileManagerFactory makeFileManager);

    // The twelve steps of the launch, in order. Returns early only when the
    // user chose to quit from a time sheet error window; a window closed
    // without a choice lets the launch go on without a time sheet.
    void applicationDidFinishLaunching();

    // Saves the time sheet once more (changed or not) and detaches the
    // preferences and timers handlers. The time sheet handler stays.
    void applicationWillTerminate();

    // Nothing needs asking at a quit: everything was saved when it changed.
    bool applicationShouldTerminate() const { return true; }

    // With no window visible the time sheet window comes up. Always true.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);

    // The New Timer command.
    void newTimer();

    // 1 and 3 bring back the read error window, 2 the write error window, 4
    // the locked one; anything else, 0 for success among them, does nothing.
    void respondToTSFileErrorCode(int32_t code);

    // Shutdown steps, then the front end ends its event loop.
    void terminate();

    bool terminated() const { return _terminated; }
    bool timerMenuIsChanging() const { return _timerMenuIsChanging; }

  private:
    // False when another copy of the application owns the files.
    bool takeOwnershipStep();
    void loadPreferencesStep();
    void loadTimersStep();
    void openTimeSheetStep();
    void runErrorWindow(tkTSErrorWindow which);
    void showTimerWindowStep();

    ItkAppFrontEnd& _frontEnd;
    FileManagerFactory _makeFileManager;
    bool _timerMenuIsChanging = false;
    bool _terminated = false;
    // An error window was closed without a choice: this run has no sheet.
    bool _timeSheetAbandoned = false;
};
