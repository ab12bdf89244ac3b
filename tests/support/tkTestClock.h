#pragma once

#include <cstdint>

#include "foundation/tkClock.h"

// Test helper: while it lives, currentTimeMillis() answers the time it holds instead of the
// wall clock; tests move it instead of sleeping.
class tkTestClock {
  public:
    explicit tkTestClock(int64_t startMillis = 1'700'000'000'000) : _now(startMillis) {
        setCurrentTimeSource([this] { return _now; });
    }
    ~tkTestClock() { setCurrentTimeSource(nullptr); }
    tkTestClock(const tkTestClock&) = delete;
    tkTestClock& operator=(const tkTestClock&) = delete;

    void set(int64_t millis) { _now = millis; }
    void advance(int64_t millis) { _now += millis; }
    void advanceSeconds(int64_t seconds) { _now += seconds * 1000; }
    int64_t now() const { return _now; }

  private:
    int64_t _now;
};
