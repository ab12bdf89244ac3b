#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "records/tkDate.h"
#include "records/tkDuration.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "tests/timers/tkTimersTestSupport.h"
#include "timers/tkTimer.h"
#include "timesheet/tkTimeSheet.h"

namespace {

int32_t shownSeconds(const tkTimer& timer) {
    return timer.getDuration()->totalSeconds();
}

// One timer element of the timers file, with the record that the writer always
// puts in.
std::unique_ptr<tkTagNode> parseTimer(const std::string& children) {
    const std::string text = "<timer>" + children +
                             "<record><date>1/3/5</date><duration>00:00:00</duration>"
                             "<employee>ann</employee><job number>J1</job number>"
                             "<fee code>F</fee code><description>d</description></record>"
                             "</timer>";
    return tkTagParser().parse(text);
}

}  // namespace

TEST(TimerDefaults, NewTimerIsStoppedAtZeroCleanAndTitled) {
    tkManualClock clock;
    tkPostCounter posts(kTimerBecameDirty);
    tkTimer timer;
    EXPECT_EQ(timer.getTitle(), "Timer");
    EXPECT_EQ(shownSeconds(timer), 0);
    EXPECT_FALSE(timer.isRunning());
    EXPECT_FALSE(timer.isDirty());
    EXPECT_TRUE(timer.getDetailMode());
    EXPECT_EQ(timer.getID(), "");
    ASSERT_NE(timer.getRecord(), nullptr);
    EXPECT_EQ(posts.count(), 0);
}

// The collected and the running part are truncated separately, then added.
TEST(TimerDuration, TruncatesCollectedAndRunningPartsSeparately) {
    struct Case {
        int64_t collected;
        int64_t running;
        int32_t seconds;
    };
    const Case cases[] = {
        {1600, 1600, 2}, {999, 999, 0},        {0, 0, 0}, {1000, 0, 1}, {0, 59999, 59},
        {2500, 500, 2},  {3'600'000, 1, 3600},
    };
    for (const Case& c : cases) {
        tkManualClock clock;
        tkTimer timer;
        timer.setTime(tkDuration(0));
        timer.start();
        clock.advance(c.collected);
        timer.stop();
        timer.start();
        clock.advance(c.running);
        EXPECT_EQ(shownSeconds(timer), c.seconds)
            << "collected " << c.collected << " ms, running " << c.running << " ms";
        EXPECT_EQ(timer.getPriorRunningTime(), c.collected) << "collected " << c.collected;
    }
}

TEST(TimerDuration, ShortRunsAddUpInFullMilliseconds) {
    tkManualClock clock;
    tkTimer timer;
    for (int run = 0; run < 3; ++run) {
        timer.startStop();
        clock.advance(1500);
        timer.startStop();
    }
    EXPECT_EQ(timer.getPriorRunningTime(), 4500);
    EXPECT_EQ(shownSeconds(timer), 4);
}

TEST(TimerDuration, ReadingTheTimeChangesNothingAndPostsNothing) {
    tkManualClock clock;
    tkTimer timer;
    timer.start();
    timer.setDirty(false);
    tkPostCounter posts(kTimerBecameDirty);
    clock.advance(5000);
    EXPECT_EQ(shownSeconds(timer), 5);
    clock.advance(5000);
    EXPECT_EQ(shownSeconds(timer), 10);
    EXPECT_FALSE(timer.isDirty());
    EXPECT_EQ(posts.count(), 0);
}

// Each operation: how many "Timer became dirty." it posts and whether it leaves
// the dirty flag set.
TEST(TimerPosts, EachOperationPostsAsOftenAsItChangesState) {
    struct Case {
        const char* what;
        bool startRunning;
        void (*operation)(tkTimer&);
        int posts;
        bool dirty;
        bool runningAfter;
    };
    const Case cases[] = {
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
    };
    for (const Case& c : cases) {
        tkManualClock clock;
        tkTimer timer;
        if (c.startRunning) {
            timer.start();
        }
        timer.setDirty(false);
        tkPostCounter posts(kTimerBecameDirty, &timer);
        c.operation(timer);
        EXPECT_EQ(posts.count(), c.posts) << c.what;
        EXPECT_EQ(timer.isDirty(), c.dirty) << c.what;
        EXPECT_EQ(timer.isRunning(), c.runningAfter) << c.what;
    }
}

