#include "records/tkRecordItem.h"

#include <utility>

#include "foundation/tkStrings.h"

tkRecordItem::tkRecordItem(int32_t maxLength, std::string initialText)
    : text_(std::move(initialText)) {
    // Construction always uses this class's own rule, never an override of sanitize().
    sanitizeInPlace(text_, maxLength);
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
    return static_cast<int64_t>(text.size()) < maxLength();
}

std::string tkRecordItem::sanitize(const std::string& text) const {
    std::string result = text;
    sanitizeInPlace(result, maxLength());
    return result;
}

void tkRecordItem::sanitizeInPlace(std::string& text, int32_t maxLength) {
    // Tabs and line ends are the separators of the tab-delimited line form; no item may
    // carry one. A CR LF pair becomes two blanks.
    // Hardly any text has one, and three library scans tell so much faster than a byte loop.
    if (text.find('\t') != std::string::npos || text.find('\n') != std::string::npos ||
        text.find('\r') != std::string::npos) {
        for (char& c : text) {
            if (c == '\t' || c == '\n' || c == '\r') {
                c = ' ';
            }
        }
    }
    // The limit counts bytes, so a multi-byte character may be cut in the middle.
    if (maxLength >= 0 && text.size() > static_cast<size_t>(maxLength)) {
        text.resize(static_cast<size_t>(maxLength));
    }
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
