// The real `chronolet` program over the files of a temporary home: with no application
// running, and handing its commands to a running application.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "platform/tkUserInfoPosix.h"
#include "tests/support/tkLockHolder.h"
#include "tests/support/tkTempHome.h"

namespace {

struct Finished {
    int exitCode = -1;
    std::string out;
    std::string err;
};

const char* const kTimers =
    "<timerArray>\n"
    "\t<timer 0><title>Design</title><startTime>0</startTime>"
    "<priorRunningTime>5400000</priorRunningTime><detailMode>true</detailMode>"
    "<started>false</started><id></id><record><date>1/1/24</date><duration>0</duration>"
    "<employee>EMP</employee><job number>J1</job number><fee code>FEE</fee code>"
    "<description>design</description></record></timer 0>\n"
    "\t<timer 1><title>Review</title><startTime>0</startTime>"
    "<priorRunningTime>600000</priorRunningTime><detailMode>true</detailMode>"
    "<started>false</started><id></id></timer 1>\n"
    "</timerArray>";

const char* const kSheet =
    "1/2/24\t01:00:00\tEMP\tJ1\tFEE\tdesign, \"first\"\n"
    "3/1/24\t00:30:00\tABC\tJ2\tFEE\treview\n";

class tkChronoletTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const std::string runtime = home.path("run");
        ::mkdir(runtime.c_str(), 0700);
        ::setenv("XDG_RUNTIME_DIR", runtime.c_str(), 1);
        home.writeText(timersPath(), kTimers);
        home.writeText(sheetPath(), kSheet);
    }

    std::string timersPath() const { return home.supportFolder() + "/Chronolet Timers.txt"; }
    std::string sheetPath() const {
        return home.supportFolder() + "/" + posixFullUserName() + "'s Time Sheet.txt";
    }

    // Starts a program with its output going to files named after `tag`.
    pid_t start(const std::string& program, const std::vector<std::string>& words,
                const std::string& tag) const {
        const std::string out = home.path(tag + ".out");
        const std::string err = home.path(tag + ".err");
        const pid_t child = ::fork();
        if (child == 0) {
            ::dup2(::open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 1);
            ::dup2(::open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), 2);
            std::vector<char*> argv{const_cast<char*>(program.c_str())};
            for (const std::string& word : words) {
                argv.push_back(const_cast<char*>(word.c_str()));
            }
            argv.push_back(nullptr);
            ::execv(program.c_str(), argv.data());
            ::_exit(127);
        }
        return child;
    }

    Finished finish(pid_t child, const std::string& tag) const {
        int status = 0;
        ::waitpid(child, &status, 0);
        return Finished{WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
                        home.readText(tag + ".out").value_or(""),
                        home.readText(tag + ".err").value_or("")};
    }

    Finished chronolet(const std::vector<std::string>& words) const {
        return finish(start(TK_CHRONOLET, words, "chronolet"), "chronolet");
    }

    // Forty copies at once, each adding the first timer; every one must succeed.
    void addFortyAtOnce() const {
        std::vector<pid_t> children;
        for (int i = 0; i < 40; ++i) {
            children.push_back(start(TK_CHRONOLET, {"add", "1"}, "add" + std::to_string(i)));
        }
        for (int i = 0; i < 40; ++i) {
            const Finished run =
                finish(children[static_cast<size_t>(i)], "add" + std::to_string(i));
            EXPECT_EQ(run.exitCode, 0) << run.err;
        }
    }

    size_t sheetLines() const {
        const std::string text = home.readText(sheetPath()).value_or("");
        return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
    }

    tkTempHome home;
};

