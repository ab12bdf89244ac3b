#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QTest>
#include <cstdlib>
#include <string>

#include "platform/tkLocalSocketPosix.h"
#include "preferences/tkPaths.h"
#include "shell/tkCommandSocket.h"
#include "tests/support/tkTempHome.h"
#include "tests/ui/tkUiTestSupport.h"

namespace {

// Copies of the real program, started in a temporary home that they share
// (offscreen, with this test's runtime folder).
class tkHandOffTest : public ::testing::Test {
  protected:
    // Starts the program; with `probe` it writes that file once its first
    // window is on screen, which happens after it began to listen.
    pid_t start(const std::string& probe, const std::string& errors) {
        const std::string program = TK_PROGRAM;
        const pid_t child = ::fork();
        if (child == 0) {
            if (!probe.empty()) {
                ::setenv("CHRONOLET_STARTUP_PROBE", probe.c_str(), 1);
            }
            const int err = ::open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            ::dup2(err, 2);
            ::execl(program.c_str(), program.c_str(), static_cast<char*>(nullptr));
            ::_exit(127);
        }
        return child;
    }

    // The exit status, or -1 when it hadn't ended in time (it is killed).
    static int waitForExit(pid_t child) {
        int status = 0;
        const bool ended = QTest::qWaitFor(
            [&] { return ::waitpid(child, &status, WNOHANG) == child; }, kPatienceMillis);
        if (!ended) {
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
            return -1;
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    bool cameUp(const std::string& probe, pid_t child) {
        return QTest::qWaitFor(
                   [&] {
                       return home.exists(probe) || ::waitpid(child, nullptr, WNOHANG) == child;
                   },
                   kPatienceMillis) &&
               home.exists(probe);
    }

    std::string socketPath() const {
        return commandSocketPlace(std::getenv("XDG_RUNTIME_DIR"), ::getuid(),
                                  applicationSupportFolder())
            .path;
    }

    tkTempHome home;
};

TEST_F(tkHandOffTest, SecondStartHandsOverAndACrashedCopysSocketDoesNotBlock) {
    const pid_t first = start(home.path("first.probe"), home.path("first.err"));
    ASSERT_TRUE(cameUp("first.probe", first)) << *home.readText("first.err");

    // A second start finds the first and hands over instead of meeting the lock.
    EXPECT_EQ(waitForExit(start("", home.path("second.err"))), 0);
    EXPECT_EQ(home.readText("second.err"), "");

    // The first dies without cleaning up; its socket stays behind.
    ::kill(first, SIGKILL);
    ::waitpid(first, nullptr, 0);
    EXPECT_EQ(probeLocalSocket(socketPath()), tkLocalSocketState::Stale);

    const pid_t third = start(home.path("third.probe"), home.path("third.err"));
    ASSERT_TRUE(cameUp("third.probe", third)) << *home.readText("third.err");
    EXPECT_EQ(probeLocalSocket(socketPath()), tkLocalSocketState::Live);
    EXPECT_EQ(waitForExit(start("", home.path("fourth.err"))), 0);
    ::kill(third, SIGTERM);
    ::waitpid(third, nullptr, 0);
}

}  // namespace
