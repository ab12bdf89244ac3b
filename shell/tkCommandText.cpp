#include "shell/tkCommandText.h"

#include <cstdio>

namespace {

void appendPart(std::string& out, int64_t value) {
    // As a duration writes its parts: a value of 9 or less, negative ones too, gets a "0".
    if (value <= 9) {
        out += '0';
    }
    out += std::to_string(value);
}

// The length of the UTF-8 sequence that starts at text[at], or 0 when none valid does.
size_t sequenceLength(std::string_view text, size_t at) {
    const auto byte = [&text](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead < 0x80) {
        return 1;
    } else if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        // No overlong forms, no surrogates.
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return 0;
    }
    if (at + length > text.size() || byte(at + 1) < low || byte(at + 1) > high) {
        return 0;
    }
    for (size_t i = 2; i < length; ++i) {
        if (byte(at + i) < 0x80 || byte(at + i) > 0xBF) {
            return 0;
        }
    }
    return length;
}

}  // namespace

std::string isoDate(int32_t year, int32_t month, int32_t day) {
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d", year, month, day);
    return text;
}

std::string totalDurationText(int64_t seconds) {
    // Parts truncate toward zero, as a duration's do.
    const int64_t hours = seconds / 3600;
    const int64_t minutes = seconds / 60 - hours * 60;
    std::string text;
    appendPart(text, hours);
    text += ':';
    appendPart(text, minutes);
    text += ':';
    appendPart(text, seconds - hours * 3600 - minutes * 60);
    return text;
}

size_t displayWidth(std::string_view text) {
    size_t width = 0;
    for (const char c : text) {
        width += (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
    }
    return width;
}

std::string csvField(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        return std::string(text);
    }
    std::string field = "\"";
    for (const char c : text) {
        field += c;
        if (c == '"') {
            field += '"';
        }
    }
    return field + '"';
}

std::string jsonString(std::string_view text) {
    std::string out = "\"";
    for (size_t at = 0; at < text.size();) {
        const char c = text[at];
        const size_t length = sequenceLength(text, at);
        if (length == 0) {
            out += "\\ufffd";
            ++at;
            continue;
        }
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
            out += escaped;
        } else {
            out.append(text.substr(at, length));
        }
        at += length;
    }
    return out + '"';
}

std::string oneLine(std::string_view text) {
    std::string line(text);
    for (char& c : line) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
            c = ' ';
        }
    }
    return line;
}
