#pragma once

// Generated time sheets for the benchmarks: a few years of a small office's entries, as the
// file holds them. Deterministic, so runs compare.

#include <cstdint>
#include <random>
#include <string>

// The text of a time sheet file of the given number of rows, in date order as a save writes
// it: dates over ten years with several entries a day, a dozen employees, a few hundred job
// numbers, a handful of fee codes, and descriptions of a few words.
inline std::string generatedTimeSheetText(int64_t rows, uint32_t seed = 20240101) {
    static const char* const kWords[] = {
        "review", "draft",   "client", "call",    "meeting",     "contract", "notes",
        "fix",    "report",  "email",  "invoice", "design",      "plan",     "research",
        "travel", "prepare", "budget", "update",  "caf\xC3\xA9", "follow-up"};
    static const char* const kFeeCodes[] = {"CONS", "DEV", "MTG", "TRVL", "ADMN", "RSCH"};
    std::mt19937 random(seed);
    auto below = [&random](uint32_t n) { return static_cast<uint32_t>(random() % n); };

    std::string text;
    text.reserve(static_cast<size_t>(rows) * 72);
    int64_t day = 0;
    for (int64_t i = 0; i < rows; ++i) {
        // Spread the rows over ten years, several per day.
        day = i * 3650 / (rows > 0 ? rows : 1);
        const int64_t year = 2015 + day / 365;
        const int64_t month = 1 + (day % 365) / 31 % 12;
        const int64_t dayOfMonth = 1 + (day % 365) % 28;
        text += std::to_string(month);
        text += '/';
        text += std::to_string(dayOfMonth);
        text += '/';
        text += std::to_string(year % 100);
        text += '\t';
        const uint32_t seconds = below(8 * 3600);
        const uint32_t hours = seconds / 3600;
        const uint32_t minutes = seconds / 60 % 60;
        text += hours < 10 ? "0" : "";
        text += std::to_string(hours);
        text += minutes < 10 ? ":0" : ":";
        text += std::to_string(minutes);
        text += ":00";
        text += '\t';
        text += 'E';
        text += std::to_string(below(12));
        text += '\t';
        text += std::to_string(1000 + below(300));
        text += '-';
        text += std::to_string(below(10));
        text += '\t';
        text += kFeeCodes[below(6)];
        text += '\t';
        const uint32_t words = 2 + below(6);
        for (uint32_t w = 0; w < words; ++w) {
            if (w > 0) {
                text += ' ';
            }
            text += kWords[below(20)];
        }
        text += '\n';
    }
    return text;
}
