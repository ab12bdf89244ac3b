#include "shell/tkDataLocks.h"

#include <map>

#include "foundation/tkFile.h"
#include "foundation/tkFileManager.h"
#include "preferences/tkPaths.h"

namespace {

struct LockState {
    int32_t waitMillis = 0;
    int32_t dataFolderLock = -1;
    // Sheet path -> the descriptor that holds its lock.
    std::map<std::string, int32_t> sheetLocks;
};

LockState& locks() {
    static LockState state;
    return state;
}

tkLockOutcome take(const std::string& lockPath, int32_t& fd, std::string* reason) {
    const tkLockAttempt attempt = tkFileManager::instance().lockFile(lockPath, locks().waitMillis);
    if (attempt.fd >= 0) {
        fd = attempt.fd;
        return tkLockOutcome::Taken;
    }
    if (attempt.heldElsewhere) {
        return tkLockOutcome::HeldElsewhere;
    }
    if (reason != nullptr) {
        *reason = attempt.reason;
    }
    return tkLockOutcome::Unavailable;
}

}  // namespace

void setLockWait(int32_t waitMillis) {
    locks().waitMillis = waitMillis < 0 ? 0 : waitMillis;
}

int32_t lockWait() {
    return locks().waitMillis;
}

std::string dataFolderLockPath() {
    return applicationSupportFolder() + "/.Chronolet.lock";
}

std::string timeSheetLockPath(const std::string& sheetPath) {
    std::string folder = tkFile::deletingLastPathComponent(sheetPath);
    if (!folder.empty() && folder.back() != '/') {
        folder += '/';
    }
    return folder + "." + tkFile::lastPathComponent(sheetPath) + ".lock";
}

tkLockOutcome acquireDataFolderLock(std::string* reason) {
    if (holdsDataFolderLock()) {
        return tkLockOutcome::Taken;
    }
    tkFileManager& manager = tkFileManager::instance();
    if (!manager.createDirectory(applicationSupportFolder())) {
        if (reason != nullptr) {
            *reason = "the folder " + applicationSupportFolder() + " can't be created";
        }
        return tkLockOutcome::Unavailable;
    }
    return take(dataFolderLockPath(), locks().dataFolderLock, reason);
}

bool holdsDataFolderLock() {
    return locks().dataFolderLock >= 0;
}

tkLockOutcome acquireTimeSheetLock(const std::string& sheetPath, std::string* reason) {
    if (holdsTimeSheetLock(sheetPath)) {
        return tkLockOutcome::Taken;
    }
    int32_t fd = -1;
    const tkLockOutcome outcome = take(timeSheetLockPath(sheetPath), fd, reason);
    if (outcome == tkLockOutcome::Taken) {
        locks().sheetLocks[sheetPath] = fd;
    }
    return outcome;
}

bool holdsTimeSheetLock(const std::string& sheetPath) {
    return locks().sheetLocks.count(sheetPath) != 0;
}

int32_t timeSheetLockDescriptor(const std::string& sheetPath) {
    const auto found = locks().sheetLocks.find(sheetPath);
    return found == locks().sheetLocks.end() ? -1 : found->second;
}

void releaseTimeSheetLock(const std::string& sheetPath) {
    const auto found = locks().sheetLocks.find(sheetPath);
    if (found != locks().sheetLocks.end()) {
        tkFileManager::instance().closeLocked(found->second);
        locks().sheetLocks.erase(found);
    }
}

void releaseDataLocks() {
    while (!locks().sheetLocks.empty()) {
        releaseTimeSheetLock(locks().sheetLocks.begin()->first);
    }
    if (locks().dataFolderLock >= 0) {
        tkFileManager::instance().closeLocked(locks().dataFolderLock);
        locks().dataFolderLock = -1;
    }
}
