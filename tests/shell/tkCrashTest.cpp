#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "preferences/tkPreferences.h"
#include "records/tkDefaultRecord.h"
#include "records/tkRecord.h"
#include "shell/tkDataFiles.h"
#include "tests/shell/tkShellTestSupport.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerArray.h"
#include "timesheet/tkTimeSheet.h"

namespace {

// The promise under test: a change that returned is on disk, and a process
// killed at any moment leaves files that the next launch reads without a
// complaint. A worker process launches and makes change after change,
// reporting each one only after it returned; it is killed with SIGKILL after
// a random number of reports, while it is in the middle of later work. A
// fresh process then launches over the same files and checks them.
//
// Each step touches all three files:
//   the front timer's title      -> timers file
//   a new row                    -> time sheet
//   the default record's text    -> preferences file

std::string rowName(int round, int32_t step) {
    return "r" + std::to_string(round) + "s" + std::to_string(step);
}
std::string titleName(int round, int32_t step) {
    return "t" + std::to_string(round) + "s" + std::to_string(step);
}
std::string defaultName(int round, int32_t step) {
    return "d" + std::to_string(round) + "s" + std::to_string(step);
}

using tkCrashTest = tkShellTest;

TEST_F(tkCrashTest, ChangesThatReturnedSurviveAKillAtAnyMoment) {
    constexpr int kRounds = 30;
    const uint32_t seed = std::random_device{}();
    std::mt19937 random(seed);
    std::uniform_int_distribution<int32_t> killAfter(1, 12);
    // reported[r]: how many steps of round r had returned when it was killed.
    std::vector<int32_t> reported;

    for (int round = 0; round < kRounds; ++round) {
        int reports[2];
        ASSERT_EQ(::pipe(reports), 0);
        const pid_t worker = ::fork();
        ASSERT_GE(worker, 0);
        if (worker == 0) {
            ::close(reports[0]);
            tkHeadlessAppFrontEnd workerFrontEnd;
            tkLaunchSequence launchSequence(workerFrontEnd,
                                            [] { return std::make_unique<tkFileManagerPosix>(); });
            launchSequence.applicationDidFinishLaunching();
            for (int32_t step = 0;; ++step) {
                tkTimerArray::instance().timerAt(0)->setTitle(titleName(round, step));
                tkTimeSheet::instance().addEntry(std::make_shared<tkRecord>(
                    "1/2/3", "00:01:00", "EMP", "JOB", "FEE", rowName(round, step)));
                setDefaultField(kFieldDescription, defaultName(round, step));
                // Only now has the step returned.
                if (::write(reports[1], &step, sizeof step) != sizeof step) {
                    ::_exit(2);
                }
            }
        }
        ::close(reports[1]);
        const int32_t target = killAfter(random);
        int32_t last = -1;
        while (last + 1 < target) {
            ASSERT_EQ(::read(reports[0], &last, sizeof last), static_cast<ssize_t>(sizeof last))
                << "worker died early, seed " << seed;
        }
        ::kill(worker, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(worker, &status, 0), worker);
        ASSERT_TRUE(WIFSIGNALED(status)) << "seed " << seed;
        // Reports written before the kill are still in the pipe.
        int32_t step = 0;
        while (::read(reports[0], &step, sizeof step) == static_cast<ssize_t>(sizeof step)) {
            last = step;
        }
        ::close(reports[0]);
        reported.push_back(last + 1);

        const int verdict = inChild([&] {
            tkHeadlessAppFrontEnd checkFrontEnd;
            tkLaunchSequence launchSequence(checkFrontEnd,
                                            [] { return std::make_unique<tkFileManagerPosix>(); });
            launchSequence.applicationDidFinishLaunching();
            EXPECT_TRUE(checkFrontEnd.eventsOf(Kind::ErrorDialog).empty());
            EXPECT_TRUE(checkFrontEnd.eventsOf(Kind::ErrorWindow).empty());

            std::multiset<std::string> rows;
            for (const auto& record : tkTimeSheet::instance().rows()) {
                rows.insert(record->description()->toString());
            }
            for (int r = 0; r <= round; ++r) {
                // Every reported step is there; the one in flight may be.
                for (int32_t s = 0; s < reported[r]; ++s) {
                    EXPECT_EQ(rows.count(rowName(r, s)), 1u) << rowName(r, s);
                }
                EXPECT_EQ(rows.count(rowName(r, reported[r] + 1)), 0u);
            }
            const int32_t done = reported[round];
            const std::string title = tkTimerArray::instance().timerAt(0)->getTitle();
            EXPECT_TRUE(title == titleName(round, done - 1) || title == titleName(round, done))
                << title;
            const std::string description = defaultRecord().description()->toString();
            EXPECT_TRUE(description == defaultName(round, done - 1) ||
                        description == defaultName(round, done))
                << description;
        });
        ASSERT_EQ(verdict, 0) << "round " << round << " after " << reported.back()
                              << " steps, seed " << seed;
    }
}

}  // namespace
