#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

#include "foundation/tkNotification.h"
#include "foundation/tkObserver.h"

using tkHandler = std::function<void(const tkNotification&)>;

// The synchronous event bus of the core. A post runs every matching handler
// before it returns; there is no queue.
//
// Delivery order, which the program relies on:
// - handlers registered for the posting sender run first, then those
//   registered for any sender (a null sender);
// - within each group, in the order of registration;
// - a handler may post; the nested post is delivered completely before the
//   outer one goes on (depth first);
// - a handler may add registrations: those under the key being delivered run
//   in the same post; it may remove registrations, and removed ones that
//   were still to come are not called. Removing the running one is safe too;
// - a handler that throws ends the post, and the exception reaches the poster.
//
// While suspended, posts are dropped for good, as are posts of any name in
// the suspended set. Single-threaded by contract.
class tkNotificationCenter {
  public:
    static tkNotificationCenter& instance();

    tkNotificationCenter(const tkNotificationCenter&) = delete;
    tkNotificationCenter& operator=(const tkNotificationCenter&) = delete;

    // Registers handler for the name, from that sender only or, with a null
    // sender, from any sender. Registrations are not de-duplicated: registering
    // twice runs the handler twice per post.
    void addObserver(tkObserver* observer, tkHandler handler, const std::string& name,
                     const void* sender);

    // Removes every registration of the observer under exactly that key (name
    // and sender, null meaning the any-sender registrations), whatever its
    // handler. Registrations under other senders stay.
    void removeObserver(tkObserver* observer, const std::string& name, const void* sender);

    void postNotification(const tkNotification& note);

    // The number of registrations under a name, for any sender and for given ones together,
    // kept current as observers come and go. The reference stays valid for the center's life,
    // so that a poster that posts in bulk can keep it and, while it reads 0, skip building
    // notifications that nobody would hear.
    const size_t& observerCount(const std::string& name);

    // Names in this set are dropped at posting until resumed.
    void suspendEvent(const std::string& name);
    void resumeEvent(const std::string& name);

    // Going to true posts "Notification center will suspend" first and then
    // drops everything; going to false resumes first and then posts
    // "Notification center did resume". Setting the present value does nothing.
    // What was dropped is not replayed.
    void setSuspended(bool suspended);
    bool isSuspended() const { return _suspended; }

  private:
    tkNotificationCenter() = default;

    struct Entry {
        tkObserver* observer;
        tkHandler handler;
    };

    // Each registration carries a sequence number behind its key, so that
    // entries of equal key keep the order of registration and a walk can step
    // on from an entry that was removed while its handler ran.
    struct ObjectKey {
        const void* sender;
        std::string name;
        uint64_t sequence;
    };
    struct ObjectKeyView {
        const void* sender;
        std::string_view name;
        uint64_t sequence;
    };
    struct ObjectKeyLess {
        using is_transparent = void;
        template <class A, class B>
        bool operator()(const A& a, const B& b) const {
            if (a.sender != b.sender) {
                return std::less<const void*>()(a.sender, b.sender);
            }
            int byName = std::string_view(a.name).compare(std::string_view(b.name));
            if (byName != 0) {
                return byName < 0;
            }
            return a.sequence < b.sequence;
        }
    };
    struct AnyKey {
        std::string name;
        uint64_t sequence;
    };
    struct AnyKeyView {
        std::string_view name;
        uint64_t sequence;
    };
    struct AnyKeyLess {
        using is_transparent = void;
        template <class A, class B>
        bool operator()(const A& a, const B& b) const {
            int byName = std::string_view(a.name).compare(std::string_view(b.name));
            if (byName != 0) {
                return byName < 0;
            }
            return a.sequence < b.sequence;
        }
    };

    using ObjectTable = std::map<ObjectKey, std::shared_ptr<const Entry>, ObjectKeyLess>;
    using AnyTable = std::map<AnyKey, std::shared_ptr<const Entry>, AnyKeyLess>;

    ObjectTable objectDispatchTable;
    AnyTable anyObjectDispatchTable;
    // Node-based, so the counts never move.
    std::unordered_map<std::string, size_t> observerCounts_;
    std::set<std::string> suspendedEvents;
    bool _suspended = false;
    uint64_t _nextSequence = 1;
};
