#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "records/tkDate.h"
#include "records/tkDuration.h"
#include "records/tkRecord.h"
#include "records/tkRecordText.h"
#include "tests/timers/tkTimersTestSupport.h"
#include "timers/tkTimer.h"
#include "timesheet/tkTimeSheet.h"

namespace {

int32_t shownSeconds(const tkTimer& timer) {
    return timer.getDuration()->totalSeconds();
}

// What a timer holds, in one line: title, id, then "R" running, "D" dirty, "d" detail mode,
// then the shown seconds, the collected and the start milliseconds.
std::string state(const tkTimer& timer) {
    return timer.getTitle() + "|" + timer.getID() + "|" + (timer.isRunning() ? "R" : "") +
           (timer.isDirty() ? "D" : "") + (timer.getDetailMode() ? "d" : "") + "|" +
           std::to_string(shownSeconds(timer)) + " " + std::to_string(timer.getPriorRunningTime()) +
           " " + std::to_string(timer.getStartTime());
}

// A timer read from a timer element of the timers file, with the record the writer always puts
// in.
void load(tkTimer& timer, const std::string& children) {
    timer.fromTag(*tkTagParser().parse(
        "<timer>" + children +
        "<record><date>1/3/5</date><duration>00:00:00</duration><employee>ann</employee>"
        "<job number>J1</job number><fee code>F</fee code><description>d</description>"
        "</record></timer>"));
}

}  // namespace

// A new timer is stopped at zero, clean and titled. The collected and the running part are
// truncated separately, then added; the collected part keeps full milliseconds, and reading the
// time changes nothing.
TEST(tkTimer, TruncatesCollectedAndRunningPartsSeparately) {
    EXPECT_EQ(state(tkTimer()), "Timer||d|0 0 0");
    const struct {
        int64_t collected, running;
        int32_t seconds;
    } cases[] = {{1600, 1600, 2}, {999, 999, 0},  {0, 0, 0},           {1000, 0, 1},
                 {0, 59999, 59},  {2500, 500, 2}, {3'600'000, 1, 3600}};
    for (const auto& c : cases) {
        tkTestClock clock;
        tkTimer timer;
        timer.start();
        clock.advance(c.collected / 2);
        timer.stop();
        timer.startStop();
        clock.advance(c.collected - c.collected / 2);
        timer.startStop();
        timer.start();
        clock.advance(c.running);
        timer.setDirty(false);
        EXPECT_EQ(shownSeconds(timer), c.seconds) << c.collected << " ms + " << c.running << " ms";
        EXPECT_EQ(timer.getPriorRunningTime(), c.collected) << c.collected << " ms";
        EXPECT_FALSE(timer.isDirty());
    }
}

