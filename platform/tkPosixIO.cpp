#include "platform/tkPosixIO.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "foundation/tkFile.h"

namespace tkPosixIO {

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
    // Room for a regular file's whole size at once: growing by doubling copies a large time
    // sheet several times, and leaves the freed blocks in the process's memory.
    struct stat info;
    if (::fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0) {
        contents.reserve(contents.size() + static_cast<std::size_t>(info.st_size));
    }
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

}  // namespace tkPosixIO
