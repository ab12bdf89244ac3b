#include "shell/tkTimeSheetLocation.h"

#include <memory>

#include "foundation/tkFile.h"
#include "foundation/tkFileManager.h"
#include "preferences/tkPaths.h"
#include "preferences/tkPreferences.h"
#include "shell/tkDataFiles.h"
#include "timesheet/tkTimeSheet.h"

namespace {

constexpr size_t kShownBytes = 35;
constexpr const char* kEllipsis = "\u2026";

}  // namespace

std::string shortenedLocation(const std::string& path) {
    if (path.size() <= kShownBytes) {
        return path;
    }
    const std::string name = tkFile::lastPathComponent(path);
    if (name.size() >= kShownBytes) {
        // Even the name doesn't fit: its end goes, and the "/" isn't shown.
        return kEllipsis + name.substr(0, kShownBytes - 1);
    }
    if (name.size() == kShownBytes - 1) {
        // The rule below would want a head of -1 bytes.
        return std::string(kEllipsis) + "/" + name;
    }
    return path.substr(0, kShownBytes - 2 - name.size()) + kEllipsis + "/" + name;
}

bool panelMayStartIn(const std::string& directory) {
    return directory.find(kApplicationIdentifier) == std::string::npos;
}

int32_t moveTimeSheet(const std::string& destination) {
    tkFileManager& manager = tkFileManager::instance();
    tkPreferences& preferences = tkPreferences::instance();
    const std::unique_ptr<tkFile> present = manager.makeFile(preferences.timeSheetFile());
    const std::unique_ptr<tkFile> target = manager.makeFile(destination);
    if (target->path() == present->path()) {
        return 0;
    }
    if (manager.exists(*target)) {
        return kTimeSheetTargetTaken;
    }
    // Without the lock the old file may be another running copy's sheet, and
    // a file that could not be read holds rows this copy never had: either is
    // left where it is, and this copy simply goes on in the new place.
    const bool ownsPresent = timeSheetLock() != -1 && !isKeptAsFound(present->path());
    const int32_t code = switchTimeSheet(*target, false, true);
    if (code != 0) {
        // The switch may have made an empty file before it failed; it is
        // ours, and nothing names it unless the preferences moved on to it.
        if (preferences.timeSheetFile() == present->path() && manager.exists(*target) &&
            target->read().empty()) {
            manager.removeFile(*target);
        }
        return code;
    }
    // A write can fail without a word, so the old file goes only when the new
    // one is seen to hold every row.
    if (ownsPresent && target->read() == tkTimeSheet::instance().tabbedText()) {
        manager.removeFile(*present);
    }
    return 0;
}

int32_t restoreDefaultLocation() {
    const int32_t code = moveTimeSheet(defaultTimeSheetFilePath());
    if (code != 0) {
        return code;
    }
    tkPreferences::instance().restoreDefaults();
    return 0;
}
