#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "records/tkDuration.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "tests/timers/tkTimersTestSupport.h"
#include "timers/tkHeadlessRefreshTicker.h"
#include "timers/tkRefreshTicker.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerControl.h"
#include "timers/tkTimerController.h"
#include "timers/tkTimerControllerTarget.h"
#include "timers/tkTimerSettings.h"
#include "timers/tkTimerWindowFactory.h"

namespace {

uint32_t shownNumber() {
    return headlessUI()->getTimerController()->getNumber();
}

// Counts the tickers made, each a headless one.
struct TickerLog {
    int made = 0;
    TickerLog() {
        setRefreshTickerFactory([this](int64_t interval, std::function<void()> tick) {
            ++made;
            return std::make_unique<tkHeadlessRefreshTicker>(interval, std::move(tick));
        });
    }
    ~TickerLog() { setRefreshTickerFactory({}); }
};

bool tickerRuns() {
    return currentRefreshTicker() != nullptr;
}

}  // namespace

TEST(TimerCreation, NewTimerIsTitledByCountShownWithDrawerOpenAndTitleInEdit) {
    makeTimers(1);
    ASSERT_EQ(timers().numTimers(), 1u);
    tkTimer* timer = timers().timerAt(0);
    EXPECT_EQ(timer->getTitle(), "Timer 1");
    EXPECT_EQ(headlessUI()->getTimerController(), timers().controllerAt(0));
    EXPECT_EQ(headlessUI()->getDisplayedTitle(), "Timer 1");
    EXPECT_EQ(headlessUI()->displayedTime(), "00:00:00");
    EXPECT_TRUE(headlessUI()->isDrawerShown());
    EXPECT_TRUE(headlessUI()->isEditingTitle());
    EXPECT_EQ(headlessUI()->selectedRows(), (std::vector<uint32_t>{0}));
    EXPECT_EQ(headlessWindow()->timesBroughtToFront(), 1u);
    EXPECT_TRUE(timer->isDirty());
}

TEST(TimerCreation, TitlesCountTimersAtCreationSoTheyCanRepeatAfterRemoval) {
    makeTimers(10);
    EXPECT_EQ(timers().timerAt(9)->getTitle(), "Timer 10");

    timers().removeAll();
    makeTimers(3);
    timers().removeTimers({1}, false);
    makeTimers(1);
    EXPECT_EQ(timers().timerAt(1)->getTitle(), "Timer 3");
    EXPECT_EQ(timers().timerAt(2)->getTitle(), "Timer 3");
    EXPECT_EQ(shownNumber(), 2u);
}

TEST(TimerCreation, FirstWindowComesFromTheInstalledFactory) {
    std::vector<std::pair<uint32_t, bool>> asked;
    setTimerWindowFactory([&asked](uint32_t number, bool isNew) {
        asked.emplace_back(number, isNew);
        return std::make_unique<tkHeadlessTimerWindow>(number);
    });
    makeTimers(2);
    setTimerWindowFactory({});
    EXPECT_EQ(asked, (std::vector<std::pair<uint32_t, bool>>{{0, true}}));
    EXPECT_EQ(timers().numWindows(), 1u);
}

TEST(TimerNavigation, NextAndPreviousWrapAtBothEnds) {
    struct Case {
        int count;
        uint32_t from;
        bool next;
        uint32_t to;
    };
    const Case cases[] = {
        {3, 0, false, 2}, {3, 2, true, 0}, {3, 1, true, 2},
        {3, 1, false, 0}, {1, 0, true, 0}, {1, 0, false, 0},
    };
    for (const Case& c : cases) {
        timers().removeAll();
        makeTimers(c.count);
        showTimerInWindow(static_cast<int32_t>(c.from), false, false);
        if (c.next) {
            headlessUI()->nextTimer();
        } else {
            headlessUI()->previousTimer();
        }
        EXPECT_EQ(shownNumber(), c.to)
            << c.count << " timers, " << (c.next ? "next" : "previous") << " from " << c.from;
        EXPECT_EQ(timers().getFrontMost(), static_cast<int32_t>(c.to));
    }
}

