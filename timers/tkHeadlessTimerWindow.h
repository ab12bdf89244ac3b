#pragma once

#include <cstdint>

#include "timers/tkTimerWindowBridge.h"

class tkHeadlessTimerUI;

// The timer window without a window system; the default of
// tkTimerWindowFactory. It owns a tkHeadlessTimerUI and counts the requests to
// come to the front.
class tkHeadlessTimerWindow : public tkTimerWindowBridge {
  public:
    explicit tkHeadlessTimerWindow(uint32_t number);

    void bringToFront() override { ++timesBroughtToFront_; }

    tkHeadlessTimerUI* headlessUI();
    uint32_t timesBroughtToFront() const { return timesBroughtToFront_; }

  private:
    uint32_t timesBroughtToFront_ = 0;
};
