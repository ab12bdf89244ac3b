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
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "records/tkDefaultRecord.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "records/tkRecordFields.h"
#include "records/tkRecordText.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/support/tkStdoutCapture.h"
#include "tests/support/tkTestClock.h"
#include "tests/support/tkThrown.h"

namespace {

class tkRecordTest : public testing::Test {
  protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        tzset();
        recorder.listen(kRecordWasEdited);
        recorder.listen(kDefaultRecordChanged);
    }
    tkTestClock clock{int64_t{1104667200} * 1000};  // 2 January 2005 noon UTC
    tkNotificationRecorder recorder;
};

}  // namespace

// The empty codes of a new record are its own, not the lists' empty entries (or every new
// record would make the empty code "in use"); codes are interned across records. A copy has
// its own values and the shared codes, and posts nothing; equality is identity of the six
// items, so no copy equals its original.
TEST_F(tkRecordTest, CopiesHaveOwnValuesAndSharedCodesAndPostNothing) {
    const tkRecord fresh;
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    EXPECT_NE(fresh.employee().get(), known.itemAt("employee", -1));
    EXPECT_NE(fresh.feeCode().get(), known.itemAt("fee code", -1));
    const tkRecord original("3/4/05", "1:90", "abc", "j-1", "fx", "Design");
    const tkRecord other("3/5/05", "2", "ABC", "J-1", "FX", "Review");
    EXPECT_EQ(original.employee(), other.employee());
    EXPECT_EQ(known.employees(), (std::vector<std::string>{"", "ABC"}));
    recorder.clear();
    const tkRecord copy(original);
    tkRecord assigned;
    assigned.copyFrom(original);
    EXPECT_TRUE(recorder.empty());
    for (const tkRecord* same : {&copy, static_cast<const tkRecord*>(&assigned)}) {
        EXPECT_NE(same->date(), original.date());
        EXPECT_NE(same->description(), original.description());
        EXPECT_EQ(same->jobNumber(), original.jobNumber());
        // The duration is copied by its total, so the copy comes out normalised.
        EXPECT_EQ(toTabLine(*same), "3/4/5\t02:30:00\tABC\tJ-1\tFX\tDesign");
        EXPECT_FALSE(*same == original);
    }
    EXPECT_TRUE(original == original);
}

// Each field by its exact name, with its own rules, posting even without a change; the old
// item comes back. A bad date leaves the field alone; names that are no field set nothing.
TEST_F(tkRecordTest, SetFieldAppliesEachFieldsRulesAndPostsEveryTime) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"date", "3/4/2005"},  {"duration", "1.5"},
        {"employee", "abcde"}, {"job number", "j-12345678901"},
        {"fee code", "f\tx"},  {"description", "Mixed\tCase"}};
    tkRecord record;
    for (const auto& [name, text] : cases) {
        const std::string before = record.getField(name)->toString();
        EXPECT_EQ(record.setField(name, text)->toString(), before) << name;
    }
    EXPECT_EQ(toTabLine(record), "3/4/5\t01:30:00\tABCD\tJ-12345678\tF X\tMixed Case");
    record.setEmployee(record.employee());
    record.setDuration(std::make_shared<tkDuration>(5400));
    record.setField("description", "Mixed Case");
    record.noteEdited();
    EXPECT_EQ(recorder.count(kRecordWasEdited, &record), 10);
    tkDate* date = record.date();
    tkStdoutCapture out;
    EXPECT_THROW(record.setField("date", "20050304"), StringFormatException);
    EXPECT_EQ(record.date(), date);
    for (const char* name : {"Date", "jobnumber", "sheet_id", "off", "", "date "}) {
        EXPECT_EQ(record.setField(name, "1/1/1"), nullptr) << name;
        EXPECT_FALSE(isFieldName(name)) << name;
        EXPECT_EQ(fieldTitle(name), "Unknown Field") << name;
    }
    EXPECT_EQ(recorder.count(kRecordWasEdited, &record), 10);
    EXPECT_EQ(fieldTitle("job number") + "|" + fieldTitle("fee code"), "Job Number|Fee Code");
}

// Six children in field order, escaped; read back in any case, a missing child is empty (the
// date today), sheet_id is read but never written, and a bad date fails before anything
// changes.
TEST_F(tkRecordTest, TaggedFormRoundTripsAndToleratesMissingChildren) {
    tkRecord original("12/31/1950", "123:4:5", "e\xC3\xA9", "job<1>", "f&", "tea & <cake>");
    const std::string text = original.toTag()->toText(0);
    EXPECT_EQ(text,
              "<record>\n"
              "\t<date>12/31/50</date>\n"
              "\t<duration>123:04:05</duration>\n"
              "\t<employee>E\xC3\xA9</employee>\n"
              "\t<job number>JOB&lt;1&gt;</job number>\n"
              "\t<fee code>F&amp;</fee code>\n"
              "\t<description>tea &amp; &lt;cake&gt;</description>\n"
              "</record>");
    const tkRecord read(*tkTagParser().parse(text));
    EXPECT_EQ(toTabLine(read), toTabLine(original));
    EXPECT_EQ(read.employee(), original.employee());
    recorder.clear();
    const tkRecord sparse(
        *tkTagParser().parse("<RECORD><Duration>1:90</Duration><EMPLOYEE>bo</"
                             "EMPLOYEE><sheet_id>42</sheet_id></RECORD>"));
    EXPECT_EQ(toTabLine(sparse) + "|" + sparse.sheetId(), "1/2/5\t01:90:00\tBO\t\t\t|42");
    EXPECT_EQ(recorder.count(kRecordWasEdited, &sparse), 6);
    EXPECT_FALSE(sparse.toTag()->hasChild("sheet_id"));
    tkStdoutCapture out;
    EXPECT_THROW(original.fromTag(*tkTagParser().parse(
                     "<record><date>x</date><employee>zz</employee></record>")),
                 StringFormatException);
    EXPECT_EQ(toTabLine(original), toTabLine(read));
    EXPECT_EQ(tkKnownRecordItems::instance().count("employee"), 2);
}