TEST(TimerNavigation, MenuTargetShowsItsTimerByPresentNumberAndRaisesTheWindow) {
    makeTimers(3);
    tkTimerControllerTarget* target = timers().controllerAt(2)->getTargetWrapper();
    timers().removeTimers({0}, false);
    showTimerInWindow(0, false, false);
    const uint32_t raisedBefore = headlessWindow()->timesBroughtToFront();

    target->bringToFront();

    EXPECT_EQ(headlessUI()->getDisplayedTitle(), "Timer 3");
    EXPECT_EQ(shownNumber(), 1u);
    EXPECT_EQ(headlessWindow()->timesBroughtToFront(), raisedBefore + 1);
}

TEST(TimerDisplay, ChangeOfAHiddenTimerRedrawsTheListButNotTheFields) {
    makeTimers(3);
    showTimerInWindow(1, false, false);
    showTimerInWindow(2, false, false);
    EXPECT_EQ(timers().controllerAt(1)->getUI(), nullptr);
    tkHeadlessTimerUI* ui = headlessUI();
    const uint32_t lists = ui->drawerRefreshes();
    const uint32_t fields = ui->timerChanges();

    timers().timerAt(1)->setTitle("hidden");
    EXPECT_EQ(ui->drawerRefreshes(), lists + 1);
    EXPECT_EQ(ui->timerChanges(), fields);
    EXPECT_EQ(ui->getDisplayedTitle(), "Timer 3");

    timers().timerAt(2)->setTitle("shown");
    EXPECT_EQ(ui->drawerRefreshes(), lists + 2);
    EXPECT_EQ(ui->timerChanges(), fields + 1);
    EXPECT_EQ(ui->getDisplayedTitle(), "shown");
}

TEST(TimerDisplay, ShowingTheSameTimerAgainKeepsOneRegistration) {
    makeTimers(2);
    showTimerInWindow(1, false, false);
    showTimerInWindow(1, false, false);
    showTimerInWindow(1, false, false);
    EXPECT_EQ(timers().controllerAt(1)->getUI(), headlessUI());
    const uint32_t before = headlessUI()->timerChanges();
    timers().timerAt(1)->setDirty(true);
    EXPECT_EQ(headlessUI()->timerChanges(), before + 1);
}

// Renumbering the window refreshes it even with no timer shown yet, which is
// the case that must say so on the error stream.
TEST(TimerDisplay, WindowNumberChangeRefreshesAndComplainsWithoutAController) {
    tkHeadlessTimerWindow window(0);
    testing::internal::CaptureStderr();
    window.setNumber(3);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "timerController is null!\n");
}

TEST(TimerTicker, LivesFromTheFirstStartToTheLastStop) {
    tkManualClock clock;
    TickerLog log;
    makeTimers(2);
    EXPECT_FALSE(tickerRuns());

    clock.advance(500);
    headlessUI()->startStopTimer();
    ASSERT_TRUE(tickerRuns());
    EXPECT_EQ(log.made, 1);
    auto* ticker = static_cast<tkHeadlessRefreshTicker*>(currentRefreshTicker());
    EXPECT_EQ(ticker->intervalMillis(), 500);
    EXPECT_EQ(ticker->timesFired(), 1u) << "fired at once, so the display moves now";

    showTimerInWindow(0, false, false);
    headlessUI()->startStopTimer();
    EXPECT_EQ(log.made, 1) << "a second running timer shares the ticker";

    headlessUI()->startStopTimer();
    EXPECT_TRUE(tickerRuns()) << "timer 1 still runs";
    showTimerInWindow(1, false, false);
    headlessUI()->startStopTimer();
    EXPECT_FALSE(tickerRuns());
}

TEST(TimerTicker, ClearingTheOnlyRunningTimerLeavesTheTickerUntilTheNextStop) {
    tkManualClock clock;
    makeTimers(2);
    headlessUI()->startStopTimer();
    headlessUI()->clearTimer();
    EXPECT_FALSE(timers().anyRunning());
    EXPECT_TRUE(tickerRuns()) << "clear doesn't look at the ticker";

    showTimerInWindow(0, false, false);
    headlessUI()->startStopTimer();
    headlessUI()->startStopTimer();
    EXPECT_FALSE(tickerRuns());
}

TEST(TimerTicker, LoadingARunningTimerStartsTheTicker) {
    tkManualClock clock;
    timers().fromTag(*tkTagParser().parse(
        "<timerArray><timer 0><started>true</started><startTime>" +
        std::to_string(clock.now() - 2000) + "</startTime></timer 0></timerArray>"));
    ASSERT_TRUE(tickerRuns());
    EXPECT_EQ(headlessUI()->displayedTime(), "00:00:02");
}

