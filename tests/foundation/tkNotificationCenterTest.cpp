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

// An observer that writes its label into a shared journal each time one of its handlers runs,
// and can be told to do something in the middle of a post; it takes back its registrations.
struct Probe : tkObserver {
    Probe(char label, std::string& journal) : label(label), journal(journal) {}
    ~Probe() {
        for (const auto& [name, sender] : keys) {
            stop(name, sender);
        }
    }
    void listen(const std::string& name, const void* sender, std::function<void()> during = {}) {
        tkNotificationCenter::instance().addObserver(
            this,
            [this, during](const tkNotification&) {
                journal += label;
                if (during) {
                    during();
                }
            },
            name, sender);
        keys.emplace_back(name, sender);
    }
    void stop(const std::string& name, const void* sender) {
        tkNotificationCenter::instance().removeObserver(this, name, sender);
    }

    char label;
    std::string& journal;
    std::vector<std::pair<std::string, const void*>> keys;
};

void post(const std::string& name, const void* sender, uint64_t data = 0) {
    tkNotificationCenter::instance().postNotification(tkNotification(name, sender, data));
}

}  // namespace

// Observers of the sender run first, then those of any sender, each in registration order,
// even twice under one key; names and senders match exactly, and the data arrives.
TEST(tkNotificationCenter, SenderObserversRunFirstThenAnySenderInRegistrationOrder) {
    std::string journal;
    int sender = 0, other = 0;
    Probe a('A', journal), b('B', journal), c('C', journal), d('D', journal);
    c.listen(kEvent, nullptr);
    a.listen(kEvent, &sender);
    d.listen(kEvent, nullptr);
    b.listen(kEvent, &sender);
    post(kEvent, &sender);
    post(kEvent, &other);
    post(kEvent, nullptr);
    post("Timer became dirty", &sender);   // no full stop: another event
    post("timer became dirty.", &sender);  // case counts
    EXPECT_EQ(journal,
              "ABCD"
              "CD"
              "CD");
    journal.clear();
    a.listen(kEvent, &sender);
    post(kEvent, &sender);
    EXPECT_EQ(journal, "ABACD");

    tkNotificationRecorder recorder;
    recorder.listen(kTimeSheetBecameDirty, &sender);
    post(kTimeSheetBecameDirty, &sender, 42);
    ASSERT_EQ(recorder.records().size(), 1u);
    EXPECT_EQ(recorder.records()[0].sender, &sender);
    EXPECT_EQ(recorder.records()[0].data, 42u);
}

// A removal takes every registration of the observer under its key alone, and is quiet where
// there is nothing; the count under the name, which a bulk poster relies on, follows.
TEST(tkNotificationCenter, SenderAndAnySenderRemovalsAreSeparateAndQuiet) {
    std::string journal;
    int sender = 0;
    Probe p('P', journal), o('O', journal);
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
    p.stop("Nothing registered.", nullptr);
    p.stop("Nothing registered.", &sender);
    p.stop(kEvent, nullptr);
    EXPECT_EQ(out.take(), "");
    EXPECT_EQ(registered, 1u);
}

// The end of the range is looked up after every handler: registrations made during a post
// under the key being walked are reached in the same post (even when the key had none), those
// of a pass that is over wait for the next post; a handler can remove its own and later
// registrations, and the walk goes on behind them without touching freed memory.
TEST(tkNotificationCenter, RegistrationsCanChangeDuringAPost) {
    std::string journal;
    int sender = 0;
    Probe adder('+', journal), late('L', journal), lateSender('S', journal);
    adder.listen(kEvent, nullptr, [&] {
        if (journal == "+") {
            late.listen(kEvent, nullptr);
            lateSender.listen(kEvent, &sender);
        }
    });
    post(kEvent, &sender);
    post(kEvent, &sender);
    EXPECT_EQ(journal,
              "+L"
              "S+L");

    std::string second;
    Probe senderAdder('+', second), any('L', second), once('1', second), victim('v', second),
        after('a', second);
    senderAdder.listen(kUndoStackChanged, &sender, [&] {
        if (second == "+") {
            any.listen(kUndoStackChanged, nullptr);
        }
    });
    post(kUndoStackChanged, &sender);
    EXPECT_EQ(second, "+L");
    once.listen(kUndoStackChanged, nullptr, [&] {
        once.stop(kUndoStackChanged, nullptr);
        victim.stop(kUndoStackChanged, nullptr);
    });
    victim.listen(kUndoStackChanged, nullptr);
    after.listen(kUndoStackChanged, nullptr);
    second.clear();
    post(kUndoStackChanged, nullptr);
    post(kUndoStackChanged, nullptr);
    EXPECT_EQ(second,
              "L1a"
              "La");
}

// The chain the program relies on: a handler posts, and the nested post is delivered
// completely before the outer walk goes on. A handler that throws ends that post only.
TEST(tkNotificationCenter, NestedPostsGoDepthFirstAndAThrowEndsOnlyItsPost) {
    std::string journal;
    int record = 0, preferences = 0;
    bool fail = true;
    Probe p('p', journal), v('v', journal), s('s', journal), t('t', journal), d('d', journal);
    p.listen(kDefaultRecordChanged, nullptr, [&] { post(kPreferencesChanged, &preferences); });
    v.listen(kDefaultRecordChanged, nullptr);
    s.listen(kPreferencesChanged, &preferences, [&] { post(kUndoStackChanged, nullptr); });
    t.listen(kPreferencesChanged, &preferences);
    d.listen(kUndoStackChanged, nullptr, [&] {
        if (fail) {
            throw std::runtime_error("disk full");
        }
    });
    EXPECT_THROW(post(kDefaultRecordChanged, &record), std::runtime_error);
    fail = false;
    post(kDefaultRecordChanged, &record);
    EXPECT_EQ(journal,
              "psd"
              "psdtv");
}

// Suspension is announced while the center is active, both ways; what comes between is
// dropped, not replayed. One name alone can be suspended, for every sender.
TEST(tkNotificationCenter, SuspensionIsAnnouncedWhileActiveAndDropsWhatComesBetween) {
    tkNotificationCenter& center = tkNotificationCenter::instance();
    int sender = 0;
    tkNotificationRecorder recorder;
    recorder.listen(kNotificationCenterWillSuspend);
    recorder.listen(kNotificationCenterDidResume);
    recorder.listen(kEvent, &sender);
    recorder.listen(kUndoStackChanged);
    std::string journal;
    Probe watcher('w', journal);
    watcher.listen(kNotificationCenterWillSuspend, &center,
                   [&] { journal += center.isSuspended() ? "!" : ""; });
    center.setSuspended(true);
    center.setSuspended(true);  // no second announcement
    post(kEvent, &sender);
    center.setSuspended(false);
    center.setSuspended(false);
    EXPECT_EQ(recorder.names(), (std::vector<std::string>{kNotificationCenterWillSuspend,
                                                          kNotificationCenterDidResume}));
    EXPECT_EQ(recorder.count(kNotificationCenterDidResume, &center), 1);
    EXPECT_EQ(journal, "w");
    recorder.clear();
    center.suspendEvent(kEvent);
    post(kEvent, &sender);
    post(kUndoStackChanged, nullptr);
    center.resumeEvent(kEvent);
    center.resumeEvent("Never suspended.");
    post(kEvent, &sender);
    EXPECT_EQ(recorder.names(), (std::vector<std::string>{kUndoStackChanged, kEvent}));
}
