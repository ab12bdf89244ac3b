#include "platform/tkFileManagerPosix.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <thread>

#include "foundation/IOException.h"
#include "foundation/tkFileWriteException.h"
#include "platform/tkFilePosix.h"
#include "platform/tkPosixIO.h"

namespace {

void logMoveFailure(int error) {
    std::cerr << "move file failed with error " << std::strerror(error) << std::endl;
}

bool removeTree(const std::string& path) {
    struct stat info;
    if (::lstat(path.c_str(), &info) != 0) {
        return false;
    }
    if (!S_ISDIR(info.st_mode)) {
        return ::unlink(path.c_str()) == 0;
    }
    DIR* dir = ::opendir(path.c_str());
    if (dir == nullptr) {
        return false;
    }
    bool ok = true;
    while (const struct dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..") {
            continue;
        }
        ok = removeTree(path + "/" + name) && ok;
    }
    ::closedir(dir);
    return ::rmdir(path.c_str()) == 0 && ok;
}

// A move between file systems can't be a rename: the bytes are copied to a
// destination that must not exist yet, and the source goes only once the
// copy is whole. Returns 0 or the errno of the failing step.
int copyAcross(const std::string& source, const std::string& destination) {
    struct stat info;
    if (::lstat(source.c_str(), &info) != 0) {
        return errno;
    }
    if (!S_ISREG(info.st_mode)) {
        // Only the time sheet and the timers file ever move; folders and
        // links across file systems are not worth a copy engine.
        return EXDEV;
    }
    const int in = ::open(source.c_str(), O_RDONLY | O_CLOEXEC);
    if (in < 0) {
        return errno;
    }
    const int out =
        ::open(destination.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, info.st_mode & 07777);
    if (out < 0) {
        const int error = errno;
        ::close(in);
        return error;
    }
    std::string contents;
    int error = 0;
    if (!tkPosixIO::readAll(in, contents) || !tkPosixIO::writeAll(out, contents)) {
        error = errno;
    }
    if (error == 0) {
        const struct timespec times[2] = {info.st_atim, info.st_mtim};
        ::futimens(out, times);
    }
    ::close(in);
    if (::close(out) != 0 && error == 0) {
        error = errno;
    }
    if (error != 0) {
        ::unlink(destination.c_str());
        return error;
    }
    if (::unlink(source.c_str()) != 0) {
        return errno;
    }
    return 0;
}

// For file systems that refuse RENAME_NOREPLACE: a hard link fails on an
// existing destination just as atomically.
int renameNoReplaceFallback(const std::string& source, const std::string& destination) {
    if (::link(source.c_str(), destination.c_str()) == 0) {
        ::unlink(source.c_str());
        return 0;
    }
    if (errno == EEXIST || errno == EXDEV) {
        return errno;
    }
    struct stat info;
    if (::lstat(destination.c_str(), &info) == 0) {
        return EEXIST;
    }
    return ::rename(source.c_str(), destination.c_str()) == 0 ? 0 : errno;
}

// With `exclusive` the file must not exist yet: it is made 0600 and given
// `mode` before its first byte, so that it never shows the new text to anyone
// the finished file won't, and a file that this call made and couldn't fill is
// removed again; a name that was taken when we came is never touched.
bool writeNewFile(const std::string& path, const std::string& contents, bool exclusive,
                  mode_t mode) {
    const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | (exclusive ? O_EXCL : O_TRUNC);
    const int fd = ::open(path.c_str(), flags, exclusive ? 0600 : 0666);
    if (fd < 0) {
        return false;
    }
    bool ok = !exclusive || ::fchmod(fd, mode) == 0;
    ok = ok && tkPosixIO::writeAll(fd, contents);
    ok = ::close(fd) == 0 && ok;
    if (!ok && exclusive) {
        ::unlink(path.c_str());
    }
    return ok;
}

// The process id in the name of a temporary of replaceFile, behind its prefix:
// digits, perhaps followed by "." and more digits. 0 when the rest is
// anything else.
pid_t temporaryOwner(const std::string& rest) {
    const std::string::size_type dot = rest.find('.');
    const std::string pid = rest.substr(0, dot);
    const std::string counter = dot == std::string::npos ? "1" : rest.substr(dot + 1);
    const auto allDigits = [](const std::string& text) {
        return !text.empty() && text.size() < 10 &&
               text.find_first_not_of("0123456789") == std::string::npos;
    };
    if (!allDigits(pid) || !allDigits(counter)) {
        return 0;
    }
    return static_cast<pid_t>(std::stol(pid));
}

}  // namespace

