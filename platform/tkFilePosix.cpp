#include "platform/tkFilePosix.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "platform/tkPosixIO.h"
#include "platform/tkUserInfoPosix.h"

namespace {

// Follows a symbolic link to the file it names, so that a rewrite replaces
// the target and keeps the link, as writing in place would.
std::string resolvedTarget(const std::string& path) {
    struct stat linkInfo;
    if (::lstat(path.c_str(), &linkInfo) != 0 || !S_ISLNK(linkInfo.st_mode)) {
        return path;
    }
    char resolved[PATH_MAX];
    if (::realpath(path.c_str(), resolved) == nullptr) {
        return path;
    }
    return resolved;
}

void reportWriteFailure(const std::string& path, int error) {
    std::cout << "Could not write file at: " << path << " (" << std::strerror(error) << ")"
              << std::endl;
}

// The old way, kept for folders that can't take a new file: truncate and
// write where the file stands.
void writeInPlace(const std::string& path, const std::string& contents) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC);
    if (fd < 0) {
        // A missing file stays missing, silently by contract.
        if (errno != ENOENT) {
            reportWriteFailure(path, errno);
        }
        return;
    }
    if (!tkPosixIO::writeAll(fd, contents)) {
        reportWriteFailure(path, errno);
    }
    ::close(fd);
}

}  // namespace

tkFilePosix::tkFilePosix(const std::string& path) : _path(expandTilde(path)) {}

std::string tkFilePosix::expandTilde(const std::string& path) {
    if (path.empty() || path[0] != '~') {
        return path;
    }
    const std::string::size_type slash = path.find('/');
    const std::string user =
        path.substr(1, slash == std::string::npos ? std::string::npos : slash - 1);
    std::string home;
    if (user.empty()) {
        home = posixHomeFolder();
    } else {
        const struct passwd* entry = ::getpwnam(user.c_str());
        if (entry == nullptr || entry->pw_dir == nullptr) {
            // An unknown user: the path stays as it was written.
            return path;
        }
        home = entry->pw_dir;
    }
    if (home.empty()) {
        return path;
    }
    while (home.size() > 1 && home.back() == '/') {
        home.pop_back();
    }
    if (slash == std::string::npos) {
        return home;
    }
    return (home == "/" ? std::string() : home) + path.substr(slash);
}

std::string tkFilePosix::read() const {
    std::string contents;
    const int fd = ::open(_path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return contents;
    }
    if (!tkPosixIO::readAll(fd, contents)) {
        contents.clear();
    }
    ::close(fd);
    return contents;
}

void tkFilePosix::write(const std::string& contents) {
    const std::string target = resolvedTarget(_path);
    struct stat old;
    if (::stat(target.c_str(), &old) != 0) {
        // A missing file stays missing: only createFile and safeSave make files.
        return;
    }
    // A rename would replace a file that we may not write to at all; its
    // permissions rule, as they would for a write in place.
    if (::access(target.c_str(), W_OK) != 0) {
        reportWriteFailure(target, errno);
        return;
    }
    if (!S_ISREG(old.st_mode)) {
        writeInPlace(target, contents);
        return;
    }

    int error = 0;
    std::string temporary;
    const int fd = tkPosixIO::createSibling(target, ".tkw", temporary, error);
    if (fd < 0) {
        // The folder refuses new files (no write permission on it, or a
        // read-only mount that still lets the file itself be written):
        // in place is all that is left.
        writeInPlace(target, contents);
        return;
    }
    // The new file takes the old one's permissions and, where we may, its
    // owner, so that the rewrite is invisible to anyone else who uses it.
    if (::fchmod(fd, old.st_mode & 07777) != 0) {
        // A copy that can't carry the old permissions must not replace it.
        ::close(fd);
        ::unlink(temporary.c_str());
        writeInPlace(target, contents);
        return;
    }
    // Only root can hand a file to someone else. When the new file can't
    // carry the old owner and group, renaming it in would take the file away
    // from whoever shares it with us (a time sheet in a common folder), so
    // such a file is rewritten where it stands instead.
    (void)::fchown(fd, old.st_uid, old.st_gid);
    struct stat made;
    if (::fstat(fd, &made) != 0 || made.st_uid != old.st_uid || made.st_gid != old.st_gid) {
        ::close(fd);
        ::unlink(temporary.c_str());
        writeInPlace(target, contents);
        return;
    }
    bool written = tkPosixIO::writeAll(fd, contents);
    if (!written) {
        error = errno;
    }
    if (::close(fd) != 0 && written) {
        written = false;
        error = errno;
    }
    // The rename is the one step at which the name changes from the old text
    // to the new; before it the old file is untouched, after it the new one is
    // whole. A process that dies in between leaves only a stray temporary.
    if (written && ::rename(temporary.c_str(), target.c_str()) != 0) {
        written = false;
        error = errno;
    }
    if (!written) {
        ::unlink(temporary.c_str());
        reportWriteFailure(target, error);
    }
}
