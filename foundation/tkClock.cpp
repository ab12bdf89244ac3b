#include "foundation/tkClock.h"

#include <chrono>
#include <utility>

namespace {

std::function<int64_t()>& timeSource() {
    static std::function<int64_t()> source;
    return source;
}

int64_t wallClockMillis() {
    // Truncated, not rounded: seconds times 1000 plus whole milliseconds.
    auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(sinceEpoch).count();
}

}  // namespace

int64_t currentTimeMillis() {
    const auto& source = timeSource();
    return source ? source() : wallClockMillis();
}

void setCurrentTimeSource(std::function<int64_t()> source) {
    timeSource() = std::move(source);
}
