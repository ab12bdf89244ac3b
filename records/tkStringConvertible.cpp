#include "records/tkStringConvertible.h"

#include <algorithm>
#include <cstring>

#include "foundation/tkStrings.h"

const std::string& tkStringConvertible::toDisplayString() const {
    return toString();
}

int32_t tkStringConvertible::compare(const tkStringConvertible& other) const {
    // Values of different fields have no order; asking for one is a programmer's error, and
    // the offending value itself is the payload.
    if (other.fieldName() != fieldName()) {
        throw static_cast<const tkStringConvertible*>(&other);
    }
    return compareUpperCasedText(toString(), other.toString());
}

int32_t compareUpperCasedText(const std::string& a, const std::string& b) {
    const std::string upperA = toUpperCase(a);
    const std::string upperB = toUpperCase(b);
    const size_t common = std::min(upperA.size(), upperB.size());
    // memcmp compares as unsigned char, so bytes above 127 sort after ASCII.
    const int byBytes = common == 0 ? 0 : std::memcmp(upperA.data(), upperB.data(), common);
    if (byBytes != 0) {
        return byBytes < 0 ? -1 : 1;
    }
    if (upperA.size() == upperB.size()) {
        return 0;
    }
    return upperA.size() < upperB.size() ? -1 : 1;
}