// A fresh record copies the default record's values and shares its codes. The default record
// announces every set of a value field, even to the same text, but a code only when the object
// changes; a code the lists refuse leaves the field and still announces; a bad date or an
// unknown name changes and announces nothing.
TEST_F(tkRecordTest, TheDefaultRecordAnnouncesEverySetButACodeItAlreadyHolds) {
    setDefaultField("employee", "abc");
    setDefaultField("description", "standing job");
    const std::shared_ptr<tkRecord> fresh = newFromDefault();
    EXPECT_EQ(fresh->employee(), defaultRecord().employee());
    EXPECT_NE(fresh->description(), defaultRecord().description());
    EXPECT_EQ(fresh->description()->text(), "standing job");
    EXPECT_EQ(getDefaultField("nothing"), nullptr);
    setDefaultField("fee code", "old");
    const std::vector<std::pair<std::string, std::string>> sets = {
        {"employee", "ABC"}, {"employee", "abc"}, {"employee", "xyz"}, {"description", ""},
        {"duration", "0.0"}, {"date", "1/2/03"},  {"Employee", "abc"}, {"fee code", "new"}};
    std::string posts;
    for (const auto& [field, text] : sets) {
        recorder.clear();
        tkKnownRecordItems::instance().setAddAllowed(field != "fee code");
        setDefaultField(field, text);
        posts += std::to_string(recorder.count(kDefaultRecordChanged, &defaultRecord()));
    }
    EXPECT_EQ(posts, "00111101");
    EXPECT_EQ(getDefaultField("fee code")->toString(), "OLD");
    recorder.clear();
    tkDate* before = defaultRecord().date();
    tkStdoutCapture out;
    EXPECT_THROW(setDefaultField("date", "tomorrow"), StringFormatException);
    EXPECT_EQ(defaultRecord().date(), before);
    EXPECT_TRUE(recorder.empty());

    tkKnownRecordItems::instance().setAddAllowed(true);
    const tkRecord source("3/4/05", "2", "emp", "job", "fee", "text");
    recorder.clear();
    setDefaultRecord(source);
    EXPECT_EQ(recorder.names(), std::vector<std::string>{kDefaultRecordChanged});
    EXPECT_EQ(recorder.records()[0].sender, &defaultRecord());
    EXPECT_EQ(defaultRecord().feeCode(), source.feeCode());
    EXPECT_EQ(toTabLine(defaultRecord()), "3/4/5\t02:00:00\tEMP\tJOB\tFEE\ttext");
}

namespace {

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
TEST_F(tkRecordTest, EmptyFieldsAreTodayZeroAndTheSharedEmptyCodes) {
    EXPECT_EQ(toTabLine(tkRecord()), "1/2/5\t00:00:00\t\t\t\t");
    const auto record = fromTabLine("\t\t\t\t\t");
    EXPECT_EQ(toTabLine(*record), "1/2/5\t00:00:00\t\t\t\t");
    EXPECT_EQ(record->employee().get(), tkKnownRecordItems::instance().itemAt("employee", -1));
}

// A line is refused whole, quoting the line, before any of its codes joins the lists; a
// line that is a view into a larger text counts only its own tabs.
TEST_F(tkRecordTest, BadLinesAreRefusedWithoutAPartialRecord) {
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
         "Date fields in Chronolet Plus data files must have at least one '/' character."}};
    for (const auto& c : cases) {
        EXPECT_EQ(thrown([&] { sharedFromTabLine(c.line, false); }),
                  "StringFormatException|" + c.message)
            << c.line;
        EXPECT_EQ(thrown([&] { fromTabLine(std::string(c.line)); }).find("StringFormat"), 0u);
    }
    EXPECT_EQ(tkKnownRecordItems::instance().count("employee") +
                  tkKnownRecordItems::instance().count("job number"),
              0);
}

// An observer of every record watches a default record fill in, field by field.
TEST_F(tkRecordTest, ReadingALinePostsOnceForEachFieldAsItIsSet) {
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
                                "1/2/3\t00:00:00\t\t\t\t", "1/2/3\t01:00:00\t\t\t\t",
                                "1/2/3\t01:00:00\tAB\t\t\t", "1/2/3\t01:00:00\tAB\tJ\t\t",
                                "1/2/3\t01:00:00\tAB\tJ\tF\t", "1/2/3\t01:00:00\tAB\tJ\tF\tdesc"}));
}

// Any record of the years the two-digit form can hold comes back field for field, its codes
// the very objects of the lists; a line read from inside a text stops at its end.
TEST_F(tkRecordTest, RoundTripKeepsEveryFieldForYears1950To2049) {
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
        EXPECT_EQ(toTabLine(*read), toTabLine(record));
        EXPECT_TRUE(read->date()->isEqual(*record.date())) << text;
        EXPECT_TRUE(read->employee() == record.employee() && read->feeCode() == record.feeCode() &&
                    read->jobNumber() == record.jobNumber())
            << text;
    }
    EXPECT_EQ(fromTabLine("1/1/20\t\t\t\t\tend\r")->description()->text(), "end ");
}
