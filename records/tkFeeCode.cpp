#include "records/tkFeeCode.h"

#include "records/tkKnownRecordItems.h"
#include "records/tkRecordFields.h"

tkFeeCode::tkFeeCode(const std::string& text) : tkRecordItem(kMaxLength, text) {}

std::shared_ptr<tkStringConvertible> tkFeeCode::create(const std::string& text) const {
    // Billing codes are interned: one shared object per code, added to the list when new.
    return tkKnownRecordItems::instance().getOrAddFeeCode(text);
}

std::shared_ptr<tkStringConvertible> tkFeeCode::clone() const {
    return create(toString());
}

const std::string& tkFeeCode::fieldName() const {
    static const std::string name = kFieldFeeCode;
    return name;
}
