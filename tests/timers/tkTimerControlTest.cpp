#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "foundation/tkTagParser.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "tests/timers/tkTimersTestSupport.h"
#include "timers/tkHeadlessRefreshTicker.h"
#include "timers/tkRefreshTicker.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerControllerTarget.h"
#include "timers/tkTimerSettings.h"
#include "timers/tkTimerWindowFactory.h"

namespace {

bool tickerRuns() {
    return currentRefreshTicker() != nullptr;
}

}  // namespace

// A new timer is titled by the count of timers at that moment (so titles repeat after a
// removal), shown with the drawer open and its title in edit, and the first window comes from
// the installed factory.
TEST(tkTimerControl, NewTimersAreTitledByCountAndShownForEditing) {
    std::vector<std::pair<uint32_t, bool>> asked;
    setTimerWindowFactory([&asked](uint32_t number, bool isNew) {
        asked.emplace_back(number, isNew);
        return std::make_unique<tkHeadlessTimerWindow>(number);
    });
    makeTimers(1);
    tkHeadlessTimerUI* ui = headlessUI();
    EXPECT_EQ(ui->getTimerController(), timers().controllerAt(0));
    EXPECT_EQ(ui->getDisplayedTitle() + " " + ui->displayedTime(), "Timer 1 00:00:00");
    EXPECT_TRUE(ui->isDrawerShown() && ui->isEditingTitle() && timers().timerAt(0)->isDirty());
    EXPECT_EQ(ui->selectedRows(), (std::vector<uint32_t>{0}));
    EXPECT_EQ(headlessWindow()->timesBroughtToFront(), 1u);
    makeTimers(9);
    timers().removeTimers({1}, false);
    makeTimers(1);
    EXPECT_EQ(timers().timerAt(8)->getTitle() + "|" + timers().timerAt(9)->getTitle(),
              "Timer 10|Timer 10");
    EXPECT_EQ(shownNumber(), 9u);
    EXPECT_EQ(asked, (std::vector<std::pair<uint32_t, bool>>{{0, true}}));
    setTimerWindowFactory({});
}

// Next and previous wrap at both ends; a menu item shows its timer by its present number and
// raises the window.
TEST(tkTimerControl, NavigationWrapsAndFollowsRenumbering) {
    const struct {
        int count;
        uint32_t from;
        bool next;
        uint32_t to;
    } cases[] = {{3, 0, false, 2}, {3, 2, true, 0}, {3, 1, true, 2},
                 {3, 1, false, 0}, {1, 0, true, 0}, {1, 0, false, 0}};
    for (const auto& c : cases) {
        timers().removeAll();
        makeTimers(c.count);
        showTimerInWindow(static_cast<int32_t>(c.from), false, false);
        c.next ? headlessUI()->nextTimer() : headlessUI()->previousTimer();
        EXPECT_EQ(shownNumber(), c.to)
            << c.count << (c.next ? " next from " : " previous from ") << c.from;
        EXPECT_EQ(timers().getFrontMost(), static_cast<int32_t>(c.to));
    }
    makeTimers(2);  // timers 1 to 3 now
    tkTimerControllerTarget* target = timers().controllerAt(2)->getTargetWrapper();
    timers().removeTimers({0}, false);
    showTimerInWindow(0, false, false);
    const uint32_t raisedBefore = headlessWindow()->timesBroughtToFront();
    target->bringToFront();
    EXPECT_EQ(headlessUI()->getDisplayedTitle(), "Timer 3");
    EXPECT_EQ(shownNumber(), 1u);
    EXPECT_EQ(headlessWindow()->timesBroughtToFront(), raisedBefore + 1);
}

// A change of any timer redraws the list; only the shown one redraws the fields, once, however
// often it was shown. Renumbering a window with no timer shown must say so.
TEST(tkTimerControl, AChangeRedrawsTheListAndOnlyTheShownTimersFields) {
    makeTimers(3);
    showTimerInWindow(1, false, false);
    showTimerInWindow(2, false, false);
    showTimerInWindow(2, false, false);
    EXPECT_EQ(timers().controllerAt(1)->getUI(), nullptr);
    tkHeadlessTimerUI* ui = headlessUI();
    const uint32_t lists = ui->drawerRefreshes();
    const uint32_t fields = ui->timerChanges();
    timers().timerAt(1)->setTitle("hidden");
    timers().timerAt(2)->setTitle("shown");
    EXPECT_EQ(ui->drawerRefreshes(), lists + 2);
    EXPECT_EQ(ui->timerChanges(), fields + 1);
    EXPECT_EQ(ui->getDisplayedTitle(), "shown");
    tkHeadlessTimerWindow window(0);
    testing::internal::CaptureStderr();
    window.setNumber(3);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "timerController is null!\n");
}

