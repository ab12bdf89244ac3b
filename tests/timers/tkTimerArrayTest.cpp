#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/tkException.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "records/tkDuration.h"
#include "records/tkRecord.h"
#include "tests/timers/tkTimersTestSupport.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerControl.h"
#include "timers/tkTimerController.h"
#include "timesheet/tkTimeSheet.h"

namespace {

std::vector<std::string> titles() {
    std::vector<std::string> result;
    for (uint32_t i = 0; i < timers().numTimers(); ++i) {
        result.push_back(timers().timerAt(static_cast<int32_t>(i))->getTitle());
    }
    return result;
}

void expectNumbersMatchIndexes() {
    for (uint32_t i = 0; i < timers().numTimers(); ++i) {
        EXPECT_EQ(timers().controllerAt(static_cast<int32_t>(i))->getNumber(), i);
    }
}

uint32_t shownNumber() {
    return headlessUI()->getTimerController()->getNumber();
}

std::string timerElement(const std::string& name, const std::string& title,
                         const std::string& id = "") {
    return "<" + name + "><title>" + title + "</title><id>" + id +
           "</id><record><date>1/3/5</date></record></" + name + ">";
}

void load(const std::string& text) {
    timers().fromTag(*tkTagParser().parse(text));
}

std::string exceptionName(void (*action)()) {
    try {
        action();
    } catch (const tkException& e) {
        return e.name() + "|" + e.message();
    }
    return "no exception";
}

}  // namespace

TEST(TimerArrayRemoval, RemovingTheMiddleTimerRenumbersAndShowsTheOneThatFollowed) {
    makeTimers(3);
    headlessUI()->selectRows({1});
    tkPostCounter arrayPosts(kTimerBecameDirty, &timers());

    timers().removeSelected(false);

    EXPECT_EQ(titles(), (std::vector<std::string>{"Timer 1", "Timer 3"}));
    expectNumbersMatchIndexes();
    EXPECT_EQ(shownNumber(), 1u);
    EXPECT_EQ(headlessUI()->getDisplayedTitle(), "Timer 3");
    EXPECT_EQ(timers().getFrontMost(), 1);
    EXPECT_TRUE(timers().isDirty());
    EXPECT_GE(arrayPosts.count(), 1);
}

TEST(TimerArrayRemoval, RemovingTheLastNumbersShowsTheNewLastTimer) {
    makeTimers(4);
    timers().removeTimers({2, 3}, false);
    EXPECT_EQ(titles(), (std::vector<std::string>{"Timer 1", "Timer 2"}));
    EXPECT_EQ(shownNumber(), 1u);
    EXPECT_EQ(headlessUI()->getDisplayedTitle(), "Timer 2");
}

TEST(TimerArrayRemoval, RemoveSelectedRefusesNoSelectionAndEverySelectionButRemoveAllEmpties) {
    makeTimers(2);
    headlessUI()->selectRows({});
    timers().removeSelected(false);
    EXPECT_EQ(timers().numTimers(), 2u);
    headlessUI()->selectRows({0, 1});
    timers().removeSelected(false);
    EXPECT_EQ(timers().numTimers(), 2u);

    timers().removeAll();
    EXPECT_EQ(timers().numTimers(), 0u);
    EXPECT_EQ(timers().getFrontMost(), -1);
    // The user interface may still hold the removed controller safely.
    ASSERT_NE(headlessUI()->getTimerController(), nullptr);
    EXPECT_NE(headlessUI()->getTimerController()->getTimer(), nullptr);
}

