#include "foundation/tkNotificationCenter.h"

#include <iostream>
#include <utility>

#include "foundation/tkNotificationNames.h"

tkNotificationCenter& tkNotificationCenter::instance() {
    static tkNotificationCenter center;
    return center;
}

void tkNotificationCenter::addObserver(tkObserver* observer, tkHandler handler,
                                       const std::string& name, const void* sender) {
    // The growing sequence number puts a new entry behind every entry of the
    // same key, so that handlers run in the order they registered.
    auto entry = std::make_shared<const Entry>(Entry{observer, std::move(handler)});
    const uint64_t sequence = _nextSequence++;
    ++observerCounts_[name];
    if (sender != nullptr) {
        objectDispatchTable.emplace(ObjectKey{sender, name, sequence}, std::move(entry));
    } else {
        anyObjectDispatchTable.emplace(AnyKey{name, sequence}, std::move(entry));
    }
}

void tkNotificationCenter::removeObserver(tkObserver* observer, const std::string& name,
                                          const void* sender) {
    if (sender != nullptr) {
        auto it = objectDispatchTable.lower_bound(ObjectKeyView{sender, name, 0});
        while (it != objectDispatchTable.end() && it->first.sender == sender &&
               it->first.name == name) {
            if (it->second->observer == observer) {
                it = objectDispatchTable.erase(it);
                --observerCounts_[name];
            } else {
                ++it;
            }
        }
        return;
    }

    auto it = anyObjectDispatchTable.lower_bound(AnyKeyView{name, 0});
    while (it != anyObjectDispatchTable.end() && it->first.name == name) {
        if (it->second->observer == observer) {
            it = anyObjectDispatchTable.erase(it);
            --observerCounts_[name];
        } else {
            ++it;
        }
    }
    // Belt and braces, kept on purpose: a second walk that reports any entry
    // of the observer the loop above should have erased, and leaves it be.
    for (auto check = anyObjectDispatchTable.lower_bound(AnyKeyView{name, 0});
         check != anyObjectDispatchTable.end() && check->first.name == name; ++check) {
        if (check->second->observer == observer) {
            std::cout << "Error: matching entry found after delete in "
                         "anyObjectDispatchTable for event "
                      << name << '\n'
                      << std::flush;
        }
    }
}

void tkNotificationCenter::postNotification(const tkNotification& note) {
    if (_suspended) {
        return;
    }
    if (suspendedEvents.count(note.name()) != 0) {
        return;
    }
    const void* const sender = note.sender();
    // Most posts reach nobody (a large load posts several per row); those are
    // answered here without copying the name. Nothing runs before the walks
    // below when neither table has an entry, so skipping them changes nothing.
    {
        const std::string_view probe = note.name();
        const bool anyForSender = sender != nullptr && [&] {
            auto it = objectDispatchTable.lower_bound(ObjectKeyView{sender, probe, 0});
            return it != objectDispatchTable.end() && it->first.sender == sender &&
                   it->first.name == probe;
        }();
        if (!anyForSender) {
            auto it = anyObjectDispatchTable.lower_bound(AnyKeyView{probe, 0});
            if (it == anyObjectDispatchTable.end() || it->first.name != probe) {
                return;
            }
        }
    }
    // Handlers may destroy the notification's owner or post others; the walk
    // works on its own copy of the key.
    const std::string name = note.name();

    // Each step looks up the entry after the one just delivered, by key and
    // sequence, instead of keeping an iterator: a handler may add or erase
    // entries, its own included, and the walk still goes on at the right
    // place. Entries added under this key during the walk have larger
    // sequences and are delivered in the same post. The entry is held while
    // its handler runs, so a handler that removes its own registration is not
    // destroyed under its feet.
    if (sender != nullptr) {
        auto it = objectDispatchTable.lower_bound(ObjectKeyView{sender, name, 0});
        while (it != objectDispatchTable.end() && it->first.sender == sender &&
               it->first.name == name) {
            const uint64_t delivered = it->first.sequence;
            std::shared_ptr<const Entry> entry = it->second;
            entry->handler(note);
            it = objectDispatchTable.upper_bound(ObjectKeyView{sender, name, delivered});
        }
    }

    auto it = anyObjectDispatchTable.lower_bound(AnyKeyView{name, 0});
    while (it != anyObjectDispatchTable.end() && it->first.name == name) {
        const uint64_t delivered = it->first.sequence;
        std::shared_ptr<const Entry> entry = it->second;
        entry->handler(note);
        it = anyObjectDispatchTable.upper_bound(AnyKeyView{name, delivered});
    }
}

const size_t& tkNotificationCenter::observerCount(const std::string& name) {
    return observerCounts_[name];
}

void tkNotificationCenter::suspendEvent(const std::string& name) {
    suspendedEvents.insert(name);
}

void tkNotificationCenter::resumeEvent(const std::string& name) {
    suspendedEvents.erase(name);
}

void tkNotificationCenter::setSuspended(bool suspended) {
    if (suspended == _suspended) {
        return;
    }
    // Both messages are posted while the center is active, so observers hear
    // them: the warning before the flag is set, the all-clear after it is
    // cleared.
    if (suspended) {
        postNotification(tkNotification(kNotificationCenterWillSuspend, this, 0));
        _suspended = true;
    } else {
        _suspended = false;
        postNotification(tkNotification(kNotificationCenterDidResume, this, 0));
    }
}