// One ticker of 0.5 s, fired at once, from the first start (or a load of a running timer) to
// the next stop that finds none running; a Clear doesn't look at it. Ticks move the shown time
// and never post.
TEST(tkTimerControl, TheTickerLivesWhileAStartOrLoadFoundATimerRunning) {
    tkTestClock clock;
    int made = 0;
    setRefreshTickerFactory([&made](int64_t interval, std::function<void()> tick) {
        ++made;
        return std::make_unique<tkHeadlessRefreshTicker>(interval, std::move(tick));
    });
    makeTimers(2);
    EXPECT_FALSE(tickerRuns());
    headlessUI()->startStopTimer();
    ASSERT_TRUE(tickerRuns());
    auto* ticker = static_cast<tkHeadlessRefreshTicker*>(currentRefreshTicker());
    EXPECT_EQ(ticker->intervalMillis(), 500);
    EXPECT_EQ(ticker->timesFired(), 1u) << "fired at once, so the display moves now";
    showTimerInWindow(0, false, false);
    headlessUI()->startStopTimer();
    headlessUI()->startStopTimer();
    EXPECT_EQ(made, 1) << "a second running timer shares the ticker";
    EXPECT_TRUE(tickerRuns()) << "timer 1 still runs";
    showTimerInWindow(1, false, false);
    tkNotificationRecorder posts;
    posts.listen(kTimerBecameDirty);
    clock.advance(3'400);
    currentRefreshTicker()->fire();
    EXPECT_EQ(headlessUI()->displayedTime(), "00:00:03");
    EXPECT_TRUE(posts.empty());
    headlessUI()->clearTimer();
    EXPECT_TRUE(tickerRuns()) << "clear doesn't look at the ticker";
    headlessUI()->startStopTimer();
    headlessUI()->startStopTimer();
    EXPECT_FALSE(tickerRuns());
    timers().fromTag(*tkTagParser().parse(
        "<timerArray><timer 0><started>true</started><startTime>" +
        std::to_string(clock.now() - 2000) + "</startTime></timer 0></timerArray>"));
    ASSERT_TRUE(tickerRuns());
    EXPECT_EQ(headlessUI()->displayedTime(), "00:00:02");
    setRefreshTickerFactory({});
}

// Start/stop and Clear save the timers themselves and show the new state; an edit of the time
// stops the timer at the parsed time; an edit of the record replaces it with one of interned
// codes (an empty code adds none) and refreshes the fields from it; a detail mode change is
// stored only when it changes something.
TEST(tkTimerControl, CommandsSaveAndShowTheirState) {
    tkTestClock clock;
    int saves = 0;
    setTimersSaver([&saves] { ++saves; });
    makeTimers(1);
    tkHeadlessTimerUI* ui = headlessUI();
    tkTimer* timer = timers().timerAt(0);
    ui->startStopTimer();
    EXPECT_TRUE(ui->isRunningShown());
    clock.advance(4000);
    ui->clearTimer();
    EXPECT_FALSE(ui->isRunningShown());
    EXPECT_EQ(ui->displayedTime(), "00:00:00");
    EXPECT_EQ(saves, 2);
    setTimersSaver({});

    ui->startStopTimer();
    tkNotificationRecorder posts;
    posts.listen(kTimerBecameDirty, timer);
    ui->timeEdited("1:30");
    EXPECT_FALSE(timer->isRunning());
    EXPECT_EQ(timer->getPriorRunningTime(), 5'400'000);
    EXPECT_EQ(ui->displayedTime(), "01:30:00");

    const auto before = timer->getRecord();
    ui->setEmployee("ann");
    ui->setFeeCode("f1");
    ui->setJobNumber("");
    ui->setDescription("drafting");
    const int32_t jobNumbers = tkKnownRecordItems::instance().count("job number");
    ui->recordEdited();
    EXPECT_EQ(posts.count(kTimerBecameDirty), 3);
    EXPECT_NE(timer->getRecord(), before);
    EXPECT_EQ(timer->getRecord()->employee(),
              tkKnownRecordItems::instance().getOrAddEmployee("ANN"));
    const auto& after = *timer->getRecord();
    EXPECT_EQ(after.jobNumber()->text() + "|" + after.feeCode()->text() + "|" +
                  after.description()->text(),
              "|F1|drafting");
    EXPECT_EQ(tkKnownRecordItems::instance().count("job number"), jobNumbers);
    EXPECT_EQ(ui->getEmployee(), "ANN") << "the fields are refreshed from the new record";

    posts.listen(kTimerBecameDirty, &timers());
    posts.clear();
    ui->setDetailMode(true);
    ui->setDetailMode(true);
    EXPECT_TRUE(ui->isDetailMode());
    ui->toggleDetailMode();
    EXPECT_FALSE(timers().isGlobalDetailMode());
    EXPECT_EQ(posts.count(kTimerBecameDirty, &timers()), 2);
}

TEST(tkTimerControl, TheDeletionQuestionListsTheTimersAndTheAnswerReadsTheSelectionAnew) {
    makeTimers(3);
    timers().timerAt(0)->setTime(tkDuration(3600));
    headlessWindow()->confirmDelete({});
    EXPECT_EQ(headlessUI()->deletionDialogText(), "");
    headlessWindow()->confirmDelete({0, 2});
    EXPECT_EQ(headlessUI()->deletionDialogText(),
              "The following timers will be deleted:\nTimer 1--01:00:00\nTimer 3--00:00:00\n");
    headlessUI()->selectRows({1});
    headlessUI()->deleteWithoutAdding();
    EXPECT_EQ(headlessUI()->deletionDialogText(), "");
    EXPECT_EQ(timers().numTimers(), 2u);
    EXPECT_EQ(timers().timerAt(1)->getTitle(), "Timer 3");
}