TEST(TimerTicker, TicksMoveOnlyTheShownTimeAndNeverPost) {
    tkManualClock clock;
    makeTimers(2);
    headlessUI()->startStopTimer();
    tkPostCounter posts(kTimerBecameDirty);
    clock.advance(3'400);
    currentRefreshTicker()->fire();
    EXPECT_EQ(headlessUI()->displayedTime(), "00:00:03");
    EXPECT_EQ(posts.count(), 0);
}

TEST(TimerCommands, ClearAndStartStopSaveDirectlyAndShowTheState) {
    tkManualClock clock;
    int saves = 0;
    setTimersSaver([&saves] { ++saves; });
    makeTimers(1);
    tkHeadlessTimerUI* ui = headlessUI();
    ui->startStopTimer();
    EXPECT_TRUE(ui->isRunningShown());
    EXPECT_EQ(saves, 1);
    clock.advance(4000);
    ui->clearTimer();
    EXPECT_FALSE(ui->isRunningShown());
    EXPECT_EQ(ui->displayedTime(), "00:00:00");
    EXPECT_EQ(saves, 2);
    setTimersSaver({});
}

TEST(TimerCommands, TimeEditStopsAtTheParsedTime) {
    tkManualClock clock;
    makeTimers(1);
    headlessUI()->startStopTimer();
    tkPostCounter posts(kTimerBecameDirty, timers().timerAt(0));
    headlessUI()->timeEdited("1:30");
    EXPECT_FALSE(timers().timerAt(0)->isRunning());
    EXPECT_EQ(timers().timerAt(0)->getPriorRunningTime(), 5'400'000);
    EXPECT_EQ(posts.count(), 2);
    EXPECT_EQ(headlessUI()->displayedTime(), "01:30:00");
}

TEST(TimerCommands, RecordEditReplacesTheRecordWithInternedCodes) {
    makeTimers(1);
    tkTimer* timer = timers().timerAt(0);
    const auto before = timer->getRecord();
    tkHeadlessTimerUI* ui = headlessUI();
    ui->setEmployee("ann");
    ui->setFeeCode("f1");
    ui->setJobNumber("");
    ui->setDescription("drafting");
    tkPostCounter posts(kTimerBecameDirty, timer);
    const int32_t jobNumbersBefore = tkKnownRecordItems::instance().count("job number");

    ui->recordEdited();

    const auto after = timer->getRecord();
    EXPECT_NE(after, before);
    EXPECT_EQ(after->employee(), tkKnownRecordItems::instance().getOrAddEmployee("ANN"));
    EXPECT_EQ(after->feeCode()->toString(), "F1");
    EXPECT_EQ(after->jobNumber()->toString(), "");
    EXPECT_EQ(after->description()->toString(), "drafting");
    EXPECT_EQ(tkKnownRecordItems::instance().count("job number"), jobNumbersBefore);
    EXPECT_EQ(posts.count(), 1);
    EXPECT_EQ(ui->getEmployee(), "ANN") << "the fields are refreshed from the new record";
}

TEST(TimerCommands, DetailModeChangesStoreTheGlobalModeOnlyWhenTheyChangeSomething) {
    makeTimers(1);
    tkPostCounter posts(kTimerBecameDirty, &timers());
    headlessUI()->setDetailMode(true);
    EXPECT_TRUE(headlessUI()->isDetailMode());
    EXPECT_EQ(posts.count(), 1);
    headlessUI()->setDetailMode(true);
    EXPECT_EQ(posts.count(), 1);
    headlessUI()->toggleDetailMode();
    EXPECT_FALSE(timers().isGlobalDetailMode());
    EXPECT_EQ(posts.count(), 2);
}

TEST(TimerDeletion, QuestionListsTheTimersAndTheAnswerReadsTheSelectionAnew) {
    makeTimers(3);
    headlessWindow()->confirmDelete({});
    EXPECT_EQ(headlessUI()->deletionDialogText(), "");

    headlessWindow()->confirmDelete({0, 2});
    EXPECT_EQ(headlessUI()->deletionDialogText(),
              "The following timers will be deleted:\nTimer 1--00:00:00\nTimer 3--00:00:00\n");

    headlessUI()->selectRows({1});
    headlessUI()->deleteWithoutAdding();
    EXPECT_EQ(headlessUI()->deletionDialogText(), "");
    ASSERT_EQ(timers().numTimers(), 2u);
    EXPECT_EQ(timers().timerAt(1)->getTitle(), "Timer 3");
}
