#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/support/tkStdoutCapture.h"

namespace {

const char* const kEvent = "Timer became dirty.";

// An observer that logs its label into a shared journal each time one of its
// handlers runs, and can be told to do something in the middle of a post.
class Probe : public tkObserver {
  public:
    Probe(std::string label, std::vector<std::string>& journal)
        : _label(std::move(label)), _journal(journal) {}
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    // Tests share one center when run in one process: leave nothing behind.
    ~Probe() {
        for (const auto& [name, sender] : _keys) {
            tkNotificationCenter::instance().removeObserver(this, name, sender);
        }
    }

    void listen(const std::string& name, const void* sender,
                std::function<void()> during = nullptr) {
        tkNotificationCenter::instance().addObserver(
            this,
            [this, during](const tkNotification&) {
                _journal.push_back(_label);
                if (during) {
                    during();
                }
            },
            name, sender);
        _keys.emplace_back(name, sender);
    }

    void stop(const std::string& name, const void* sender) {
        tkNotificationCenter::instance().removeObserver(this, name, sender);
    }

  private:
    std::string _label;
    std::vector<std::string>& _journal;
    std::vector<std::pair<std::string, const void*>> _keys;
};

void post(const std::string& name, const void* sender, uint64_t data = 0) {
    tkNotificationCenter::instance().postNotification(tkNotification(name, sender, data));
}

using Journal = std::vector<std::string>;

}  // namespace

TEST(tkNotificationCenterDelivery, SenderObserversRunFirstThenAnySenderInRegistrationOrder) {
    Journal journal;
    int sender = 0;
    Probe a("A", journal), b("B", journal), c("C", journal), d("D", journal);
    c.listen(kEvent, nullptr);
    a.listen(kEvent, &sender);
    d.listen(kEvent, nullptr);
    b.listen(kEvent, &sender);

    post(kEvent, &sender);
    EXPECT_EQ(journal, (Journal{"A", "B", "C", "D"}));

    // From another sender, or from none, only the any-sender observers hear.
    int other = 0;
    journal.clear();
    post(kEvent, &other);
    post(kEvent, nullptr);
    EXPECT_EQ(journal, (Journal{"C", "D", "C", "D"}));
}

TEST(tkNotificationCenterDelivery, NamesAndSendersMatchExactly) {
    int first = 0, second = 0;
    tkNotificationRecorder recorder;
    recorder.listen(kTimeSheetBecameDirty, &first);
    recorder.listen(kTimerBecameDirty);

    post("Time sheet became dirty", &first);   // no full stop: another event
    post("time sheet became dirty.", &first);  // case counts
    post(kTimeSheetBecameDirty, &second);
    EXPECT_TRUE(recorder.empty());

    post(kTimeSheetBecameDirty, &first, 42);
    ASSERT_EQ(recorder.records().size(), 1u);
    EXPECT_EQ(recorder.records()[0].sender, &first);
    EXPECT_EQ(recorder.records()[0].data, 42u);
}

TEST(tkNotificationCenterDelivery, EveryRegistrationRunsEvenForTheSameObserver) {
    Journal journal;
    int sender = 0, other = 0;
    Probe p("P", journal);
    p.listen(kEvent, &sender);
    p.listen(kEvent, nullptr);
    post(kEvent, &sender);
    EXPECT_EQ(journal.size(), 2u);
    post(kEvent, &other);
    EXPECT_EQ(journal.size(), 3u);

    // Twice under one key: twice per post, and one removal takes both.
    Journal twice;
    Probe q("Q", twice);
    q.listen(kUndoStackChanged, &sender);
    q.listen(kUndoStackChanged, &sender);
    post(kUndoStackChanged, &sender);
    EXPECT_EQ(twice, (Journal{"Q", "Q"}));
    q.stop(kUndoStackChanged, &sender);
    post(kUndoStackChanged, &sender);
    EXPECT_EQ(twice.size(), 2u);
}