TEST(TimerArrayRemoval, AddingFirstTurnsEachRemovedTimerIntoAnEntry) {
    tkManualClock clock;
    makeTimers(3);
    timers().timerAt(0)->setTime(tkDuration(60));
    timers().timerAt(2)->start();
    clock.advance(30'000);
    headlessUI()->selectRows({0, 2});

    timers().removeSelected(true);

    auto& sheet = tkTimeSheet::instance();
    ASSERT_EQ(sheet.rowCount(), 2u);
    std::vector<int32_t> seconds;
    for (uint32_t row = 0; row < 2; ++row) {
        seconds.push_back(sheet.recordAtRow(row)->duration()->totalSeconds());
    }
    std::sort(seconds.begin(), seconds.end());
    EXPECT_EQ(seconds, (std::vector<int32_t>{30, 60}));
    EXPECT_EQ(titles(), (std::vector<std::string>{"Timer 2"}));
}

TEST(TimerArrayRemoval, OutOfRangeNumberThrowsAndLosesNothing) {
    makeTimers(2);
    timers().clearDirty();
    try {
        timers().removeTimers({0, 5}, true);
        FAIL() << "expected IndexOutOfBounds";
    } catch (const tkException& e) {
        EXPECT_EQ(e.name(), "IndexOutOfBounds");
    }
    EXPECT_EQ(timers().numTimers(), 2u);
    EXPECT_EQ(tkTimeSheet::instance().rowCount(), 0u);
    EXPECT_FALSE(timers().isDirty());
}

TEST(TimerArrayAccess, OutOfRangeIndexesThrowIndexOutOfBoundsWithEmptyMessage) {
    makeTimers(1);
    EXPECT_EQ(exceptionName([] { timers().controllerAt(1); }), "IndexOutOfBounds|");
    EXPECT_EQ(exceptionName([] { timers().timerAt(-1); }), "IndexOutOfBounds|");
    EXPECT_EQ(exceptionName([] { timers().setFrontMost(3); }), "IndexOutOfBounds|");
    EXPECT_EQ(exceptionName([] { timers().moveTimer(0, 1); }), "IndexOutOfBounds|");
    EXPECT_EQ(exceptionName([] { showTimerInWindow(4, false, false); }), "IndexOutOfBounds|");
    // Every timer shows in window 0, whatever its number.
    EXPECT_EQ(timers().windowForTimer(7), timers().windowForTimer(0));
    EXPECT_EQ(timers().numWindows(), 1u);
}

TEST(TimerArrayFront, GetFrontMostClampsAndStoresMinusOneForAnEmptyList) {
    EXPECT_EQ(timers().getFrontMost(), -1);
    EXPECT_EQ(timers().toTag()->childText("frontMostTimerNumber", ""), "-1");
}

TEST(TimerArrayFront, SetFrontMostPostsByWhatChanged) {
    load("<timerArray>" + timerElement("timer 0", "a", "id-a") +
         timerElement("timer 1", "b", "id-b") + "<frontMostTimerNumber>0</frontMostTimerNumber>" +
         "</timerArray>");
    ASSERT_EQ(timers().getFrontMost(), 0);
    ASSERT_EQ(timers().getFrontMostID(), "id-a");
    timers().clearDirty();

    tkPostCounter front(kFrontmostTimerChanged, &timers());
    tkPostCounter dirty(kTimerBecameDirty, &timers());
    std::pair<int32_t, int32_t> seen{-9, -9};
    struct Reader : tkObserver {
    } reader;
    tkNotificationCenter::instance().addObserver(
        &reader,
        [&seen](const tkNotification& note) {
            seen = **reinterpret_cast<const tkTimerArray::FrontMostChange*>(note.data());
        },
        kFrontmostTimerChanged, nullptr);

    timers().setFrontMost(0);
    EXPECT_EQ(front.count(), 0) << "same number, same id";
    EXPECT_EQ(dirty.count(), 0);

    timers().setFrontMost(1);
    EXPECT_EQ(front.count(), 1);
    EXPECT_EQ(dirty.count(), 1);
    EXPECT_EQ(seen, std::make_pair(1 - 1, 1));
    EXPECT_TRUE(timers().isDirty());

    timers().clearDirty();
    // Another timer under the same number: only the id moves.
    timers().timerAt(1)->fromTag(*tkTagParser().parse(timerElement("timer", "c", "id-c")));
    timers().setFrontMost(1);
    EXPECT_EQ(front.count(), 2);
    EXPECT_EQ(dirty.count(), 1);
    EXPECT_FALSE(timers().isDirty());
    EXPECT_EQ(timers().getFrontMostID(), "id-c");
    tkNotificationCenter::instance().removeObserver(&reader, kFrontmostTimerChanged, nullptr);
}

TEST(TimerArrayFlags, IsDirtySeesAnyTimerAndClearDirtyClearsAllSilently) {
    makeTimers(3);
    timers().clearDirty();
    EXPECT_FALSE(timers().isDirty());
    timers().timerAt(2)->setDirty(true);
    EXPECT_TRUE(timers().isDirty());
    tkPostCounter posts(kTimerBecameDirty);
    timers().clearDirty();
    EXPECT_FALSE(timers().isDirty());
    EXPECT_FALSE(timers().timerAt(2)->isDirty());
    EXPECT_EQ(posts.count(), 0);
}

TEST(TimerArrayOrder, TitleOrderSortsByTitleBytesThenNumber) {
    makeTimers(3);
    timers().timerAt(0)->setTitle("b");
    timers().timerAt(1)->setTitle("a");
    timers().timerAt(2)->setTitle("a");
    timers().rebuildTitleOrder();
    const std::map<int32_t, int32_t> expected{{0, 1}, {1, 2}, {2, 0}};
    EXPECT_EQ(timers().getTitleOrder(), expected);
    EXPECT_EQ(timers().sortedTimerNumber(2), 0);
    // An unknown position is added with 0.
    EXPECT_EQ(timers().sortedTimerNumber(9), 0);
    EXPECT_EQ(timers().getTitleOrder().size(), 4u);
}

TEST(TimerArrayOrder, MoveTimerShiftsThoseBetweenAndRenumbers) {
    makeTimers(4);
    tkPostCounter front(kFrontmostTimerChanged, &timers());
    tkPostCounter dirty(kTimerBecameDirty, &timers());
    timers().moveTimer(0, 2);
    EXPECT_EQ(titles(), (std::vector<std::string>{"Timer 2", "Timer 3", "Timer 1", "Timer 4"}));
    expectNumbersMatchIndexes();
    timers().moveTimer(3, 1);
    EXPECT_EQ(titles(), (std::vector<std::string>{"Timer 2", "Timer 4", "Timer 3", "Timer 1"}));
    expectNumbersMatchIndexes();
    timers().moveTimer(1, 1);
    EXPECT_EQ(front.count(), 3) << "a move to the same place posts as well";
    EXPECT_EQ(dirty.count(), 3);
}

TEST(TimerArrayDeletionList, ListsTitleDashesDurationAndLineBreakPerTimer) {
    makeTimers(2);
    timers().timerAt(0)->setTitle("Design");
    timers().timerAt(0)->setTime(tkDuration(3600));
    EXPECT_EQ(timers().deletionList({0}), "Design--01:00:00\n");
    EXPECT_EQ(timers().deletionList({0, 1}), "Design--01:00:00\nTimer 2--00:00:00\n");
    EXPECT_EQ(timers().deletionList({}), "");
}

TEST(TimerArrayFile, WritesNumberedTimersThenTheFlags) {
    load("<timerArray>" + timerElement("timer", "a") + timerElement("timer 7", "b") +
         "<cl_id>x</cl_id><drawerOpen>false</drawerOpen></timerArray>");
    const auto node = timers().toTag();
    EXPECT_EQ(node->name(), "timerArray");
    const char* names[] = {"timer 0",   "timer 1",          "frontMostTimerNumber",
                           "timerOpen", "globalDetailMode", "drawerOpen"};
    ASSERT_EQ(node->childCount(), 6);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(node->childAt(i)->name(), names[i]) << "child " << i;
    }
    EXPECT_FALSE(node->hasChild("cl_id"));
    EXPECT_EQ(node->childText("drawerOpen", ""), "false");
}

