#include "timers/tkIdleWatch.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

#include "records/tkDuration.h"
#include "records/tkRecord.h"
#include "tests/timers/tkTimersTestSupport.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerController.h"
#include "timesheet/tkTimeSheet.h"
#include "timesheet/tkUndoManager.h"

namespace {

constexpr int64_t kMinute = 60'000;
constexpr int64_t kReadingEvery = 5'000;

// Two timers, A and B, in window 0; A runs from the start, and the user's last input was the
// click that started it. The watch asks after ten minutes.
class tkIdleWatchTest : public ::testing::Test {
  protected:
    void SetUp() override {
        makeTimers(2);
        watch.setThresholdMillis(10 * kMinute);
        startStop(0);
        lastInput = clock.now();
    }

    static void startStop(int32_t n) { timers().controllerAt(n)->startStop(); }
    static tkTimer* timer(int32_t n) { return timers().timerAt(n); }
    static int64_t elapsed(int32_t n) {
        const tkTimer* t = timer(n);
        return t->getPriorRunningTime() +
               (t->isRunning() ? currentTimeMillis() - t->getStartTime() : 0);
    }

    // Readings every five seconds for `millis`, with no input; what the last one returned.
    std::optional<tkIdleAbsence> away(int64_t millis) {
        std::optional<tkIdleAbsence> asked;
        for (int64_t gone = 0; gone < millis; gone += kReadingEvery) {
            clock.advance(kReadingEvery);
            asked = watch.sample(clock.now() - lastInput);
            EXPECT_FALSE(asked) << "asked while still away, at " << gone;
        }
        return asked;
    }
    // The user touches the keyboard, and the next reading comes two seconds later.
    std::optional<tkIdleAbsence> back() {
        lastInput = clock.now() + 1'000;
        clock.advance(2'000);
        return watch.sample(clock.now() - lastInput);
    }

    tkTestClock clock;
    tkIdleWatch watch;
    int64_t lastInput = 0;
};

}  // namespace

TEST_F(tkIdleWatchTest, AbsenceShorterThanTheThresholdAsksNothing) {
    away(9 * kMinute);
    EXPECT_FALSE(watch.isAway());
    EXPECT_FALSE(back());
}

TEST_F(tkIdleWatchTest, LongerAbsenceAsksOnceOnReturnWithTheSpanAndTheRunningTimers) {
    const int64_t left = lastInput;
    away(25 * kMinute);
    EXPECT_TRUE(watch.isAway());
    const std::optional<tkIdleAbsence> absence = back();
    ASSERT_TRUE(absence);
    EXPECT_EQ(absence->start, left);
    EXPECT_EQ(absence->end, lastInput);
    ASSERT_EQ(absence->shares.size(), 1u) << "B never ran";
    EXPECT_EQ(absence->shares[0].title, "Timer 1");
    EXPECT_EQ(absence->shares[0].millis, absence->millis());
    EXPECT_FALSE(back()) << "asked once";
    EXPECT_TRUE(watch.isAsking());
}

// A and B both run when the user leaves; B is stopped (by the command line, say) five minutes
// into the absence, and counts only those five minutes. A timer started while nobody was there
// is not counted at all.
TEST_F(tkIdleWatchTest, EachTimerCountsOnlyWhileItRanDuringTheAbsence) {
    startStop(1);
    makeTimers(1);
    away(5 * kMinute);
    startStop(1);
    const int64_t stoppedAt = clock.now();
    away(6 * kMinute);
    startStop(2);  // started with nobody at the keyboard
    away(10 * kMinute);
    const std::optional<tkIdleAbsence> absence = back();
    ASSERT_TRUE(absence);
    ASSERT_EQ(absence->shares.size(), 2u);
    EXPECT_EQ(absence->shares[0].millis, absence->millis());
    EXPECT_EQ(absence->shares[1].title, "Timer 2");
    EXPECT_EQ(absence->shares[1].millis, stoppedAt - absence->start);
}

// The three answers, on A running through the absence and B stopped in it.
TEST_F(tkIdleWatchTest, AnswersKeepSubtractOrSubtractAndStop) {
    struct Case {
        tkIdleAnswer answer;
        bool subtracted;
        bool aRunsAfter;
    };
    const Case cases[] = {
        {tkIdleAnswer::KeepTime, false, true},
        {tkIdleAnswer::SubtractTime, true, true},
        {tkIdleAnswer::SubtractAndStop, true, false},
    };
    for (const Case& c : cases) {
        if (!timer(0)->isRunning()) {
            startStop(0);
        }
        timer(0)->setTime(tkDuration(3600));  // stops it
        startStop(0);
        startStop(1);
        lastInput = clock.now();
        away(12 * kMinute);
        startStop(1);
        away(3 * kMinute);
        const std::optional<tkIdleAbsence> absence = back();
        ASSERT_TRUE(absence);
        ASSERT_EQ(absence->shares.size(), 2u);
        const int64_t a = elapsed(0);
        const int64_t b = elapsed(1);
        watch.answer(*absence, c.answer);
        const int64_t aShare = c.subtracted ? absence->shares[0].millis : 0;
        const int64_t bShare = c.subtracted ? absence->shares[1].millis : 0;
        EXPECT_EQ(elapsed(0), a - aShare) << static_cast<int>(c.answer);
        EXPECT_EQ(elapsed(1), b - bShare) << static_cast<int>(c.answer);
        EXPECT_EQ(timer(0)->isRunning(), c.aRunsAfter) << static_cast<int>(c.answer);
        EXPECT_FALSE(timer(1)->isRunning());
        EXPECT_FALSE(watch.isAsking());
        timer(1)->clear();
    }
}

// A time edited down during the absence can't go below zero; a cleared timer isn't asked about.
TEST_F(tkIdleWatchTest, SubtractingNeverMakesATimerNegative) {
    startStop(1);
    away(11 * kMinute);
    timer(0)->setTime(tkDuration(60));
    timer(1)->clear();
    away(5 * kMinute);
    const std::optional<tkIdleAbsence> absence = back();
    ASSERT_TRUE(absence);
    ASSERT_EQ(absence->shares.size(), 1u);
    EXPECT_GT(absence->shares[0].millis, 60'000);
    watch.answer(*absence, tkIdleAnswer::SubtractTime);
    EXPECT_EQ(elapsed(0), 0);
}

// Time that went to the time sheet while away comes off the entry, as one undo step.
TEST_F(tkIdleWatchTest, SubtractingFromAnEntryIsOneUndoableStep) {
    timer(0)->setTime(tkDuration(3600));
    startStop(0);
    lastInput = clock.now();
    away(20 * kMinute);
    timers().controllerAt(0)->addToTimeSheet();
    away(40 * kMinute);
    const std::optional<tkIdleAbsence> absence = back();
    ASSERT_TRUE(absence);
    ASSERT_EQ(absence->shares.size(), 1u);
    ASSERT_TRUE(absence->shares[0].entry);
    tkTimeSheet& sheet = tkTimeSheet::instance();
    ASSERT_EQ(sheet.rowCount(), 1u);
    EXPECT_EQ(sheet.itemAtRow(0, "duration")->toString(), "01:20:00");

    watch.answer(*absence, tkIdleAnswer::SubtractAndStop);
    EXPECT_EQ(sheet.itemAtRow(0, "duration")->toString(), "01:00:00");
    EXPECT_EQ(sheet.undoManager().getUndoPresentationName(), "Undo Subtract Idle Time");
    EXPECT_EQ(elapsed(0), 0) << "the timer itself was reset by the add";
    sheet.undoManager().undo();
    EXPECT_EQ(sheet.itemAtRow(0, "duration")->toString(), "01:20:00");
}

// No readings for longer than the threshold (the machine slept): away from the last reading on,
// and back at the first input after waking, in one reading.
TEST_F(tkIdleWatchTest, APauseOfTheReadingsCountsAsAnAbsence) {
    away(kMinute);
    const int64_t lastReading = clock.now();
    clock.advance(45 * kMinute);
    const std::optional<tkIdleAbsence> absence = back();
    ASSERT_TRUE(absence);
    EXPECT_EQ(absence->start, lastReading);
    EXPECT_EQ(absence->end, lastInput);
}

TEST_F(tkIdleWatchTest, OffOrWithNoTimerRunningNothingIsAsked) {
    watch.setThresholdMillis(0);
    away(30 * kMinute);
    EXPECT_FALSE(back());

    watch.setThresholdMillis(10 * kMinute);
    startStop(0);
    away(30 * kMinute);
    EXPECT_FALSE(watch.isAway());
    EXPECT_FALSE(back());
}
