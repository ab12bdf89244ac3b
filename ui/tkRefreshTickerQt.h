#pragma once

#include <QTimer>
#include <cstdint>
#include <functional>

#include "timers/tkRefreshTicker.h"

// The refresh ticker on the event loop: a repeating QTimer that runs the
// core's tick until the core destroys it.
class tkRefreshTickerQt : public tkRefreshTicker {
  public:
    tkRefreshTickerQt(int64_t intervalMillis, std::function<void()> tick);

    void fire() override;

  private:
    std::function<void()> tick_;
    QTimer timer_;
};
