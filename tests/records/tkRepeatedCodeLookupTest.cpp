// Reading a time sheet asks the known lists for the same codes over and over, and the lists
// remember what such a lookup found. These tests change the lists between two lookups of
// one text and check that the second lookup answers as a fresh search would.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "foundation/StringFormatException.h"
#include "records/tkKnownRecordItems.h"
#include "records/tkRecordText.h"

namespace {

tkKnownRecordItems& known() {
    return tkKnownRecordItems::instance();
}

// The outside index of a listed code (0 is the first real code).
int32_t indexOf(const std::string& typeName, const std::string& code) {
    for (int32_t i = 0; i < known().count(typeName); ++i) {
        if (*known().codeAt(typeName, i) == code) {
            return i;
        }
    }
    return -2;
}

}  // namespace

TEST(RepeatedCodeLookup, GivesTheSameSharedObjectForAnyCase) {
    const auto first = known().getOrAddEmployee("ab");
    const auto again = known().getOrAddEmployee("ab");
    const auto upper = known().getOrAddEmployee("AB");
    EXPECT_EQ(first.get(), again.get());
    EXPECT_EQ(first.get(), upper.get());
    // Shared ownership with the list: the list and the three pointers.
    EXPECT_EQ(first.use_count(), 4);
}

TEST(RepeatedCodeLookup, AfterRemovalAddsANewObject) {
    known().getOrAddFeeCode("gone");
    known().getOrAddFeeCode("gone");  // now remembered
    ASSERT_TRUE(known().removeAt("fee code", indexOf("fee code", "GONE")));
    const auto renewed = known().getOrAddFeeCode("gone");
    ASSERT_NE(renewed, nullptr);
    EXPECT_EQ(renewed->text(), "GONE");
    EXPECT_EQ(indexOf("fee code", "GONE"), 0);
    EXPECT_EQ(renewed.use_count(), 2);
}

TEST(RepeatedCodeLookup, AfterRenameTheOldTextIsANewCode) {
    const auto original = known().getOrAddJobNumber("j1");
    known().getOrAddJobNumber("j1");
    known().renameAt("job number", indexOf("job number", "J1"), "j2");
    EXPECT_EQ(original->text(), "J2");
    const auto old = known().getOrAddJobNumber("j1");
    EXPECT_NE(old.get(), original.get());
    EXPECT_EQ(old->text(), "J1");
    EXPECT_EQ(known().getOrAddJobNumber("j2").get(), original.get());
}

TEST(RepeatedCodeLookup, AfterSetItemGivesTheReplacement) {
    known().getOrAddEmployee("xy");
    known().getOrAddEmployee("xy");
    auto replacement = std::make_shared<tkEmployee>("XY");
    known().setItem("employee", "xy", replacement);
    EXPECT_EQ(known().getOrAddEmployee("xy").get(), replacement.get());
}

TEST(RepeatedCodeLookup, AfterForcedClearAddsNewObjects) {
    const auto before = known().getOrAddEmployee("cl");
    known().getOrAddEmployee("cl");
    known().clear(true);
    EXPECT_EQ(known().count("employee"), 0);
    const auto after = known().getOrAddEmployee("cl");
    EXPECT_NE(after.get(), before.get());
    EXPECT_EQ(known().count("employee"), 1);
}

TEST(RepeatedCodeLookup, ARememberedCodeStaysRemovableWhenNobodyHoldsIt) {
    // The memory of a lookup must not count as a holder of the code.
    known().getOrAddFeeCode("tmp");
    known().getOrAddFeeCode("tmp");
    EXPECT_TRUE(known().removeAt("fee code", indexOf("fee code", "TMP")));
}

TEST(RepeatedCodeLookup, WithAddingRefusedStillFindsListedCodes) {
    known().getOrAddEmployee("ok");
    known().getOrAddEmployee("ok");
    known().setAddAllowed(false);
    EXPECT_NE(known().getOrAddEmployee("ok"), nullptr);
    EXPECT_EQ(known().getOrAddEmployee("new"), nullptr);
    EXPECT_EQ(known().getOrAddEmployee("new"), nullptr);
}

TEST(SharedFromTabLine, ReadsOnlyTheLineItIsGiven) {
    // The line is a view into a larger text: nothing behind its end may be read.
    const std::string text = "1/2/20\t1.5\tab\tj9\tdev\tdone\tSPILL\n";
    const std::string_view line = std::string_view(text).substr(0, text.find("\tSPILL"));
    const auto record = sharedFromTabLine(line, false);
    EXPECT_EQ(toTabLine(*record), "1/2/20\t01:30:00\tAB\tJ9\tDEV\tdone");
    EXPECT_EQ(record->employee().get(), known().getOrAddEmployee("AB").get());
}

TEST(SharedFromTabLine, CountsOnlyTheTabsOfItsLine) {
    const std::string text = "1/2/3\ta\tb\tc\td\te";
    try {
        sharedFromTabLine(std::string_view(text).substr(0, text.size() - 2), false);
        FAIL() << "a line of four tabs was read";
    } catch (const StringFormatException& e) {
        EXPECT_EQ(e.message(), "Not enough tabs in line: 1/2/3\ta\tb\tc\td");
    }
}

TEST(SharedFromTabLine, SanitisesAndCutsTheDescription) {
    const std::string longText(400, 'd');
    const auto cut = sharedFromTabLine("1/1/20\t\t\t\t\t" + longText, false);
    EXPECT_EQ(cut->description()->text(), std::string(360, 'd'));
    const auto carriage = sharedFromTabLine("1/1/20\t\t\t\t\tend\r", false);
    EXPECT_EQ(carriage->description()->text(), "end ");
}
