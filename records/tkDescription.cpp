#include "records/tkDescription.h"

#include <utility>

#include "records/tkRecordFields.h"

tkDescription::tkDescription(std::string text)
    : tkRecordItem(kFieldDescription, kMaxLength, std::move(text)) {}

std::shared_ptr<tkStringConvertible> tkDescription::create(const std::string& text) const {
    return std::make_shared<tkDescription>(text);
}

std::shared_ptr<tkStringConvertible> tkDescription::clone() const {
    return std::make_shared<tkDescription>(toString());
}
