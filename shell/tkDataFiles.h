#pragma once

#include <cstdint>
#include <memory>
#include <string>

class tkFile;
class tkTagNode;

// The application data layer: reading and writing the three state files and
// the lock on the time sheet. There is no Save command: whenever a model
// reports that it became dirty, tkAppState's handlers call the saves below and
// the file is rewritten inside that post.

// Where a timers file that can't be read is moved, so that the launch can go
// on with fresh timers and the user keeps the broken file for inspection.
inline constexpr const char* kCorruptTimersPath = "/tmp/corrupt_timers.txt";

// The tagged tree of the file at `path`, or null when no file is there.
// Throws tkMalformedFileException for broken tags.
std::unique_ptr<tkTagNode> readTaggedFile(const std::string& path);

// Reads the preferences file, or the old one when the present place holds
// nothing; with neither, the preferences keep their defaults and
// noPreferencesFound() turns true.
void loadPreferences();

// Reads the timers file (or the old one) into tkTimerArray, then attaches the
// timers save handler. An exception from the read leaves the handler off.
void loadTimers();

// Creates the time sheet file if needed, takes the lock (failing at once when
// another process holds it), reads the rows with the lock dropped, takes the
// lock again and keeps it. Throws IOException, tkFileLockedException or
// StringFormatException.
void openTimeSheet();

// Moves the running application to another time sheet file and answers with
// a code instead of an exception: 0 done, 1 can't create or read, 2 can't
// write, 3 badly formatted, 4 locked. With `load` the new file's rows join the
// present ones; with `create` the present rows are written to the new file.
int32_t switchTimeSheet(const tkFile& file, bool load, bool create);

// The saves. Each returns at once when its model isn't dirty, and clears the
// flag only after the write, so a failed save is tried again at the next
// change. Failures throw (IOException, tkFileLockedException).
void saveTimers();
void savePreferences();
// Writes with the lock dropped and takes it back afterwards; when that fails
// the text is on disk, the dirty flag stays set and tkFileLockedException is
// thrown.
void saveTimeSheet();

// Moves the timers file to kCorruptTimersPath and returns that path. When the
// move fails (for example because an earlier crash left a file there) the
// timers file is deleted instead and "" is returned.
std::string moveCorruptTimers();

// The crash-safe save of the file manager; throws tkFileWriteException
// "Could not write to file " + the file's name when it fails.
void writeFileSafely(const std::string& text, const tkFile& file);

// A new file object for a path, through the installed file manager.
std::unique_ptr<tkFile> fileFromPath(const std::string& path);

// The descriptor that holds the lock on the time sheet; -1 when none is held.
int32_t timeSheetLock();

// Set at the end of openTimeSheet.
bool timeSheetReady();
void setTimeSheetReady(bool ready);

// Set when neither preferences file existed at launch: the first run.
bool noPreferencesFound();
