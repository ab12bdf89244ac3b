#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/support/tkTestClock.h"
#include "timers/tkHeadlessTimerUI.h"
#include "timers/tkHeadlessTimerWindow.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerControl.h"
#include "timers/tkTimerWindow.h"

// A clock the test moves by hand; the wall clock comes back when it goes.
using tkManualClock = tkTestClock;

// Counts the posts of one notification name, from one sender or (null) any.
class tkPostCounter {
  public:
    explicit tkPostCounter(std::string name, const void* sender = nullptr)
        : name_(std::move(name)) {
        recorder_.listen(name_, sender);
    }

    int count() const { return recorder_.count(name_); }
    void reset() { recorder_.clear(); }

  private:
    std::string name_;
    tkNotificationRecorder recorder_;
};

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

// Makes timers the way the New Timer command does, in window 0.
inline void makeTimers(int count) {
    for (int i = 0; i < count; ++i) {
        createNewTimer(headlessWindow());
    }
}
