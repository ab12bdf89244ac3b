#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

#include "foundation/StringFormatException.h"
#include "records/tkDate.h"
#include "tests/support/tkStdoutCapture.h"
#include "tests/support/tkTestClock.h"

namespace {

// 2 January 2005, 20:00 UTC: already the 3rd ten hours further east.
constexpr int64_t kJan2At20Utc = 1104696000;

// Local time is whatever TZ says; pin it so that "today" is the same on every machine.
void setTimeZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
}

}  // namespace

// The year part: below 50 is this century, up to 99 the last, anything else as written;
// month and day are taken as they stand, -1 where no number starts.
TEST(tkDate, TextIsReadPartByPartWithTheCenturyRule) {
    struct Case {
        const char* text;
        int32_t month, day, year;
    };
    const Case cases[] = {
        {"12/31/49", 12, 31, 2049}, {"12/31/50", 12, 31, 1950}, {"12/31/99", 12, 31, 1999},
        {"12/31/100", 12, 31, 100}, {"1/1/2004", 1, 1, 2004},   {"1/1/0", 1, 1, 2000},
        {"1/2/", 1, 2, 1999},       {"1/2/x", 1, 2, 1999},      {"1/2/-60", 1, 2, 1940},
        {"1/2/ 5", 1, 2, 2005},     {"1/2/5/9", 1, 2, 2005},    {"1/2/12abc", 1, 2, 2012},
        {"15/40/07", 15, 40, 2007}, {"3x/4y/05", 3, 4, 2005},   {"/4/05", -1, 4, 2005},
        {"3//05", 3, -1, 2005},     {" -2/+7/05", -2, 7, 2005}, {"a/b/05", -1, -1, 2005},
    };
    for (const Case& c : cases) {
        const tkDate date{std::string(c.text)};
        EXPECT_EQ(date.month(), c.month) << c.text;
        EXPECT_EQ(date.day(), c.day) << c.text;
        EXPECT_EQ(date.year(), c.year) << c.text;
    }
}

// Today, a timestamp, and a date without a year all go by the local calendar.
TEST(tkDate, TodayAndTimestampsAreLocalDates) {
    setTimeZone("UTC-10");
    tkTestClock clock(kJan2At20Utc * 1000);
    EXPECT_EQ(tkDate(std::string()).toString(), "1/3/5");
    EXPECT_EQ(tkDate::today()->toString(), "1/3/5");
    EXPECT_EQ(tkDate(kJan2At20Utc).toString(), "1/3/5");
    // New Year's Eve in UTC is already the next year ten hours east.
    clock.set(int64_t{1104537600 - 3600} * 1000);
    EXPECT_EQ(tkDate(std::string("3/15")).year(), 2005);
    setTimeZone("UTC+5");
    EXPECT_EQ(tkDate(kJan2At20Utc).toString(), "1/2/5");
}

TEST(tkDate, TextWithoutSlashThrowsAndKeepsTheOldDate) {
    for (const char* text : {"20050103", "junk", " "}) {
        tkStdoutCapture out;
        try {
            tkDate date{std::string(text)};
            FAIL() << "no exception for " << text;
        } catch (const StringFormatException& e) {
            EXPECT_EQ(e.message(),
                      "Date fields in Chronolet Plus data files must have at least one '/' "
                      "character.")
                << text;
        }
    }
    tkDate date(3, 4, 2005);
    EXPECT_THROW(date.setFromString("no slash"), StringFormatException);
    EXPECT_EQ(date.toString(), "3/4/5");
}

TEST(tkDate, TextIsUnpaddedWithTwoDigitYearAndRenderedOnce) {
    struct Case {
        int32_t month, day, year;
        const char* text;
    };
    const Case cases[] = {
        {1, 3, 2005, "1/3/5"},      {12, 31, 1999, "12/31/99"}, {6, 7, 2000, "6/7/0"},
        {10, 10, 2049, "10/10/49"}, {1, 1, 1950, "1/1/50"},     {2, 30, 100, "2/30/0"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(tkDate(c.month, c.day, c.year).toString(), c.text) << c.text;
    }
    // Dates are values set once: the rendered text is kept even when the date is set again,
    // and a clone starts from the numbers.
    tkDate date(1, 2, 2003);
    EXPECT_EQ(date.toString(), "1/2/3");
    date.setFromString("4/5/06");
    EXPECT_EQ(date.month(), 4);
    EXPECT_EQ(date.toString(), "1/2/3");
    EXPECT_EQ(date.clone()->toString(), "4/5/6");
}

TEST(tkDate, CompareDateIsChronologicalWhileCompareIsTextual) {
    struct Case {
        tkDate a, b;
        int expected;
    };
    const Case cases[] = {
        {tkDate(12, 31, 2004), tkDate(1, 1, 2005), -1},
        {tkDate(2, 1, 2005), tkDate(1, 28, 2005), 1},
        {tkDate(1, 9, 2005), tkDate(1, 10, 2005), -1},
        {tkDate(1, 9, 2005), tkDate(1, 9, 2005), 0},
        {tkDate(-1, 1, 1999), tkDate(1, 1, 1999), -1},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.a.compareDate(c.b), c.expected) << c.a.toString() << " vs " << c.b.toString();
        EXPECT_EQ(c.b.compareDate(c.a), -c.expected) << c.b.toString() << " vs " << c.a.toString();
        EXPECT_EQ(c.a.isEqual(c.b), c.expected == 0) << c.a.toString();
    }
    // "1/9/5" sorts after "1/10/5" as text, before it as a date.
    EXPECT_GT(tkDate(1, 9, 2005).compare(tkDate(1, 10, 2005)), 0);
}
