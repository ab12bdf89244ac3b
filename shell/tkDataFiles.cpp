#include "shell/tkDataFiles.h"

#include <functional>
#include <map>
#include <optional>
#include <set>

#include "foundation/IOException.h"
#include "foundation/StringFormatException.h"
#include "foundation/tkException.h"
#include "foundation/tkFile.h"
#include "foundation/tkFileLockedException.h"
#include "foundation/tkFileManager.h"
#include "foundation/tkFileWriteException.h"
#include "foundation/tkStrings.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "preferences/tkPaths.h"
#include "preferences/tkPreferences.h"
#include "records/tkRecord.h"
#include "shell/tkAppState.h"
#include "shell/tkDataLocks.h"
#include "shell/tkErrorReporting.h"
#include "timers/tkTimerArray.h"
#include "timesheet/tkTimeSheet.h"

namespace {

constexpr const char* kNotSavedTitle = "Changes Not Saved";

struct DataLayerState {
    bool timeSheetReady = false;
    bool noPreferencesFound = false;
    // Set while rows are read into the sheet; see saveTimeSheet.
    bool sheetSavesHeld = false;
    // Set during a switch, whose load brings new billing codes: the
    // preferences are written once, when they name the new sheet.
    bool preferenceSavesHeld = false;
    // The sheet file's text that stands in front of the sheet's rows at every save, for a
    // tool that adds rows without reading the file into the sheet; see openTimeSheetForAppending.
    std::optional<std::string> sheetPrefix;
    // Files that could not be read in this run, never to be written over.
    std::set<std::string> keptAsFound;
    // File -> the failure last reported for it, so that each is told once.
    std::map<std::string, std::string> reportedFailures;
};

DataLayerState& state() {
    static DataLayerState layerState;
    return layerState;
}

// Holds one kind of save (the flag given) for its life.
class SavesHeld {
  public:
    explicit SavesHeld(bool& held) : _held(held), _wasHeld(held) { _held = true; }
    ~SavesHeld() { _held = _wasHeld; }
    SavesHeld(const SavesHeld&) = delete;
    SavesHeld& operator=(const SavesHeld&) = delete;

