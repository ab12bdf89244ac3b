#include "records/tkEmployee.h"

#include "records/tkKnownRecordItems.h"
#include "records/tkRecordFields.h"

tkEmployee::tkEmployee(const std::string& text) : tkRecordItem(kMaxLength, text) {}

std::shared_ptr<tkStringConvertible> tkEmployee::create(const std::string& text) const {
    // Billing codes are interned: one shared object per code, added to the list when new.
    return tkKnownRecordItems::instance().getOrAddEmployee(text);
}

std::shared_ptr<tkStringConvertible> tkEmployee::clone() const {
    return create(toString());
}

const std::string& tkEmployee::fieldName() const {
    static const std::string name = kFieldEmployee;
    return name;
}
