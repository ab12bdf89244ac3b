#pragma once

#include <functional>

// The two places where the timers reach a layer above their own.

// Whether every timer is shown in window 0. Reads the preferences; true by
// default.
bool timersSingleWindowMode();

// The save of the timers file lives in the application's data layer, above the
// timers. The controller saves directly after clear and start/stop, so that a
// run in which no save handler is attached (after a corrupt timers file) still
// keeps the file current; the data layer installs its save here at start-up.
// An empty function uninstalls it.
void setTimersSaver(std::function<void()> saver);
// Runs the installed save; nothing when none is installed.
void requestTimersSave();
