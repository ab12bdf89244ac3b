#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "records/tkDuration.h"
#include "tests/support/tkStdoutCapture.h"

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
