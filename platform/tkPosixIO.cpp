#include "platform/tkPosixIO.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "foundation/tkFile.h"

namespace tkPosixIO {

namespace {

std::string errorText(int error) {
    return std::strerror(error);
}

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

std::string kindProblem(mode_t mode) {
    if (S_ISDIR(mode)) {
        return "it is a folder, not a file";
    }
    return "it is not a regular file (a device, pipe or socket)";
}

bool userIsInGroup(uid_t user, gid_t group) {
    const struct passwd* entry = ::getpwuid(user);
    if (entry == nullptr) {
        return false;
    }
    if (entry->pw_gid == group) {
        return true;
    }
    int count = 64;
    std::vector<gid_t> groups(static_cast<std::size_t>(count));
    if (::getgrouplist(entry->pw_name, entry->pw_gid, groups.data(), &count) < 0) {
        groups.resize(static_cast<std::size_t>(count));
        if (::getgrouplist(entry->pw_name, entry->pw_gid, groups.data(), &count) < 0) {
            return false;
        }
    }
    groups.resize(static_cast<std::size_t>(count));
    for (const gid_t member : groups) {
        if (member == group) {
            return true;
        }
    }
    return false;
}

// A replacement made by someone other than the owner belongs to the one who
// made it, and perhaps to another group. That is only acceptable when
// everyone who could use the old file can still use the new one: the old
// owner through the group or other bits, the old group's members through the
// other bits. Returns the problem in words, or "".
std::string sharingProblem(const struct stat& old, const struct stat& made) {
    const mode_t mode = old.st_mode;
    const mode_t ownerBits = (mode >> 6) & 7;
    const mode_t groupBits = (mode >> 3) & 7;
    const mode_t otherBits = mode & 7;
    if (made.st_gid != old.st_gid && (groupBits & ~otherBits) != 0) {
        return "the new copy could not keep the file's group, whose members share it";
    }
    if (made.st_uid != old.st_uid) {
        mode_t ownerKeeps = otherBits;
        if (userIsInGroup(old.st_uid, made.st_gid)) {
            ownerKeeps |= groupBits;
        }
        if ((ownerBits & ~ownerKeeps) != 0) {
            return "it belongs to another user, who could no longer use a copy owned by you";
        }
    }
    return "";
}

// Gives the fresh temporary the old file's owner, group and permissions, as
// far as this process may, before anything is written into it.
std::string takeOverAttributes(int fd, const struct stat& old) {
    if (::fchown(fd, old.st_uid, old.st_gid) != 0) {
        // Only root can hand a file to someone else; the group alone works
        // for a member of it.
        (void)::fchown(fd, static_cast<uid_t>(-1), old.st_gid);
    }
    // After the chown, which clears set-id bits.
    const mode_t wanted = old.st_mode & 07777;
    (void)::fchmod(fd, wanted);
    struct stat made;
    if (::fstat(fd, &made) != 0) {
        return errorText(errno);
    }
    if ((made.st_mode & 07777) != wanted) {
        return "the new copy could not be given the file's permissions";
    }
    return sharingProblem(old, made);
}

mode_t defaultFileMode() {
    // The process is single-threaded, so reading the mask by setting it is safe.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

}  // namespace

bool writeAll(int fd, const std::string& contents) {
    const char* data = contents.data();
    std::size_t left = contents.size();
    while (left > 0) {
        const ssize_t written = ::write(fd, data, left);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        if (written == 0) {
            errno = EIO;
            return false;
        }
        data += written;
        left -= static_cast<std::size_t>(written);
    }
    return true;
}

bool readAll(int fd, std::string& contents) {
    char buffer[65536];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        if (got == 0) {
            return true;
        }
        contents.append(buffer, static_cast<std::size_t>(got));
    }
}

int createSibling(const std::string& path, const std::string& suffix, std::string& siblingPath,
                  int& error) {
    std::string folder = tkFile::deletingLastPathComponent(path);
    if (!folder.empty() && folder.back() != '/') {
        folder += '/';
    }
    const std::string stem =
        folder + "." + tkFile::lastPathComponent(path) + suffix + "." + std::to_string(::getpid());
    // The pid keeps two processes apart; the counter only matters when a
    // process that once had our pid died and left its temporary behind.
    for (uint32_t attempt = 0; attempt < 100; ++attempt) {
        siblingPath = stem;
        if (attempt > 0) {
            siblingPath.append(".").append(std::to_string(attempt));
        }
        const int fd = ::open(siblingPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd >= 0) {
            return fd;
        }
        if (errno != EEXIST) {
            error = errno;
            return -1;
        }
    }
    error = EEXIST;
    return -1;
}

std::string readRegularFile(const std::string& path, std::string& contents) {
    // Without O_NONBLOCK the open of a pipe would wait for a writer forever.
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) {
        return errorText(errno);
    }
    struct stat info;
    std::string problem;
    if (::fstat(fd, &info) != 0) {
        problem = errorText(errno);
    } else if (!S_ISREG(info.st_mode)) {
        problem = kindProblem(info.st_mode);
    } else if (static_cast<uint64_t>(info.st_size) > kMaximumFileSize) {
        problem = "it is too large (" + std::to_string(info.st_size) + " bytes)";
    } else {
        contents.reserve(static_cast<std::size_t>(info.st_size));
        if (!readAll(fd, contents)) {
            problem = errorText(errno);
            contents.clear();
        }
    }
    ::close(fd);
    return problem;
}

std::string replaceContents(const std::string& path, const std::string& contents) {
    const std::string target = resolvedTarget(path);
    struct stat old;
    const bool existed = ::stat(target.c_str(), &old) == 0;
    if (!existed && errno != ENOENT) {
        return errorText(errno);
    }
    if (existed) {
        if (!S_ISREG(old.st_mode)) {
            return kindProblem(old.st_mode);
        }
        // A rename would replace a file that we may not write to at all; its
        // permissions rule, as they would for a write in place.
        if (::access(target.c_str(), W_OK) != 0) {
            return errorText(errno);
        }
    }

    int error = 0;
    std::string temporary;
    const int fd = createSibling(target, kTemporarySuffix, temporary, error);
    if (fd < 0) {
        // Writing in place is no way out: a process killed in the middle
        // would leave the only copy cut short.
        return "its folder does not allow a new file beside it (" + errorText(error) + ")";
    }
    std::string problem = existed ? takeOverAttributes(fd, old) : "";
    if (problem.empty() && !existed && ::fchmod(fd, defaultFileMode()) != 0) {
        problem = errorText(errno);
    }
    if (problem.empty() && !writeAll(fd, contents)) {
        problem = errorText(errno);
    }
    // Deliberately no fsync: it would cost every keystroke in a job field a
    // wait for the disk (milliseconds, on a busy one), and a killed process
    // needs none, since the system has the bytes. Against a power cut the
    // file systems of today flush a file before a rename over another one.
    if (::close(fd) != 0 && problem.empty()) {
        problem = errorText(errno);
    }
    // The rename is the one step at which the name changes from the old text
    // to the new; before it the old file is untouched, after it the new one is
    // whole. A process that dies in between leaves only a stray temporary,
    // which the next launch sweeps away.
    if (problem.empty() && ::rename(temporary.c_str(), target.c_str()) != 0) {
        problem = errorText(errno);
    }
    if (!problem.empty()) {
        ::unlink(temporary.c_str());
    }
    return problem;
}

}  // namespace tkPosixIO
