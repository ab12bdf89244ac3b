#include <gtest/gtest.h>

#include <string>

#include "records/tkDuration.h"
#include "tests/support/tkStdoutCapture.h"

TEST(tkDuration, DecimalHoursAreTruncatedNeverRounded) {
    struct Case {
        const char* text;
        const char* rendered;
        int32_t total;
    };
    const Case cases[] = {
        {"0.5", "00:30:00", 1800},      {"1.5", "01:30:00", 5400},  {"7.25", "07:15:00", 26100},
        {"2.3", "02:17:59", 8279},      {"0.1", "00:06:00", 360},   {"0.0", "00:00:00", 0},
        {"100", "100:00:00", 360000},   {"1.5x", "01:30:00", 5400}, {" 2", "02:00:00", 7200},
        {"0.999999", "00:59:59", 3599},
    };
    for (const Case& c : cases) {
        const tkDuration duration{std::string(c.text)};
        EXPECT_EQ(duration.toString(), c.rendered) << c.text;
        EXPECT_EQ(duration.totalSeconds(), c.total) << c.text;
    }
}

TEST(tkDuration, ClockFormReadsTwoOrThreeParts) {
    struct Case {
        const char* text;
        const char* rendered;
        int32_t total;
    };
    const Case cases[] = {
        {"1:2", "01:02:00", 3720},     {"1:2:3", "01:02:03", 3723},
        {"1:2:3:4", "01:02:03", 3723}, {"1:90", "01:90:00", 9000},
        {"00:00:60", "00:00:60", 60},  {"x:y:z", "00:00:00", 0},
        {":30", "00:30:00", 1800},     {"1:2:3s", "01:02:03", 3723},
        {"-1:30", "0-1:30:00", -1800}, {"123:4:5", "123:04:05", 443045},
    };
    for (const Case& c : cases) {
        const tkDuration duration{std::string(c.text)};
        EXPECT_EQ(duration.toString(), c.rendered) << c.text;
        EXPECT_EQ(duration.totalSeconds(), c.total) << c.text;
    }
}

TEST(tkDuration, TwoPartEditKeepsTheSecondsOfAnExistingDuration) {
    tkDuration duration(std::string("1:2:3"));
    duration.setFromString("4:5");
    EXPECT_EQ(duration.toString(), "04:05:03");
    EXPECT_EQ(duration.totalSeconds(), 4 * 3600 + 5 * 60 + 3);
    // The three-part form and the empty text reset them.
    duration.setFromString("4:5:0");
    EXPECT_EQ(duration.seconds(), 0);
}

TEST(tkDuration, UnreadableTextIsZeroWithALineAndNoException) {
    {
        tkStdoutCapture out;
        const tkDuration junk(std::string("junk"));
        EXPECT_EQ(junk.totalSeconds(), 0);
        EXPECT_EQ(junk.toString(), "00:00:00");
        EXPECT_EQ(out.take(), "could not parse double from string: junk\n");
    }
    {
        tkStdoutCapture out;
        const tkDuration empty(std::string(""));
        EXPECT_EQ(empty.toString(), "00:00:00");
        EXPECT_EQ(out.take(), "");
    }
    // On an existing duration unreadable or negative text keeps the old parts.
    tkDuration duration(std::string("1:90"));
    for (const char* text : {"junk", "-2.5", "nan"}) {
        tkStdoutCapture out;
        duration.setFromString(text);
        EXPECT_EQ(duration.toString(), "01:90:00") << text;
    }
}

TEST(tkDuration, HugeDecimalHoursKeepTheOldValue) {
    tkDuration duration(3600);
    for (const char* text : {"1e300", "inf", "600000"}) {
        tkStdoutCapture out;
        duration.setFromString(text);
        EXPECT_EQ(duration.totalSeconds(), 3600) << text;
        EXPECT_NE(out.take(), "") << text;
    }
    duration.setFromString("596523");
    EXPECT_EQ(duration.hours(), 596523);
}

TEST(tkDuration, NumericPathsNormaliseTheParts) {
    const tkDuration fromParts(1, 90, 0);
    EXPECT_EQ(fromParts.toString(), "02:30:00");
    EXPECT_EQ(fromParts.minutes(), 30);

    const tkDuration unnormalised(std::string("00:00:60"));
    EXPECT_EQ(unnormalised.clone()->toString(), "00:01:00");

    tkDuration reset(std::string("1:90"));
    reset.setTotalSeconds(reset.totalSeconds());
    EXPECT_EQ(reset.toString(), "02:30:00");
}

TEST(tkDuration, RendersAtLeastTwoDigitsPerPart) {
    struct Case {
        int32_t total;
        const char* rendered;
    };
    const Case cases[] = {
        {0, "00:00:00"},   {3661, "01:01:01"},  {36000, "10:00:00"},  {360000, "100:00:00"},
        {599, "00:09:59"}, {-61, "00:0-1:0-1"}, {-3600, "0-1:00:00"},
    };
    for (const Case& c : cases) {
        const tkDuration duration(c.total);
        EXPECT_EQ(duration.toString(), c.rendered) << c.total;
        EXPECT_EQ(duration.totalSeconds(), c.total) << c.total;
    }
}

TEST(tkDuration, EqualityGoesByTotalWhileCompareGoesByText) {
    const tkDuration a(std::string("1:90"));
    const tkDuration b(std::string("2:30"));
    EXPECT_TRUE(a.isEqual(b));
    EXPECT_EQ(a.compareDuration(b), 0);
    EXPECT_NE(a.compare(b), 0);

    const tkDuration shorter(std::string("9:00"));
    const tkDuration longer(std::string("10:00"));
    EXPECT_EQ(shorter.compareDuration(longer), -1);
    EXPECT_EQ(longer.compareDuration(shorter), 1);
    // As text "09:00:00" < "10:00:00", but "100:00:00" < "20:00:00".
    EXPECT_LT(tkDuration(360000).compare(tkDuration(72000)), 0);
    EXPECT_EQ(tkDuration(360000).compareDuration(tkDuration(72000)), 1);
}
