#pragma once

#include <cstdint>
#include <functional>
#include <memory>

// The one repeating timer of the system: while a timer runs, it calls
// tkTimerArray::refreshAll() every half second so that the shown time moves.
// It only updates the display and never saves.
//
// The core decides when a ticker exists (updateRefreshTicker); a front end
// decides what one is, by installing a factory. Destroying a ticker stops it.
class tkRefreshTicker {
  public:
    virtual ~tkRefreshTicker() = default;
    // Runs one tick now, so that the display moves without waiting a whole
    // interval.
    virtual void fire() = 0;
};

// Half a second, though the display shows whole seconds: a tick that lands
// just before a second boundary must not leave the display a second behind.
inline constexpr int64_t kRefreshIntervalMillis = 500;

// Makes a ticker that calls `tick` every `intervalMillis` until destroyed.
using tkRefreshTickerFactory = std::function<std::unique_ptr<tkRefreshTicker>(
    int64_t intervalMillis, std::function<void()> tick)>;

// An empty factory restores the headless one.
void setRefreshTickerFactory(tkRefreshTickerFactory factory);
// The present ticker, or null when none runs.
tkRefreshTicker* currentRefreshTicker();