// Each operation: how many "Timer became dirty." it posts and whether it leaves the dirty flag
// set and the timer running. An edit of the time stops a running timer at exact whole seconds.
TEST(tkTimer, EachOperationPostsAsOftenAsItChangesState) {
    const struct {
        const char* what;
        bool startRunning;
        void (*operation)(tkTimer&);
        int posts;
        bool dirty, runningAfter;
    } cases[] = {
        {"start stopped", false, [](tkTimer& t) { t.start(); }, 1, true, true},
        {"start running", true, [](tkTimer& t) { t.start(); }, 0, false, true},
        {"stop running", true, [](tkTimer& t) { t.stop(); }, 1, true, false},
        {"stop stopped", false, [](tkTimer& t) { t.stop(); }, 0, false, false},
        {"startStop stopped", false, [](tkTimer& t) { t.startStop(); }, 1, true, true},
        {"startStop running", true, [](tkTimer& t) { t.startStop(); }, 1, true, false},
        {"clear stopped", false, [](tkTimer& t) { t.clear(); }, 1, true, false},
        {"clear running", true, [](tkTimer& t) { t.clear(); }, 1, true, false},
        {"setTime stopped", false, [](tkTimer& t) { t.setTime(tkDuration(3600)); }, 1, true, false},
        {"setTime running", true, [](tkTimer& t) { t.setTime(tkDuration(3600)); }, 2, true, false},
        {"setTitle", false, [](tkTimer& t) { t.setTitle(""); }, 1, true, false},
        {"setRecord", false, [](tkTimer& t) { t.setRecord(std::make_shared<tkRecord>()); }, 1, true,
         false},
        {"setDirty false", false, [](tkTimer& t) { t.setDirty(false); }, 0, false, false},
        {"setDirty true", false, [](tkTimer& t) { t.setDirty(true); }, 1, true, false},
        {"addToTimeSheet running", true, [](tkTimer& t) { t.addToTimeSheet(); }, 1, true, false},
    };
    for (const auto& c : cases) {
        tkTestClock clock;
        tkTimer timer;
        if (c.startRunning) {
            timer.start();
        }
        clock.advance(1234);
        timer.setDirty(false);
        tkNotificationRecorder posts;
        posts.listen(kTimerBecameDirty, &timer);
        c.operation(timer);
        EXPECT_EQ(posts.count(kTimerBecameDirty), c.posts) << c.what;
        EXPECT_EQ(timer.isDirty(), c.dirty) << c.what;
        EXPECT_EQ(timer.isRunning(), c.runningAfter) << c.what;
        if (std::string(c.what) == "setTime running") {
            clock.advance(10'000);
            EXPECT_EQ(timer.getPriorRunningTime(), 3'600'000);
            EXPECT_EQ(shownSeconds(timer), 3600);
        }
    }
}

// The sheet gets a copy dated today; the timer resets but keeps its title and record, which
// keeps what the add put in. A second add in a row adds zero seconds.
TEST(tkTimer, AddingToTheTimeSheetMakesAnEntryOfItsSecondsDatedToday) {
    tkTestClock clock;
    tkTimer timer;
    timer.setTitle("Design");
    auto record = std::make_shared<tkRecord>("1/1/20", "0", "ann", "j-7", "fee", "drawings");
    timer.setRecord(record);
    timer.start();
    clock.advance(90'500);
    timer.addToTimeSheet();
    const std::string today = tkDate::today()->toString();
    EXPECT_EQ(toTabLine(*record), today + "\t00:01:30\tANN\tJ-7\tFEE\tdrawings");
    timer.addToTimeSheet();
    auto& sheet = tkTimeSheet::instance();
    ASSERT_EQ(sheet.rowCount(), 2u);
    EXPECT_NE(sheet.recordAtRow(0), record) << "the sheet gets a copy, not the timer's record";
    EXPECT_EQ(toTabLine(*sheet.recordAtRow(0)), today + "\t00:01:30\tANN\tJ-7\tFEE\tdrawings");
    EXPECT_EQ(sheet.recordAtRow(1)->duration()->totalSeconds(), 0);
    EXPECT_EQ(state(timer), "Design||Dd|0 0 0");
    EXPECT_EQ(timer.getRecord(), record);
}

// What a file says is taken as it stands: a running timer counts the time since, clean and
// silent; an old single time basis is the start when running and the time when stopped;
// missing or unreadable values are the defaults; absurd times wrap rather than overflow.
TEST(tkTimer, ReadingAFileTakesItsTimesAsTheyStand) {
    tkTestClock clock(1'000'000'000);
    const std::pair<std::string, std::string> cases[] = {
        {"<startTime>996400000</startTime><priorRunningTime>60000</priorRunningTime>"
         "<started>true</started>",
         "Timer||Rd|3660 60000 996400000"},
        {"<started>false</started><timeBasis>5000</timeBasis><priorRunningTime>9</"
         "priorRunningTime>",
         "Timer||d|5 5000 0"},
        {"<started>true</started><timeBasis>999995000</timeBasis><priorRunningTime>9</"
         "priorRunningTime>",
         "Timer||Rd|5 0 999995000"},
        {"<startTime>abc</startTime><priorRunningTime></priorRunningTime><started>TRUE</started>"
         "<detailMode>no</detailMode>",
         "Timer||d|0 0 0"},
        {"<started>true</started><startTime>-9223372036854775808</startTime>"
         "<priorRunningTime>9223372036854775807</priorRunningTime>",
         "Timer||Rd|1000000 9223372036854775807 -9223372036854775808"},
    };
    for (const auto& [children, expected] : cases) {
        tkTimer timer;
        timer.setTitle("Before");
        timer.setDirty(false);
        tkNotificationRecorder posts;
        posts.listen(kTimerBecameDirty);
        load(timer, children);
        EXPECT_EQ(state(timer), expected) << children;
        EXPECT_TRUE(posts.empty()) << children;
    }
}

// Time taken off comes from the collected time first, then from the present run, never below
// zero; the timer keeps running or stays stopped, with one post.
TEST(tkTimer, SubtractTakesCollectedTimeThenTheRunAndStopsAtZero) {
    const struct {
        int64_t collected;
        int64_t run;  // -1: stopped
        int64_t subtract;
        int32_t seconds;
    } cases[] = {
        {90'000, -1, 30'000, 60},     {20'000, -1, 30'000, 0},     {0, 50'000, 20'000, 30},
        {10'000, 50'000, 40'000, 20}, {10'000, 50'000, 90'000, 0}, {5'000, 5'000, 0, 10},
    };
    for (const auto& c : cases) {
        tkTestClock clock;
        tkTimer timer;
        timer.setTime(tkDuration(static_cast<int32_t>(c.collected / 1000)));
        if (c.run >= 0) {
            timer.start();
            clock.advance(c.run);
        }
        tkNotificationRecorder posts;
        posts.listen(kTimerBecameDirty, &timer);
        timer.subtractTime(c.subtract);
        EXPECT_EQ(shownSeconds(timer), c.seconds)
            << c.collected << " " << c.run << " " << c.subtract;
        EXPECT_EQ(timer.isRunning(), c.run >= 0);
        EXPECT_EQ(posts.count(kTimerBecameDirty), c.subtract > 0 ? 1 : 0);
        clock.advance(1000);
        EXPECT_EQ(shownSeconds(timer), c.seconds + (c.run >= 0 ? 1 : 0)) << "counts on from there";
    }
}
