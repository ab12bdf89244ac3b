#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "foundation/tkException.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "records/tkDuration.h"
#include "records/tkRecord.h"
#include "tests/support/tkThrown.h"
#include "tests/timers/tkTimersTestSupport.h"
#include "timers/tkTimer.h"
#include "timers/tkTimerController.h"
#include "timesheet/tkTimeSheet.h"

namespace {

// The titles in number order, joined by '|'; and whether every number is its index.
std::string titles() {
    std::string text;
    for (uint32_t i = 0; i < timers().numTimers(); ++i) {
        text += (i == 0 ? "" : "|") + timers().timerAt(static_cast<int32_t>(i))->getTitle();
        EXPECT_EQ(timers().controllerAt(static_cast<int32_t>(i))->getNumber(), i);
    }
    return text;
}

std::string timerElement(const std::string& name, const std::string& title,
                         const std::string& id = "") {
    return "<" + name + "><title>" + title + "</title><id>" + id +
           "</id><record><date>1/3/5</date></record></" + name + ">";
}

void load(const std::string& body) {
    timers().fromTag(*tkTagParser().parse("<timerArray>" + body + "</timerArray>"));
}

}  // namespace

// The rest are renumbered, and the window shows the timer that followed the first removed
// one, or the new last one.
TEST(tkTimerArray, RemovalRenumbersAndShowsTheTimerThatFollowedTheFirstRemoved) {
    const struct {
        int count;
        std::vector<uint32_t> removed;
        const char* left;
        uint32_t shown;
    } cases[] = {{3, {1}, "Timer 1|Timer 3", 1},
                 {4, {2, 3}, "Timer 1|Timer 2", 1},
                 {4, {2, 0}, "Timer 2|Timer 4", 0},
                 {5, {1, 3}, "Timer 1|Timer 3|Timer 5", 1}};
    for (const auto& c : cases) {
        timers().removeAll();
        makeTimers(c.count);
        headlessUI()->selectRows(c.removed);
        timers().clearDirty();
        tkNotificationRecorder posts;
        posts.listen(kTimerBecameDirty, &timers());
        timers().removeSelected(false);
        EXPECT_EQ(titles(), c.left) << c.count << " less " << c.removed.size();
        EXPECT_EQ(shownNumber(), c.shown) << c.left;
        EXPECT_EQ(timers().getFrontMost(), static_cast<int32_t>(c.shown)) << c.left;
        EXPECT_TRUE(timers().isDirty()) << c.left;
        EXPECT_GE(posts.count(kTimerBecameDirty), 1) << c.left;
    }
}

// No selection and a selection of every timer remove nothing, nor does a list with a number
// out of range, which throws; only Remove All empties the list.
TEST(tkTimerArray, RefusedRemovalsLoseNothing) {
    makeTimers(2);
    timers().clearDirty();
    for (const std::vector<uint32_t>& rows : {std::vector<uint32_t>{}, {0, 1}}) {
        headlessUI()->selectRows(rows);
        timers().removeSelected(true);
    }
    EXPECT_THROW(timers().removeTimers({0, 5}, true), tkException);
    EXPECT_EQ(timers().numTimers(), 2u);
    EXPECT_EQ(tkTimeSheet::instance().rowCount(), 0u);
    EXPECT_FALSE(timers().isDirty());

    timers().removeAll();
    EXPECT_EQ(timers().numTimers(), 0u);
    EXPECT_EQ(timers().getFrontMost(), -1);
    EXPECT_EQ(timers().toTag()->childText("frontMostTimerNumber", ""), "-1");
    // The user interface may still hold the removed controller safely.
    ASSERT_NE(headlessUI()->getTimerController(), nullptr);
    EXPECT_NE(headlessUI()->getTimerController()->getTimer(), nullptr);
}

