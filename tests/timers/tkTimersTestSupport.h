#pragma once

#include <gtest/gtest.h>

#include "foundation/tkNotificationNames.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/support/tkTestClock.h"
#include "timers/tkHeadlessTimerUI.h"
#include "timers/tkHeadlessTimerWindow.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerControl.h"
#include "timers/tkTimerController.h"

// The headless window 0 (made on first use) and its user interface.
inline tkHeadlessTimerWindow* headlessWindow() {
    return static_cast<tkHeadlessTimerWindow*>(tkTimerArray::instance().windowForTimer(0));
}

inline tkHeadlessTimerUI* headlessUI() {
    return headlessWindow()->headlessUI();
}

inline tkTimerArray& timers() {
    return tkTimerArray::instance();
}

// The number of the timer the window shows.
inline uint32_t shownNumber() {
    return headlessUI()->getTimerController()->getNumber();
}

// Makes timers the way the New Timer command does, in window 0.
inline void makeTimers(int count) {
    for (int i = 0; i < count; ++i) {
        createNewTimer(headlessWindow());
    }
}
