#include "platform/tkFileManagerPosix.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>

#include "foundation/IOException.h"
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

// With `exclusive` a file that this call made and couldn't fill is removed
// again; a name that was taken when we came is never touched.
bool writeNewFile(const std::string& path, const std::string& contents, bool exclusive) {
    const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | (exclusive ? O_EXCL : O_TRUNC);
    const int fd = ::open(path.c_str(), flags, 0666);
    if (fd < 0) {
        return false;
    }
    bool ok = tkPosixIO::writeAll(fd, contents);
    ok = ::close(fd) == 0 && ok;
    if (!ok && exclusive) {
        ::unlink(path.c_str());
    }
    return ok;
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
    return ::mkdir(expanded.c_str(), 0777) == 0 || errno == EEXIST;
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
    if (!exists(file)) {
        // Nothing to protect yet.
        return writeNewFile(live, contents, false);
    }
    const std::string temporary = temporaryPathFor(live);
    if (!writeNewFile(temporary, contents, true)) {
        // No copy of the new data exists worth keeping; the live file is
        // untouched. The temporary name is not removed here: when the open
        // failed because someone else took the name in the meantime, the
        // file there is theirs.
        return false;
    }
    // The swap hands the live name the temporary's inode, so give it the live
    // file's permissions first.
    struct stat info;
    if (::stat(live.c_str(), &info) == 0) {
        ::chmod(temporary.c_str(), info.st_mode & 07777);
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