TEST(tkNotificationCenterRemoval, ASenderRemovalAndAnAnySenderRemovalAreSeparate) {
    Journal journal;
    int sender = 0;
    Probe p("P", journal), other("O", journal);
    // Counted under the name, whatever the sender; a bulk poster relies on the count.
    const size_t& registered = tkNotificationCenter::instance().observerCount(kEvent);
    p.listen(kEvent, &sender);
    p.listen(kEvent, nullptr);
    other.listen(kEvent, &sender);
    EXPECT_EQ(registered, 3u);

    tkStdoutCapture out;
    p.stop(kEvent, nullptr);
    post(kEvent, &sender);
    EXPECT_EQ(journal, (Journal{"P", "O"}));
    EXPECT_EQ(registered, 2u);

    p.listen(kEvent, nullptr);
    p.stop(kEvent, &sender);
    journal.clear();
    post(kEvent, &sender);
    EXPECT_EQ(journal, (Journal{"O", "P"}));

    // Keys with nothing under them, or other observers' keys, are quiet; the
    // check behind an any-sender removal finds nothing left to report.
    p.stop("Nothing registered.", nullptr);
    p.stop("Nothing registered.", &sender);
    post("Nothing registered.", &sender);
    p.stop(kEvent, nullptr);
    EXPECT_EQ(out.take(), "");
    journal.clear();
    post(kEvent, &sender);
    EXPECT_EQ(journal, (Journal{"O"}));
    EXPECT_EQ(registered, 1u);
}

// The end of the range is looked up after every handler: registrations made
// during a post under the key being walked are reached in the same post.
TEST(tkNotificationCenterReentry, AHandlerCanAddObserversThatRunInTheSamePost) {
    Journal journal;
    int sender = 0;
    Probe late("late", journal), lateSender("lateSender", journal);
    Probe adder("adder", journal);
    adder.listen(kEvent, nullptr, [&] {
        if (journal.size() == 1) {
            late.listen(kEvent, nullptr);
            // The sender pass is over by now: this one waits for the next post.
            lateSender.listen(kEvent, &sender);
        }
    });

    post(kEvent, &sender);
    EXPECT_EQ(journal, (Journal{"adder", "late"}));
    journal.clear();
    post(kEvent, &sender);
    EXPECT_EQ(journal, (Journal{"lateSender", "adder", "late"}));
}

TEST(tkNotificationCenterReentry, AnySenderObserverAddedBySenderHandlerRunsEvenWhenNoneExisted) {
    // Nobody listens to any sender when the post starts; the one the sender's handler adds
    // must still hear this very post.
    Journal journal;
    int sender = 0;
    Probe late("late", journal);
    Probe adder("adder", journal);
    adder.listen(kEvent, &sender, [&] {
        if (journal.size() == 1) {
            late.listen(kEvent, nullptr);
        }
    });

    post(kEvent, &sender);
    EXPECT_EQ(journal, (Journal{"adder", "late"}));
}

// Not something the program does, but it must not touch freed memory: the
// walk goes on behind the removed entry.
TEST(tkNotificationCenterReentry, AHandlerCanRemoveItsOwnAndLaterRegistrations) {
    Journal journal;
    Probe once("once", journal), after("after", journal);
    once.listen(kEvent, nullptr, [&] { once.stop(kEvent, nullptr); });
    after.listen(kEvent, nullptr);

    post(kEvent, nullptr);
    post(kEvent, nullptr);
    EXPECT_EQ(journal, (Journal{"once", "after", "after"}));

    // Removing itself and the observers still to come ends the walk.
    Journal last;
    Probe sweeper("sweeper", last), victim("victim", last);
    sweeper.listen(kUndoStackChanged, nullptr, [&] {
        sweeper.stop(kUndoStackChanged, nullptr);
        victim.stop(kUndoStackChanged, nullptr);
    });
    victim.listen(kUndoStackChanged, nullptr);
    post(kUndoStackChanged, nullptr);
    EXPECT_EQ(last, (Journal{"sweeper"}));
}

