#include "platform/tkLocalSocketPosix.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

namespace {

// A connected stream socket, or -1 with errno set.
int connectTo(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return -1;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0) {
        return -1;
    }
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        const int error = errno;
        ::close(fd);
        errno = error;
        return -1;
    }
    return fd;
}

class Descriptor {
  public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }

  private:
    int fd_;
};

bool waitFor(int fd, short events, int timeoutSeconds) {
    pollfd entry{fd, events, 0};
    int ready = 0;
    do {
        ready = ::poll(&entry, 1, timeoutSeconds * 1000);
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

bool sendAll(int fd, const std::string& bytes, int timeoutSeconds) {
    size_t sent = 0;
    while (sent < bytes.size()) {
        if (!waitFor(fd, POLLOUT, timeoutSeconds)) {
            return false;
        }
        const ssize_t n = ::send(fd, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            return false;
        }
        sent += static_cast<size_t>(n);
    }
    return true;
}

}  // namespace

tkLocalSocketState probeLocalSocket(const std::string& path) {
    struct stat info;
    if (::lstat(path.c_str(), &info) != 0) {
        return errno == ENOENT ? tkLocalSocketState::Absent : tkLocalSocketState::Other;
    }
    if (!S_ISSOCK(info.st_mode)) {
        return tkLocalSocketState::Other;
    }
    const Descriptor socket(connectTo(path));
    if (socket.get() >= 0) {
        return tkLocalSocketState::Live;
    }
    return errno == ECONNREFUSED ? tkLocalSocketState::Stale : tkLocalSocketState::Other;
}

bool preparePrivateFolder(const std::string& folder) {
    if (::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) {
        return false;
    }
    struct stat info;
    // lstat: a link planted at the name by someone else is refused, not followed.
    if (::lstat(folder.c_str(), &info) != 0) {
        return false;
    }
    return S_ISDIR(info.st_mode) && info.st_uid == ::getuid() && (info.st_mode & 077) == 0;
}

tkLocalExchange exchangeOverLocalSocket(
    const std::string& path, const std::string& request,
    const std::function<bool(const std::string&)>& replyComplete, int timeoutSeconds) {
    tkLocalExchange result;
    const Descriptor socket(connectTo(path));
    if (socket.get() < 0) {
        // A missing or refused socket means nobody serves this data folder.
        const bool nobody = errno == ENOENT || errno == ECONNREFUSED;
        result.status =
            nobody ? tkLocalExchange::Status::NoServer : tkLocalExchange::Status::Failed;
        return result;
    }
    if (!sendAll(socket.get(), request, timeoutSeconds)) {
        return result;
    }
    char buffer[65536];
    while (!replyComplete(result.reply)) {
        if (!waitFor(socket.get(), POLLIN, timeoutSeconds)) {
            return result;
        }
        const ssize_t n = ::recv(socket.get(), buffer, sizeof buffer, 0);
        if (n < 0 && errno == EINTR) {
            continue;
        }
        if (n <= 0) {
            // Closed before the reply was whole.
            return result;
        }
        result.reply.append(buffer, static_cast<size_t>(n));
    }
    result.status = tkLocalExchange::Status::Delivered;
    return result;
}
