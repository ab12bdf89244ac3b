#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "foundation/InvalidTypeNameException.h"
#include "foundation/tkTagNode.h"
#include "foundation/tkTagParser.h"
#include "records/tkDefaultRecord.h"
#include "records/tkDescription.h"
#include "records/tkEmployee.h"
#include "records/tkFeeCode.h"
#include "records/tkJobNumber.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecord.h"
#include "tests/support/tkThrown.h"

// Separators become blanks first, then the text is cut by bytes, even inside a character: kept
// whole at the limit (which isAcceptable, deliberately, already refuses), cut one byte past it.
// Only setText takes text as it is.
TEST(tkRecordItem, LeavesTurnSeparatorsIntoBlanksAndCutAtTheirByteLimits) {
    const std::unique_ptr<tkRecordItem> items[] = {
        std::make_unique<tkDescription>(), std::make_unique<tkEmployee>(),
        std::make_unique<tkFeeCode>(), std::make_unique<tkJobNumber>()};
    std::string names;
    for (const auto& item : items) {
        const size_t limit = static_cast<size_t>(item->maxLength());
        names += item->fieldName() + " " + std::to_string(limit) + "|";
        item->setFromString(std::string(limit, 'x'));
        EXPECT_EQ(item->text().size(), limit) << item->fieldName();
        EXPECT_TRUE(item->isAcceptable(std::string(limit - 1, 'x'))) << item->fieldName();
        EXPECT_FALSE(item->isAcceptable(item->text())) << item->fieldName();
        item->setFromString("a\tb\nc\rd\r\n" + std::string(limit, 'y'));
        EXPECT_EQ(item->text(), ("a b c d  " + std::string(limit, 'y')).substr(0, limit));
        item->setText("\t");
        EXPECT_EQ(item->toString(), "\t");
    }
    EXPECT_EQ(names, "description 360|employee 4|fee code 4|job number 10|");
    std::string accents;
    for (int i = 0; i < 180; ++i) {
        accents += "\xC3\xA9";
    }
    EXPECT_EQ(tkDescription(accents).text(), accents);
    EXPECT_EQ(tkDescription("x" + accents).text(), "x" + accents.substr(0, 359));
}

// Case is ignored, bytes are unsigned, and the shorter of two texts with one beginning sorts
// first; across fields compare throws the other value, while compareText looks only at texts.
TEST(tkRecordItem, CompareTextIgnoresCaseAndOrdersByUnsignedBytesShorterFirst) {
    const std::vector<std::string> ordered = {"",    "9",     "A",     "AB", "abc",
                                              "ABD", "a\x7F", "A\xC3", "Z",  "\xC3\xA9"};
    for (size_t a = 0; a < ordered.size(); ++a) {
        for (size_t b = 0; b < ordered.size(); ++b) {
            const int32_t result = tkEmployee(ordered[a]).compareText(tkEmployee(ordered[b]));
            EXPECT_EQ((result > 0) - (result < 0), (a > b) - (a < b)) << a << " vs " << b;
            EXPECT_EQ(tkEmployee(ordered[a]).compare(tkEmployee(ordered[b])), result);
        }
    }
    EXPECT_TRUE(tkEmployee("ABC").isEqual(tkEmployee("abc")));
    const tkFeeCode feeCode("ABC");
    try {
        tkEmployee("ABC").compare(feeCode);
        FAIL() << "comparing an employee with a fee code must throw";
    } catch (const tkStringConvertible* thrown) {
        EXPECT_EQ(thrown, &feeCode);
    }
    EXPECT_EQ(tkEmployee("ABC").compareText(feeCode), 0);
}

// A code made or cloned from a private code object is the list's shared object, not a copy.
TEST(tkRecordItem, BillingCodesCreateAndCloneThroughTheKnownLists) {
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    const tkEmployee privateEmployee("abc");
    EXPECT_EQ(known.count("employee"), 0);
    EXPECT_EQ(privateEmployee.create("xy"), known.getOrAddEmployee("XY"));
    EXPECT_EQ(privateEmployee.clone(), known.getOrAddEmployee("ABC"));
    EXPECT_EQ(tkFeeCode("f1").clone(), known.getOrAddFeeCode("F1"));
    EXPECT_EQ(tkJobNumber("j-9").clone(), known.getOrAddJobNumber("J-9"));
}

namespace {

tkKnownRecordItems& known() {
    return tkKnownRecordItems::instance();
}

// The code at an index, as its text and its item's text agree on it; "-" for none.
std::string at(int32_t index) {
    const std::string* code = known().codeAt("job number", index);
    const tkRecordItem* item = known().itemAt("job number", index);
    EXPECT_EQ(code == nullptr, item == nullptr) << index;
    return code == nullptr ? "-" : *code + (item->text() == *code ? "" : "!");
}

using Codes = std::vector<std::string>;

}  // namespace

