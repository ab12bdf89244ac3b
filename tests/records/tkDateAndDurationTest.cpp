#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "foundation/StringFormatException.h"
#include "foundation/tkStrings.h"
#include "records/tkDate.h"
#include "records/tkDuration.h"
#include "records/tkLeadingNumber.h"
#include "tests/support/tkStdoutCapture.h"
#include "tests/support/tkTestClock.h"
#include "tests/support/tkThrown.h"

namespace {

// 2 January 2005, 20:00 UTC: already the 3rd ten hours further east.
constexpr int64_t kJan2At20Utc = 1104696000;

// Local time is whatever TZ says; pin it so that "today" is the same on every machine.
void setTimeZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
}

// The three numbers in full, month first.
std::string numbers(const tkDate& date) {
    return std::to_string(date.month()) + " " + std::to_string(date.day()) + " " +
           std::to_string(date.year());
}

}  // namespace

// The year part: below 50 is this century, up to 99 the last, anything else as written;
// month and day are taken as they stand, -1 where no number starts.
TEST(tkDate, TextIsReadPartByPartWithTheCenturyRule) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"12/31/49", "12 31 2049"}, {"12/31/50", "12 31 1950"}, {"12/31/99", "12 31 1999"},
        {"12/31/100", "12 31 100"}, {"1/1/2004", "1 1 2004"},   {"1/1/0", "1 1 2000"},
        {"1/2/", "1 2 1999"},       {"1/2/x", "1 2 1999"},      {"1/2/-60", "1 2 1940"},
        {"1/2/ 5", "1 2 2005"},     {"1/2/5/9", "1 2 2005"},    {"1/2/12abc", "1 2 2012"},
        {"15/40/07", "15 40 2007"}, {"3x/4y/05", "3 4 2005"},   {"/4/05", "-1 4 2005"},
        {"3//05", "3 -1 2005"},     {" -2/+7/05", "-2 7 2005"}, {"a/b/05", "-1 -1 2005"}};
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(numbers(tkDate(text)), expected) << text;
    }
}

// Today, a timestamp, and a date without a year all go by the local calendar.
TEST(tkDate, TodayAndTimestampsAreLocalDates) {
    setTimeZone("UTC-10");
    tkTestClock clock(kJan2At20Utc * 1000);
    EXPECT_EQ(tkDate(std::string()).toString() + " " + tkDate::today()->toString() + " " +
                  tkDate(kJan2At20Utc).toString(),
              "1/3/5 1/3/5 1/3/5");
    // New Year's Eve in UTC is already the next year ten hours east.
    clock.set(int64_t{1104537600 - 3600} * 1000);
    EXPECT_EQ(numbers(tkDate(std::string("3/15"))), "3 15 2005");
    setTimeZone("UTC+5");
    EXPECT_EQ(tkDate(kJan2At20Utc).toString(), "1/2/5");
}

TEST(tkDate, TextWithoutSlashThrowsAndKeepsTheOldDate) {
    for (const char* text : {"20050103", "junk", " "}) {
        EXPECT_EQ(thrown([&] { tkDate{std::string(text)}; }),
                  "StringFormatException|Date fields in Chronolet Plus data files must have at "
                  "least one '/' character.")
            << text;
    }
    tkDate date(3, 4, 2005);
    EXPECT_THROW(date.setFromString("no slash"), StringFormatException);
    EXPECT_EQ(numbers(date), "3 4 2005");
}

// Unpadded with a two-digit year; dates are values set once, so the rendered text is kept even
// when the date is set again, and a clone starts from the numbers.
TEST(tkDate, TextIsUnpaddedWithTwoDigitYearAndRenderedOnce) {
    const std::vector<std::pair<tkDate, std::string>> cases = {{tkDate(1, 3, 2005), "1/3/5"},
                                                               {tkDate(12, 31, 1999), "12/31/99"},
                                                               {tkDate(6, 7, 2000), "6/7/0"},
                                                               {tkDate(10, 10, 2049), "10/10/49"},
                                                               {tkDate(2, 30, 100), "2/30/0"}};
    for (const auto& [date, text] : cases) {
        EXPECT_EQ(date.toString(), text) << text;
    }
    tkDate date(1, 2, 2003);
    EXPECT_EQ(date.toString(), "1/2/3");
    date.setFromString("4/5/06");
    EXPECT_EQ(numbers(date) + " " + date.toString() + " " + date.clone()->toString(),
              "4 5 2006 1/2/3 4/5/6");
}

// "1/9/5" sorts after "1/10/5" as text, before it as a date.
TEST(tkDate, CompareDateIsChronologicalWhileCompareIsTextual) {
    const tkDate dates[] = {tkDate(-1, 1, 1999), tkDate(1, 1, 1999),  tkDate(12, 31, 2004),
                            tkDate(1, 9, 2005),  tkDate(1, 10, 2005), tkDate(1, 28, 2005),
                            tkDate(2, 1, 2005)};
    for (size_t a = 0; a < std::size(dates); ++a) {
        for (size_t b = 0; b < std::size(dates); ++b) {
            const int expected = a < b ? -1 : a > b ? 1 : 0;
            EXPECT_EQ(dates[a].compareDate(dates[b]), expected) << a << " vs " << b;
            EXPECT_EQ(dates[a].isEqual(dates[b]), a == b) << a << " vs " << b;
        }
    }
    EXPECT_GT(tkDate(1, 9, 2005).compare(tkDate(1, 10, 2005)), 0);
}

