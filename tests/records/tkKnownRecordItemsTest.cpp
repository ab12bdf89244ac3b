#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "foundation/InvalidTypeNameException.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "records/tkDefaultRecord.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "tests/support/tkStdoutCapture.h"

namespace {

tkKnownRecordItems& known() {
    return tkKnownRecordItems::instance();
}

using Codes = std::vector<std::string>;

}  // namespace

TEST(tkKnownRecordItems, InternsCodesInUpperCase) {
    const auto abc = known().getOrAddEmployee("abc");
    EXPECT_EQ(abc->text(), "ABC");
    EXPECT_EQ(known().getOrAddEmployee("ABC"), abc);
    EXPECT_EQ(known().getOrAdd("employee", "aBc"), abc);
    // The cut can land on a listed code: then that object comes back and the list stays.
    const auto abcd = known().getOrAddEmployee("ABCD");
    EXPECT_EQ(known().getOrAddEmployee("abcde"), abcd);
    EXPECT_EQ(known().count("employee"), 2);
    // The three lists are apart.
    EXPECT_EQ(known().count("fee code"), 0);
    EXPECT_NE(std::shared_ptr<tkRecordItem>(known().getOrAddFeeCode("abc")),
              std::shared_ptr<tkRecordItem>(abc));
}

TEST(tkKnownRecordItems, ListsAreInUnsignedByteOrderWithTheEmptyCodeFirst) {
    for (const char* code : {"bob", "\xC3\xA9va", "alice", "9lives", "Al", "_x"}) {
        known().getOrAddEmployee(code);
    }
    EXPECT_EQ(known().employees(), (Codes{"", "9LIV", "AL", "ALIC", "BOB", "_X", "\xC3\xA9VA"}));
    EXPECT_EQ(known().count("employee"), 6);
    EXPECT_EQ(*known().codeAt("employee", 0), "9LIV");
    EXPECT_EQ(known().itemAt("employee", 3)->text(), "BOB");
}

TEST(tkKnownRecordItems, LookupIndexesSkipTheEmptyEntry) {
    EXPECT_EQ(known().count("job number"), 0);
    ASSERT_NE(known().codeAt("job number", -1), nullptr);
    EXPECT_EQ(*known().codeAt("job number", -1), "");
    EXPECT_EQ(known().codeAt("job number", 0), nullptr);
    known().getOrAddJobNumber("j1");
    struct Case {
        int32_t index;
        const char* code;  // null: no entry
    };
    const Case cases[] = {{-5, ""}, {-1, ""}, {0, "J1"}, {1, nullptr}, {1000, nullptr}};
    for (const Case& c : cases) {
        const std::string* code = known().codeAt("job number", c.index);
        tkRecordItem* item = known().itemAt("job number", c.index);
        if (c.code == nullptr) {
            EXPECT_EQ(code, nullptr) << c.index;
            EXPECT_EQ(item, nullptr) << c.index;
        } else {
            ASSERT_NE(code, nullptr) << c.index;
            EXPECT_EQ(*code, c.code) << c.index;
            EXPECT_EQ(item->text(), c.code) << c.index;
        }
    }
}

TEST(tkKnownRecordItems, EditIndexesBelowMinusOneAreOutOfRange) {
    known().getOrAddFeeCode("f1");
    EXPECT_FALSE(known().removeAt("fee code", -5));
    EXPECT_EQ(known().takeAt("fee code", -2), nullptr);
    EXPECT_EQ(known().takeAt("fee code", 1), nullptr);
    known().renameAt("fee code", 7, "x");
    EXPECT_EQ(known().feeCodes(), (Codes{"", "F1"}));
    // -1 is the empty entry itself, which the edits may reach.
    const auto empty = known().takeAt("fee code", -1);
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty->text(), "");
    EXPECT_EQ(known().feeCodes(), (Codes{"F1"}));
}

TEST(tkKnownRecordItems, CompleteGivesTheFirstCodeWithThePrefix) {
    known().getOrAddEmployee("alice");
    EXPECT_EQ(known().complete("employee", "b"), nullptr);
    known().getOrAddEmployee("bob");
    struct Case {
        const char* prefix;
        const char* completion;  // null: none
    };
    const Case cases[] = {{"b", "BOB"},   {"a", "ALIC"},      {"AL", "ALIC"}, {"", ""},
                          {"c", nullptr}, {"bobby", nullptr}, {"bob", "BOB"}};
    for (const Case& c : cases) {
        const std::string* completion = known().complete("employee", c.prefix);
        if (c.completion == nullptr) {
            EXPECT_EQ(completion, nullptr) << c.prefix;
        } else {
            ASSERT_NE(completion, nullptr) << c.prefix;
            EXPECT_EQ(*completion, c.completion) << c.prefix;
        }
    }
}

TEST(tkKnownRecordItems, RenameIsSeenByEveryHolder) {
    const tkRecord a("1/1/05", "1", "abc", "", "", "");
    const tkRecord b("1/2/05", "1", "abc", "", "", "");
    const tkRecord copy(a);
    known().renameAt("employee", 0, "xyz");
    for (const tkRecord* record : {&a, &b, &copy}) {
        EXPECT_EQ(record->employee()->text(), "XYZ");
    }
    EXPECT_EQ(known().employees(), (Codes{"", "XYZ"}));
    EXPECT_EQ(known().getOrAddEmployee("xyz"), a.employee());
}

