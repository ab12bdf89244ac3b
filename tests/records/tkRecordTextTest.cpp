#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "foundation/StringFormatException.h"
#include "foundation/tkNotificationCenter.h"
#include "foundation/tkNotificationNames.h"
#include "records/tkDateFormatter.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecordText.h"
#include "tests/support/tkStdoutCapture.h"
#include "tests/support/tkTestClock.h"

namespace {

// 2 January 2005 noon UTC.
constexpr int64_t kJan2NoonMillis = int64_t{1104667200} * 1000;

class tkRecordLine : public testing::Test {
  protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        tzset();
    }
    void TearDown() override { installDateFormatter(nullptr); }
    tkTestClock clock{kJan2NoonMillis};
};

// Stands in for a user's locale: day.month.four-digit year, and nothing else readable.
class tkDottedDateFormatter : public tkDateFormatter {
  public:
    std::string localizedDateStringFromUSDateString(const std::string& stored) const override {
        const tkDate date(stored);
        return std::to_string(date.day()) + "." + std::to_string(date.month()) + "." +
               std::to_string(date.year());
    }
    std::string usDateStringFromLocalizedDateString(const std::string& shown) const override {
        int day = 0, month = 0, year = 0;
        if (std::sscanf(shown.c_str(), "%d.%d.%d", &day, &month, &year) != 3) {
            return std::string();
        }
        return tkDate(month, day, year).toString();
    }
};

// Random UTF-8 text with the odd separator thrown in, which the items must turn into blanks.
std::string randomText(std::mt19937& random, size_t maxBytes) {
    static const char* const pieces[] = {
        "a",  "Z",  "7",  " ", "-", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
        "\t", "\n", "\r", "&", "<", "\""};
    std::uniform_int_distribution<size_t> length(0, maxBytes);
    std::uniform_int_distribution<size_t> pick(0, std::size(pieces) - 1);
    std::string text;
    const size_t target = length(random);
    while (text.size() < target)
        text += pieces[pick(random)];
    return text;
}

}  // namespace

TEST_F(tkRecordLine, NewRecordIsDateDurationAndFourEmptyFields) {
    const tkRecord record;
    EXPECT_EQ(toTabLine(record), "1/2/5\t00:00:00\t\t\t\t");
}

TEST_F(tkRecordLine, FiveTabsAloneGiveTodayZeroAndEmptyFields) {
    const auto record = fromTabLine("\t\t\t\t\t");
    EXPECT_EQ(record->date()->toString(), "1/2/5");
    EXPECT_EQ(record->duration()->totalSeconds(), 0);
    EXPECT_EQ(record->employee()->text(), "");
    EXPECT_EQ(record->description()->text(), "");
    // An empty code read from a line is the list's shared empty entry.
    EXPECT_EQ(record->employee().get(), tkKnownRecordItems::instance().itemAt("employee", -1));
}

TEST_F(tkRecordLine, WrongTabCountsAreRefusedWithTheWholeLine) {
    struct Case {
        std::string line;
        std::string message;
    };
    const Case cases[] = {
        {"", "Not enough tabs in line: "},
        {"1/2/05\t1\tabc\tj\tf", "Not enough tabs in line: 1/2/05\t1\tabc\tj\tf"},
        {"1/2/05\t1\tabc\tj\tf\tdesc\t", "Too many tabs in line: 1/2/05\t1\tabc\tj\tf\tdesc\t"},
        {"\t\t\t\t\t\t\t", "Too many tabs in line: \t\t\t\t\t\t\t"},
    };
    for (const Case& c : cases) {
        tkStdoutCapture out;
        try {
            fromTabLine(c.line);
            ADD_FAILURE() << "accepted: " << c.line;
        } catch (const StringFormatException& e) {
            EXPECT_EQ(e.message(), c.message) << c.line;
        }
    }
    // No partial record: not even the codes of a refused line join the lists.
    EXPECT_EQ(tkKnownRecordItems::instance().count("employee"), 0);
}

