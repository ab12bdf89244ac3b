#pragma once

#include <cstdint>
#include <string>
#include <vector>

class tkNotification;
class tkTimerController;

// The controls of the timer window, as the core sees them: the time display,
// the title, the job fields, the start/stop state, the timer list in the
// drawer and the timer menu. One user interface moves from controller to
// controller as the user goes from timer to timer.
//
// Front ends derive from tkTimerUIBridge, which implements the parts of this
// contract that are the same everywhere (showTimer, setTimerController,
// confirmDelete, timerChanged and the observer registrations).
class ItkTimerUI {
  public:
    virtual ~ItkTimerUI() = default;

    // Commands of the window's buttons.
    virtual void clearTimer() = 0;
    virtual void startStopTimer() = 0;
    virtual void addToTimeSheet() = 0;
    virtual void newTimer() = 0;
    virtual void toggleDetailMode() = 0;
    // A restore: the window grows upward. Nothing happens when the mode is
    // already in force.
    virtual void setDetailMode(bool mode) = 0;
    // Wrap at both ends.
    virtual void previousTimer() = 0;
    virtual void nextTimer() = 0;
    // Opens the drawer; the stored drawer flag is not touched.
    virtual void showDrawer() = 0;
    // Redraws the timer list: on every "Timer became dirty." of any timer, and
    // whenever the number of timers changed.
    virtual void refreshDrawer() = 0;
    // Pushes the present controller's state into the controls.
    virtual void refresh() = 0;
    virtual void displayTime(const std::string& text) = 0;
    // An empty list asks nothing.
    virtual void confirmDelete(const std::vector<uint32_t>& numbers) = 0;
    virtual void setIsRunning(bool running) = 0;

    // May be null before the first showTimer.
    virtual tkTimerController* getTimerController() = 0;
    // REQUIRES: controller is not null.
    virtual void setTimerController(tkTimerController* controller) = 0;
    virtual void showTimer(uint32_t number, bool openDrawer, bool editTitle) = 0;

    virtual std::string getDisplayedTitle() = 0;
    virtual void setDisplayedTitle(const std::string& title) = 0;

    // Handler of "Timer became dirty." for the shown timer only.
    virtual void timerChanged(const tkNotification& note) = 0;

    virtual std::string getDescription() = 0;
    virtual std::string getEmployee() = 0;
    virtual std::string getFeeCode() = 0;
    virtual std::string getJobNumber() = 0;
    virtual void setDescription(const std::string& text) = 0;
    virtual void setEmployee(const std::string& text) = 0;
    virtual void setFeeCode(const std::string& text) = 0;
    virtual void setJobNumber(const std::string& text) = 0;

    // Makes the timer menu's items match the list of timers.
    virtual void rebuildTimerMenu() = 0;
    // Brings the menu's titles, check mark and icons up to date.
    virtual void refreshTimerMenu() = 0;

    // The selection of the timer list, which the removal of timers asks for.
    virtual uint32_t numberOfSelectedRows() = 0;
    // Ascending.
    virtual std::vector<uint32_t> selectedRows() = 0;
};
