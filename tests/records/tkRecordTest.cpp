#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <memory>
#include <string>

#include "foundation/StringFormatException.h"
#include "foundation/tkNotificationNames.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "records/tkRecordFields.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/support/tkStdoutCapture.h"
#include "tests/support/tkTestClock.h"

namespace {

// 2 January 2005 noon UTC.
constexpr int64_t kJan2NoonMillis = int64_t{1104667200} * 1000;

class tkRecordFixture : public testing::Test {
  protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        tzset();
    }
    tkTestClock clock{kJan2NoonMillis};
};

std::unique_ptr<tkTagNode> parse(const std::string& text) {
    tkTagParser parser;
    return parser.parse(text);
}

}  // namespace

using tkRecordConstruction = tkRecordFixture;
using tkRecordFields = tkRecordFixture;
using tkRecordTaggedText = tkRecordFixture;

TEST_F(tkRecordConstruction, NewRecordHoldsPrivateEmptyCodes) {
    const tkRecord record;
    EXPECT_EQ(record.sheetId(), "");
    // The empty codes are the record's own, not the lists' empty entries: otherwise every new
    // record would make the empty code "in use".
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    EXPECT_NE(record.employee().get(), known.itemAt("employee", -1));
    EXPECT_NE(record.jobNumber().get(), known.itemAt("job number", -1));
    EXPECT_NE(record.feeCode().get(), known.itemAt("fee code", -1));
}

TEST_F(tkRecordConstruction, FromTextsInternsCodesAcrossRecords) {
    const tkRecord a("3/4/05", "1.5", "abc", "j-1", "fx", "Design");
    const tkRecord b("3/5/05", "2", "ABC", "J-1", "FX", "Review");
    EXPECT_EQ(a.employee()->text(), "ABC");
    EXPECT_EQ(a.employee(), b.employee());
    EXPECT_EQ(a.jobNumber(), b.jobNumber());
    EXPECT_EQ(a.feeCode(), b.feeCode());
    EXPECT_EQ(a.duration()->toString(), "01:30:00");
    EXPECT_EQ(tkKnownRecordItems::instance().employees(), (std::vector<std::string>{"", "ABC"}));
    EXPECT_THROW(tkRecord("nodate", "", "", "", "", ""), StringFormatException);
}

TEST_F(tkRecordConstruction, CopiesHaveOwnValuesAndSharedCodesAndPostNothing) {
    tkRecord original("3/4/05", "1:90", "abc", "j-1", "fx", "Design");
    tkNotificationRecorder recorder;
    recorder.listen(kRecordWasEdited);

    const tkRecord copy(original);
    EXPECT_NE(copy.date(), original.date());
    EXPECT_NE(copy.duration(), original.duration());
    EXPECT_NE(copy.description(), original.description());
    EXPECT_EQ(copy.employee(), original.employee());
    EXPECT_EQ(copy.jobNumber(), original.jobNumber());
    EXPECT_EQ(copy.feeCode(), original.feeCode());
    EXPECT_TRUE(copy.date()->isEqual(*original.date()));
    EXPECT_EQ(copy.description()->text(), "Design");
    // The duration is copied by its total, so the copy comes out normalised.
    EXPECT_EQ(copy.duration()->toString(), "02:30:00");

    tkRecord assigned;
    assigned.copyFrom(original);
    EXPECT_EQ(assigned.employee(), original.employee());
    EXPECT_TRUE(recorder.empty());
    // Equality is identity of the six items, so neither copy equals the original.
    EXPECT_FALSE(copy == original);
    EXPECT_TRUE(original == original);
}

TEST_F(tkRecordFields, SetFieldAppliesEachFieldsRulesAndReturnsTheOldItem) {
    struct Case {
        const char* name;
        const char* text;
        const char* stored;
    };
    const Case cases[] = {
        {"date", "3/4/2005", "3/4/5"}, {"duration", "1.5", "01:30:00"},
        {"employee", "abcde", "ABCD"}, {"job number", "j-12345678901", "J-12345678"},
        {"fee code", "f\tx", "F X"},   {"description", "Mixed Case\tText", "Mixed Case Text"},
    };
    tkRecord record;
    for (const Case& c : cases) {
        const std::string before = record.getField(c.name)->toString();
        const auto old = record.setField(c.name, c.text);
        EXPECT_EQ(old->toString(), before) << c.name;
        EXPECT_EQ(record.getField(c.name)->toString(), c.stored) << c.name;
    }
    EXPECT_EQ(tkKnownRecordItems::instance().employees(), (std::vector<std::string>{"", "ABCD"}));
    // Names match exactly: a title or a near miss is no field.
    for (const char* name : {"Date", "jobnumber", "sheet_id"}) {
        EXPECT_EQ(record.getField(name), nullptr) << name;
        EXPECT_EQ(record.setField(name, "1/1/1"), nullptr) << name;
    }
}

