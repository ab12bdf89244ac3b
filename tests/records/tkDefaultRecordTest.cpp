#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "foundation/StringFormatException.h"
#include "foundation/tkNotificationNames.h"
#include "records/tkDefaultRecord.h"
#include "records/tkKnownRecordItems.h"
#include "tests/support/tkNotificationRecorder.h"
#include "tests/support/tkStdoutCapture.h"

TEST(tkDefaultRecord, NewFromDefaultCopiesValuesAndSharesCodes) {
    setDefaultField("employee", "abc");
    setDefaultField("description", "standing job");
    const std::shared_ptr<tkRecord> fresh = newFromDefault();
    EXPECT_EQ(fresh->employee(), defaultRecord().employee());
    EXPECT_NE(fresh->description(), defaultRecord().description());
    EXPECT_EQ(fresh->description()->text(), "standing job");
    EXPECT_EQ(getDefaultField("employee")->toString(), "ABC");
    EXPECT_EQ(getDefaultField("nothing"), nullptr);
}

// Value fields announce even with the same text, codes only when the object changes; a code
// the lists refuse leaves the field but still announces, and a bad date changes nothing.
TEST(tkDefaultRecord, AnnouncesEverySetButACodeItAlreadyHolds) {
    setDefaultField("employee", "abc");
    setDefaultField("fee code", "old");
    tkNotificationRecorder recorder;
    recorder.listen(kDefaultRecordChanged);
    const struct {
        const char* field;
        const char* text;
        int posts;
    } cases[] = {
        {"employee", "ABC", 0}, {"employee", "abc", 0}, {"employee", "xyz", 1},
        {"description", "", 1}, {"duration", "0.0", 1}, {"date", "1/2/03", 1},
        {"Employee", "abc", 0}, {"fee code", "new", 1},
    };
    for (const auto& c : cases) {
        recorder.clear();
        if (std::string(c.field) == "fee code") {
            tkKnownRecordItems::instance().setAddAllowed(false);
        }
        setDefaultField(c.field, c.text);
        EXPECT_EQ(recorder.count(kDefaultRecordChanged, &defaultRecord()), c.posts)
            << c.field << " := " << c.text;
    }
    EXPECT_EQ(getDefaultField("fee code")->toString(), "OLD");
    tkDate* before = defaultRecord().date();
    recorder.clear();
    tkStdoutCapture out;
    EXPECT_THROW(setDefaultField("date", "tomorrow"), StringFormatException);
    EXPECT_EQ(defaultRecord().date(), before);
    EXPECT_TRUE(recorder.empty());
}

TEST(tkDefaultRecord, SetDefaultRecordCopiesAndAnnouncesOnce) {
    const tkRecord source("3/4/05", "2", "emp", "job", "fee", "text");
    tkNotificationRecorder recorder;
    recorder.listen(kDefaultRecordChanged);
    recorder.listen(kRecordWasEdited);
    setDefaultRecord(source);
    EXPECT_EQ(recorder.names(), std::vector<std::string>{kDefaultRecordChanged});
    EXPECT_EQ(recorder.records()[0].sender, &defaultRecord());
    EXPECT_EQ(defaultRecord().feeCode(), source.feeCode());
    EXPECT_EQ(defaultRecord().date()->toString(), "3/4/5");
}
