#include "records/tkDefaultRecord.h"

#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"
#include "records/tkKnownRecordItems.h"

namespace {

void postDefaultRecordChanged() {
    tkNotificationCenter::instance().postNotification(
        tkNotification(kDefaultRecordChanged, &defaultRecord(), 0));
}

bool isBillingCode(const std::string& name) {
    return name == kFieldFeeCode || name == kFieldJobNumber || name == kFieldEmployee;
}

}  // namespace

tkRecord& defaultRecord() {
    // Deliberately never destroyed, so that nothing running late at exit (another singleton's
    // teardown, a final save) can find it gone.
    static tkRecord* record = new tkRecord();
    return *record;
}

std::shared_ptr<tkRecord> newFromDefault() {
    return std::make_shared<tkRecord>(defaultRecord());
}

void setDefaultRecord(const tkRecord& record) {
    defaultRecord().copyFrom(record);
    postDefaultRecordChanged();
}

tkStringConvertible* getDefaultField(const std::string& name) {
    return defaultRecord().getField(name);
}

void setDefaultField(const std::string& name, const std::string& text) {
    std::shared_ptr<tkStringConvertible> old;
    if (isBillingCode(name)) {
        // A code the lists refuse leaves the field alone; old stays null, so the change is
        // still announced.
        if (tkKnownRecordItems::instance().getOrAdd(name, text)) {
            old = defaultRecord().setField(name, text);
        }
    } else {
        old = defaultRecord().setField(name, text);
    }
    // Setting a billing code to the object it already holds is quiet. Date, duration and
    // description always get a new object, so they always announce.
    if (old.get() == getDefaultField(name)) {
        return;
    }
    postDefaultRecordChanged();
}