// The chain the program relies on: a handler posts, and the nested post is
// delivered completely before the outer walk goes on.
TEST(tkNotificationCenterReentry, NestedPostsAreDeliveredDepthFirst) {
    Journal journal;
    int record = 0, preferences = 0;
    Probe prefs("prefs:default", journal), view("view:default", journal);
    Probe state("state:prefs", journal), state2("state2:prefs", journal);
    prefs.listen(kDefaultRecordChanged, nullptr, [&] { post(kPreferencesChanged, &preferences); });
    view.listen(kDefaultRecordChanged, nullptr);
    state.listen(kPreferencesChanged, &preferences, [&] { post(kUndoStackChanged, nullptr); });
    state2.listen(kPreferencesChanged, &preferences);
    Probe deepest("deepest:undo", journal);
    deepest.listen(kUndoStackChanged, nullptr);

    post(kDefaultRecordChanged, &record);
    EXPECT_EQ(journal, (Journal{"prefs:default", "state:prefs", "deepest:undo", "state2:prefs",
                                "view:default"}));
}

TEST(tkNotificationCenterReentry, AThrowingHandlerEndsThatPostOnly) {
    Journal journal;
    int sender = 0;
    bool fail = true;
    Probe before("before", journal), thrower("thrower", journal), after("after", journal);
    before.listen(kEvent, &sender);
    thrower.listen(kEvent, nullptr, [&] {
        if (fail) {
            throw std::runtime_error("disk full");
        }
    });
    after.listen(kEvent, nullptr);

    EXPECT_THROW(post(kEvent, &sender), std::runtime_error);
    EXPECT_EQ(journal, (Journal{"before", "thrower"}));

    // The tables are as they were: the next post reaches everyone.
    fail = false;
    journal.clear();
    post(kEvent, &sender);
    EXPECT_EQ(journal, (Journal{"before", "thrower", "after"}));
}

TEST(tkNotificationCenterSuspension, AnnouncesWhileActiveAndDropsWhatComesBetween) {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    tkNotificationRecorder recorder;
    recorder.listen(kNotificationCenterWillSuspend);
    recorder.listen(kNotificationCenterDidResume);
    recorder.listen(kEvent);
    std::vector<bool> suspendedWhenHeard;
    tkObserver watcher;
    center.addObserver(
        &watcher,
        [&](const tkNotification&) { suspendedWhenHeard.push_back(center.isSuspended()); },
        kNotificationCenterWillSuspend, &center);

    EXPECT_FALSE(center.isSuspended());
    center.setSuspended(true);
    center.setSuspended(true);  // no second announcement
    EXPECT_TRUE(center.isSuspended());
    post(kEvent, nullptr);
    post(kNotificationCenterWillSuspend, &center);

    // Registrations can change while suspended.
    tkNotificationRecorder late;
    late.listen(kEvent);
    center.setSuspended(false);
    center.setSuspended(false);
    EXPECT_FALSE(center.isSuspended());

    EXPECT_EQ(recorder.names(), (std::vector<std::string>{kNotificationCenterWillSuspend,
                                                          kNotificationCenterDidResume}));
    EXPECT_EQ(recorder.records()[0].sender, &center);
    EXPECT_EQ(recorder.records()[1].sender, &center);
    EXPECT_EQ(suspendedWhenHeard, (std::vector<bool>{false}));
    EXPECT_TRUE(late.empty());  // nothing dropped is replayed

    post(kEvent, nullptr);
    EXPECT_EQ(late.count(kEvent), 1);
    center.removeObserver(&watcher, kNotificationCenterWillSuspend, &center);
}

TEST(tkNotificationCenterSuspension, ASuspendedNameIsDroppedForEverySender) {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    int sender = 0;
    tkNotificationRecorder recorder;
    recorder.listen(kEvent, &sender);
    recorder.listen(kEvent);
    recorder.listen(kUndoStackChanged);

    center.suspendEvent(kEvent);
    center.suspendEvent(kEvent);
    post(kEvent, &sender);
    post(kEvent, nullptr);
    post(kUndoStackChanged, nullptr);
    EXPECT_EQ(recorder.names(), (std::vector<std::string>{kUndoStackChanged}));

    center.resumeEvent(kEvent);
    center.resumeEvent(kEvent);
    center.resumeEvent("Never suspended.");
    recorder.clear();
    post(kEvent, &sender);
    EXPECT_EQ(recorder.count(kEvent, &sender), 2);
}
