#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include "foundation/tkFileLockedException.h"
#include "preferences/tkPreferences.h"
#include "shell/tkDataFiles.h"
#include "tests/shell/tkShellTestSupport.h"
#include "timesheet/tkTimeSheet.h"

namespace {

// One owner of the time sheet, always, shown with real processes.
using tkSecondCopyTest = tkShellTest;

// Every save replaces the sheet's file, and at no moment of it may another user's copy that
// shares the sheet (a data folder of its own) open it.
TEST_F(tkSecondCopyTest, NoOtherProcessGetsTheSheetWhileItsOwnerSavesOverAndOver) {
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t owner = ::fork();
    ASSERT_GE(owner, 0);
    if (owner == 0) {
        launch();
        (void)!::write(ready[1], "1", 1);
        for (int i = 0;; ++i) {
            tkTimeSheet::instance().addEntry(rowRecord("saved " + std::to_string(i)));
        }
    }
    char launched = 0;
    ASSERT_EQ(::read(ready[0], &launched, 1), 1);
    const int verdict = inChild([&] {
        (void)!std::freopen("/dev/null", "w", stdout);
        ::setenv("XDG_DATA_HOME", home.path("other user").c_str(), 1);
        installFaulty();
        tkPreferences::instance().setTimeSheetFile(sheetPath(), false);
        for (int attempt = 0; attempt < 3000; ++attempt) {
            try {
                openTimeSheet();
                ADD_FAILURE() << "admitted at attempt " << attempt;
                return;
            } catch (const tkFileLockedException&) {
            }
        }
    });
    ::kill(owner, SIGKILL);
    ::waitpid(owner, nullptr, 0);
    EXPECT_EQ(verdict, 0) << "a second process got the sheet while its owner saved";
}

// Twenty copies start at once; one refused because another runs quits, and is started again
// until it gets in. No record is lost.
TEST_F(tkSecondCopyTest, TwentyCopiesAddingAtOnceWithRetriesLoseNoRecord) {
    constexpr int kCopies = 20;
    std::vector<pid_t> adders;
    for (int i = 0; i < kCopies; ++i) {
        const pid_t adder = ::fork();
        ASSERT_GE(adder, 0);
        if (adder == 0) {
            (void)!std::freopen("/dev/null", "w", stdout);
            (void)!std::freopen("/dev/null", "w", stderr);
            for (int status = 2; status == 2;) {
                status = inChild([&] {
                    launch();
                    if (frontEnd.quitRequested()) {
                        ::_exit(2);
                    }
                    tkTimeSheet::instance().addEntry(rowRecord("copy " + std::to_string(i)));
                    sequence->terminate();
                });
                if (status != 2) {
                    ::_exit(status);
                }
            }
        }
        adders.push_back(adder);
    }
    for (const pid_t adder : adders) {
        int status = 0;
        ASSERT_EQ(::waitpid(adder, &status, 0), adder);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
    launch();
    std::multiset<std::string> found;
    for (const auto& added : tkTimeSheet::instance().rows()) {
        found.insert(added->description()->toString());
    }
    for (int i = 0; i < kCopies; ++i) {
        EXPECT_EQ(found.count("copy " + std::to_string(i)), 1u) << i;
    }
}

}  // namespace
