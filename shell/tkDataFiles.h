#pragma once

#include <cstdint>
#include <memory>
#include <string>

class tkException;
class tkFile;
class tkTagNode;

// The application data layer: reading and writing the three state files.
// There is no Save command: whenever a model reports that it became dirty,
// tkAppState's handlers call the saves below and the file is rewritten inside
// that post. Who may write which file is told in tkDataLocks.h.
//
// What it promises, whatever happens to the process or the disk:
// - a save replaces its file in one atomic step, so a kill at any instant
//   leaves the old or the new text, never a file cut short;
// - a save that fails keeps its change pending (the model stays dirty), tells
//   the user once what failed and why through reportError, and is written by
//   the next save that works;
// - a file that can't be read is never written over or deleted: a broken
//   timers or preferences file is moved aside where the user can find it,
//   and whatever can't be moved stays as it was found.

// Where a timers file that can't be read is moved when the place is free, so
// that the launch can go on with fresh timers and the user keeps the broken
// file for inspection.
inline constexpr const char* kCorruptTimersPath = "/tmp/corrupt_timers.txt";

// What the report of a failed save adds to the reason, for the user of a running copy.
inline constexpr const char* kChangeKeptNote =
    " The change is kept, and is written at the next save that works.";

// The tagged tree of the file at `path`, or null when no file is there.
// Throws tkMalformedFileException for broken tags, IOException naming the
// file and the reason when it can't be read.
std::unique_ptr<tkTagNode> readTaggedFile(const std::string& path);

// Reads the preferences file, or the old one when the present place holds
// nothing; with neither, the preferences keep their defaults and
// noPreferencesFound() turns true.
void loadPreferences();

// After loadPreferences failed with `error`: a present preferences file with
// broken content is moved aside to a free name in the data folder (readable by
// its owner alone), so that the settings can be saved again without losing
// it; one that can't be read at all or can't be moved stays as it was found
// and is not written in this run. Returns the message for the user, which
// names the file, where it went and the reason.
std::string setAsideUnreadablePreferences(const tkException& error);

// Reads the timers file (or the old one) into tkTimerArray, then attaches the
// timers save handler. An exception from the read leaves the handler off.
void loadTimers();

// Creates the time sheet file if needed, takes its lock (failing at once when
// another process holds it, unless setLockWait asked for a wait), sweeps the
// temporaries that killed saves of it left, and reads its rows. Throws
// IOException (the reason in words), tkFileLockedException or
// StringFormatException; a sheet that could not be read is kept as it was
// found and not written in this run.
void openTimeSheet();

// For a tool that only adds rows behind those of the file, and so needn't read them: opens the
// time sheet as openTimeSheet does, but keeps `presentText`, the file's content as read under
// its lock, instead of reading it into the sheet; every save then writes that text followed by
// the sheet's own rows.
// REQUIRES: the sheet holds no rows; `presentText` is exactly what a save of its rows would
// write, and every row added sorts behind all of them. Then each save writes what openTimeSheet
// and the same additions would have written.
void openTimeSheetForAppending(std::string presentText);

// Moves the running application to another time sheet file and answers with
// a code instead of an exception: 0 done, 1 can't create or read, 2 can't
// write, 3 badly formatted, 4 locked; a failure is also reported with its
// reason. With `load` the new file's rows join the present ones; with `create`
// the present rows are written to the new file. The new file is written whole
// and locked before the preferences name it; on a failure nothing changes.
int32_t switchTimeSheet(const tkFile& file, bool load, bool create);

// The saves. Each returns at once when its model isn't dirty. A save runs only
// under the lock of its file, replaces the file atomically and clears the
// flag after the write; when it can't, it leaves the flag set, reports the
// failure once (with the file and the reason) and returns: the change is
// written by the next save that works. They never throw for a failed write.
void saveTimers();
void savePreferences();
// Also waits, without writing, while rows are being read into the sheet: a
// load writes the sheet once at its end, not once per row.
void saveTimeSheet();

// Moves the timers file to kCorruptTimersPath, or when something already
// stands there to a free name in the data folder, made readable by its owner
// alone first, and returns where it went. A file that can't be moved stays
// where it is, is not written in this run, and "" is returned. Never deletes.
std::string moveCorruptTimers();

// The file at `path` could not be read: it is kept as it was found, and no
// save writes it in this run. Nothing happens when no file is there.
void keepAsFound(const std::string& path);
bool isKeptAsFound(const std::string& path);

// Removes the temporaries that saves of the timers and preferences files left
// when their process was killed, and only those of processes that no longer
// exist. The launch calls it once it owns the data folder.
void sweepDataFolderTemporaries();

// The crash-safe save of the file manager; throws tkFileWriteException
// "Could not write to file " + the file's name when it fails.
void writeFileSafely(const std::string& text, const tkFile& file);

// A new file object for a path, through the installed file manager.
std::unique_ptr<tkFile> fileFromPath(const std::string& path);

// The descriptor that holds the lock of the present time sheet; -1 when none
// is held.
int32_t timeSheetLock();

// Set once a time sheet file is in use: at the end of openTimeSheet, or of a
// switch that worked.
bool timeSheetReady();
void setTimeSheetReady(bool ready);

// Set when neither preferences file existed at launch: the first run.
bool noPreferencesFound();
