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
#include "records/tkRecordText.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/support/tkStdoutCapture.h"
#include "tests/support/tkTestClock.h"

namespace {

class tkRecordTest : public testing::Test {
  protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        tzset();
    }
    tkTestClock clock{int64_t{1104667200} * 1000};  // 2 January 2005 noon UTC
};

}  // namespace

// The empty codes of a new record are its own, not the lists' empty entries: otherwise every
// new record would make the empty code "in use".
TEST_F(tkRecordTest, NewRecordHoldsPrivateEmptyCodes) {
    const tkRecord record;
    EXPECT_EQ(record.sheetId(), "");
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    EXPECT_NE(record.employee().get(), known.itemAt("employee", -1));
    EXPECT_NE(record.jobNumber().get(), known.itemAt("job number", -1));
    EXPECT_NE(record.feeCode().get(), known.itemAt("fee code", -1));
}

// Codes are interned across records; a copy has its own values and the shared codes, and
// posts nothing. Equality is identity of the six items, so no copy equals its original.
TEST_F(tkRecordTest, CopiesHaveOwnValuesAndSharedCodesAndPostNothing) {
    tkRecord original("3/4/05", "1:90", "abc", "j-1", "fx", "Design");
    const tkRecord other("3/5/05", "2", "ABC", "J-1", "FX", "Review");
    EXPECT_EQ(original.employee(), other.employee());
    EXPECT_EQ(original.feeCode(), other.feeCode());
    EXPECT_EQ(tkKnownRecordItems::instance().employees(), (std::vector<std::string>{"", "ABC"}));
    tkNotificationRecorder recorder;
    recorder.listen(kRecordWasEdited);

    const tkRecord copy(original);
    EXPECT_NE(copy.date(), original.date());
    EXPECT_NE(copy.duration(), original.duration());
    EXPECT_NE(copy.description(), original.description());
    EXPECT_EQ(copy.jobNumber(), original.jobNumber());
    EXPECT_TRUE(copy.date()->isEqual(*original.date()));
    EXPECT_EQ(copy.description()->text(), "Design");
    // The duration is copied by its total, so the copy comes out normalised.
    EXPECT_EQ(copy.duration()->toString(), "02:30:00");
    tkRecord assigned;
    assigned.copyFrom(original);
    EXPECT_EQ(assigned.employee(), original.employee());
    EXPECT_TRUE(recorder.empty());
    EXPECT_FALSE(copy == original);
    EXPECT_TRUE(original == original);
}

// Each field by its exact name, with its own rules; the old item comes back. A bad date
// leaves the field alone; names that are no field set and get nothing.
TEST_F(tkRecordTest, SetFieldAppliesEachFieldsRulesAndReturnsTheOldItem) {
    const struct {
        const char* name;
        const char* text;
        const char* stored;
    } cases[] = {
        {"date", "3/4/2005", "3/4/5"}, {"duration", "1.5", "01:30:00"},
        {"employee", "abcde", "ABCD"}, {"job number", "j-12345678901", "J-12345678"},
        {"fee code", "f\tx", "F X"},   {"description", "Mixed Case\tText", "Mixed Case Text"},
    };
    tkRecord record;
    for (const auto& c : cases) {
        const std::string before = record.getField(c.name)->toString();
        EXPECT_EQ(record.setField(c.name, c.text)->toString(), before) << c.name;
        EXPECT_EQ(record.getField(c.name)->toString(), c.stored) << c.name;
    }
    tkDate* date = record.date();
    tkStdoutCapture out;
    EXPECT_THROW(record.setField("date", "20050304"), StringFormatException);
    EXPECT_EQ(record.date(), date);
    for (const char* name : {"Date", "jobnumber", "sheet_id", "off", "", "date "}) {
        EXPECT_EQ(record.getField(name), nullptr) << name;
        EXPECT_EQ(record.setField(name, "1/1/1"), nullptr) << name;
        EXPECT_FALSE(isFieldName(name)) << name;
        EXPECT_EQ(fieldTitle(name), "Unknown Field") << name;
    }
    EXPECT_EQ(fieldTitle("job number"), "Job Number");
    EXPECT_EQ(fieldTitle("fee code"), "Fee Code");
}

TEST_F(tkRecordTest, EverySetterPostsEvenWithoutAChange) {
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

// Six children in field order, escaped; read back in any case, a missing child is empty (the
// date today), and sheet_id is read but never written.
TEST_F(tkRecordTest, TaggedFormRoundTripsAndToleratesMissingChildren) {
    const tkRecord original("12/31/1950", "123:4:5", "e\xC3\xA9", "job<1>", "f&", "tea & <cake>");
    EXPECT_EQ(original.toTag()->toText(0),
              "<record>\n"
              "\t<date>12/31/50</date>\n"
              "\t<duration>123:04:05</duration>\n"
              "\t<employee>E\xC3\xA9</employee>\n"
              "\t<job number>JOB&lt;1&gt;</job number>\n"
              "\t<fee code>F&amp;</fee code>\n"
              "\t<description>tea &amp; &lt;cake&gt;</description>\n"
              "</record>");
    const tkRecord read(*tkTagParser().parse(original.toTag()->toText(0)));
    for (const char* name : kFieldNames) {
        EXPECT_EQ(read.getField(name)->toString(), original.getField(name)->toString()) << name;
    }
    EXPECT_EQ(read.employee(), original.employee());

    tkNotificationRecorder recorder;
    recorder.listen(kRecordWasEdited);
    const tkRecord sparse(
        *tkTagParser().parse("<RECORD><Duration>1:90</Duration><EMPLOYEE>bo</"
                             "EMPLOYEE><sheet_id>42</sheet_id></RECORD>"));
    EXPECT_EQ(toTabLine(sparse), "1/2/5\t01:90:00\tBO\t\t\t");
    EXPECT_EQ(sparse.sheetId(), "42");
    EXPECT_EQ(recorder.count(kRecordWasEdited, &sparse), 6);
    EXPECT_FALSE(sparse.toTag()->hasChild("sheet_id"));
}

TEST_F(tkRecordTest, ABadDateInATagFailsBeforeAnythingChanges) {
    tkRecord record("3/4/05", "1", "abc", "j", "f", "kept");
    const auto node = tkTagParser().parse("<record><date>x</date><employee>zz</employee></record>");
    tkStdoutCapture out;
    EXPECT_THROW(record.fromTag(*node), StringFormatException);
    EXPECT_EQ(record.date()->toString(), "3/4/5");
    EXPECT_EQ(record.employee()->text(), "ABC");
    EXPECT_EQ(tkKnownRecordItems::instance().count("employee"), 1);
}
