#include "records/tkRecordItem.h"

#include <utility>

#include "foundation/tkStrings.h"

tkRecordItem::tkRecordItem(std::string name, int32_t maxLength, const std::string& initialText)
    : name_(std::move(name)), maxLength_(maxLength) {
    // Qualified on purpose: construction always uses this class's own rule.
    text_ = tkRecordItem::sanitize(initialText);
}

void tkRecordItem::setFromString(const std::string& text) {
    text_ = sanitize(text);
}

const std::string& tkRecordItem::toString() const {
    return text_;
}

bool tkRecordItem::isAcceptable(const std::string& text) const {
    // Deliberately one short of what sanitize() keeps: an item of exactly maxLength bytes is
    // stored whole but not "acceptable".
    return static_cast<int64_t>(text.size()) < maxLength_;
}

std::string tkRecordItem::sanitize(const std::string& text) const {
    // Tabs and line ends are the separators of the tab-delimited line form; no item may
    // carry one. A CR LF pair becomes two blanks.
    std::string result;
    if (text.find_first_of("\t\n\r") == std::string::npos) {
        // Nearly every text is clean: skip the three passes.
        result = text;
    } else {
        result = replaceAll(text, "\t", " ");
        result = replaceAll(result, "\n", " ");
        result = replaceAll(result, "\r", " ");
    }
    // The limit counts bytes, so a multi-byte character may be cut in the middle.
    if (maxLength_ >= 0 && result.size() > static_cast<size_t>(maxLength_)) {
        result.resize(static_cast<size_t>(maxLength_));
    }
    return result;
}

const std::string& tkRecordItem::fieldName() const {
    return name_;
}

bool tkRecordItem::isEqual(const tkRecordItem& other) const {
    return compareText(other) == 0;
}

void tkRecordItem::setText(const std::string& text) {
    text_ = text;
}

int32_t tkRecordItem::compareText(const tkRecordItem& other) const {
    return compareUpperCasedText(toString(), other.toString());
}
