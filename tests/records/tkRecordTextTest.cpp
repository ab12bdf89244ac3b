#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/StringFormatException.h"
#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecordText.h"
#include "tests/support/tkTestClock.h"
#include "tests/support/tkThrown.h"

namespace {

class tkRecordLine : public testing::Test {
  protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        tzset();
    }
    tkTestClock clock{int64_t{1104667200} * 1000};  // 2 January 2005 noon UTC
};

// Random UTF-8 text with the odd separator thrown in, which the items must turn into blanks.
std::string randomText(std::mt19937& random, size_t maxBytes) {
    static const char* const pieces[] = {
        "a",  "Z",  "7",  " ", "-", "\xC3\xA9", "\xE2\x82\xAC",
        "\t", "\n", "\r", "&", "<", "\"",       "\xF0\x9F\x98\x80"};
    std::string text;
    const size_t target = random() % (maxBytes + 1);
    while (text.size() < target) {
        text += pieces[random() % std::size(pieces)];
    }
    return text;
}

}  // namespace

// Empty fields read as today, zero and the lists' shared empty codes.
TEST_F(tkRecordLine, EmptyFieldsAreTodayZeroAndTheSharedEmptyCodes) {
    EXPECT_EQ(toTabLine(tkRecord()), "1/2/5\t00:00:00\t\t\t\t");
    const auto record = fromTabLine("\t\t\t\t\t");
    EXPECT_EQ(toTabLine(*record), "1/2/5\t00:00:00\t\t\t\t");
    EXPECT_EQ(record->employee().get(), tkKnownRecordItems::instance().itemAt("employee", -1));
}

// A line is refused whole, quoting the line, before any of its codes joins the lists; a
// line that is a view into a larger text counts only its own tabs.
TEST_F(tkRecordLine, BadLinesAreRefusedWithoutAPartialRecord) {
    const std::string tail = "1/2/3\ta\tb\tc\td\te";
    const struct {
        std::string_view line;
        std::string message;
    } cases[] = {
        {"", "Not enough tabs in line: "},
        {"1/2/05\t1\tabc\tj\tf", "Not enough tabs in line: 1/2/05\t1\tabc\tj\tf"},
        {"1/2/05\t1\tabc\tj\tf\tdesc\t", "Too many tabs in line: 1/2/05\t1\tabc\tj\tf\tdesc\t"},
        {"\t\t\t\t\t\t\t", "Too many tabs in line: \t\t\t\t\t\t\t"},
        {std::string_view(tail).substr(0, tail.size() - 2),
         "Not enough tabs in line: 1/2/3\ta\tb\tc\td"},
        {"20050102\t1\tabc\tj\tf\tdesc",
         "Date fields in Chronolet Plus data files must have at least one '/' character."},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(thrown([&] { sharedFromTabLine(c.line, false); }),
                  "StringFormatException|" + c.message)
            << c.line;
        EXPECT_EQ(thrown([&] { fromTabLine(std::string(c.line)); }).find("StringFormat"), 0u);
    }
    EXPECT_EQ(tkKnownRecordItems::instance().count("employee"), 0);
    EXPECT_EQ(tkKnownRecordItems::instance().count("job number"), 0);
}

// An observer of every record watches a default record fill in, field by field.
TEST_F(tkRecordLine, ReadingALinePostsOnceForEachFieldAsItIsSet) {
    struct Watcher : tkObserver {
        std::vector<std::string> seen;
    } watcher;
    tkNotificationCenter& center = tkNotificationCenter::instance();
    center.addObserver(
        &watcher,
        [&watcher](const tkNotification& note) {
            watcher.seen.push_back(toTabLine(*static_cast<const tkRecord*>(note.sender())));
        },
        kRecordWasEdited, nullptr);
    fromTabLine("1/2/03\t1:00\tab\tj\tf\tdesc");
    center.removeObserver(&watcher, kRecordWasEdited, nullptr);
    EXPECT_EQ(watcher.seen, (std::vector<std::string>{
                                "1/2/3\t00:00:00\t\t\t\t",
                                "1/2/3\t01:00:00\t\t\t\t",
                                "1/2/3\t01:00:00\tAB\t\t\t",
                                "1/2/3\t01:00:00\tAB\tJ\t\t",
                                "1/2/3\t01:00:00\tAB\tJ\tF\t",
                                "1/2/3\t01:00:00\tAB\tJ\tF\tdesc",
                            }));
}

// Any record of the years the two-digit form can hold comes back field for field, its codes
// the very objects of the lists; a line read from inside a text stops at its end.
TEST_F(tkRecordLine, RoundTripKeepsEveryFieldForYears1950To2049) {
    std::mt19937 random(20240601);
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    for (int i = 0; i < 2000; ++i) {
        const tkRecord record(
            std::make_shared<tkDate>(1 + random() % 12, 1 + random() % 31, 1950 + random() % 100),
            std::make_shared<tkDuration>(random() % (500 * 3600)),
            known.getOrAddEmployee(randomText(random, 6)),
            known.getOrAddJobNumber(randomText(random, 12)),
            known.getOrAddFeeCode(randomText(random, 6)),
            std::make_shared<tkDescription>(randomText(random, 400)));
        const std::string text = toTabLine(record) + "\tSPILL\n";
        const auto read =
            sharedFromTabLine(std::string_view(text).substr(0, text.size() - 7), false);
        for (const char* name : kFieldNames) {
            EXPECT_EQ(read->getField(name)->toString(), record.getField(name)->toString())
                << name << " in line: " << text;
        }
        EXPECT_TRUE(read->date()->isEqual(*record.date())) << text;
        EXPECT_EQ(read->employee(), record.employee()) << text;
        EXPECT_EQ(read->feeCode(), record.feeCode()) << text;
    }
    EXPECT_EQ(fromTabLine("1/1/20\t\t\t\t\tend\r")->description()->text(), "end ");
}
