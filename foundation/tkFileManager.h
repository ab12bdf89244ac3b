#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "foundation/tkFile.h"

// The core's only view of file-system operations. One object is installed at
// launch (install()) and everything that persists reaches it through
// instance(). Expected failures are boolean results; only the create and check
// operations throw, with texts that reach the user.
class tkFileManager {
  public:
    virtual ~tkFileManager() = default;

    // True when anything (file or directory) exists at the file's path.
    virtual bool exists(const tkFile& file) = 0;

    virtual bool isWritable(const tkFile& file) = 0;

    // Creates the directory and every missing parent. True when the path
    // exists afterwards (a plain file of that name counts); false when a
    // component can't be made, for example a path that runs through a file.
    virtual bool createDirectory(const std::string& path) = 0;

    // Returns at once when anything exists at the path. Otherwise creates the
    // folders above and an empty file.
    // Throws IOException "Could not create directory." or
    // "Could not create file " + path + ".".
    virtual void createFile(const tkFile& file) = 0;

    // createFile, then isWritable; when not writable writes
    // "Cannot write to file at: " + path on standard output and throws an
    // IOException with that text. Built on the two virtuals, so a wrapping
    // manager only has to override those.
    virtual void createWritableFile(const tkFile& file);

    // Writes "Cannot read file at: " + path on standard output and throws an
    // IOException with that text when the file is missing or unreadable.
    virtual void checkReadable(const tkFile& file) = 0;

    // Moves the file to `destination`. Fails (false, and a log line on
    // standard error) when the destination exists; works across file systems.
    virtual bool moveFile(const tkFile& file, const std::string& destination) = 0;

    virtual bool removeFile(const tkFile& file) = 0;

    // The crash-safe save: at every moment the file's name holds either the
    // complete old or the complete new contents. Returns false on any
    // failure; a temporary "~" file with the new contents may then stay next
    // to the live file, deliberately, so that the new data isn't destroyed.
    virtual bool safeSave(const tkFile& file, const std::string& contents) = 0;

    // A new file object for the path (tilde-expanded), owned by the caller.
    virtual std::unique_ptr<tkFile> makeFile(const std::string& path) = 0;

    // Entry names (not paths), dot-files included, "." and ".." excluded.
    // An unreadable or missing directory yields an empty list.
    virtual std::vector<std::string> listDirectory(const std::string& path) = 0;

    // Opens an existing file (never creates one) and takes an exclusive,
    // non-blocking advisory lock on it. Returns the descriptor, or -1 at once
    // when the file is missing or another holder has the lock. Holding the
    // descriptor open is holding the lock; it dies with the process.
    virtual int32_t openLocked(const std::string& path, int32_t mode) = 0;

    // Closes a descriptor from openLocked, dropping its lock.
    virtual int32_t closeLocked(int32_t fd) = 0;

    // Installs the process's file manager. An earlier one is destroyed,
    // unless it is the same object.
    static void install(std::unique_ptr<tkFileManager> manager);

    // The installed file manager. Throws tkException when none is installed,
    // which is a programming error: the launch installs one first thing.
    static tkFileManager& instance();

    // True when a file manager is installed.
    static bool isInstalled();
};