// Which timer a file brings to front, in both generations of the file.
TEST(TimerArrayFile, FrontTimerOfEachFileGeneration) {
    struct Case {
        const char* what;
        std::string body;
        int32_t storedFront;  // the field after the load
        bool shownAtLoad;     // whether the load itself showed that timer
    };
    const Case cases[] = {
        {"old names count from 1",
         timerElement("timer", "a") + timerElement("timer", "b") +
             "<frontMostTimerNumber>2</frontMostTimerNumber>",
         1, true},
        {"new names count from 0",
         timerElement("timer 0", "a") + timerElement("timer 1", "b") +
             "<frontMostTimerNumber>2</frontMostTimerNumber>",
         2, false},
        {"cl_id alone",
         timerElement("timer 0", "a", "p") + timerElement("timer 1", "b", "q") +
             timerElement("timer 2", "c", "r") + "<cl_id>q</cl_id>",
         1, true},
        {"frontMostTimerNumber beats cl_id",
         timerElement("timer 0", "a", "p") + timerElement("timer 1", "b", "q") +
             "<cl_id>q</cl_id><frontMostTimerNumber>0</frontMostTimerNumber>",
         0, true},
        {"no key at all", timerElement("timer 0", "a") + timerElement("timer 1", "b"), 0, true},
        {"old count from 1 at the lowest number wraps out of range",
         timerElement("timer", "a") + timerElement("timer", "b") +
             "<frontMostTimerNumber>-2147483648</frontMostTimerNumber>",
         2147483647, false},
    };
    for (const Case& c : cases) {
        load("<timerArray>" + c.body + "</timerArray>");
        ASSERT_EQ(timers().numTimers(), c.body.find("timer 2") != std::string::npos ? 3u : 2u)
            << c.what;
        EXPECT_EQ(timers().toTag()->childLong("frontMostTimerNumber", -9), c.storedFront) << c.what;
        if (c.shownAtLoad) {
            EXPECT_EQ(shownNumber(), static_cast<uint32_t>(c.storedFront)) << c.what;
        } else {
            EXPECT_EQ(timers().getFrontMost(), 1) << c.what << ": clamped on the next ask";
        }
    }
}