TEST(tkTimerArray, AddingFirstTurnsEachRemovedTimerIntoAnEntry) {
    tkTestClock clock;
    makeTimers(3);
    timers().timerAt(0)->setTime(tkDuration(60));
    timers().timerAt(2)->start();
    clock.advance(30'000);
    timers().removeTimers({2, 0}, true);
    std::vector<int32_t> seconds;
    for (const auto& record : tkTimeSheet::instance().rows()) {
        seconds.push_back(record->duration()->totalSeconds());
    }
    std::sort(seconds.begin(), seconds.end());
    EXPECT_EQ(seconds, (std::vector<int32_t>{30, 60}));
    EXPECT_EQ(titles(), "Timer 2");
}

// Every timer shows in window 0, whatever its number; any other number out of range throws
// IndexOutOfBounds with an empty message.
TEST(tkTimerArray, OutOfRangeIndexesThrowIndexOutOfBoundsWithEmptyMessage) {
    makeTimers(1);
    EXPECT_EQ(timers().windowForTimer(7), timers().windowForTimer(0));
    EXPECT_EQ(timers().numWindows(), 1u);
    const std::function<void()> cases[] = {
        [] { timers().controllerAt(1); },           [] { timers().timerAt(-1); },
        [] { timers().setFrontMost(3); },           [] { timers().moveTimer(0, 1); },
        [] { showTimerInWindow(4, false, false); }, [] { timers().removeTimers({0, 5}, true); }};
    for (const auto& action : cases) {
        EXPECT_EQ(thrown(action), "IndexOutOfBounds|");
    }
}

// A new front number posts and dirties; another timer under the same number only moves the id,
// which posts but needs no save; the same timer again does nothing.
TEST(tkTimerArray, SetFrontMostPostsByWhatChanged) {
    load(timerElement("timer 0", "a", "id-a") + timerElement("timer 1", "b", "id-b") +
         "<frontMostTimerNumber>0</frontMostTimerNumber>");
    ASSERT_EQ(timers().getFrontMostID(), "id-a");
    timers().clearDirty();
    tkNotificationRecorder posts;
    posts.listen(kFrontmostTimerChanged, &timers());
    posts.listen(kTimerBecameDirty, &timers());
    std::pair<int32_t, int32_t> seen{-9, -9};
    tkObserver reader;
    tkNotificationCenter::instance().addObserver(
        &reader,
        [&seen](const tkNotification& note) {
            seen = **reinterpret_cast<const tkTimerArray::FrontMostChange*>(note.data());
        },
        kFrontmostTimerChanged, nullptr);
    timers().setFrontMost(0);
    EXPECT_TRUE(posts.empty());
    timers().setFrontMost(1);
    EXPECT_EQ(posts.names(), (std::vector<std::string>{kFrontmostTimerChanged, kTimerBecameDirty}));
    EXPECT_EQ(seen, std::make_pair(0, 1));
    EXPECT_TRUE(timers().isDirty());
    timers().clearDirty();
    posts.clear();
    timers().timerAt(1)->fromTag(*tkTagParser().parse(timerElement("timer", "c", "id-c")));
    timers().setFrontMost(1);
    EXPECT_EQ(posts.names(), std::vector<std::string>{kFrontmostTimerChanged});
    EXPECT_FALSE(timers().isDirty());
    EXPECT_EQ(timers().getFrontMostID(), "id-c");
    tkNotificationCenter::instance().removeObserver(&reader, kFrontmostTimerChanged, nullptr);
}

TEST(tkTimerArray, IsDirtySeesAnyTimerAndClearDirtyClearsAllSilently) {
    makeTimers(3);
    timers().clearDirty();
    timers().timerAt(2)->setDirty(true);
    EXPECT_TRUE(timers().isDirty());
    tkNotificationRecorder posts;
    posts.listen(kTimerBecameDirty);
    timers().clearDirty();
    EXPECT_FALSE(timers().isDirty() || timers().timerAt(2)->isDirty() || !posts.empty());
}

// The menu's order: by title bytes, equal titles by number; an unknown position is added
// with 0. A move shifts those between and renumbers, and posts even when nothing moves.
TEST(tkTimerArray, TitleOrderAndMovesKeepNumbersStraight) {
    makeTimers(4);
    timers().timerAt(0)->setTitle("b");
    timers().timerAt(1)->setTitle("a");
    timers().timerAt(2)->setTitle("a");
    timers().rebuildTitleOrder();
    EXPECT_EQ(timers().getTitleOrder(),
              (std::map<int32_t, int32_t>{{0, 3}, {1, 1}, {2, 2}, {3, 0}}));
    EXPECT_EQ(timers().sortedTimerNumber(9), 0);
    EXPECT_EQ(timers().getTitleOrder().size(), 5u);

    tkNotificationRecorder posts;
    posts.listen(kFrontmostTimerChanged, &timers());
    posts.listen(kTimerBecameDirty, &timers());
    timers().moveTimer(0, 2);
    EXPECT_EQ(titles(), "a|a|b|Timer 4");
    timers().moveTimer(3, 1);
    EXPECT_EQ(titles(), "a|Timer 4|a|b");
    timers().moveTimer(1, 1);
    EXPECT_EQ(posts.count(kFrontmostTimerChanged), 3);
    EXPECT_EQ(posts.count(kTimerBecameDirty), 3);
}

// Numbered timers (each with its children in a fixed order, and no old time basis), then the
// flags; a load replaces the timers, reads the flags with the present values as defaults, and
// brings back running timers still running and clean.
TEST(tkTimerArray, SavedTextLoadsBackWithRunningTimersStillRunning) {
    tkTestClock clock;
    makeTimers(3);
    timers().timerAt(1)->setTitle("Design <draft> & review");
    timers().timerAt(1)->setTime(tkDuration(125));
    timers().timerAt(2)->start();
    timers().setGlobalDetailMode(false);
    timers().setDrawerOpen(false);
    clock.advance(10'000);
    const auto node = timers().toTag();
    std::string names;
    for (int32_t i = 0; i < node->childCount(); ++i) {
        names += node->childAt(i)->name() + "|";
    }
    for (int32_t i = 0; i < node->childAt(1)->childCount(); ++i) {
        names += node->childAt(1)->childAt(i)->name() + "|";
    }
    EXPECT_EQ(names,
              "timer 0|timer 1|timer 2|frontMostTimerNumber|timerOpen|globalDetailMode|"
              "drawerOpen|title|startTime|priorRunningTime|detailMode|started|id|record|");
    timers().removeAll();
    makeTimers(1);
    clock.advance(3'600'000);
    timers().fromTag(*tkTagParser().parse(node->toText(0)));
    EXPECT_EQ(titles(), "Timer 1|Design <draft> & review|Timer 3");
    EXPECT_EQ(timers().timerAt(1)->getDuration()->totalSeconds(), 125);
    EXPECT_TRUE(timers().timerAt(2)->isRunning());
    EXPECT_EQ(timers().timerAt(2)->getDuration()->totalSeconds(), 3610);
    EXPECT_FALSE(timers().timerAt(2)->isDirty());
    EXPECT_FALSE(timers().isGlobalDetailMode() || timers().isDrawerOpen());
    EXPECT_EQ(shownNumber(), 2u);

    timers().setGlobalDetailMode(true);
    load(timerElement("timer 0", "only") + "<timers><title>x</title></timers>" +
         timerElement("timerX", "y") + timerElement("Timer", "case matters") +
         "<cl_id>x</cl_id><timerOpen>false</timerOpen><globalDetailMode>junk</globalDetailMode>");
    EXPECT_EQ(titles(), "only");
    EXPECT_TRUE(timers().isGlobalDetailMode());
    EXPECT_FALSE(timers().isTimerOpen() || timers().isDrawerOpen() || timers().isLoading());
    EXPECT_FALSE(timers().toTag()->hasChild("cl_id"));
}

// Which timer a file brings to front, in both generations of the file: the old one names every
// timer "timer" and counts the front one from 1, wrapped so that the lowest number lands out of
// range; the front number beats the id of the front timer, which beats nothing.
TEST(tkTimerArray, FrontTimerOfEachFileGeneration) {
    const auto front = [](const std::string& n) {
        return "<frontMostTimerNumber>" + n + "</frontMostTimerNumber>";
    };
    const struct {
        bool old;
        std::string keys;
        int32_t storedFront;  // the field after the load
        bool shownAtLoad;     // whether the load itself showed that timer
    } cases[] = {{true, front("2"), 1, true},
                 {false, front("2"), 2, false},
                 {false, "<cl_id>q</cl_id>", 1, true},
                 {false, "<cl_id>q</cl_id>" + front("0"), 0, true},
                 {false, "", 0, true},
                 {true, front("-2147483648"), 2147483647, false}};
    for (const auto& c : cases) {
        load(timerElement(c.old ? "timer" : "timer 0", "a", "p") +
             timerElement(c.old ? "timer" : "timer 1", "b", "q") + c.keys);
        ASSERT_EQ(timers().numTimers(), 2u) << c.keys;
        EXPECT_EQ(timers().toTag()->childLong("frontMostTimerNumber", -9), c.storedFront) << c.keys;
        if (c.shownAtLoad) {
            EXPECT_EQ(shownNumber(), static_cast<uint32_t>(c.storedFront)) << c.keys;
        } else {
            EXPECT_EQ(timers().getFrontMost(), 1) << c.keys << ": clamped on the next ask";
        }
    }
}

// A file of many timers is shown once behind its last timer, not once per timer: per timer, a
// load of 50,000 never finished.
TEST(tkTimerArray, LoadShowsTheWindowOnceWhateverTheNumberOfTimers) {
    std::string body;
    for (int i = 0; i < 2000; ++i) {
        body += timerElement("timer " + std::to_string(i), "t" + std::to_string(11999 - i));
    }
    load(body + "<frontMostTimerNumber>7</frontMostTimerNumber>");
    ASSERT_EQ(timers().numTimers(), 2000u);
    EXPECT_LE(headlessUI()->drawerRefreshes(), 4u);
    EXPECT_LE(headlessUI()->menuRebuilds(), 2u);
    EXPECT_EQ(shownNumber(), 7u);
    // The title order, built once at the end, is complete.
    EXPECT_EQ(timers().sortedTimerNumber(0), 1999);
    EXPECT_EQ(timers().sortedTimerNumber(1999), 0);
}
