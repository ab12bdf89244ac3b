#include "shell/tkDataFiles.h"

#include "foundation/IOException.h"
#include "foundation/StringFormatException.h"
#include "foundation/tkFile.h"
#include "foundation/tkFileLockedException.h"
#include "foundation/tkFileManager.h"
#include "foundation/tkFileWriteException.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "preferences/tkPaths.h"
#include "preferences/tkPreferences.h"
#include "shell/tkAppState.h"
#include "timers/tkTimerArray.h"
#include "timesheet/tkTimeSheet.h"

namespace {

struct DataLayerState {
    int32_t timeSheetLock = -1;
    bool timeSheetReady = false;
    bool noPreferencesFound = false;
};

DataLayerState& state() {
    static DataLayerState layerState;
    return layerState;
}

std::string lockFailureMessage(const std::string& path) {
    return "Cannot acquire file lock (perhaps the file is in use?) at " + path;
}

void takeTimeSheetLock(const std::string& path) {
    state().timeSheetLock = tkFileManager::instance().openLocked(path, 0);
    if (state().timeSheetLock == -1) {
        throw tkFileLockedException(lockFailureMessage(path));
    }
}

// Forgets the descriptor as it closes it: a number kept after its close could
// belong to another file by the time it is closed again.
void dropTimeSheetLock() {
    if (state().timeSheetLock != -1) {
        tkFileManager::instance().closeLocked(state().timeSheetLock);
        state().timeSheetLock = -1;
    }
}

// Makes the file and checks that it can be written; throws the file
// manager's IOException otherwise.
std::unique_ptr<tkFile> writableFile(const std::string& path) {
    tkFileManager& manager = tkFileManager::instance();
    std::unique_ptr<tkFile> file = manager.makeFile(path);
    manager.createFile(*file);
    manager.createWritableFile(*file);
    return file;
}

}  // namespace

std::unique_ptr<tkFile> fileFromPath(const std::string& path) {
    return tkFileManager::instance().makeFile(path);
}

std::unique_ptr<tkTagNode> readTaggedFile(const std::string& path) {
    const std::unique_ptr<tkFile> file = fileFromPath(path);
    if (!tkFileManager::instance().exists(*file)) {
        return nullptr;
    }
    tkTagParser parser;
    return parser.parse(file->read());
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

void openTimeSheet() {
    tkFileManager& manager = tkFileManager::instance();
    const std::string path = tkPreferences::instance().timeSheetFile();
    const std::unique_ptr<tkFile> file = manager.makeFile(path);
    manager.createFile(*file);
    if (!manager.isWritable(*file)) {
        throw IOException("Time sheet lacks write permissions " + path);
    }
    if (manager.exists(*file)) {
        manager.checkReadable(*file);
        // The first take only asks whether another copy of the program owns
        // the file; the read itself happens with the lock dropped, as every
        // write does, and the lock is taken back before the text is trusted.
        takeTimeSheetLock(path);
        dropTimeSheetLock();
        const std::string text = file->read();
        takeTimeSheetLock(path);
        tkTimeSheet::instance().readTabbedText(text);
    } else {
        tkTimeSheet::instance().setDirty(true);
    }
    tkAppState::instance().attachTimeSheetHandler();
    state().timeSheetReady = true;
}

int32_t switchTimeSheet(const tkFile& file, bool load, bool create) {
    tkFileManager& manager = tkFileManager::instance();
    try {
        manager.createFile(file);
        manager.checkReadable(file);
    } catch (const IOException&) {
        return 1;
    }
    try {
        manager.createWritableFile(file);
        // Without a move: the user picked a file to use, not a new place for
        // the old one.
        tkPreferences::instance().setTimeSheetFile(file.path(), false);
        dropTimeSheetLock();
        if (load) {
            openTimeSheet();
        }
        if (create) {
            // The post already writes the file through the handler; the
            // direct call then finds the flag clear.
            tkTimeSheet::instance().setDirty(true);
            saveTimeSheet();
        }
    } catch (const IOException&) {
        return 2;
    } catch (const StringFormatException&) {
        return 3;
    } catch (const tkFileLockedException&) {
        return 4;
    }
    return 0;
}

void saveTimers() {
    tkTimerArray& timers = tkTimerArray::instance();
    if (!timers.isDirty()) {
        return;
    }
    const std::unique_ptr<tkFile> file = writableFile(tkPreferences::instance().timersFile());
    file->write(timers.toTag()->toText(0));
    timers.clearDirty();
}

void savePreferences() {
    tkPreferences& preferences = tkPreferences::instance();
    if (!preferences.isDirty()) {
        return;
    }
    const std::unique_ptr<tkFile> file = writableFile(preferences.preferencesFile());
    file->write(preferences.toTag()->toText(0));
    preferences.setDirty(false);
}

void saveTimeSheet() {
    tkTimeSheet& sheet = tkTimeSheet::instance();
    if (!sheet.isDirty()) {
        return;
    }
    const std::string path = tkPreferences::instance().timeSheetFile();
    const std::unique_ptr<tkFile> file = writableFile(path);
    // Built before the lock is dropped, so that the unlocked moment is only
    // as long as the write. The sheet keeps the text between saves.
    const std::string& text = sheet.fileText();
    dropTimeSheetLock();
    file->write(text);
    // A failure here leaves the text on disk and the flag set: the next
    // change tries again.
    takeTimeSheetLock(path);
    sheet.setDirty(false);
}

std::string moveCorruptTimers() {
    tkFileManager& manager = tkFileManager::instance();
    const std::unique_ptr<tkFile> file = manager.makeFile(tkPreferences::instance().timersFile());
    // An existing file at the destination is not removed first: a move onto
    // it fails, and then the broken file is deleted instead.
    if (manager.moveFile(*file, kCorruptTimersPath)) {
        return kCorruptTimersPath;
    }
    manager.removeFile(*file);
    return "";
}

void writeFileSafely(const std::string& text, const tkFile& file) {
    if (!tkFileManager::instance().safeSave(file, text)) {
        throw tkFileWriteException("Could not write to file " + file.name());
    }
}

int32_t timeSheetLock() {
    return state().timeSheetLock;
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
