#include "timers/tkHeadlessRefreshTicker.h"

void tkHeadlessRefreshTicker::fire() {
    ++timesFired_;
    if (tick_) {
        tick_();
    }
}