TEST(TimerArrayFile, OnlyTimerOrTimerBlankNamesAreTimers) {
    load("<timerArray><timers><title>x</title></timers><timerX><title>y</title></timerX>" +
         timerElement("timer 0", "a") + timerElement("Timer", "case matters") + "</timerArray>");
    EXPECT_EQ(titles(), (std::vector<std::string>{"a"}));
}

TEST(TimerArrayFile, LoadReplacesTimersAndReadsFlagsWithPresentValuesAsDefaults) {
    makeTimers(3);
    timers().setDrawerOpen(false);
    load("<timerArray>" + timerElement("timer 0", "only") +
         "<timerOpen>false</timerOpen><globalDetailMode>junk</globalDetailMode></timerArray>");
    EXPECT_EQ(titles(), (std::vector<std::string>{"only"}));
    EXPECT_FALSE(timers().isTimerOpen());
    EXPECT_TRUE(timers().isGlobalDetailMode());
    EXPECT_FALSE(timers().isDrawerOpen());
    EXPECT_FALSE(timers().isLoading());
}

TEST(TimerArrayFile, SavedTextLoadsBackWithRunningTimersStillRunning) {
    tkManualClock clock;
    makeTimers(3);
    timers().timerAt(1)->setTitle("Design <draft> & review");
    timers().timerAt(1)->setTime(tkDuration(125));
    timers().timerAt(2)->start();
    timers().setGlobalDetailMode(false);
    clock.advance(10'000);
    const std::string text = timers().toTag()->toText(0);

    timers().removeAll();
    clock.advance(3'600'000);
    load(text);

    EXPECT_EQ(titles(),
              (std::vector<std::string>{"Timer 1", "Design <draft> & review", "Timer 3"}));
    EXPECT_EQ(timers().timerAt(1)->getDuration()->totalSeconds(), 125);
    EXPECT_TRUE(timers().timerAt(2)->isRunning());
    EXPECT_EQ(timers().timerAt(2)->getDuration()->totalSeconds(), 3610);
    EXPECT_FALSE(timers().timerAt(2)->isDirty());
    EXPECT_FALSE(timers().isGlobalDetailMode());
    EXPECT_EQ(shownNumber(), 2u);
}

// A file of many timers is shown once behind its last timer, not once per
// timer: per timer, a load of 50,000 never finished.
TEST(TimerArrayFile, LoadShowsTheWindowOnceWhateverTheNumberOfTimers) {
    std::string body;
    for (int i = 0; i < 2000; ++i) {
        body += timerElement("timer " + std::to_string(i), "t" + std::to_string(11999 - i));
    }
    load("<timerArray>" + body + "<frontMostTimerNumber>7</frontMostTimerNumber></timerArray>");
    ASSERT_EQ(timers().numTimers(), 2000u);
    EXPECT_LE(headlessUI()->drawerRefreshes(), 4u);
    EXPECT_LE(headlessUI()->menuRebuilds(), 2u);
    EXPECT_EQ(shownNumber(), 7u);
    // The title order, built once at the end, is complete.
    EXPECT_EQ(timers().sortedTimerNumber(0), 1999);
    EXPECT_EQ(timers().sortedTimerNumber(1999), 0);
}
