#include "foundation/tkStrings.h"

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cstdlib>
#include <iostream>
#include <system_error>

namespace {

bool isCSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// The C library reads a number's decimal point from the process locale, and
// a user interface library may well have set the user's one. Values in our
// files and fields always use ".", so a number that can't be held (too large
// or too small) is handed to strtod with the point it expects; only then is
// strtod's answer needed for the direction of the overflow.
double outOfRangeValue(const char* begin, const char* end) {
    std::string copy(begin, end);
    const char* point = std::localeconv()->decimal_point;
    std::string localPoint = point != nullptr && *point != '\0' ? point : ".";
    std::string translated;
    for (char c : copy) {
        if (c == '.') {
            translated += localPoint;
        } else {
            translated += c;
        }
    }
    return std::strtod(translated.c_str(), nullptr);
}

bool isHexDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// "0x" followed by a hexadecimal digit, or by a point and one: only then is
// the number hexadecimal. from_chars would take "inf" or a sign behind the
// prefix, which strtod does not.
bool isHexPrefix(const char* p, const char* last) {
    if (last - p < 3 || p[0] != '0' || (p[1] != 'x' && p[1] != 'X')) {
        return false;
    }
    return isHexDigit(p[2]) || (p[2] == '.' && last - p > 3 && isHexDigit(p[3]));
}

// strtod in the default "C" locale: white space, an optional sign, then a
// decimal or hexadecimal number, an infinity or a NaN. Returns how many
// bytes were read; 0 when nothing was.
std::size_t readDouble(const std::string& text, double& value) {
    const char* const start = text.c_str();
    const char* const last = start + text.size();
    const char* p = start;
    while (p != last && isCSpace(*p)) {
        ++p;
    }
    bool negative = false;
    if (p != last && (*p == '+' || *p == '-')) {
        negative = *p == '-';
        ++p;
    }
    // from_chars takes a minus sign of its own, which strtod would not after
    // the one it already read.
    if (p == last || *p == '+' || *p == '-') {
        return 0;
    }
    const char* numberStart = p;
    std::from_chars_result result{p, std::errc::invalid_argument};
    if (isHexPrefix(p, last)) {
        result = std::from_chars(p + 2, last, value, std::chars_format::hex);
    } else {
        // This also covers "0x" with no hexadecimal digit behind it, which
        // reads as the 0 alone.
        result = std::from_chars(p, last, value, std::chars_format::general);
    }
    if (result.ptr == numberStart) {
        return 0;
    }
    if (result.ec == std::errc::result_out_of_range) {
        value = outOfRangeValue(numberStart, result.ptr);
    }
    if (negative) {
        value = -value;
    }
    return static_cast<std::size_t>(result.ptr - start);
}

}  // namespace

std::string toUpperCase(const std::string& text) {
    std::string upper(text);
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 'a' + 'A');
        }
    }
    return upper;
}

long stringToLong(const std::string& text, long defaultValue) {
    const char* begin = text.c_str();
    char* end = nullptr;
    long value = std::strtol(begin, &end, 10);
    return end == begin ? defaultValue : value;
}

long long stringToLongLong(const std::string& text, long long defaultValue) {
    const char* begin = text.c_str();
    char* end = nullptr;
    long long value = std::strtoll(begin, &end, 10);
    return end == begin ? defaultValue : value;
}

double stringToDouble(const std::string& text, double defaultValue) {
    double value = 0.0;
    if (readDouble(text, value) == 0) {
        std::cout << "could not parse double from string: " << text << '\n' << std::flush;
        return defaultValue;
    }
    return value;
}

std::string intToString(int64_t value) {
    char buffer[24];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

std::string uintToString(uint64_t value) {
    char buffer[24];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

std::string replaceAll(const std::string& text, const std::string& find,
                       const std::string& replacement) {
    if (find.empty()) {
        return text;
    }
    std::string result;
    std::size_t from = 0;
    std::size_t found = text.find(find);
    if (found == std::string::npos) {
        return text;
    }
    result.reserve(text.size());
    while (found != std::string::npos) {
        result.append(text, from, found - from);
        result += replacement;
        from = found + find.size();
        found = text.find(find, from);
    }
    result.append(text, from, std::string::npos);
    return result;
}

bool startsWith(const std::string& text, const std::string& prefix) {
    return text.size() >= prefix.size() && text.compare(0, prefix.size(), prefix) == 0;
}

namespace {

// The length of the well-formed UTF-8 sequence at text[at], or 0 when the byte
// doesn't start one.
std::size_t utf8SequenceLength(const std::string& text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    std::size_t length = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
    } else {
        return 0;
    }
    if (at + length > text.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[at + i]);
        if (next < 0x80 || next > 0xBF) {
            return 0;
        }
    }
    return length;
}

}  // namespace

std::string quotableExcerpt(const std::string& text, std::size_t maxBytes) {
    static const char kHex[] = "0123456789abcdef";
    std::string result;
    std::size_t at = 0;
    while (at < text.size()) {
        const auto byte = static_cast<unsigned char>(text[at]);
        const std::size_t sequence = byte >= 0x80 ? utf8SequenceLength(text, at) : 1;
        if (at + std::max<std::size_t>(sequence, 1) > maxBytes) {
            result += "...";
            break;
        }
        if (sequence > 1) {
            result.append(text, at, sequence);
            at += sequence;
        } else if (byte < 0x20 || byte == 0x7F || byte >= 0x80) {
            result += "\\x";
            result += kHex[byte >> 4];
            result += kHex[byte & 0x0F];
            ++at;
        } else {
            result += static_cast<char>(byte);
            ++at;
        }
    }
    return result;
}
