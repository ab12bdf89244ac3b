#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "foundation/IOException.h"
#include "foundation/tkFile.h"
#include "foundation/tkFileManager.h"
#include "foundation/tkFileWriteException.h"
#include "platform/tkFileManagerPosix.h"

// Test helper: the real POSIX file manager with failures on demand, so that tests can prove
// that a failing disk loses nothing and reaches the user. Files made through makeFile carry the
// shared fault state, so a fault set after the file object was made still applies to it.
//
//   auto owned = std::make_unique<tkFaultyFileManager>();
//   tkFaultyFileManager& faulty = *owned;
//   tkFileManager::install(std::move(owned));
//   faulty.faults().diskFull = true;     // every write from now on fails
struct tkFileFaults {
    // Writes change nothing, as on a full disk: replaceFile throws, safeSave fails before the
    // swap.
    bool diskFull = false;
    // No new file or folder can be made.
    bool createFails = false;
    // safeSave writes its temporary file and then can't swap it in.
    bool swapFails = false;
    // Judge writability by the permission bits, as an ordinary user would, even when the
    // tests run as root (for whom access() allows everything).
    bool honourModeBits = false;

    // What happened, for tests that prove something was not touched.
    int32_t writes = 0;
    std::vector<std::string> replaced;  // the files that replaceFile wrote, in order
    int32_t creates = 0;
    int32_t openLockedCalls = 0;  // lock takes of either kind
};

class tkFaultyFile : public tkFile {
  public:
    tkFaultyFile(std::unique_ptr<tkFile> inner, std::shared_ptr<tkFileFaults> faults)
        : _inner(std::move(inner)), _faults(std::move(faults)) {}

    std::string read() const override { return _inner->read(); }
    void write(const std::string& contents) override {
        ++_faults->writes;
        if (!_faults->diskFull) {  // a full disk reports nothing, as the real write
            _inner->write(contents);
        }
    }
    std::string path() const override { return _inner->path(); }

  private:
    std::unique_ptr<tkFile> _inner;
    std::shared_ptr<tkFileFaults> _faults;
};

// The real POSIX file manager, with the faults of `faults()` on top.
class tkFaultyFileManager : public tkFileManagerPosix {
  public:
    using Posix = tkFileManagerPosix;
    tkFileFaults& faults() { return *_faults; }

    bool isWritable(const tkFile& file) override {
        struct stat info;
        if (_faults->honourModeBits &&
            (::stat(file.path().c_str(), &info) != 0 || (info.st_mode & 0222) == 0)) {
            return false;
        }
        return Posix::isWritable(file);
    }
    bool createDirectory(const std::string& path) override {
        struct stat info;
        return _faults->createFails ? ::stat(path.c_str(), &info) == 0
                                    : Posix::createDirectory(path);
    }
    void createFile(const tkFile& file) override {
        if (!exists(file)) {
            if (_faults->createFails) {
                throw IOException("Could not create file " + file.path() + ".");
            }
            ++_faults->creates;
        }
        Posix::createFile(file);
    }
    bool safeSave(const tkFile& file, const std::string& contents) override {
        ++_faults->writes;
        if (_faults->diskFull) {
            return false;
        }
        if (_faults->swapFails && exists(file)) {
            // Everything up to the swap happens for real, so the temporary file with the new
            // contents is there to be found.
            Posix::safeSave(*Posix::makeFile(temporaryPathFor(file.path())), contents);
            return false;
        }
        return Posix::safeSave(file, contents);
    }
    std::unique_ptr<tkFile> makeFile(const std::string& path) override {
        return std::make_unique<tkFaultyFile>(Posix::makeFile(path), _faults);
    }
    int32_t openLocked(const std::string& path, int32_t mode) override {
        ++_faults->openLockedCalls;
        return Posix::openLocked(path, mode);
    }
    void replaceFile(const tkFile& file, const std::string& contents) override {
        ++_faults->writes;
        const bool existed = exists(file);
        const std::string problem =
            _faults->diskFull ? "No space left on device"
            : _faults->createFails
                ? "its folder does not allow a new file beside it (Permission denied)"
            : existed && !isWritable(file) ? "Permission denied"
                                           : "";
        if (!problem.empty()) {
            throw tkFileWriteException("Could not save " + file.path() + ": " + problem + ".");
        }
        _faults->creates += existed ? 0 : 1;
        Posix::replaceFile(file, contents);
        _faults->replaced.push_back(file.path());
    }
    tkLockAttempt lockFile(const std::string& path, int32_t waitMillis) override {
        ++_faults->openLockedCalls;
        return Posix::lockFile(path, waitMillis);
    }

  private:
    std::shared_ptr<tkFileFaults> _faults = std::make_shared<tkFileFaults>();
};
