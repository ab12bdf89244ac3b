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

TEST(tkDate, CenturyRuleMapsTheYearText) {
    struct Case {
        const char* text;
        int32_t year;
    };
    const Case cases[] = {
        {"12/31/49", 2049},   {"12/31/50", 1950},  {"12/31/99", 1999}, {"12/31/100", 100},
        {"12/31/2004", 2004}, {"1/1/0", 2000},     {"1/1/07", 2007},   {"1/2/", 1999},
        {"1/2/x", 1999},      {"1/2/-3", 1997},    {"1/2/-60", 1940},  {"1/2/ 5", 2005},
        {"1/2/5/9", 2005},    {"1/2/12abc", 2012},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(tkDate(std::string(c.text)).year(), c.year) << c.text;
    }
}

TEST(tkDate, MonthAndDayAreTakenAsTheyStand) {
    struct Case {
        const char* text;
        int32_t month;
        int32_t day;
    };
    const Case cases[] = {
        {"15/40/07", 15, 40}, {"13/45/07", 13, 45}, {"3x/4y/05", 3, 4}, {"/4/05", -1, 4},
        {"3//05", 3, -1},     {" -2/+7/05", -2, 7}, {"a/b/05", -1, -1},
    };
    for (const Case& c : cases) {
        const tkDate date{std::string(c.text)};
        EXPECT_EQ(date.month(), c.month) << c.text;
        EXPECT_EQ(date.day(), c.day) << c.text;
    }
}

TEST(tkDate, WithoutAYearItIsThisYearInLocalTime) {
    setTimeZone("UTC-10");
    tkTestClock clock;
    // New Year's Eve in UTC is already the next year ten hours east.
    clock.set(int64_t{1104537600 - 3600} * 1000);  // 31 Dec 2004, 23:00 UTC
    const tkDate date(std::string("3/15"));
    EXPECT_EQ(date.month(), 3);
    EXPECT_EQ(date.day(), 15);
    EXPECT_EQ(date.year(), 2005);
}

TEST(tkDate, EmptyTextAndTodayAreTheLocalDate) {
    setTimeZone("UTC-10");
    tkTestClock clock(kJan2At20Utc * 1000);
    for (const tkDate& date : {tkDate(std::string()), *tkDate::today()}) {
        EXPECT_EQ(date.month(), 1);
        EXPECT_EQ(date.day(), 3);
        EXPECT_EQ(date.year(), 2005);
    }
    setTimeZone("UTC");
    EXPECT_EQ(tkDate(std::string()).day(), 2);
}

TEST(tkDate, TimestampConstructorUsesLocalTime) {
    setTimeZone("UTC+5");  // five hours west
    const tkDate date(kJan2At20Utc);
    EXPECT_EQ(date.toString(), "1/2/5");
    setTimeZone("UTC-10");
    EXPECT_EQ(tkDate(kJan2At20Utc).toString(), "1/3/5");
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
    EXPECT_EQ(date.month(), 3);
    EXPECT_EQ(date.day(), 4);
    EXPECT_EQ(date.year(), 2005);
}

TEST(tkDate, TextIsUnpaddedWithTwoDigitYear) {
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
    const tkDate read(std::string("3/4/2005"));
    EXPECT_EQ(read.toString(), "3/4/5");
    EXPECT_TRUE(tkDate(read.toString()).isEqual(read));
}

TEST(tkDate, RenderedTextIsKeptEvenWhenTheDateIsSetAgain) {
    tkDate date(1, 2, 2003);
    EXPECT_EQ(date.toString(), "1/2/3");
    date.setFromString("4/5/06");
    EXPECT_EQ(date.month(), 4);
    // Dates are values set once; the cache isn't renewed.
    EXPECT_EQ(date.toString(), "1/2/3");
    // A clone starts from the numbers, with no cache.
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
    }
    // "1/9/5" sorts after "1/10/5" as text, before it as a date.
    EXPECT_GT(tkDate(1, 9, 2005).compare(tkDate(1, 10, 2005)), 0);
}
