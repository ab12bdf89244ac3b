#include "timers/tkRefreshTicker.h"

#include "timers/tkHeadlessRefreshTicker.h"
#include "timers/tkTimerArray.h"
#include "timers/tkTimerControl.h"

namespace {

tkRefreshTickerFactory& installedFactory() {
    static tkRefreshTickerFactory factory;
    return factory;
}

// At most one ticker exists. It is not stopped at shutdown: the process just
// ends.
std::unique_ptr<tkRefreshTicker>& presentTicker() {
    static std::unique_ptr<tkRefreshTicker> ticker;
    return ticker;
}

std::unique_ptr<tkRefreshTicker> makeTicker() {
    auto tick = [] { tkTimerArray::instance().refreshAll(); };
    if (installedFactory()) {
        return installedFactory()(kRefreshIntervalMillis, tick);
    }
    return std::make_unique<tkHeadlessRefreshTicker>(kRefreshIntervalMillis, tick);
}

}  // namespace

void setRefreshTickerFactory(tkRefreshTickerFactory factory) {
    installedFactory() = std::move(factory);
}

tkRefreshTicker* currentRefreshTicker() {
    return presentTicker().get();
}

void updateRefreshTicker() {
    auto& ticker = presentTicker();
    if (tkTimerArray::instance().anyRunning()) {
        if (!ticker) {
            ticker = makeTicker();
            // The display moves now, not half a second later.
            if (ticker) {
                ticker->fire();
            }
        }
    } else {
        ticker.reset();
    }
}
