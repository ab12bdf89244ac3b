#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "foundation/tkFile.h"

// What an attempt to take a lock file came to.
struct tkLockAttempt {
    // The descriptor that holds the lock, or -1.
    int32_t fd = -1;
    // The lock file is there, and another holder kept the lock for as long as
    // the attempt waited.
    bool heldElsewhere = false;
    // Why the lock file could not be opened or made, in words; empty when the
    // lock was taken or is held elsewhere.
    std::string reason;
};

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

    // Closes a descriptor from openLocked or lockFile, dropping its lock.
    virtual int32_t closeLocked(int32_t fd) = 0;

    // The whole of a regular file. Throws IOException, with the path and the
    // reason in words, when it is missing, unreadable, a folder, a device or
    // pipe (which could block or never end) or too large to be one of the
    // application's files. Never blocks.
    virtual std::string readFile(const tkFile& file) = 0;

    // Replaces the file's text, or creates the file (not its folder), in one
    // atomic step: at every moment the name holds the whole old or the whole
    // new text, and a file is never cut short in place, whenever the process
    // dies. Where that can't be done the old file stays as it is and
    // tkFileWriteException says why, with the path: a full disk, a folder that
    // takes no new file, a file this process may not write, a file that is not
    // a regular file, a file of another owner that the new copy would take
    // away from them.
    virtual void replaceFile(const tkFile& file, const std::string& contents) = 0;

    // Takes an exclusive advisory lock on the lock file at `path`, creating
    // the file (not its folder) when missing. With waitMillis 0 it tries once;
    // otherwise it waits up to that long for another holder to let go. The
    // lock is held as long as the returned descriptor stays open; closeLocked
    // gives it up, and it dies with the process. A lock file is never
    // replaced, so the lock can't slip off it the way it would off a data
    // file that every save renames a new file over.
    virtual tkLockAttempt lockFile(const std::string& path, int32_t waitMillis) = 0;

    // Takes the file's permissions down to its owner alone (0600), for a file
    // about to be set aside where others might look. False when that failed.
    virtual bool makePrivate(const tkFile& file) = 0;

    // Removes from `folder` the temporaries that replaceFile left for any of
    // the named files when its process was killed before the rename, and only
    // those whose process no longer exists. Returns how many went.
    virtual int32_t sweepTemporaries(const std::string& folder,
                                     const std::vector<std::string>& names) = 0;

    // Installs the process's file manager. An earlier one is destroyed,
    // unless it is the same object.
    static void install(std::unique_ptr<tkFileManager> manager);

    // The installed file manager. Throws tkException when none is installed,
    // which is a programming error: the launch installs one first thing.
    static tkFileManager& instance();

    // True when a file manager is installed.
    static bool isInstalled();
};
