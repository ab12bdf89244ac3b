#include "records/tkJobNumber.h"

#include "records/tkKnownRecordItems.h"
#include "records/tkRecordFields.h"

tkJobNumber::tkJobNumber(const std::string& text) : tkRecordItem(kMaxLength, text) {}

std::shared_ptr<tkStringConvertible> tkJobNumber::create(const std::string& text) const {
    // Billing codes are interned: one shared object per code, added to the list when new.
    return tkKnownRecordItems::instance().getOrAddJobNumber(text);
}

std::shared_ptr<tkStringConvertible> tkJobNumber::clone() const {
    return create(toString());
}

const std::string& tkJobNumber::fieldName() const {
    static const std::string name = kFieldJobNumber;
    return name;
}
