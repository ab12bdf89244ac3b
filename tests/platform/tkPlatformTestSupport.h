#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

// Runs `body` in a forked child with the rights of an ordinary user, so that
// permission checks mean something even when the tests run as root. The
// child's gtest failures are printed there and reported here through its
// exit status. `root` is opened to the unprivileged user first.
inline void runUnprivileged(const std::string& root, const std::function<void()>& body) {
    ::chmod(root.c_str(), 0777);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (::geteuid() == 0) {
            if (::setgid(65534) != 0 || ::setuid(65534) != 0) {
                ::_exit(3);
            }
        }
        body();
        ::_exit(::testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0) << "the unprivileged part failed (3: could not drop rights)";
}

inline mode_t permissionsOf(const std::string& path) {
    struct stat info;
    return ::stat(path.c_str(), &info) == 0 ? (info.st_mode & 07777) : 0;
}

// The id of a process that has ended, as a killed program leaves behind.
inline pid_t endedProcessId() {
    const pid_t ended = ::fork();
    if (ended == 0) {
        ::_exit(0);
    }
    ::waitpid(ended, nullptr, 0);
    return ended;
}
