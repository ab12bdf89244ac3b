#pragma once

#include <cstdint>
#include <functional>

// The one clock of the core: milliseconds since the Unix epoch on the wall
// clock, truncated. Deliberately the wall clock and not a monotonic one:
// only the wall clock means anything to the next run of the program.
int64_t currentTimeMillis();

// Replaces the source that currentTimeMillis reads, so that tests set and
// advance the time instead of sleeping. An empty function restores the wall
// clock.
void setCurrentTimeSource(std::function<int64_t()> source);
