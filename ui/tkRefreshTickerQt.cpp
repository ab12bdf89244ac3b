#include "ui/tkRefreshTickerQt.h"

tkRefreshTickerQt::tkRefreshTickerQt(int64_t intervalMillis, std::function<void()> tick)
    : tick_(std::move(tick)) {
    // Coarse: the display shows whole seconds and the interval is half of
    // one, so a few milliseconds of slack buy fewer wake-ups.
    timer_.setTimerType(Qt::CoarseTimer);
    timer_.setInterval(static_cast<int>(intervalMillis));
    QObject::connect(&timer_, &QTimer::timeout, [this] { fire(); });
    timer_.start();
}

void tkRefreshTickerQt::fire() {
    if (tick_) {
        tick_();
    }
}
