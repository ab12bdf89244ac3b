#include "records/tkDescription.h"

#include <utility>

#include "records/tkRecordFields.h"

tkDescription::tkDescription(std::string text) : tkRecordItem(kMaxLength, std::move(text)) {}

std::shared_ptr<tkStringConvertible> tkDescription::create(const std::string& text) const {
    return std::make_shared<tkDescription>(text);
}

std::shared_ptr<tkStringConvertible> tkDescription::clone() const {
    return std::make_shared<tkDescription>(toString());
}

const std::string& tkDescription::fieldName() const {
    static const std::string name = kFieldDescription;
    return name;
}
