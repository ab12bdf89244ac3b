#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/tkNotification.h"
#include "foundation/tkNotificationCenter.h"
#include "foundation/tkObserver.h"

// Test helper: registers for notification names with the center and keeps
// what arrives, in order of delivery. Removes every registration it made
// when it goes, as an observer must.
//
//   tkNotificationRecorder recorder;
//   recorder.listen(kTimerBecameDirty);            // from any sender
//   recorder.listen(kTimeSheetBecameDirty, &sheet); // from that sender only
//   ...
//   EXPECT_EQ(recorder.count(kTimerBecameDirty), 1);
class tkNotificationRecorder : public tkObserver {
  public:
    struct Record {
        std::string name;
        const void* sender;
        uint64_t data;
    };

    tkNotificationRecorder() = default;
    tkNotificationRecorder(const tkNotificationRecorder&) = delete;
    tkNotificationRecorder& operator=(const tkNotificationRecorder&) = delete;

    ~tkNotificationRecorder() {
        for (const auto& registration : _registrations) {
            tkNotificationCenter::instance().removeObserver(this, registration.name,
                                                            registration.sender);
        }
    }

    // A null sender listens to every sender.
    void listen(const std::string& name, const void* sender = nullptr) {
        tkNotificationCenter::instance().addObserver(
            this,
            [this](const tkNotification& note) {
                _records.push_back(Record{note.name(), note.sender(), note.data()});
            },
            name, sender);
        _registrations.push_back(Registration{name, sender});
    }

    const std::vector<Record>& records() const { return _records; }

    // The names received, in order.
    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const auto& record : _records) {
            result.push_back(record.name);
        }
        return result;
    }

    int count(const std::string& name) const {
        int n = 0;
        for (const auto& record : _records) {
            n += record.name == name ? 1 : 0;
        }
        return n;
    }

    int count(const std::string& name, const void* sender) const {
        int n = 0;
        for (const auto& record : _records) {
            n += record.name == name && record.sender == sender ? 1 : 0;
        }
        return n;
    }

    bool empty() const { return _records.empty(); }
    void clear() { _records.clear(); }

  private:
    struct Registration {
        std::string name;
        const void* sender;
    };

    std::vector<Record> _records;
    std::vector<Registration> _registrations;
};
