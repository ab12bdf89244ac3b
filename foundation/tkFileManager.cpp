#include "foundation/tkFileManager.h"

#include <iostream>

#include "foundation/IOException.h"
#include "foundation/tkException.h"

namespace {

std::unique_ptr<tkFileManager>& installedManager() {
    static std::unique_ptr<tkFileManager> manager;
    return manager;
}

}  // namespace

void tkFileManager::createWritableFile(const tkFile& file) {
    createFile(file);
    if (!isWritable(file)) {
        const std::string message = "Cannot write to file at: " + file.path();
        // The line goes out here and once more from the exception: by design.
        std::cout << message << std::endl;
        throw IOException(message);
    }
}

void tkFileManager::install(std::unique_ptr<tkFileManager> manager) {
    std::unique_ptr<tkFileManager>& slot = installedManager();
    if (slot.get() == manager.get()) {
        // Installing the present manager again must not destroy it.
        (void)manager.release();
        return;
    }
    slot = std::move(manager);
}

tkFileManager& tkFileManager::instance() {
    std::unique_ptr<tkFileManager>& slot = installedManager();
    if (!slot) {
        throw tkException("tkFileManager", "No file manager is installed.");
    }
    return *slot;
}

bool tkFileManager::isInstalled() {
    return installedManager() != nullptr;
}
