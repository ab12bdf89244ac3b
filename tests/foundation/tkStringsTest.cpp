#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "foundation/tkStrings.h"
#include "tests/support/tkStdoutCapture.h"

TEST(tkStrings, UpperCaseFoldsOnlyAsciiLettersAndNumbersPrintPlainDecimal) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"aB1", "AB1"},
        {"`az{", "`AZ{"},  // the neighbours of a-z stay
        {"caf\xc3\xa9 \xe4", "CAF\xc3\xa9 \xe4"},
        {std::string("a\0b", 3), std::string("A\0B", 3)},
    };
    for (const auto& [input, expected] : cases) {
        EXPECT_EQ(toUpperCase(input), expected) << "input: " << input;
    }
    EXPECT_EQ(intToString(INT64_MIN), "-9223372036854775808");
    EXPECT_EQ(uintToString(UINT64_MAX), "18446744073709551615");
    EXPECT_TRUE(startsWith("abc", "") && startsWith("abc", "abc"));
    EXPECT_FALSE(startsWith("ab", "abc") || startsWith("abc", "b") || startsWith("abc", "AB"));
}

TEST(tkStrings, LongsReadLikeStrtolAndFallBackWhenNothingWasRead) {
    const std::vector<std::pair<std::string, long>> cases = {
        {"12abc", 12}, {"abc", 7}, {"", 7},     {" -3", -3}, {"\t\n+42", 42},
        {"-", 7},      {"- 3", 7}, {"0x1F", 0}, {"1.9", 1},  {"99999999999999999999", LONG_MAX},
    };
    for (const auto& [input, expected] : cases) {
        EXPECT_EQ(stringToLong(input, 7), expected) << "input: " << input;
        EXPECT_EQ(stringToLongLong(input, 7), expected) << "input: " << input;
    }
}

// The reading is strtod's in the locale the program starts in, whatever locale is in force
// later; only text it can't read at all gets a word.
TEST(tkStrings, DoublesReadLikeStrtodAndSaySoOnlyWhenNothingWasRead) {
    const std::vector<std::string> cases = {
        "1.5x",  "7.25", " 2.5",      "-0.25",   "+3",    "1e3",      "1e+",    ".5",     "5.",
        "2.3",   "1,5",  "0x10",      "0x1p-2",  "0X.8",  "0x",       "0xg",    "0x-1",   "0xinf-",
        "0x.p1", "inf",  "-Infinity", "nan(12)", "1e999", "-1.5e999", "1e-400", "4e-320", "\v\f\r9",
        "x",     "",     " ",         ".",       "-",     "+-5",      "--5",    "e5",     "- 1",
    };
    for (const auto& input : cases) {
        char* end = nullptr;
        const double expected = std::strtod(input.c_str(), &end);
        const bool readable = end != input.c_str();
        tkStdoutCapture out;
        const double actual = stringToDouble(input, -1.0);
        if (!readable) {
            EXPECT_EQ(actual, -1.0) << "input: " << input;
        } else if (std::isnan(expected)) {
            EXPECT_TRUE(std::isnan(actual)) << "input: " << input;
        } else {
            EXPECT_EQ(actual, expected) << "input: " << input;
        }
        EXPECT_EQ(out.take(), readable ? "" : "could not parse double from string: " + input + "\n")
            << "input: " << input;
    }
}

TEST(tkStrings, ReplaceAllGoesLeftToRightWithoutRescanningInsertedText) {
    struct Case {
        std::string text, find, replacement, expected;
    };
    const std::vector<Case> cases = {
        {"aaa", "a", "b", "bbb"},
        {"abc", "x", "y", "abc"},
        {"", "a", "b", ""},
        {"aaa", "a", "aa", "aaaaaa"},
        {"aaaa", "aa", "a", "aa"},
        {"abab", "ab", "", ""},
        {"xab", "x", "a", "aab"},  // the new "aa" isn't looked at again
        {"a&b&", "&", "&amp;", "a&amp;b&amp;"},
        {"abc", "", "x", "abc"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(replaceAll(c.text, c.find, c.replacement), c.expected)
            << "text: " << c.text << " find: " << c.find << " replacement: " << c.replacement;
    }
}

TEST(tkStrings, QuotableExcerptEscapesWhatWouldNotShowAndClipsAtACharacterBoundary) {
    struct Case {
        std::string text;
        std::size_t limit;
        std::string expected;
    };
    const std::vector<Case> cases = {
        {"caf\xc3\xa9 ok", 60, "caf\xc3\xa9 ok"},
        {std::string("a\0b\t\xff broken \xc3", 14), 60, "a\\x00b\\x09\\xff broken \\xc3"},
        {"abcdefgh", 5, "abcde..."},
        {"abcd\xc3\xa9x", 5, "abcd..."},  // a character is never cut in two
    };
    for (const auto& c : cases) {
        EXPECT_EQ(quotableExcerpt(c.text, c.limit), c.expected) << "text: " << c.text;
    }
}
