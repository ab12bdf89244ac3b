#pragma once

#include <cstdint>
#include <string>

// One owner of the application's files, always.
//
// Every save renames a new file over the old one, so that a process killed
// at any moment leaves the old or the new text. A lock taken on a data file
// itself would slip off it at the first such save: for a moment the name
// belongs to a file that nobody has locked, and a second process gets in.
// The locks therefore sit on lock files that nothing ever replaces or
// removes:
//
// - the data folder lock, on ".Chronolet.lock" in the application support
//   folder, guards the timers and preferences files, whose place is fixed.
//   Only its holder writes them;
// - a time sheet lock, on "." + the sheet's file name + ".lock" beside the
//   sheet, guards that sheet wherever the user keeps it, also against the
//   copy of another user who shares it.
//
// Both are exclusive advisory locks that the system drops when the process
// dies. The application takes them at launch and keeps them to its end: the
// data folder lock first of all (a second copy that can't have it quits
// before it reads or writes anything), the sheet lock in openTimeSheet, and in
// switchTimeSheet the new sheet's lock, the old one being given up only once
// the new file is written and the preferences name it. No save runs without
// the lock of its file: when the lock can't be had the save is refused and its
// change stays pending.
//
// For other programs over the same files:
// - a command-line tool that runs one command while no window application
//   runs calls setLockWait(n), so that the takes below wait up to n ms for a
//   copy that is just closing, then acquireDataFolderLock(); then it loads,
//   runs the command and saves as the application does (openTimeSheet takes
//   the sheet's lock with the same wait), and calls releaseDataLocks() at the
//   end. HeldElsewhere means that the window application runs: the tool hands
//   it the request instead;
// - the window application listens on its local socket only while
//   holdsDataFolderLock(): the holder is the one copy to which a second start
//   hands its request.

enum class tkLockOutcome {
    Taken,          // this process holds the lock (also when it already did)
    HeldElsewhere,  // another process holds it
    Unavailable,    // the lock file can't be made or opened; the reason says why
};

// How long the takes wait for another holder to let go: 0, the window
// application's choice, fails at once.
void setLockWait(int32_t waitMillis);
int32_t lockWait();

// applicationSupportFolder() + "/.Chronolet.lock".
std::string dataFolderLockPath();

// The lock file of a time sheet: "." + its name + ".lock" in its folder.
std::string timeSheetLockPath(const std::string& sheetPath);

// Takes the data folder lock, creating the folder (0700) when it is missing.
// `reason` receives the words for Unavailable.
tkLockOutcome acquireDataFolderLock(std::string* reason = nullptr);
bool holdsDataFolderLock();

// Takes the lock of the time sheet at `sheetPath`. Locks of other sheets that
// this process holds stay held until released: a switch lets go of the old
// sheet only when the new one is in place.
tkLockOutcome acquireTimeSheetLock(const std::string& sheetPath, std::string* reason = nullptr);
bool holdsTimeSheetLock(const std::string& sheetPath);
// The descriptor that holds that sheet's lock, or -1.
int32_t timeSheetLockDescriptor(const std::string& sheetPath);
void releaseTimeSheetLock(const std::string& sheetPath);

// Gives up every lock of this process: the data folder's and all sheets'.
void releaseDataLocks();
