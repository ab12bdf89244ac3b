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
    EXPECT_NE(fresh.get(), &defaultRecord());
    EXPECT_EQ(getDefaultField("employee")->toString(), "ABC");
    EXPECT_EQ(getDefaultField("nothing"), nullptr);
}

TEST(tkDefaultRecord, SettingACodeToTheObjectItHoldsIsQuiet) {
    setDefaultField("employee", "abc");
    tkNotificationRecorder recorder;
    recorder.listen(kDefaultRecordChanged);

    setDefaultField("employee", "ABC");
    setDefaultField("employee", "abc");
    EXPECT_EQ(recorder.count(kDefaultRecordChanged), 0);

    setDefaultField("employee", "xyz");
    EXPECT_EQ(recorder.count(kDefaultRecordChanged, &defaultRecord()), 1);
}

TEST(tkDefaultRecord, ValueFieldsAnnounceEvenWithTheSameText) {
    tkNotificationRecorder recorder;
    recorder.listen(kDefaultRecordChanged);
    setDefaultField("description", "");
    setDefaultField("duration", "0.0");
    setDefaultField("date", defaultRecord().date()->toString());
    EXPECT_EQ(recorder.count(kDefaultRecordChanged, &defaultRecord()), 3);
    // An unknown name sets nothing and announces nothing.
    setDefaultField("Employee", "abc");
    EXPECT_EQ(recorder.count(kDefaultRecordChanged), 3);
}

TEST(tkDefaultRecord, ARefusedCodeLeavesTheFieldButStillAnnounces) {
    setDefaultField("fee code", "old");
    tkKnownRecordItems::instance().setAddAllowed(false);
    tkNotificationRecorder recorder;
    recorder.listen(kDefaultRecordChanged);

    setDefaultField("fee code", "new");
    EXPECT_EQ(getDefaultField("fee code")->toString(), "OLD");
    EXPECT_EQ(recorder.count(kDefaultRecordChanged), 1);
    // A code that is listed is still taken.
    tkKnownRecordItems::instance().setAddAllowed(true);
    tkKnownRecordItems::instance().getOrAddFeeCode("kn");
    tkKnownRecordItems::instance().setAddAllowed(false);
    setDefaultField("fee code", "kn");
    EXPECT_EQ(getDefaultField("fee code")->toString(), "KN");
}

TEST(tkDefaultRecord, ABadDateChangesNothingAndAnnouncesNothing) {
    tkNotificationRecorder recorder;
    recorder.listen(kDefaultRecordChanged);
    tkDate* before = defaultRecord().date();
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