  private:
    bool& _held;
    bool _wasHeld;
};

std::string lockFailureMessage(const std::string& path) {
    return "Cannot acquire file lock (perhaps the file is in use?) at " + path;
}

void requireTimeSheetLock(const std::string& path) {
    std::string reason;
    switch (acquireTimeSheetLock(path, &reason)) {
        case tkLockOutcome::Taken:
            return;
        case tkLockOutcome::HeldElsewhere:
            throw tkFileLockedException(lockFailureMessage(path));
        case tkLockOutcome::Unavailable:
            throw IOException("Cannot lock the time sheet " + path + ": " + reason + ".");
    }
}

void requireDataFolderLock(const std::string& path) {
    std::string reason;
    switch (acquireDataFolderLock(&reason)) {
        case tkLockOutcome::Taken:
            return;
        case tkLockOutcome::HeldElsewhere:
            throw tkFileLockedException("Another copy of Chronolet Plus is running and owns " +
                                        path + "; this copy does not write it.");
        case tkLockOutcome::Unavailable:
            throw IOException("Cannot lock the files of Chronolet Plus in " +
                              applicationSupportFolder() + ": " + reason + ".");
    }
}

// Tells the user about a failed save of the file at `path`: once, and again
// only when the reason changes or after a save of it worked, so that typing
// on a full disk doesn't bring up a window per keystroke.
void reportSaveFailure(const std::string& path, const tkException& error) {
    std::string& last = state().reportedFailures[path];
    if (last == error.message()) {
        return;
    }
    last = error.message();
    reportError(tkException(kNotSavedTitle, error.message() + kChangeKeptNote));
}

enum class Guard { DataFolder, TimeSheet };

// Writes the text that `makeText` gives (built into its scratch string, or
// one the model keeps) to the data file at `path`, under
// the lock that guards it. True when written; otherwise the failure was
// reported and nothing on disk changed.
bool writeDataFile(const std::string& path, Guard guard,
                   const std::function<const std::string&(std::string& scratch)>& makeText) {
    tkFileManager& manager = tkFileManager::instance();
    try {
        if (state().keptAsFound.count(path) != 0) {
            throw IOException("Chronolet Plus could not read " + path +
                              " and keeps it as it was found: it is not written over while this "
                              "copy runs.");
        }
        if (guard == Guard::DataFolder) {
            requireDataFolderLock(path);
        } else {
            requireTimeSheetLock(path);
        }
        const std::unique_ptr<tkFile> file = manager.makeFile(path);
        // No empty file is made ahead of the text: a failed write must not
        // leave one that a later launch would read as "no timers".
        if (!manager.createDirectory(file->directory())) {
            throw IOException("Could not create the folder " + file->directory() + " for " + path +
                              ".");
        }
        std::string scratch;
        manager.replaceFile(*file, makeText(scratch));
    } catch (const tkException& error) {
        reportSaveFailure(path, error);
        return false;
    }
    state().reportedFailures.erase(path);
    return true;
}

// Reads the sheet's text into the time sheet without writing the sheet per
// row. A text that can't be read keeps the file as it was found.
void readRowsOf(const std::string& path, const std::string& text) {
    SavesHeld held(state().sheetSavesHeld);
    try {
        tkTimeSheet::instance().readTabbedText(text);
    } catch (const StringFormatException& error) {
        keepAsFound(path);
        // The reason quotes the file's bytes, which may be anything.
        throw StringFormatException("The time sheet " + path + " is badly formatted: " +
                                    quotableExcerpt(error.message(), 160));
    }
}

std::string readKeptOnFailure(const tkFile& file) {
    try {
        return tkFileManager::instance().readFile(file);
    } catch (const IOException&) {
        keepAsFound(file.path());
        throw;
    }
}

// Moves the unreadable file at `path` to `preferred` when that is given and
// free, else to a free name beside the file; private first, since its content
// is the user's business alone wherever it lands. Returns where it went, or ""
// when it stays, kept as found.
std::string setAside(const std::string& path, const std::string& preferred) {
    tkFileManager& manager = tkFileManager::instance();
    const std::unique_ptr<tkFile> file = manager.makeFile(path);
    manager.makePrivate(*file);
    if (!preferred.empty() && manager.moveFile(*file, preferred)) {
        return preferred;
    }
    const std::string name = file->name();
    const std::string::size_type dot = name.rfind('.');
    const std::string stem = dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
    const std::string extension = stem.size() == name.size() ? "" : name.substr(dot);
    for (int n = 1; n <= 100; ++n) {
        const std::string candidate = file->directory() + "/" + stem + " (unreadable" +
                                      (n == 1 ? std::string() : " " + std::to_string(n)) + ")" +
                                      extension;
        if (manager.exists(*manager.makeFile(candidate))) {
            continue;
        }
        if (manager.moveFile(*file, candidate)) {
            return candidate;
        }
        // A free name that still can't be had: no other name will do better.
        break;
    }
    keepAsFound(path);
    return "";
}

}  // namespace

std::unique_ptr<tkFile> fileFromPath(const std::string& path) {
    return tkFileManager::instance().makeFile(path);
}

std::unique_ptr<tkTagNode> readTaggedFile(const std::string& path) {
    tkFileManager& manager = tkFileManager::instance();
    const std::unique_ptr<tkFile> file = manager.makeFile(path);
    if (!manager.exists(*file)) {
        return nullptr;
    }
    tkTagParser parser;
    return parser.parse(manager.readFile(*file));
}

void loadPreferences() {
    tkPreferences& preferences = tkPreferences::instance();
    std::unique_ptr<tkTagNode> node = readTaggedFile(preferences.preferencesFile());
    if (!node) {
        node = readTaggedFile(preferencesFilePath(true));
    }
    if (!node) {
        state().noPreferencesFound = true;
        return;
    }
    preferences.fromTag(*node);
}

std::string setAsideUnreadablePreferences(const tkException& error) {
    tkFileManager& manager = tkFileManager::instance();
    std::string path = tkPreferences::instance().preferencesFile();
    std::string movedTo;
    if (manager.exists(*manager.makeFile(path))) {
        // Content that can't be read is moved out of the way of the next
        // save; a file that can't be read at all may be fine, and stays.
        if (error.name() != IOException::kName) {
            movedTo = setAside(path, "");
        } else {
            keepAsFound(path);
        }
    } else {
        // The old place: it is never written, so it can stay as it is.
        path = manager.makeFile(preferencesFilePath(true))->path();
    }
    std::string message = "Chronolet Plus could not read its preferences file " + path + ".  ";
    if (!movedTo.empty()) {
        message += "The file has been kept as " + movedTo + ", and the default settings are used.";
    } else {
        message += "The file has been left where it is, and the default settings are used";
        message += state().keptAsFound.count(path) != 0
                       ? "; changes to the settings are not saved while this copy runs."
                       : ".";
    }
    return message + "  Details of the error: " + error.message();
}

