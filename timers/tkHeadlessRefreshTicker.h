#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "timers/tkRefreshTicker.h"

// The ticker of a build without an event loop: it keeps its interval and its
// tick, and fires only when told to. Its existence is the record of whether
// the ticker runs; a test drives ticks through fire().
class tkHeadlessRefreshTicker : public tkRefreshTicker {
  public:
    tkHeadlessRefreshTicker(int64_t intervalMillis, std::function<void()> tick)
        : intervalMillis_(intervalMillis), tick_(std::move(tick)) {}

    void fire() override;

    int64_t intervalMillis() const { return intervalMillis_; }
    uint32_t timesFired() const { return timesFired_; }

  private:
    int64_t intervalMillis_;
    std::function<void()> tick_;
    uint32_t timesFired_ = 0;
};
