#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Text forms of the command-line tool's output.

// YYYY-MM-DD, each part at least that many digits.
std::string isoDate(int32_t year, int32_t month, int32_t day);

// A sum of durations in the durations' own text form (hours, minutes and seconds of at least
// two digits each), without the 32-bit limit of a single duration.
std::string totalDurationText(int64_t seconds);

// Characters, not bytes: what a column of UTF-8 text takes on a terminal, near enough.
size_t displayWidth(std::string_view text);

// A field of comma-separated values by RFC 4180: quoted when it holds a comma, a quote or a
// line break, quotes doubled.
std::string csvField(std::string_view text);

// A JSON string, quotes included. Bytes that aren't UTF-8 (a text cut inside a character, say)
// become U+FFFD, so that the result is always valid JSON.
std::string jsonString(std::string_view text);

// Control characters become blanks: one value stays on one line of output.
std::string oneLine(std::string_view text);
