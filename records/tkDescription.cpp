#include "records/tkDescription.h"

#include "records/tkRecordFields.h"

tkDescription::tkDescription(const std::string& text)
    : tkRecordItem(kFieldDescription, kMaxLength, text) {}

std::shared_ptr<tkStringConvertible> tkDescription::create(const std::string& text) const {
    return std::make_shared<tkDescription>(text);
}

std::shared_ptr<tkStringConvertible> tkDescription::clone() const {
    return std::make_shared<tkDescription>(toString());
}