void loadTimers() {
    std::unique_ptr<tkTagNode> node = readTaggedFile(tkPreferences::instance().timersFile());
    if (!node) {
        // The old place is read only when the present one holds nothing;
        // the next save writes to the present place.
        node = readTaggedFile(timersFilePath(true));
    }
    if (node) {
        tkTimerArray::instance().fromTag(*node);
    }
    // Only now: reading clears the array, which posts, and a handler attached
    // earlier would write the half-read state over the file being read.
    tkAppState::instance().attachTimersHandler();
}

namespace {

// The steps that come before the time sheet's rows: the file is made when missing and must be
// writable, its lock is taken, and the temporaries that killed saves of it left are swept.
// Returns the file.
std::unique_ptr<tkFile> prepareTimeSheet(const std::string& path) {
    tkFileManager& manager = tkFileManager::instance();
    std::unique_ptr<tkFile> file = manager.makeFile(path);
    manager.createFile(*file);
    if (!manager.isWritable(*file)) {
        throw IOException("Time sheet lacks write permissions " + path);
    }
    // Taken before the read and kept to the end of the run: the lock sits on a lock file that
    // no save replaces, so it never needs dropping.
    requireTimeSheetLock(path);
    manager.sweepTemporaries(file->directory(), {file->name()});
    return file;
}

void timeSheetOpened(const std::string& path) {
    state().keptAsFound.erase(path);
    tkAppState::instance().attachTimeSheetHandler();
    state().timeSheetReady = true;
}

}  // namespace

void openTimeSheet() {
    const std::string path = tkPreferences::instance().timeSheetFile();
    const std::unique_ptr<tkFile> file = prepareTimeSheet(path);
    if (tkFileManager::instance().exists(*file)) {
        readRowsOf(path, readKeptOnFailure(*file));
    } else {
        tkTimeSheet::instance().setDirty(true);
    }
    timeSheetOpened(path);
}

void openTimeSheetForAppending(std::string presentText) {
    const std::string path = tkPreferences::instance().timeSheetFile();
    prepareTimeSheet(path);
    // Room for a few rows behind it, so that a save doesn't move the whole text.
    presentText.reserve(presentText.size() + 4096);
    state().sheetPrefix = std::move(presentText);
    timeSheetOpened(path);
}

int32_t switchTimeSheet(const tkFile& file, bool load, bool create) {
    tkFileManager& manager = tkFileManager::instance();
    try {
        manager.createFile(file);
        manager.checkReadable(file);
    } catch (const IOException& error) {
        reportError(error);
        return 1;
    }
    tkPreferences& preferences = tkPreferences::instance();
    tkTimeSheet& sheet = tkTimeSheet::instance();
    const std::string path = file.path();
    const std::string oldPath = preferences.timeSheetFile();
    const bool hadLock = holdsTimeSheetLock(path);
    const bool wasDirty = sheet.isDirty();
    // Loading rows and rolling them back must not write either file per row.
    std::optional<SavesHeld> preferencesHeld(std::in_place, state().preferenceSavesHeld);
    SavesHeld held(state().sheetSavesHeld);
    std::set<const tkRecord*> present;
    bool rowsAdded = false;
    const auto rollBack = [&](const tkException& error) {
        if (rowsAdded) {
            // The rows that the new file brought go again.
            const tkRecordRows rows = sheet.rows();
            for (uint32_t row = static_cast<uint32_t>(rows.size()); row-- > 0;) {
                if (present.count(rows[row].get()) == 0) {
                    sheet.removeRecordAtRow(row);
                }
            }
            sheet.setDirty(wasDirty);
        }
        if (!hadLock) {
            releaseTimeSheetLock(path);
        }
        reportError(error);
    };
    try {
        manager.createWritableFile(file);
        requireTimeSheetLock(path);
        if (load) {
            const std::string text = manager.readFile(file);
            for (const auto& record : sheet.rows()) {
                present.insert(record.get());
            }
            readRowsOf(path, text);
            rowsAdded = true;
        }
        if (load || create) {
            // Chosen to be read or written anew: no longer a file to keep.
            state().keptAsFound.erase(path);
            // The new file is written whole before the preferences name it,
            // so that a kill at any moment leaves them naming a file that
            // holds the rows.
            manager.replaceFile(file, sheet.fileText());
        }
    } catch (const IOException& error) {
        rollBack(error);
        return 2;
    } catch (const tkFileWriteException& error) {
        rollBack(error);
        return 2;
    } catch (const StringFormatException& error) {
        rollBack(error);
        return 3;
    } catch (const tkFileLockedException& error) {
        rollBack(error);
        return 4;
    }
    // Without a move: the user picked a file to use, not a new place for the
    // old one. This post writes the preferences, new codes and all, once.
    preferencesHeld.reset();
    preferences.setTimeSheetFile(path, false);
    if (oldPath != path) {
        releaseTimeSheetLock(oldPath);
    }
    if (load || create) {
        sheet.setDirty(false);
    }
    // A run that went on without a sheet has one from now on.
    tkAppState::instance().attachTimeSheetHandler();
    state().timeSheetReady = true;
    return 0;
}