TEST(tkKnownRecordItems, RenameOntoAListedCodeDoesNotMerge) {
    const tkRecord holder("1/1/05", "1", "old", "", "", "");
    const auto listed = known().getOrAddEmployee("new");
    known().renameAt("employee", 1, "new");  // "OLD" sorts after "NEW"
    EXPECT_EQ(holder.employee()->text(), "NEW");
    EXPECT_NE(holder.employee(), listed);
    EXPECT_EQ(known().getOrAddEmployee("NEW"), listed);
    EXPECT_EQ(known().employees(), (Codes{"", "NEW"}));
}

TEST(tkKnownRecordItems, RemoveIsRefusedWhileAnythingHoldsTheCode) {
    auto record = std::make_unique<tkRecord>("1/1/05", "1", "abc", "", "", "");
    EXPECT_FALSE(known().removeAt("employee", 0));
    EXPECT_EQ(known().count("employee"), 1);
    record.reset();
    EXPECT_TRUE(known().removeAt("employee", 0));
    EXPECT_EQ(known().count("employee"), 0);

    // The default record and any copy of it hold their codes too.
    setDefaultField("job number", "j1");
    auto fromDefault = newFromDefault();
    EXPECT_FALSE(known().removeAt("job number", 0));
    setDefaultField("job number", "");
    EXPECT_FALSE(known().removeAt("job number", 0));
    fromDefault.reset();
    EXPECT_TRUE(known().removeAt("job number", 0));
    // The list's empty entry is the one the default record now shares.
    EXPECT_FALSE(known().removeAt("job number", -1));
}

TEST(tkKnownRecordItems, ClearKeepsCodesInUseUnlessForced) {
    const tkRecord holder("1/1/05", "1", "kept", "j", "f", "");
    known().getOrAddEmployee("gone");
    known().getOrAddFeeCode("gone");

    known().clear(false);
    EXPECT_EQ(known().employees(), (Codes{"", "KEPT"}));
    EXPECT_EQ(known().feeCodes(), (Codes{"", "F"}));
    EXPECT_EQ(known().jobNumbers(), (Codes{"", "J"}));
    EXPECT_NE(known().itemAt("employee", -1), nullptr);

    known().clear(true);
    EXPECT_EQ(known().employees(), Codes{""});
    EXPECT_EQ(known().feeCodes(), Codes{""});
    EXPECT_EQ(holder.employee()->text(), "KEPT");
}

TEST(tkKnownRecordItems, RefusesNewCodesWhenAddingIsNotAllowed) {
    const auto listed = known().getOrAddFeeCode("a1");
    known().setAddAllowed(false);
    EXPECT_EQ(known().getOrAddFeeCode("b2"), nullptr);
    EXPECT_EQ(known().getOrAdd("fee code", "b2"), nullptr);
    EXPECT_EQ(known().getOrAddFeeCode("A1"), listed);
    // A record keeps what it was given rather than a null code.
    tkRecord record;
    record.setField("fee code", "b2");
    EXPECT_EQ(record.feeCode()->text(), "B2");
    EXPECT_EQ(known().feeCodes(), (Codes{"", "A1"}));
}

TEST(tkKnownRecordItems, UnknownTypeNamesThrowExceptInGetOrAddAndMakeItem) {
    EXPECT_EQ(known().getOrAdd("employees", "x"), nullptr);
    EXPECT_EQ(known().makeItem("Employee", "x"), nullptr);
    ASSERT_NE(known().makeItem("job number", "j"), nullptr);
    EXPECT_EQ(known().count("job number"), 0);
    tkStdoutCapture out;
    try {
        known().count("employees");
        FAIL() << "no exception";
    } catch (const InvalidTypeNameException& e) {
        EXPECT_EQ(e.message(), "No map with type name employees exists.");
    }
    EXPECT_THROW(known().codeAt("Employee", 0), InvalidTypeNameException);
    EXPECT_THROW(known().removeAt("fee codes", 0), InvalidTypeNameException);
}

TEST(tkKnownRecordItems, WritesThreeSectionsOfCodes) {
    known().getOrAddJobNumber("j&1");
    known().getOrAddEmployee("bo");
    known().getOrAddEmployee("al");
    EXPECT_EQ(known().toTag()->toText(0),
              "<tkKnownRecordItems>\n"
              "\t<job numbers>\n"
              "\t\t<code></code>\n"
              "\t\t<code>J&amp;1</code>\n"
              "\t</job numbers>\n"
              "\t<fee codes>\n"
              "\t\t<code></code>\n"
              "\t</fee codes>\n"
              "\t<employees>\n"
              "\t\t<code></code>\n"
              "\t\t<code>AL</code>\n"
              "\t\t<code>BO</code>\n"
              "\t</employees>\n"
              "</tkKnownRecordItems>");
}

TEST(tkKnownRecordItems, ReadingMergesAndOnlyTheSectionsCount) {
    known().getOrAddFeeCode("keep");
    tkTagParser parser;
    const auto node = parser.parse(
        "<anything><employees><code>al</code><x>bo</x><code></code></employees>"
        "<JOB NUMBERS><code>j1</code></JOB NUMBERS></anything>");
    known().fromTag(*node);
    EXPECT_EQ(known().employees(), (Codes{"", "AL", "BO"}));
    EXPECT_EQ(known().jobNumbers(), (Codes{"", "J1"}));
    EXPECT_EQ(known().feeCodes(), (Codes{"", "KEEP"}));

    // What was written reads back the same in a fresh set of lists.
    const std::string written = known().toTag()->toText(0);
    known().clear(true);
    known().fromTag(*parser.parse(written));
    EXPECT_EQ(known().toTag()->toText(0), written);
}