TEST_F(tkRecordLine, ReadingALinePostsOnceForEachFieldAsItIsSet) {
    // An observer of every record watches a default record fill in, field by field.
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

TEST_F(tkRecordLine, ABadDateRefusesTheLineWithoutTouchingTheLists) {
    tkStdoutCapture out;
    EXPECT_THROW(fromTabLine("20050102\t1\tabc\tj\tf\tdesc"), StringFormatException);
    EXPECT_EQ(tkKnownRecordItems::instance().count("employee"), 0);
    EXPECT_EQ(tkKnownRecordItems::instance().count("job number"), 0);
}

TEST_F(tkRecordLine, ParsingInternsCodesInUpperCase) {
    const auto a = fromTabLine("1/2/05\t1\tabc\tj-1\tfx\tone");
    const auto b = fromTabLine("1/3/05\t2\tABC\tJ-1\tFx\ttwo");
    EXPECT_EQ(a->employee(), b->employee());
    EXPECT_EQ(a->jobNumber(), b->jobNumber());
    EXPECT_EQ(a->feeCode(), b->feeCode());
    EXPECT_EQ(a->employee()->text(), "ABC");
    EXPECT_EQ(tkKnownRecordItems::instance().count("fee code"), 1);
}

TEST_F(tkRecordLine, RoundTripKeepsEveryFieldForYears1950To2049) {
    std::mt19937 random(20240601);
    std::uniform_int_distribution<int32_t> year(1950, 2049), month(1, 12), day(1, 31);
    std::uniform_int_distribution<int32_t> seconds(0, 500 * 3600);
    for (int i = 0; i < 2000; ++i) {
        const tkRecord record(
            std::make_shared<tkDate>(month(random), day(random), year(random)),
            std::make_shared<tkDuration>(seconds(random)),
            tkKnownRecordItems::instance().getOrAddEmployee(randomText(random, 6)),
            tkKnownRecordItems::instance().getOrAddJobNumber(randomText(random, 12)),
            tkKnownRecordItems::instance().getOrAddFeeCode(randomText(random, 6)),
            std::make_shared<tkDescription>(randomText(random, 400)));
        const std::string line = toTabLine(record);
        const auto read = fromTabLine(line);
        for (const char* name : kFieldNames) {
            EXPECT_EQ(read->getField(name)->toString(), record.getField(name)->toString())
                << name << " in line: " << line;
        }
        EXPECT_TRUE(read->date()->isEqual(*record.date())) << line;
        EXPECT_EQ(read->employee(), record.employee()) << line;
    }
}

TEST_F(tkRecordLine, Utf8DescriptionsSurviveByteForByte) {
    const std::string text =
        "Caf\xC3\xA9 \xE2\x82\xAC"
        "5 \xF0\x9F\x98\x80 na\xC3\xAFve";
    const tkRecord record("1/2/05", "1", "", "", "", text);
    const auto read = fromTabLine(toTabLine(record));
    EXPECT_EQ(read->description()->text(), text);
}

TEST_F(tkRecordLine, DisplayDatesGoThroughTheInstalledFormatter) {
    const tkRecord record("3/4/2005", "1", "a", "b", "c", "d");
    // Headless, the stored form passes through.
    EXPECT_EQ(toTabLine(record, true), toTabLine(record, false));
    EXPECT_EQ(fromTabLine("3/4/5\t\t\t\t\t", true)->date()->toString(), "3/4/5");

    installDateFormatter(std::make_unique<tkDottedDateFormatter>());
    EXPECT_EQ(toTabLine(record, true), "4.3.2005\t01:00:00\tA\tB\tC\td");
    EXPECT_EQ(toTabLine(record, false), "3/4/5\t01:00:00\tA\tB\tC\td");
    EXPECT_EQ(fromTabLine("4.3.2005\t\t\t\t\t", true)->date()->toString(), "3/4/5");
    // A display date the user's format can't read comes back empty, which is today.
    EXPECT_EQ(fromTabLine("someday\t\t\t\t\t", true)->date()->toString(), "1/2/5");
    // Without the flag the line is read in stored form, formatter or not.
    EXPECT_EQ(fromTabLine("5/6/7\t\t\t\t\t", false)->date()->toString(), "5/6/7");
}