TEST_F(tkRecordFields, ABadDateLeavesTheFieldAlone) {
    tkRecord record;
    tkDate* before = record.date();
    tkStdoutCapture out;
    EXPECT_THROW(record.setField("date", "20050304"), StringFormatException);
    EXPECT_EQ(record.date(), before);
}

TEST_F(tkRecordFields, EverySetterPostsEvenWithoutAChange) {
    tkRecord record;
    tkRecord other;
    tkNotificationRecorder recorder;
    recorder.listen(kRecordWasEdited);

    record.setEmployee(record.employee());
    record.setFeeCode(record.feeCode());
    record.setJobNumber(record.jobNumber());
    record.setDate(std::make_shared<tkDate>(1, 2, 2005));
    record.setDuration(std::make_shared<tkDuration>(0));
    record.setDescription(std::make_shared<tkDescription>(""));
    record.setField("description", "");
    record.noteEdited();
    record.setField("no such field", "x");
    other.setField("employee", "x");

    EXPECT_EQ(recorder.count(kRecordWasEdited, &record), 8);
    EXPECT_EQ(recorder.count(kRecordWasEdited, &other), 1);
    for (const auto& note : recorder.records()) {
        EXPECT_EQ(note.data, 0u);
    }
}

TEST_F(tkRecordFields, TitlesAndNamesCompareExactly) {
    struct Case {
        const char* name;
        const char* title;
        bool isField;
    };
    const Case cases[] = {
        {"date", "Date", true},           {"duration", "Duration", true},
        {"employee", "Employee", true},   {"job number", "Job Number", true},
        {"fee code", "Fee Code", true},   {"description", "Description", true},
        {"Date", "Unknown Field", false}, {"off", "Unknown Field", false},
        {"", "Unknown Field", false},     {"date ", "Unknown Field", false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(fieldTitle(c.name), c.title) << '"' << c.name << '"';
        EXPECT_EQ(isFieldName(c.name), c.isField) << '"' << c.name << '"';
    }
}

TEST_F(tkRecordTaggedText, WritesSixChildrenInFieldOrder) {
    tkRecord record("1/3/2005", "1.5", "ab", "j1", "f", "work & <play>");
    const std::unique_ptr<tkTagNode> node = record.toTag();
    EXPECT_EQ(node->toText(0),
              "<record>\n"
              "\t<date>1/3/5</date>\n"
              "\t<duration>01:30:00</duration>\n"
              "\t<employee>AB</employee>\n"
              "\t<job number>J1</job number>\n"
              "\t<fee code>F</fee code>\n"
              "\t<description>work &amp; &lt;play&gt;</description>\n"
              "</record>");
}

TEST_F(tkRecordTaggedText, ReadsCaseInsensitivelyWithMissingChildrenEmpty) {
    const auto node = parse(
        "<RECORD><Duration>1:90</Duration><EMPLOYEE>bo</EMPLOYEE>"
        "<sheet_id>42</sheet_id><unknown>x</unknown></RECORD>");
    tkNotificationRecorder recorder;
    recorder.listen(kRecordWasEdited);
    const tkRecord record(*node);
    EXPECT_EQ(record.date()->toString(), "1/2/5");  // missing: today
    EXPECT_EQ(record.duration()->toString(), "01:90:00");
    EXPECT_EQ(record.employee()->text(), "BO");
    EXPECT_EQ(record.employee(), tkKnownRecordItems::instance().getOrAddEmployee("BO"));
    EXPECT_EQ(record.description()->text(), "");
    EXPECT_EQ(record.jobNumber()->text(), "");
    EXPECT_EQ(record.sheetId(), "42");
    EXPECT_EQ(recorder.count(kRecordWasEdited, &record), 6);
    // sheet_id is read but never written.
    EXPECT_FALSE(record.toTag()->hasChild("sheet_id"));
}

TEST_F(tkRecordTaggedText, ABadDateFailsBeforeAnythingChanges) {
    tkRecord record("3/4/05", "1", "abc", "j", "f", "kept");
    const auto node = parse("<record><date>nodate</date><employee>zz</employee></record>");
    tkStdoutCapture out;
    EXPECT_THROW(record.fromTag(*node), StringFormatException);
    EXPECT_EQ(record.date()->toString(), "3/4/5");
    EXPECT_EQ(record.employee()->text(), "ABC");
    EXPECT_EQ(tkKnownRecordItems::instance().count("employee"), 1);
}

TEST_F(tkRecordTaggedText, RoundTripsThroughTheWriterAndParser) {
    const tkRecord original("12/31/1950", "123:4:5", "e\xC3\xA9", "job<1>", "f&",
                            "Caf\xC3\xA9 & <tea>, \"quoted\"");
    const auto node = parse(original.toTag()->toText(0));
    const tkRecord read(*node);
    for (const char* name : kFieldNames) {
        EXPECT_EQ(read.getField(name)->toString(), original.getField(name)->toString()) << name;
    }
    EXPECT_EQ(read.employee(), original.employee());
}
