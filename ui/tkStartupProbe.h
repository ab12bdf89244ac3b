#pragma once

// A measuring aid for the start-up benchmark and the tests that need a
// running copy to be ready. When CHRONOLET_STARTUP_PROBE names a file, the
// moment the first window is exposed on screen is written there as one line:
// "<wall clock in ns> <resident memory in KiB>". Without the variable
// nothing is watched.
namespace tkStartupProbe {

// Notes the time main() began (written on the same line, third).
void markProcessStart();
// Starts watching; call after the launch, before the event loop.
void watchFirstWindow();

}  // namespace tkStartupProbe
