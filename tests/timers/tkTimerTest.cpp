#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "records/tkDate.h"
#include "records/tkDuration.h"
#include "records/tkRecord.h"
#include "tests/timers/tkTimersTestSupport.h"
#include "timers/tkTimer.h"
#include "timesheet/tkTimeSheet.h"

namespace {

int32_t shownSeconds(const tkTimer& timer) {
    return timer.getDuration()->totalSeconds();
}

// One timer read from a timer element of the timers file, with the record the writer always
// puts in.
void load(tkTimer& timer, const std::string& children) {
    timer.fromTag(*tkTagParser().parse(
        "<timer>" + children +
        "<record><date>1/3/5</date><duration>00:00:00</duration><employee>ann</employee>"
        "<job number>J1</job number><fee code>F</fee code><description>d</description>"
        "</record></timer>"));
}

}  // namespace

TEST(tkTimer, NewTimerIsStoppedAtZeroCleanAndTitled) {
    tkTestClock clock;
    tkNotificationRecorder posts;
    posts.listen(kTimerBecameDirty);
    tkTimer timer;
    EXPECT_EQ(timer.getTitle(), "Timer");
    EXPECT_EQ(shownSeconds(timer), 0);
    EXPECT_FALSE(timer.isRunning() || timer.isDirty());
    EXPECT_TRUE(timer.getDetailMode());
    EXPECT_EQ(timer.getID(), "");
    ASSERT_NE(timer.getRecord(), nullptr);
    EXPECT_TRUE(posts.empty());
}

// The collected and the running part are truncated separately, then added; the collected part
// keeps full milliseconds, and reading the time changes nothing.
TEST(tkTimer, TruncatesCollectedAndRunningPartsSeparately) {
    const struct {
        int64_t collected, running;
        int32_t seconds;
    } cases[] = {
        {1600, 1600, 2}, {999, 999, 0},        {0, 0, 0}, {1000, 0, 1}, {0, 59999, 59},
        {2500, 500, 2},  {3'600'000, 1, 3600},
    };
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
// set and the timer running.
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
    }
    tkTestClock clock;
    tkTimer timer;
    timer.start();
    clock.advance(1234);
    timer.setTime(tkDuration(3600));
    clock.advance(10'000);
    EXPECT_EQ(timer.getPriorRunningTime(), 3'600'000) << "exact whole seconds, and stopped";
    EXPECT_EQ(shownSeconds(timer), 3600);
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
    timer.addToTimeSheet();

    auto& sheet = tkTimeSheet::instance();
    ASSERT_EQ(sheet.rowCount(), 2u);
    const auto entry = sheet.recordAtRow(0);
    EXPECT_NE(entry, record) << "the sheet gets a copy, not the timer's record";
    EXPECT_EQ(entry->duration()->totalSeconds() + sheet.recordAtRow(1)->duration()->totalSeconds(),
              90);
    EXPECT_EQ(entry->date()->toString(), tkDate::today()->toString());
    EXPECT_EQ(entry->employee()->toString(), "ANN");
    EXPECT_EQ(entry->description()->toString(), "drawings");
    EXPECT_EQ(shownSeconds(timer), 0);
    EXPECT_EQ(timer.getTitle(), "Design");
    EXPECT_EQ(timer.getRecord(), record);
    EXPECT_EQ(record->duration()->totalSeconds(), 0);
    EXPECT_EQ(record->jobNumber()->toString(), "J-7");
}

TEST(tkTimer, TaggedFormRoundTripsAndWritesNoTimeBasis) {
    tkTestClock clock;
    tkTimer first;
    load(first,
         "<title>Design &amp; build</title><startTime>123456</startTime>"
         "<priorRunningTime>7777</priorRunningTime><detailMode>false</detailMode>"
         "<started>false</started><id>abc-1</id>");
    const auto written = first.toTag();
    EXPECT_EQ(written->name(), "timer");
    const char* order[] = {"title", "startTime", "priorRunningTime", "detailMode", "started",
                           "id",    "record"};
    ASSERT_EQ(written->childCount(), 7);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(written->childAt(i)->name(), order[i]) << "child " << i;
    }
    tkTimer second;
    second.fromTag(*tkTagParser().parse(written->toText(0)));
    EXPECT_EQ(second.toTag()->toText(0), written->toText(0));
    EXPECT_EQ(second.getTitle(), "Design & build");
    EXPECT_EQ(second.getStartTime(), 123456);
    EXPECT_EQ(second.getPriorRunningTime(), 7777);
    EXPECT_FALSE(second.getDetailMode() || second.isRunning());
    EXPECT_EQ(second.getID(), "abc-1");
    EXPECT_EQ(second.getRecord()->employee()->toString(), "ANN");
}

// What a file says is taken as it stands: a running timer counts the time since, clean and
// silent; an old single time basis is the start when running and the time when stopped;
// missing or unreadable values are the defaults; absurd times wrap rather than overflow.
TEST(tkTimer, ReadingAFileTakesItsTimesAsTheyStand) {
    tkTestClock clock(1'000'000'000);
    const struct {
        std::string children;
        bool running;
        int64_t startTime, prior;
        int32_t seconds;
    } cases[] = {
        {"<startTime>" + std::to_string(1'000'000'000 - 3'600'000) +
             "</startTime><priorRunningTime>60000</priorRunningTime><started>true</started>",
         true, 1'000'000'000 - 3'600'000, 60000, 3660},
        {"<started>false</started><timeBasis>5000</timeBasis><priorRunningTime>9</"
         "priorRunningTime>",
         false, 0, 5000, 5},
        {"<started>true</started><timeBasis>999995000</timeBasis><priorRunningTime>9</"
         "priorRunningTime>",
         true, 999'995'000, 0, 5},
        {"<startTime>abc</startTime><priorRunningTime></priorRunningTime><started>TRUE</started>"
         "<detailMode>no</detailMode>",
         false, 0, 0, 0},
        {"<started>true</started><startTime>-9223372036854775808</startTime>"
         "<priorRunningTime>9223372036854775807</priorRunningTime>",
         true, INT64_MIN, INT64_MAX, 1'000'000},
    };
    for (const auto& c : cases) {
        tkNotificationRecorder posts;
        posts.listen(kTimerBecameDirty);
        tkTimer timer;
        timer.setTitle("Before");
        timer.setDirty(false);
        load(timer, c.children);
        EXPECT_EQ(timer.isRunning(), c.running) << c.children;
        EXPECT_EQ(timer.getStartTime(), c.startTime) << c.children;
        EXPECT_EQ(timer.getPriorRunningTime(), c.prior) << c.children;
        EXPECT_EQ(shownSeconds(timer), c.seconds) << c.children;
        EXPECT_EQ(timer.getTitle(), "Timer") << c.children;
        EXPECT_TRUE(timer.getDetailMode()) << c.children;
        EXPECT_FALSE(timer.isDirty()) << c.children;
        EXPECT_EQ(posts.count(kTimerBecameDirty), 1) << "only the title set before";
    }
}
