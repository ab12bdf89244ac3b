#pragma once

#include <cstdint>
#include <string>
#include <vector>

class ItkTimerUI;

// The timer window as a whole, as the core sees it. The core never names a
// window-system type: a front end implements this (usually by deriving from
// tkTimerWindowBridge), and without one the headless form stands in.
//
// Windows are owned by tkTimerArray and live to process exit.
class tkTimerWindow {
  public:
    virtual ~tkTimerWindow() = default;

    virtual void setNumber(uint32_t number) = 0;
    virtual void refresh() = 0;
    // Raises the window and gives it the keyboard.
    virtual void bringToFront() = 0;
    virtual std::string getWindowTitle() = 0;
    // Makes timer `number` the one on screen (see ItkTimerUI::showTimer).
    virtual void showTimer(uint32_t number, bool openDrawer, bool editTitle) = 0;
    // Never null for a constructed window.
    virtual ItkTimerUI* getUI() = 0;
    // Asks the user whether the listed timers go; numbers ascending.
    virtual void confirmDelete(const std::vector<uint32_t>& numbers) = 0;
};