TEST_F(tkChronoletTest, EachCommandAnswersWithItsOutputAndExitCode) {
    struct Case {
        std::vector<std::string> words;
        int exitCode;
        std::string expected;  // in the output, or for a failure in the one error line
    } cases[] = {
        {{"--version"}, 0, "chronolet (Chronolet Plus) "},
        {{"help"}, 0, "Exit codes: 0 done, 1 usage, 2 refused"},
        {{}, 1, "no command given"},
        {{"frobnicate"}, 1, "unknown command: frobnicate"},
        {{"list", "extra"}, 1, "list takes no extra"},
        {{"list"}, 0, "#  Timer   State    Time\n1  Design  stopped  01:30:00\n"},
        {{"start", "design"}, 0, "\"Design\" (1) started at 01:30:00"},
        {{"start", "1"}, 0, "\"Design\" (1) is running already"},
        {{"toggle", "Design"}, 0, "\"Design\" (1) stopped at 01:30:"},
        {{"stop", "9"}, 2, "no timer 9"},
        {{"stop", "Nobody"}, 2, "no timer Nobody"},
        {{"new"}, 1, "give the new timer a title"},
        {{"new", "Client", "call"}, 0, "Made timer \"Client call\" (3)."},
        {{"add", "Review"}, 0, "Added 00:10:00 of \"Review\" (2) for "},
        {{"total", "--by", "employee", "--until", "2024-03-01"},
         0,
         "Employee  Duration  Entries\nABC       00:30:00        1\nEMP       01:00:00        1\n"
         "Total 01:30:00 in 2 entries\n"},
        {{"total", "--by", "colour"}, 1, "--by takes employee, fee, job or date, not colour"},
        {{"sheet", "--since", "2/1/24", "--until=3/1/24"},
         0,
         "Date        Duration  Employee  Job Number  Fee Code  Description\n"
         "2024-03-01  00:30:00  ABC       J2          FEE       review\n"
         "1 entry, 00:30:00 in all\n"},
        {{"sheet", "--since", "13/1/24"}, 1, "not a date: 13/1/24"},
        {{"sheet", "--since"}, 1, "--since needs a value"},
        {{"export", "--format", "csv", "--until", "1/31/24"},
         0,
         "Date,Duration,Employee,Job Number,Fee Code,Description,Seconds\r\n"
         "2024-01-02,01:00:00,EMP,J1,FEE,\"design, \"\"first\"\"\",3600\r\n"},
        {{"export", "--format", "json", "--since", "2024-02-01", "--until", "2024-03-01"},
         0,
         "[\n  {\"date\": \"2024-03-01\", \"duration\": \"00:30:00\", \"employee\": \"ABC\", "
         "\"job number\": \"J2\", \"fee code\": \"FEE\", \"description\": \"review\", "
         "\"seconds\": 1800}\n]\n"},
        {{"export", "--format", "xml"}, 1, "--format takes tsv, csv or json, not xml"},
    };
    for (const Case& c : cases) {
        const Finished run = chronolet(c.words);
        const std::string where = c.words.empty() ? "(none)" : c.words[0];
        EXPECT_EQ(run.exitCode, c.exitCode) << where << ": " << run.err;
        if (c.exitCode == 0) {
            EXPECT_NE(run.out.find(c.expected), std::string::npos) << where << ":\n" << run.out;
            EXPECT_EQ(run.err, "") << where;
        } else {
            EXPECT_NE(run.err.find(c.expected), std::string::npos) << where << ": " << run.err;
            EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        }
    }
    EXPECT_EQ(sheetLines(), 3u);
}

TEST_F(tkChronoletTest, BrokenAndLockedFilesAreReportedAndLeftAsTheyAre) {
    {
        // Another user's copy of the application holds the sheet.
        tkLockHolder otherCopy(sheetPath());
        ASSERT_TRUE(otherCopy.holds());
        const Finished run = chronolet({"add", "1"});
        EXPECT_EQ(run.exitCode, 2) << run.err;
        EXPECT_NE(run.err.find("is in use"), std::string::npos) << run.err;
    }
    EXPECT_EQ(home.readText(timersPath()), kTimers);

    const std::string brokenSheet = std::string(kSheet) + "3/2/24\t00:10:00\n";
    home.writeText(sheetPath(), brokenSheet);
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"add", "1"}, {"total"}, {"sheet"}}) {
        const Finished run = chronolet(words);
        EXPECT_EQ(run.exitCode, 3) << words[0];
        EXPECT_NE(run.err.find("Not enough tabs"), std::string::npos) << run.err;
    }
    EXPECT_EQ(home.readText(sheetPath()), brokenSheet);
    EXPECT_EQ(home.readText(timersPath()), kTimers);

    home.writeText(timersPath(), "<timerArray><timer 0>");
    const Finished run = chronolet({"list"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_EQ(home.readText(timersPath()), "<timerArray><timer 0>");
}

TEST_F(tkChronoletTest, FortyAddsAtOnceAllLand) {
    addFortyAtOnce();
    EXPECT_EQ(sheetLines(), 42u);
}

#ifdef TK_APPLICATION
TEST_F(tkChronoletTest, FortyAddsAtOnceAllLandThroughTheRunningApplication) {
    ::setenv("CHRONOLET_STARTUP_PROBE", home.path("app.probe").c_str(), 1);
    const pid_t application = start(TK_APPLICATION, {}, "app");
    ::unsetenv("CHRONOLET_STARTUP_PROBE");
    // The probe is written once the first window shows, after the socket listens.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    while (!home.exists("app.probe") && ::waitpid(application, nullptr, WNOHANG) == 0 &&
           std::chrono::steady_clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    ASSERT_TRUE(home.exists("app.probe")) << home.readText("app.err").value_or("");

    addFortyAtOnce();
    // The application holds the files' lock throughout: each add was handed to it, and each
    // was on disk before its answer.
    EXPECT_EQ(sheetLines(), 42u);
    const Finished list = chronolet({"list"});
    EXPECT_NE(list.out.find("1  Design  stopped  00:00:00"), std::string::npos) << list.out;

    ::kill(application, SIGTERM);
    finish(application, "app");
}
#endif

}  // namespace