// One shared object per code, in upper case, whatever the case asked for; the cut can land on a
// listed code, which then comes back. The three lists are apart, in unsigned byte order with
// the empty code first, and lookups by index skip it (-1); only edits reach it.
TEST(tkKnownRecordItems, InternsCodesInUpperCaseInUnsignedByteOrder) {
    const auto abc = known().getOrAddEmployee("abc");
    EXPECT_EQ(known().getOrAddEmployee("ABC"), abc);
    EXPECT_EQ(known().getOrAdd("employee", "aBc"), abc);
    EXPECT_EQ(known().getOrAddEmployee("abcde"), known().getOrAddEmployee("ABCD"));
    for (const char* code : {"bob", "\xC3\xA9va", "9lives", "_x"}) {
        known().getOrAddEmployee(code);
    }
    EXPECT_EQ(known().employees(), (Codes{"", "9LIV", "ABC", "ABCD", "BOB", "_X", "\xC3\xA9VA"}));
    EXPECT_EQ(known().count("employee"), 6);
    EXPECT_EQ(known().count("fee code"), 0);
    EXPECT_NE(std::shared_ptr<tkRecordItem>(known().getOrAddFeeCode("abc")),
              std::shared_ptr<tkRecordItem>(abc));

    known().getOrAddJobNumber("j1");
    EXPECT_EQ(at(-5) + "|" + at(-1) + "|" + at(0) + "|" + at(1) + "|" + at(1000), "||J1|-|-");
    EXPECT_FALSE(known().removeAt("job number", -5));
    EXPECT_EQ(known().takeAt("job number", -2), nullptr);
    EXPECT_EQ(known().takeAt("job number", 1), nullptr);
    known().renameAt("job number", 7, "x");
    ASSERT_NE(known().takeAt("job number", -1), nullptr);
    EXPECT_EQ(known().jobNumbers(), (Codes{"J1"}));
}

TEST(tkKnownRecordItems, CompleteGivesTheFirstCodeWithThePrefix) {
    known().getOrAddEmployee("alice");
    known().getOrAddEmployee("bob");
    std::string completions;
    for (const char* prefix : {"b", "a", "AL", "", "c", "bobby", "bob"}) {
        const std::string* completion = known().complete("employee", prefix);
        completions += (completion == nullptr ? "-" : *completion) + "|";
    }
    EXPECT_EQ(completions, "BOB|ALIC|ALIC||-|-|BOB|");
}

// A rename is seen by every holder, even onto a listed code, which it does not merge with.
TEST(tkKnownRecordItems, RenameIsSeenByEveryHolderAndNeverMerges) {
    const tkRecord a("1/1/05", "1", "old", "", "", "");
    const tkRecord copy(a);
    const auto listed = known().getOrAddEmployee("new");
    known().renameAt("employee", 1, "new");  // "OLD" sorts after "NEW"
    EXPECT_EQ(a.employee()->text(), "NEW");
    EXPECT_EQ(copy.employee(), a.employee());
    EXPECT_NE(a.employee(), listed);
    EXPECT_EQ(known().getOrAddEmployee("NEW"), listed);
    EXPECT_EQ(known().employees(), (Codes{"", "NEW"}));
}

// A code in use (by a record, the default record, or a copy of it) can't be removed; clearing
// keeps such codes unless forced.
TEST(tkKnownRecordItems, CodesInUseStayUnlessForced) {
    auto record = std::make_unique<tkRecord>("1/1/05", "1", "abc", "", "", "");
    EXPECT_FALSE(known().removeAt("employee", 0));
    record.reset();
    EXPECT_TRUE(known().removeAt("employee", 0));
    setDefaultField("job number", "j1");
    auto fromDefault = newFromDefault();
    setDefaultField("job number", "");
    EXPECT_FALSE(known().removeAt("job number", 0));
    fromDefault.reset();
    EXPECT_TRUE(known().removeAt("job number", 0));
    // The list's empty entry is the one the default record now shares.
    EXPECT_FALSE(known().removeAt("job number", -1));

    const tkRecord holder("1/1/05", "1", "kept", "j", "f", "");
    known().getOrAddEmployee("gone");
    known().clear(false);
    EXPECT_EQ(known().employees(), (Codes{"", "KEPT"}));
    EXPECT_EQ(known().feeCodes(), (Codes{"", "F"}));
    known().clear(true);
    EXPECT_EQ(known().employees(), Codes{""});
    EXPECT_EQ(holder.employee()->text(), "KEPT");
}

