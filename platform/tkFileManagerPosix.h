#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "foundation/tkFileManager.h"

// tkFileManager over POSIX system calls (Linux first: the atomic swap and
// the no-replace move use renameat2).
class tkFileManagerPosix : public tkFileManager {
  public:
    bool exists(const tkFile& file) override;
    bool isWritable(const tkFile& file) override;
    bool createDirectory(const std::string& path) override;
    void createFile(const tkFile& file) override;
    void checkReadable(const tkFile& file) override;
    bool moveFile(const tkFile& file, const std::string& destination) override;
    bool removeFile(const tkFile& file) override;
    bool safeSave(const tkFile& file, const std::string& contents) override;
    std::unique_ptr<tkFile> makeFile(const std::string& path) override;
    std::vector<std::string> listDirectory(const std::string& path) override;
    int32_t openLocked(const std::string& path, int32_t mode) override;
    int32_t closeLocked(int32_t fd) override;
    std::string readFile(const tkFile& file) override;
    void replaceFile(const tkFile& file, const std::string& contents) override;
    tkLockAttempt lockFile(const std::string& path, int32_t waitMillis) override;
    bool makePrivate(const tkFile& file) override;
    int32_t sweepTemporaries(const std::string& folder,
                             const std::vector<std::string>& names) override;

    // Swaps the two names in one atomic step. Returns 0 on success, otherwise
    // the errno of the failing call; EINVAL or ENOSYS mean that this file
    // system can't swap, which is a failure like any other.
    static int swapFiles(const std::string& livePath, const std::string& tempPath);

    // The temporary name that safeSave would pick next for `path`: "~" +
    // the name in the same folder, with one more "~" for every leftover.
    static std::string temporaryPathFor(const std::string& path);
};
