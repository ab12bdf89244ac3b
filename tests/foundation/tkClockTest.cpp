#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>

#include "foundation/tkClock.h"
#include "tests/support/tkTestClock.h"

namespace {

int64_t systemMillis() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

}  // namespace

TEST(tkClock, AReplacedSourceIsReadUntilTheWallClockIsRestored) {
    {
        tkTestClock clock(5'000);
        clock.advanceSeconds(90);
        EXPECT_EQ(currentTimeMillis(), 95'000);
    }
    int64_t before = systemMillis();
    int64_t now = currentTimeMillis();
    EXPECT_LE(before, now);
    EXPECT_LE(now, systemMillis());
}
