#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "foundation/tkNotification.h"
#include "foundation/tkNotificationCenter.h"
#include "foundation/tkObserver.h"

// Test helper: registers for notification names with the center and keeps what arrives, in
// order of delivery; takes its registrations back when it goes.
//
//   tkNotificationRecorder recorder;
//   recorder.listen(kTimerBecameDirty);             // from any sender
//   recorder.listen(kTimeSheetBecameDirty, &sheet);  // from that sender only
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
        for (const Record& key : _keys) {
            tkNotificationCenter::instance().removeObserver(this, key.name, key.sender);
        }
    }

    void listen(const std::string& name, const void* sender = nullptr) {
        tkNotificationCenter::instance().addObserver(
            this,
            [this](const tkNotification& note) {
                _records.push_back(Record{note.name(), note.sender(), note.data()});
            },
            name, sender);
        _keys.push_back(Record{name, sender, 0});
    }

    const std::vector<Record>& records() const { return _records; }
    std::vector<std::string> names() const {
        std::vector<std::string> result;
        for (const Record& record : _records) {
            result.push_back(record.name);
        }
        return result;
    }
    // Posts of that name, from that sender or (null) from any.
    int count(const std::string& name, const void* sender = nullptr) const {
        int n = 0;
        for (const Record& record : _records) {
            n += record.name == name && (sender == nullptr || record.sender == sender) ? 1 : 0;
        }
        return n;
    }
    bool empty() const { return _records.empty(); }
    void clear() { _records.clear(); }

  private:
    std::vector<Record> _records;
    std::vector<Record> _keys;
};