TEST(TimerEdits, SetTimeOnRunningTimerStopsAtExactWholeSeconds) {
    tkManualClock clock;
    tkTimer timer;
    timer.start();
    clock.advance(1234);
    timer.setTime(tkDuration(3600));
    EXPECT_FALSE(timer.isRunning());
    EXPECT_EQ(timer.getPriorRunningTime(), 3'600'000);
    clock.advance(10'000);
    EXPECT_EQ(shownSeconds(timer), 3600);
}

TEST(TimerAddToTimeSheet, RunningTimerBecomesEntryOfItsSecondsDatedToday) {
    tkManualClock clock;
    tkTimer timer;
    timer.setTitle("Design");
    auto record = std::make_shared<tkRecord>("1/1/20", "0", "ann", "j-7", "fee", "drawings");
    timer.setRecord(record);
    timer.start();
    clock.advance(90'500);
    tkPostCounter posts(kTimerBecameDirty, &timer);

    timer.addToTimeSheet();

    auto& sheet = tkTimeSheet::instance();
    ASSERT_EQ(sheet.rowCount(), 1u);
    const auto entry = sheet.recordAtRow(0);
    EXPECT_NE(entry, record) << "the sheet gets a copy, not the timer's record";
    EXPECT_EQ(entry->duration()->totalSeconds(), 90);
    EXPECT_EQ(entry->date()->toString(), tkDate::today()->toString());
    EXPECT_EQ(entry->employee()->toString(), "ANN");
    EXPECT_EQ(entry->description()->toString(), "drawings");

    EXPECT_EQ(posts.count(), 1);
    EXPECT_TRUE(timer.isDirty());
    EXPECT_FALSE(timer.isRunning());
    EXPECT_EQ(shownSeconds(timer), 0);
    EXPECT_EQ(timer.getTitle(), "Design");
    // The timer's own record keeps what the add put in and its job fields.
    EXPECT_EQ(timer.getRecord(), record);
    EXPECT_EQ(record->duration()->totalSeconds(), 90);
    EXPECT_EQ(record->jobNumber()->toString(), "J-7");
    EXPECT_EQ(record->feeCode()->toString(), "FEE");
}

TEST(TimerAddToTimeSheet, SecondAddInARowAddsZeroSeconds) {
    tkManualClock clock;
    tkTimer timer;
    timer.start();
    clock.advance(5000);
    timer.addToTimeSheet();
    timer.addToTimeSheet();
    auto& sheet = tkTimeSheet::instance();
    ASSERT_EQ(sheet.rowCount(), 2u);
    int zero = 0;
    for (uint32_t row = 0; row < 2; ++row) {
        zero += sheet.recordAtRow(row)->duration()->totalSeconds() == 0 ? 1 : 0;
    }
    EXPECT_EQ(zero, 1);
}

TEST(TimerTaggedForm, RoundTripKeepsEveryFieldAndWritesNoTimeBasis) {
    tkManualClock clock;
    auto node = parseTimer(
        "<title>Design &amp; build</title><startTime>123456</startTime>"
        "<priorRunningTime>7777</priorRunningTime><detailMode>false</detailMode>"
        "<started>false</started><id>abc-1</id>");
    tkTimer first;
    first.fromTag(*node);

    const auto written = first.toTag();
    EXPECT_EQ(written->name(), "timer");
    EXPECT_FALSE(written->hasChild("timeBasis"));
    const char* order[] = {"title", "startTime", "priorRunningTime", "detailMode", "started",
                           "id",    "record"};
    ASSERT_EQ(written->childCount(), 7);
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(written->childAt(i)->name(), order[i]) << "child " << i;
    }

    tkTimer second;
    second.fromTag(*tkTagParser().parse(written->toText(0)));
    EXPECT_EQ(second.getTitle(), "Design & build");
    EXPECT_EQ(second.getStartTime(), 123456);
    EXPECT_EQ(second.getPriorRunningTime(), 7777);
    EXPECT_FALSE(second.getDetailMode());
    EXPECT_FALSE(second.isRunning());
    EXPECT_EQ(second.getID(), "abc-1");
    EXPECT_EQ(second.getRecord()->employee()->toString(), "ANN");
    EXPECT_EQ(second.getRecord()->date()->toString(), "1/3/5");
}

TEST(TimerTaggedForm, RunningTimerFromAnHourOldFileShowsAnHourMoreAndIsClean) {
    tkManualClock clock;
    const int64_t hourAgo = clock.now() - 3'600'000;
    auto node = parseTimer("<title>T</title><startTime>" + std::to_string(hourAgo) +
                           "</startTime><priorRunningTime>60000</priorRunningTime>"
                           "<started>true</started>");
    tkPostCounter posts(kTimerBecameDirty);
    tkTimer timer;
    timer.fromTag(*node);
    EXPECT_TRUE(timer.isRunning());
    EXPECT_EQ(shownSeconds(timer), 3600 + 60);
    EXPECT_FALSE(timer.isDirty());
    EXPECT_EQ(posts.count(), 0);
}

TEST(TimerTaggedForm, OldTimeBasisServesAsStartWhenRunningAndAsTimeWhenStopped) {
    struct Case {
        const char* started;
        int64_t startTime;
        int64_t prior;
    };
    const Case cases[] = {{"false", 0, 5000}, {"true", 5000, 0}};
    for (const Case& c : cases) {
        auto node = parseTimer(std::string("<started>") + c.started +
                               "</started><timeBasis>5000</timeBasis>"
                               "<priorRunningTime>999</priorRunningTime>");
        tkTimer timer;
        timer.fromTag(*node);
        EXPECT_EQ(timer.getStartTime(), c.startTime) << "started " << c.started;
        EXPECT_EQ(timer.getPriorRunningTime(), c.prior) << "started " << c.started;
    }
}

TEST(TimerTaggedForm, MissingOrUnreadableValuesFallBackToDefaults) {
    auto node = parseTimer(
        "<startTime>abc</startTime><priorRunningTime></priorRunningTime>"
        "<started>TRUE</started><detailMode>no</detailMode>");
    tkTimer timer;
    timer.setTitle("Before");
    timer.fromTag(*node);
    EXPECT_EQ(timer.getTitle(), "Timer");
    EXPECT_EQ(timer.getStartTime(), 0);
    EXPECT_EQ(timer.getPriorRunningTime(), 0);
    EXPECT_FALSE(timer.isRunning());
    EXPECT_TRUE(timer.getDetailMode());
    EXPECT_EQ(timer.getID(), "");
}

// Times in a file are taken as they stand, however absurd: the arithmetic wraps
// rather than overflowing, so the two halves of such a pair still cancel out.
TEST(TimerTaggedForm, ExtremeFileTimesWrapInsteadOfOverflowing) {
    tkManualClock clock(1000);
    auto node = parseTimer(
        "<started>true</started><startTime>-9223372036854775808</startTime>"
        "<priorRunningTime>9223372036854775807</priorRunningTime>");
    tkTimer timer;
    timer.fromTag(*node);
    EXPECT_EQ(shownSeconds(timer), 1);
    timer.stop();
    EXPECT_EQ(timer.getPriorRunningTime(), 999);
    EXPECT_EQ(shownSeconds(timer), 0);
}

// Time taken off comes from the collected time first, then from the present run, never below
// zero; the timer keeps running or stays stopped, with one post.
TEST(TimerSubtract, TakesCollectedTimeThenTheRunAndStopsAtZero) {
    struct Case {
        int64_t collected;
        int64_t run;  // -1: stopped
        int64_t subtract;
        int32_t seconds;
    };
    const Case cases[] = {
        {90'000, -1, 30'000, 60},     {20'000, -1, 30'000, 0},     {0, 50'000, 20'000, 30},
        {10'000, 50'000, 40'000, 20}, {10'000, 50'000, 90'000, 0}, {5'000, 5'000, 0, 10},
    };
    for (const Case& c : cases) {
        tkManualClock clock;
        tkTimer timer;
        timer.setTime(tkDuration(static_cast<int32_t>(c.collected / 1000)));
        if (c.run >= 0) {
            timer.start();
            clock.advance(c.run);
        }
        tkPostCounter posts(kTimerBecameDirty, &timer);
        timer.subtractTime(c.subtract);
        EXPECT_EQ(shownSeconds(timer), c.seconds)
            << c.collected << " " << c.run << " " << c.subtract;
        EXPECT_EQ(timer.isRunning(), c.run >= 0);
        EXPECT_EQ(posts.count(), c.subtract > 0 ? 1 : 0);
        clock.advance(1000);
        EXPECT_EQ(shownSeconds(timer), c.seconds + (c.run >= 0 ? 1 : 0)) << "counts on from there";
    }
}