void saveTimers() {
    tkTimerArray& timers = tkTimerArray::instance();
    if (!timers.isDirty()) {
        return;
    }
    if (writeDataFile(tkPreferences::instance().timersFile(), Guard::DataFolder,
                      [&timers](std::string& text) -> const std::string& {
                          return text = timers.toTag()->toText(0);
                      })) {
        timers.clearDirty();
    }
}

void savePreferences() {
    tkPreferences& preferences = tkPreferences::instance();
    if (!preferences.isDirty() || state().preferenceSavesHeld) {
        return;
    }
    if (writeDataFile(preferences.preferencesFile(), Guard::DataFolder,
                      [&preferences](std::string& text) -> const std::string& {
                          return text = preferences.toTag()->toText(0);
                      })) {
        preferences.setDirty(false);
    }
}

void saveTimeSheet() {
    tkTimeSheet& sheet = tkTimeSheet::instance();
    if (!sheet.isDirty() || state().sheetSavesHeld) {
        return;
    }
    // The sheet keeps its file text between saves: no copy of it is made. Rows that stand
    // behind a file's text never read into the sheet are put behind that text for the write
    // and taken off again, which costs less than a copy of a large file's text.
    std::optional<std::string>& prefix = state().sheetPrefix;
    const size_t kept = prefix ? prefix->size() : 0;
    if (prefix) {
        *prefix += sheet.fileText();
    }
    const bool written = writeDataFile(tkPreferences::instance().timeSheetFile(), Guard::TimeSheet,
                                       [&sheet, &prefix](std::string&) -> const std::string& {
                                           return prefix ? *prefix : sheet.fileText();
                                       });
    if (prefix) {
        prefix->resize(kept);
    }
    if (written) {
        sheet.setDirty(false);
    }
}

std::string moveCorruptTimers() {
    // Never deleted: when the shared place in /tmp is taken (anyone can plant
    // a file there), the file goes to a free name in the data folder instead.
    return setAside(tkPreferences::instance().timersFile(), kCorruptTimersPath);
}

bool isKeptAsFound(const std::string& path) {
    return state().keptAsFound.count(path) != 0;
}

void keepAsFound(const std::string& path) {
    tkFileManager& manager = tkFileManager::instance();
    // Where nothing stands there is nothing to keep.
    if (manager.exists(*manager.makeFile(path))) {
        state().keptAsFound.insert(path);
    }
}

void sweepDataFolderTemporaries() {
    tkPreferences& preferences = tkPreferences::instance();
    tkFileManager::instance().sweepTemporaries(
        applicationSupportFolder(), {tkFile::lastPathComponent(preferences.timersFile()),
                                     tkFile::lastPathComponent(preferences.preferencesFile())});
}

void writeFileSafely(const std::string& text, const tkFile& file) {
    if (!tkFileManager::instance().safeSave(file, text)) {
        throw tkFileWriteException("Could not write to file " + file.name());
    }
}

int32_t timeSheetLock() {
    return timeSheetLockDescriptor(tkPreferences::instance().timeSheetFile());
}

bool timeSheetReady() {
    return state().timeSheetReady;
}

void setTimeSheetReady(bool ready) {
    state().timeSheetReady = ready;
}

bool noPreferencesFound() {
    return state().noPreferencesFound;
}
