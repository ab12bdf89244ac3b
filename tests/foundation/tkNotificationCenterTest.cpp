#include <gtest/gtest.h>

#include <functional>
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

// An observer that writes its label into a shared journal each time one of its handlers
// runs, and can be told to do something in the middle of a post.
class Probe : public tkObserver {
  public:
    Probe(std::string label, std::string& journal) : _label(std::move(label)), _journal(journal) {}
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;
    ~Probe() {
        for (const auto& [name, sender] : _keys) {
            stop(name, sender);
        }
    }

    void listen(const std::string& name, const void* sender, std::function<void()> during = {}) {
        tkNotificationCenter::instance().addObserver(
            this,
            [this, during](const tkNotification&) {
                _journal += _label;
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
    std::string& _journal;
    std::vector<std::pair<std::string, const void*>> _keys;
};

void post(const std::string& name, const void* sender, uint64_t data = 0) {
    tkNotificationCenter::instance().postNotification(tkNotification(name, sender, data));
}

}  // namespace

TEST(tkNotificationCenter, SenderObserversRunFirstThenAnySenderInRegistrationOrder) {
    std::string journal;
    int sender = 0, other = 0;
    Probe a("A", journal), b("B", journal), c("C", journal), d("D", journal);
    c.listen(kEvent, nullptr);
    a.listen(kEvent, &sender);
    d.listen(kEvent, nullptr);
    b.listen(kEvent, &sender);
    post(kEvent, &sender);
    // From another sender, or from none, only the any-sender observers hear.
    post(kEvent, &other);
    post(kEvent, nullptr);
    EXPECT_EQ(journal,
              "ABCD"
              "CD"
              "CD");

    // Each registration runs, in its own turn, even twice under one key; one removal takes
    // both.
    journal.clear();
    a.listen(kEvent, &sender);
    post(kEvent, &sender);
    EXPECT_EQ(journal, "ABACD");
    a.stop(kEvent, &sender);
    journal.clear();
    post(kEvent, &sender);
    EXPECT_EQ(journal, "BCD");
}

TEST(tkNotificationCenter, NamesAndSendersMatchExactlyAndTheDataArrives) {
    int first = 0, second = 0;
    tkNotificationRecorder recorder;
    recorder.listen(kTimeSheetBecameDirty, &first);
    post("Time sheet became dirty", &first);   // no full stop: another event
    post("time sheet became dirty.", &first);  // case counts
    post(kTimeSheetBecameDirty, &second);
    EXPECT_TRUE(recorder.empty());
    post(kTimeSheetBecameDirty, &first, 42);
    ASSERT_EQ(recorder.records().size(), 1u);
    EXPECT_EQ(recorder.records()[0].sender, &first);
    EXPECT_EQ(recorder.records()[0].data, 42u);
}

TEST(tkNotificationCenter, SenderAndAnySenderRemovalsAreSeparateAndQuiet) {
    std::string journal;
    int sender = 0;
    Probe p("P", journal), o("O", journal);
    // Counted under the name, whatever the sender; a bulk poster relies on the count.
    const size_t& registered = tkNotificationCenter::instance().observerCount(kEvent);
    p.listen(kEvent, &sender);
    p.listen(kEvent, nullptr);
    o.listen(kEvent, &sender);
    EXPECT_EQ(registered, 3u);

    tkStdoutCapture out;
    p.stop(kEvent, nullptr);
    post(kEvent, &sender);
    p.listen(kEvent, nullptr);
    p.stop(kEvent, &sender);
    post(kEvent, &sender);
    EXPECT_EQ(journal,
              "PO"
              "OP");
    EXPECT_EQ(registered, 2u);
    // Keys with nothing under them are quiet, and so is the check behind an any-sender removal.
    p.stop("Nothing registered.", nullptr);
    p.stop("Nothing registered.", &sender);
    p.stop(kEvent, nullptr);
    EXPECT_EQ(out.take(), "");
    EXPECT_EQ(registered, 1u);
}

// The end of the range is looked up after every handler: registrations made during a post
// under the key being walked are reached in the same post, even when the key had none.
TEST(tkNotificationCenter, ObserversAddedDuringAPostHearItUnlessTheirPassIsOver) {
    std::string journal;
    int sender = 0;
    Probe late("L", journal), lateSender("S", journal), adder("+", journal);
    adder.listen(kEvent, &sender, [&] {
        if (journal == "+") {
            late.listen(kEvent, nullptr);
        }
    });
    post(kEvent, &sender);
    EXPECT_EQ(journal, "+L");

    std::string second;
    Probe anyAdder("+", second), lateAny("L", second);
    anyAdder.listen(kUndoStackChanged, nullptr, [&] {
        if (second == "+") {
            lateAny.listen(kUndoStackChanged, nullptr);
            // The sender pass is over by now: this one waits for the next post.
            lateSender.listen(kUndoStackChanged, &sender);
        }
    });
    post(kUndoStackChanged, &sender);
    EXPECT_EQ(second, "+L");
    EXPECT_EQ(journal, "+L");
    post(kUndoStackChanged, &sender);
    EXPECT_EQ(journal, "+LS");
}

// Not something the program does, but it must not touch freed memory: the walk goes on behind
// the removed entry, or ends when nothing is left behind it.
TEST(tkNotificationCenter, AHandlerCanRemoveItsOwnAndLaterRegistrations) {
    std::string journal;
    Probe once("1", journal), after("a", journal), victim("v", journal);
    once.listen(kEvent, nullptr, [&] {
        once.stop(kEvent, nullptr);
        victim.stop(kEvent, nullptr);
    });
    victim.listen(kEvent, nullptr);
    after.listen(kEvent, nullptr);
    post(kEvent, nullptr);
    post(kEvent, nullptr);
    EXPECT_EQ(journal,
              "1a"
              "a");
}

// The chain the program relies on: a handler posts, and the nested post is delivered
// completely before the outer walk goes on. A handler that throws ends that post only.
TEST(tkNotificationCenter, NestedPostsGoDepthFirstAndAThrowEndsOnlyItsPost) {
    std::string journal;
    int record = 0, preferences = 0;
    Probe prefs("p", journal), view("v", journal), state("s", journal), state2("t", journal);
    Probe deepest("d", journal);
    prefs.listen(kDefaultRecordChanged, nullptr, [&] { post(kPreferencesChanged, &preferences); });
    view.listen(kDefaultRecordChanged, nullptr);
    state.listen(kPreferencesChanged, &preferences, [&] { post(kUndoStackChanged, nullptr); });
    state2.listen(kPreferencesChanged, &preferences);
    bool fail = true;
    deepest.listen(kUndoStackChanged, nullptr, [&] {
        if (fail) {
            throw std::runtime_error("disk full");
        }
    });
    EXPECT_THROW(post(kDefaultRecordChanged, &record), std::runtime_error);
    EXPECT_EQ(journal, "psd");
    fail = false;
    journal.clear();
    post(kDefaultRecordChanged, &record);
    EXPECT_EQ(journal, "psdtv");
}

TEST(tkNotificationCenter, SuspensionIsAnnouncedWhileActiveAndDropsWhatComesBetween) {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    int sender = 0;
    tkNotificationRecorder recorder;
    recorder.listen(kNotificationCenterWillSuspend);
    recorder.listen(kNotificationCenterDidResume);
    recorder.listen(kEvent, &sender);
    recorder.listen(kUndoStackChanged);
    std::vector<bool> suspendedWhenHeard;
    tkObserver watcher;
    center.addObserver(
        &watcher,
        [&](const tkNotification&) { suspendedWhenHeard.push_back(center.isSuspended()); },
        kNotificationCenterWillSuspend, &center);
    center.setSuspended(true);
    center.setSuspended(true);  // no second announcement
    post(kEvent, &sender);
    center.setSuspended(false);
    center.setSuspended(false);
    center.removeObserver(&watcher, kNotificationCenterWillSuspend, &center);
    EXPECT_EQ(recorder.names(), (std::vector<std::string>{kNotificationCenterWillSuspend,
                                                          kNotificationCenterDidResume}));
    EXPECT_EQ(recorder.count(kNotificationCenterDidResume, &center), 1);
    EXPECT_EQ(suspendedWhenHeard, std::vector<bool>{false});

    // One name alone, for every sender; nothing dropped is replayed.
    recorder.clear();
    center.suspendEvent(kEvent);
    post(kEvent, &sender);
    post(kUndoStackChanged, nullptr);
    center.resumeEvent(kEvent);
    center.resumeEvent("Never suspended.");
    EXPECT_EQ(recorder.names(), std::vector<std::string>{kUndoStackChanged});
    post(kEvent, &sender);
    EXPECT_EQ(recorder.count(kEvent), 1);
}
