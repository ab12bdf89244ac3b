#pragma once

#include <cstdint>
#include <string>

// Where the time sheet file lies: how the preferences window shows the place,
// where its panel starts, and how the file changes place while the
// application runs.

// The answers of moveTimeSheet and restoreDefaultLocation: 0 when done, 1 to 4
// as switchTimeSheet answers (can't create or read, can't write, badly
// formatted, locked), and this one when something already lies at the chosen
// place.
inline constexpr int32_t kTimeSheetTargetTaken = 5;

// Identifies the application's own sandbox folders (a sandboxed install keeps
// its data in a folder named after it). The save panel doesn't start in one.
inline constexpr const char* kApplicationIdentifier = "com.tekamo.ChronoletPlus";

// The location cut to fit a narrow field: paths of up to 35 bytes stay whole;
// a longer one keeps its file name behind an ellipsis (U+2026) and as much of
// its head as fits, so that the display comes to 35 characters, or 36 when
// the name is exactly 34 bytes. The head is cut by bytes, deliberately with
// no regard for multi-byte characters or directory boundaries.
std::string shortenedLocation(const std::string& path);

// True when a file panel may be pointed at the directory: anywhere but inside
// the application's own sandbox folders.
bool panelMayStartIn(const std::string& directory);

// Moves the time sheet to `destination` while the application runs: the
// present rows are written completely to the new file, which from then on
// holds the lock and is the one the preferences name; only then is the old
// file removed. A place that holds anything already is refused (a move never
// replaces another file), and every failure of the switch leaves the old
// sheet named, locked and in use. A sheet this copy doesn't hold (another
// copy has it) is never removed. The present place answers 0 at once.
int32_t moveTimeSheet(const std::string& destination);

// Moves the time sheet back to its default place as moveTimeSheet does, and
// then sets every other preference back to its default too. A failed move
// changes nothing.
int32_t restoreDefaultLocation();