bool tkFileManagerPosix::exists(const tkFile& file) {
    struct stat info;
    return ::stat(file.path().c_str(), &info) == 0;
}

bool tkFileManagerPosix::isWritable(const tkFile& file) {
    return ::access(file.path().c_str(), W_OK) == 0;
}

bool tkFileManagerPosix::createDirectory(const std::string& path) {
    const std::string expanded = tkFilePosix::expandTilde(path);
    if (expanded.empty()) {
        // A bare file name lives in the present folder, which exists.
        return true;
    }
    struct stat info;
    if (::stat(expanded.c_str(), &info) == 0) {
        return true;
    }
    const std::string parent = tkFile::deletingLastPathComponent(expanded);
    if (parent != expanded && !createDirectory(parent)) {
        return false;
    }
    // Private to the user, as the XDG base directory rule asks of the data
    // folders, and as befits a folder of time records.
    return ::mkdir(expanded.c_str(), 0700) == 0 || errno == EEXIST;
}

void tkFileManagerPosix::createFile(const tkFile& file) {
    if (exists(file)) {
        return;
    }
    if (!createDirectory(file.directory())) {
        throw IOException("Could not create directory.");
    }
    const int fd = ::open(file.path().c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0) {
        throw IOException("Could not create file " + file.path() + ".");
    }
    ::close(fd);
}

void tkFileManagerPosix::checkReadable(const tkFile& file) {
    if (::access(file.path().c_str(), R_OK) != 0) {
        const std::string message = "Cannot read file at: " + file.path();
        // The line goes out here and once more from the exception: by design.
        std::cout << message << std::endl;
        throw IOException(message);
    }
}

bool tkFileManagerPosix::moveFile(const tkFile& file, const std::string& destination) {
    const std::string source = file.path();
    const std::string target = tkFilePosix::expandTilde(destination);
    int error = 0;
    if (::renameat2(AT_FDCWD, source.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) != 0) {
        error = errno;
        if (error == EINVAL || error == ENOSYS) {
            error = renameNoReplaceFallback(source, target);
        }
        if (error == EXDEV) {
            error = copyAcross(source, target);
        }
    }
    if (error != 0) {
        logMoveFailure(error);
        return false;
    }
    return true;
}

bool tkFileManagerPosix::removeFile(const tkFile& file) {
    return removeTree(file.path());
}

bool tkFileManagerPosix::safeSave(const tkFile& file, const std::string& contents) {
    const std::string live = file.path();
    struct stat info;
    if (::stat(live.c_str(), &info) != 0) {
        // Nothing to protect yet.
        return writeNewFile(live, contents, false, 0);
    }
    const std::string temporary = temporaryPathFor(live);
    // The swap hands the live name the temporary's inode, so the temporary
    // carries the live file's permissions from its first byte on.
    if (!writeNewFile(temporary, contents, true, info.st_mode & 07777)) {
        // No copy of the new data exists worth keeping; the live file is
        // untouched. The temporary name is not removed here: when the open
        // failed because someone else took the name in the meantime, the
        // file there is theirs.
        return false;
    }
    if (swapFiles(live, temporary) != 0) {
        // No fallback to an overwrite, deliberately: the old file stays, and
        // the new data stays in the temporary file for the user to rescue.
        return false;
    }
    const std::unique_ptr<tkFile> old = makeFile(temporary);
    removeFile(*old);
    return true;
}

int tkFileManagerPosix::swapFiles(const std::string& livePath, const std::string& tempPath) {
    if (::renameat2(AT_FDCWD, livePath.c_str(), AT_FDCWD, tempPath.c_str(), RENAME_EXCHANGE) != 0) {
        return errno;
    }
    return 0;
}

std::string tkFileManagerPosix::temporaryPathFor(const std::string& path) {
    std::string folder = tkFile::deletingLastPathComponent(path);
    if (!folder.empty() && folder.back() != '/') {
        folder += '/';
    }
    const std::string name = tkFile::lastPathComponent(path);
    std::string tildes = "~";
    struct stat info;
    std::string candidate = folder;
    candidate.append(tildes).append(name);
    while (::lstat(candidate.c_str(), &info) == 0) {
        tildes.push_back('~');
        candidate = folder;
        candidate.append(tildes).append(name);
    }
    return candidate;
}

std::unique_ptr<tkFile> tkFileManagerPosix::makeFile(const std::string& path) {
    return std::make_unique<tkFilePosix>(path);
}

std::vector<std::string> tkFileManagerPosix::listDirectory(const std::string& path) {
    std::vector<std::string> names;
    DIR* dir = ::opendir(tkFilePosix::expandTilde(path).c_str());
    if (dir == nullptr) {
        return names;
    }
    while (const struct dirent* entry = ::readdir(dir)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            names.push_back(name);
        }
    }
    ::closedir(dir);
    return names;
}