namespace {

// The text and the total in seconds.
std::string shown(const tkDuration& duration) {
    return duration.toString() + " " + std::to_string(duration.totalSeconds());
}

}  // namespace

// Decimal hours are truncated, never rounded; the clock form reads two or three parts and
// keeps them as written, unnormalised; numbers give normalised parts. Every part has at least
// two digits, a sign counting as one of them.
TEST(tkDuration, TextIsReadAsDecimalHoursOrClockParts) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"0.5", "00:30:00 1800"},
        {"7.25", "07:15:00 26100"},
        {"2.3", "02:17:59 8279"},
        {"0.1", "00:06:00 360"},
        {"100", "100:00:00 360000"},
        {"1.5x", "01:30:00 5400"},
        {" 2", "02:00:00 7200"},
        {"0.999999", "00:59:59 3599"},
        {"1:2", "01:02:00 3720"},
        {"1:2:3:4", "01:02:03 3723"},
        {"1:90", "01:90:00 9000"},
        {"00:00:60", "00:00:60 60"},
        {"x:y:z", "00:00:00 0"},
        {":30", "00:30:00 1800"},
        {"-1:30", "0-1:30:00 -1800"},
        {"123:4:5", "123:04:05 443045"},
        {"-1:-30:-5", "0-1:0-30:0-5 -5405"},
        {"4294967295:0:0", "0-1:00:00 -3600"},
        {"", "00:00:00 0"}};
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(shown(tkDuration(text)), expected) << text;
    }
    const std::vector<std::pair<int32_t, std::string>> totals = {
        {3661, "01:01:01"}, {360000, "100:00:00"}, {599, "00:09:59"}, {-61, "00:0-1:0-1"}};
    for (const auto& [total, text] : totals) {
        EXPECT_EQ(shown(tkDuration(total)), text + " " + std::to_string(total));
    }
    EXPECT_EQ(tkDuration(1, 90, 0).toString(), "02:30:00");
    EXPECT_EQ(tkDuration(std::string("00:00:60")).clone()->toString(), "00:01:00");
}

// Unreadable text is zero, with a line and no exception. An edit keeps what the text doesn't
// say: a two-part edit keeps the seconds, and unreadable, negative or huge decimal hours keep
// the whole old value.
TEST(tkDuration, AnEditKeepsWhatTheTextDoesNotSay) {
    tkStdoutCapture out;
    EXPECT_EQ(shown(tkDuration(std::string("junk"))), "00:00:00 0");
    EXPECT_EQ(out.take(), "could not parse double from string: junk\n");
    tkDuration duration(std::string("1:2:3"));
    duration.setFromString("4:5");
    EXPECT_EQ(shown(duration), "04:05:03 14703");
    duration.setFromString("4:90:0");
    for (const char* text : {"junk", "-2.5", "nan", "1e300", "inf", "600000"}) {
        tkStdoutCapture quiet;
        duration.setFromString(text);
        EXPECT_EQ(duration.toString(), "04:90:00") << text;
    }
    duration.setFromString("596523");
    EXPECT_EQ(duration.hours(), 596523);
    duration.setTotalSeconds(5400);
    EXPECT_EQ(duration.toString(), "01:30:00");
}

// "100:00:00" sorts before "20:00:00" as text.
TEST(tkDuration, EqualityGoesByTotalWhileCompareGoesByText) {
    const tkDuration a(std::string("1:90"));
    const tkDuration b(std::string("2:30"));
    EXPECT_TRUE(a.isEqual(b));
    EXPECT_EQ(a.compareDuration(b), 0);
    EXPECT_NE(a.compare(b), 0);
    EXPECT_EQ(tkDuration(32400).compareDuration(tkDuration(36000)), -1);
    EXPECT_LT(tkDuration(360000).compare(tkDuration(72000)), 0);
    EXPECT_EQ(tkDuration(360000).compareDuration(tkDuration(72000)), 1);
}

// Date and duration parts are read without building a string for each; whatever the part,
// the number must be the one the general string reader gives.
TEST(LeadingNumber, ReadsEveryPartAsTheGeneralReaderDoes) {
    std::vector<std::string> parts = {"0", "7",  "07",  "12", "59x", "1 2", "",
                                      "x", " 5", "\t5", "+5", "-5",  "- 5", "0x1f"};
    const std::vector<std::string> large = {
        "2147483647",          "2147483648",           "4294967301",
        "999999999999999999",  "1000000000000000000",  "9223372036854775807",
        "9223372036854775808", "99999999999999999999", "-99999999999999999999",
        "00000000000000000042"};
    parts.insert(parts.end(), large.begin(), large.end());
    for (const std::string& part : parts) {
        for (long fallback : {-1L, 0L}) {
            EXPECT_EQ(leadingNumber(part, fallback), stringToLong(part, fallback))
                << "part \"" << part << "\", fallback " << fallback;
        }
    }
    EXPECT_EQ(leadingNumber(std::string("4\0002", 3), -1), 4);
}
