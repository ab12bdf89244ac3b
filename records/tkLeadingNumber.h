#pragma once

#include <limits>
#include <string>
#include <string_view>

#include "foundation/tkStrings.h"

// The leading decimal number of a part of a date or duration text, exactly as stringToLong
// reads it, without building a string for the part. Reading a time sheet parses several such
// parts per row; nearly all are plain digits, which are read here directly. Anything else
// (blanks, a sign, an empty part, a run too long to be sure of no overflow) goes to
// stringToLong itself, so its every rule still holds.
inline long leadingNumber(std::string_view text, long defaultValue) {
    // A run of this many digits can never overflow a long.
    constexpr size_t kSafeDigits = std::numeric_limits<long>::digits10;
    size_t digits = 0;
    long value = 0;
    while (digits < text.size() && text[digits] >= '0' && text[digits] <= '9') {
        if (digits == kSafeDigits) {
            return stringToLong(std::string(text), defaultValue);
        }
        value = value * 10 + (text[digits] - '0');
        ++digits;
    }
    if (digits == 0) {
        return stringToLong(std::string(text), defaultValue);
    }
    return value;
}
