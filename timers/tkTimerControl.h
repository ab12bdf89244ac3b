#pragma once

#include <cstdint>
#include <vector>

class tkTagNode;
class tkTimerWindow;

// The free functions that work on the timer window as a whole, each through
// tkTimerArray.

// The timer of the New command: numbered after the last, titled
// "Timer <count + 1>", a fresh record from the default, the drawer opened and
// the title put into editing. Returns nothing; the timer is
// tkTimerArray::instance().timerAt(numTimers() - 1).
void createNewTimer(tkTimerWindow* window);

// Builds a timer from its node and appends it; starts the refresh ticker when
// the loaded timer is running. `window` is not used.
void createFromTag(const tkTagNode& node, tkTimerWindow* window);

// Creates the timer window through the installed factory (see
// tkTimerWindowFactory.h) and adds it to tkTimerArray. Called only while there
// is no window.
void makeFirstWindow();

// windowForTimer(number), then its showTimer. Throws "IndexOutOfBounds" for a
// number out of range.
void showTimerInWindow(int32_t number, bool openDrawer, bool editTitle);

// The common tail of every change in the set of timers: redraw the list, show
// timer `number`, rebuild the timer menu.
void refreshFrontWindow(int32_t number);

// Starts the refresh ticker when a timer runs and there is none, stops it when
// none runs. Called only after a start/stop and after loading a timer: clear,
// add, edit and removal leave a ticker firing to no effect until then, which is
// the settled behaviour.
void updateRefreshTicker();

// The selection of the timer list of window 0.
uint32_t numberOfSelectedTimerRows();
std::vector<uint32_t> selectedTimerRows();