// Refused new codes come back null, listed ones as ever; a record then keeps what it was
// given rather than a null code. Unknown type names throw, except in getOrAdd and makeItem.
TEST(tkKnownRecordItems, RefusedCodesAndUnknownListsChangeNothing) {
    const auto listed = known().getOrAddFeeCode("a1");
    known().setAddAllowed(false);
    EXPECT_EQ(known().getOrAddFeeCode("b2"), nullptr);
    EXPECT_EQ(known().getOrAdd("fee code", "b2"), nullptr);
    EXPECT_EQ(known().getOrAddFeeCode("A1"), listed);
    tkRecord record;
    record.setField("fee code", "b2");
    EXPECT_EQ(record.feeCode()->text(), "B2");
    EXPECT_EQ(known().feeCodes(), (Codes{"", "A1"}));

    EXPECT_EQ(known().getOrAdd("employees", "x"), nullptr);
    EXPECT_EQ(known().makeItem("Employee", "x"), nullptr);
    ASSERT_NE(known().makeItem("job number", "j"), nullptr);
    EXPECT_EQ(known().count("job number"), 0);
    EXPECT_EQ(thrown<InvalidTypeNameException>([] { known().count("employees"); }),
              "InvalidTypeNameException|No map with type name employees exists.");
    EXPECT_EQ(thrown<InvalidTypeNameException>([] { known().codeAt("Employee", 0); }).find("Inv"),
              0u);
    EXPECT_EQ(thrown<InvalidTypeNameException>([] { known().removeAt("fee codes", 0); }).find("I"),
              0u);
}

// Three sections of codes; a reader merges what any child of a section holds.
TEST(tkKnownRecordItems, TaggedFormHasThreeSectionsAndReadsBackMerged) {
    known().getOrAddJobNumber("j&1");
    known().getOrAddEmployee("bo");
    EXPECT_EQ(known().toTag()->toText(0),
              "<tkKnownRecordItems>\n"
              "\t<job numbers>\n\t\t<code></code>\n\t\t<code>J&amp;1</code>\n\t</job numbers>\n"
              "\t<fee codes>\n\t\t<code></code>\n\t</fee codes>\n"
              "\t<employees>\n\t\t<code></code>\n\t\t<code>BO</code>\n\t</employees>\n"
              "</tkKnownRecordItems>");
    tkTagParser parser;
    known().fromTag(
        *parser.parse("<anything><employees><code>al</code><x>zz</x><code></code></employees>"
                      "<JOB NUMBERS><code>j1</code></JOB NUMBERS></anything>"));
    EXPECT_EQ(known().employees(), (Codes{"", "AL", "BO", "ZZ"}));
    EXPECT_EQ(known().jobNumbers(), (Codes{"", "J&1", "J1"}));
    const std::string written = known().toTag()->toText(0);
    known().clear(true);
    known().fromTag(*parser.parse(written));
    EXPECT_EQ(known().toTag()->toText(0), written);
}

// Reading a time sheet asks for the same codes over and over, and the lists remember what such
// a lookup found. Whatever changes the lists in between, the next lookup of a text answers as
// a fresh search would; the memory of a lookup holds no code.
TEST(tkKnownRecordItems, ARememberedLookupFollowsEveryChangeOfTheLists) {
    const auto first = known().getOrAddEmployee("ab");
    EXPECT_EQ(known().getOrAddEmployee("AB"), first);
    EXPECT_EQ(first.use_count(), 2);  // the list and first
    known().getOrAddFeeCode("gone");
    known().getOrAddFeeCode("gone");
    ASSERT_TRUE(known().removeAt("fee code", 0));
    EXPECT_EQ(known().getOrAddFeeCode("gone")->text(), "GONE");
    EXPECT_EQ(known().count("fee code"), 1);
    known().renameAt("employee", 0, "cd");
    EXPECT_EQ(first->text(), "CD");
    const auto old = known().getOrAddEmployee("ab");
    EXPECT_NE(old, first);
    EXPECT_EQ(old->text(), "AB");
    EXPECT_EQ(known().getOrAddEmployee("cd"), first);
    const auto replacement = std::make_shared<tkEmployee>("CD");
    known().setItem("employee", "cd", replacement);
    EXPECT_EQ(known().getOrAddEmployee("cd"), replacement);
    known().clear(true);
    EXPECT_NE(known().getOrAddEmployee("cd"), replacement);
    known().setAddAllowed(false);
    EXPECT_NE(known().getOrAddEmployee("cd"), nullptr);
    EXPECT_EQ(known().getOrAddEmployee("new"), nullptr);
}
