#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/tkFileManager.h"
#include "platform/tkFileManagerPosix.h"
#include "platform/tkUserInfoPosix.h"
#include "preferences/tkPaths.h"
#include "records/tkRecord.h"
#include "shell/tkDataLocks.h"
#include "shell/tkHeadlessAppFrontEnd.h"
#include "shell/tkLaunchSequence.h"
#include "tests/support/tkFaultyFileManager.h"
#include "tests/support/tkTempHome.h"

// The shell's tests run the real launch over real files in a temporary home. Each test is its
// own process, so the singletons start empty; a test that needs a second copy of the program
// forks one before touching any of them.
class tkShellTest : public ::testing::Test {
  protected:
    void SetUp() override {
        setUserInfoSource([] { return std::string("Test User"); }, posixDataFolder);
    }
    void TearDown() override { setUserInfoSource(nullptr, nullptr); }

    std::string timersPath() const { return home.supportFolder() + "/Chronolet Timers.txt"; }
    std::string preferencesPath() const {
        return home.supportFolder() + "/Chronolet Preferences.txt";
    }
    std::string sheetPath() const { return home.supportFolder() + "/Test User's Time Sheet.txt"; }
    std::string oldTimersPath() const { return home.oldSupportFolder() + "/Chronolet Timers.txt"; }
    std::string oldPreferencesPath() const {
        return home.oldSupportFolder() + "/Chronolet Preferences.txt";
    }

    // A launch over the real POSIX file manager.
    void launch() {
        sequence = std::make_unique<tkLaunchSequence>(
            frontEnd, [] { return std::make_unique<tkFileManagerPosix>(); });
        sequence->applicationDidFinishLaunching();
    }

    // A launch over the fault-injecting manager, reachable as `faulty`. `configure` sets the
    // faults before the first file is touched.
    void launchFaulty(std::function<void(tkFileFaults&)> configure = nullptr) {
        sequence = std::make_unique<tkLaunchSequence>(frontEnd, [this, configure] {
            auto manager = std::make_unique<tkFaultyFileManager>();
            faulty = manager.get();
            if (configure) {
                configure(manager->faults());
            }
            return manager;
        });
        sequence->applicationDidFinishLaunching();
    }

    // Installs a file manager for tests that call the data layer directly.
    tkFaultyFileManager& installFaulty() {
        auto manager = std::make_unique<tkFaultyFileManager>();
        faulty = manager.get();
        tkFileManager::install(std::move(manager));
        return *faulty;
    }

    // A timers file with one stopped timer per title.
    static std::string timersText(const std::vector<std::string>& titles, bool timerOpen = true) {
        std::string text = "<timerArray>\n";
        for (size_t i = 0; i < titles.size(); ++i) {
            const std::string tag = "timer " + std::to_string(i);
            text += "\t<" + tag + "><title>" + titles[i] +
                    "</title><startTime>0</startTime><priorRunningTime>" +
                    std::to_string(60000 * (i + 1)) +
                    "</priorRunningTime><detailMode>true</detailMode><started>false</started>"
                    "<id>id" +
                    std::to_string(i) + "</id></" + tag + ">\n";
        }
        text += "\t<frontMostTimerNumber>0</frontMostTimerNumber>\n";
        text += std::string("\t<timerOpen>") + (timerOpen ? "true" : "false") + "</timerOpen>\n";
        text += "\t<globalDetailMode>true</globalDetailMode>\n\t<drawerOpen>false</drawerOpen>\n";
        return text + "</timerArray>";
    }

    // A line of the time sheet file, and the record it holds.
    static std::string row(const std::string& description) {
        return "1/2/3\t01:00:00\tEMP\tJOB\tFEE\t" + description + "\n";
    }
    static std::shared_ptr<tkRecord> rowRecord(const std::string& description) {
        return std::make_shared<tkRecord>("1/2/3", "01:00:00", "EMP", "JOB", "FEE", description);
    }

    // Whether the file at `path` holds `text`.
    bool fileHas(const std::string& path, const std::string& text) const {
        return home.readText(path).value_or("").find(text) != std::string::npos;
    }
    // True when another descriptor can take the lock of the sheet at `path`: nobody holds it.
    static bool sheetLockIsFree(const std::string& path) {
        tkFileManagerPosix probe;
        const int32_t fd = probe.lockFile(timeSheetLockPath(path), 0).fd;
        if (fd >= 0) {
            probe.closeLocked(fd);
        }
        return fd >= 0;
    }

    // Runs `body` in a forked child (fresh from this process's state) and returns its exit
    // status; the child's gtest failures make it exit 1.
    static int inChild(const std::function<void()>& body) {
        const pid_t child = ::fork();
        if (child == 0) {
            body();
            ::_exit(::testing::Test::HasFailure() ? 1 : 0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    tkTempHome home;
    tkHeadlessAppFrontEnd frontEnd;
    std::unique_ptr<tkLaunchSequence> sequence;
    tkFaultyFileManager* faulty = nullptr;
};

using Kind = tkHeadlessAppFrontEnd::Event::Kind;