int32_t tkFileManagerPosix::openLocked(const std::string& path, int32_t mode) {
    const std::string expanded = tkFilePosix::expandTilde(path);
    // A few rounds at most: each retry means another process renamed a new
    // file into place in the instant between our open and our lock.
    for (int attempt = 0; attempt < 8; ++attempt) {
        const int fd =
            ::open(expanded.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC, static_cast<mode_t>(mode));
        if (fd < 0) {
            return -1;
        }
        if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
            ::close(fd);
            return -1;
        }
        // Files are rewritten by renaming a new file over the old one, so the
        // lock is only worth something while it sits on the file that the
        // name shows now.
        struct stat locked;
        struct stat named;
        if (::fstat(fd, &locked) == 0 && ::stat(expanded.c_str(), &named) == 0 &&
            locked.st_dev == named.st_dev && locked.st_ino == named.st_ino) {
            return fd;
        }
        ::close(fd);
    }
    return -1;
}

int32_t tkFileManagerPosix::closeLocked(int32_t fd) {
    return ::close(fd);
}

std::string tkFileManagerPosix::readFile(const tkFile& file) {
    std::string contents;
    const std::string problem = tkPosixIO::readRegularFile(file.path(), contents);
    if (!problem.empty()) {
        throw IOException("Cannot read " + file.path() + ": " + problem + ".");
    }
    return contents;
}

void tkFileManagerPosix::replaceFile(const tkFile& file, const std::string& contents) {
    const std::string problem = tkPosixIO::replaceContents(file.path(), contents);
    if (!problem.empty()) {
        throw tkFileWriteException("Could not save " + file.path() + ": " + problem + ".");
    }
}

tkLockAttempt tkFileManagerPosix::lockFile(const std::string& path, int32_t waitMillis) {
    tkLockAttempt attempt;
    const std::string expanded = tkFilePosix::expandTilde(path);
    // O_NOFOLLOW: a link planted at the lock file's name must not lead the
    // creation elsewhere.
    int fd = ::open(expanded.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
    if (fd >= 0) {
        // Readable whatever the umask, so that another user who shares the
        // file it guards can lock it too.
        ::fchmod(fd, 0644);
    } else if (errno == EEXIST) {
        // Perhaps another user's lock file: a read-only descriptor locks as
        // well. O_NONBLOCK, in case something else than a file stands there.
        fd = ::open(expanded.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    }
    if (fd < 0) {
        attempt.reason = std::strerror(errno);
        return attempt;
    }
    struct stat info;
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        attempt.reason = "the lock file " + expanded + " is not a regular file";
        return attempt;
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(waitMillis);
    for (;;) {
        if (::flock(fd, LOCK_EX | LOCK_NB) == 0) {
            attempt.fd = fd;
            return attempt;
        }
        const int error = errno;
        if (error == EINTR) {
            continue;
        }
        if (error != EWOULDBLOCK) {
            ::close(fd);
            attempt.reason = std::strerror(error);
            return attempt;
        }
        const auto now = std::chrono::steady_clock::now();
        if (now >= deadline) {
            ::close(fd);
            attempt.heldElsewhere = true;
            return attempt;
        }
        // flock has no time limit of its own; a wait is a few short looks.
        std::this_thread::sleep_for(std::min<std::chrono::steady_clock::duration>(
            deadline - now, std::chrono::milliseconds(5)));
    }
}

bool tkFileManagerPosix::makePrivate(const tkFile& file) {
    return ::chmod(file.path().c_str(), 0600) == 0;
}

int32_t tkFileManagerPosix::sweepTemporaries(const std::string& folder,
                                             const std::vector<std::string>& names) {
    const std::string expanded = tkFilePosix::expandTilde(folder);
    int32_t removed = 0;
    for (const std::string& entry : listDirectory(expanded)) {
        for (const std::string& name : names) {
            const std::string prefix = "." + name + tkPosixIO::kTemporarySuffix + ".";
            if (entry.compare(0, prefix.size(), prefix) != 0) {
                continue;
            }
            const pid_t owner = temporaryOwner(entry.substr(prefix.size()));
            // Only a process that no longer exists can't finish its save; a
            // live one, or one of another user (EPERM), may still rename it.
            if (owner <= 0 || ::kill(owner, 0) == 0 || errno != ESRCH) {
                continue;
            }
            const std::string path = expanded + "/" + entry;
            struct stat info;
            if (::lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
                ::unlink(path.c_str()) == 0) {
                ++removed;
            }
        }
    }
    return removed;
}
