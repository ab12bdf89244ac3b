#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"
#include "tests/support/tkTestClock.h"
#include "timers/tkHeadlessTimerUI.h"
#include "timers/tkHeadlessTimerWindow.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerWindow.h"

// A clock the test moves by hand; the wall clock comes back when it goes.
using tkManualClock = tkTestClock;

// Counts the posts of one notification name, from one sender or (null) any.
class tkPostCounter : public tkObserver {
  public:
    explicit tkPostCounter(std::string name, const void* sender = nullptr)
        : name_(std::move(name)), sender_(sender) {
        tkNotificationCenter::instance().addObserver(
            this,
            [this](const tkNotification& note) {
                ++count_;
                data_.push_back(note.data());
                senders_.push_back(note.sender());
            },
            name_, sender_);
    }
    ~tkPostCounter() { tkNotificationCenter::instance().removeObserver(this, name_, sender_); }
    tkPostCounter(const tkPostCounter&) = delete;
    tkPostCounter& operator=(const tkPostCounter&) = delete;

    int count() const { return count_; }
    const std::vector<const void*>& senders() const { return senders_; }
    const std::vector<uint64_t>& data() const { return data_; }
    void reset() {
        count_ = 0;
        data_.clear();
        senders_.clear();
    }

  private:
    std::string name_;
    const void* sender_;
    int count_ = 0;
    std::vector<uint64_t> data_;
    std::vector<const void*> senders_;
};

// The headless window 0 (made on first use) and its user interface.
inline tkHeadlessTimerWindow* headlessWindow() {
    return static_cast<tkHeadlessTimerWindow*>(tkTimerArray::instance().windowForTimer(0));
}

inline tkHeadlessTimerUI* headlessUI() {
    return headlessWindow()->headlessUI();
}
