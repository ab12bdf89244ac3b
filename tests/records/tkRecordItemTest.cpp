#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "records/tkDescription.h"
#include "records/tkEmployee.h"
#include "records/tkFeeCode.h"
#include "records/tkJobNumber.h"
#include "records/tkKnownRecordItems.h"

// Stored whole at the limit (which isAcceptable, deliberately, already refuses), cut one byte
// past it; only setText takes text as it is.
TEST(tkRecordItem, LeavesCarryTheirNamesAndByteLimits) {
    struct Case {
        std::unique_ptr<tkRecordItem> item;
        const char* name;
        size_t maxLength;
    };
    Case cases[] = {
        {std::make_unique<tkDescription>(), "description", 360},
        {std::make_unique<tkEmployee>(), "employee", 4},
        {std::make_unique<tkFeeCode>(), "fee code", 4},
        {std::make_unique<tkJobNumber>(), "job number", 10},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.item->fieldName(), c.name);
        EXPECT_EQ(c.item->toString(), "") << c.name;
        c.item->setFromString(std::string(c.maxLength, 'x'));
        EXPECT_EQ(c.item->text().size(), c.maxLength) << c.name;
        EXPECT_TRUE(c.item->isAcceptable(std::string(c.maxLength - 1, 'x'))) << c.name;
        EXPECT_FALSE(c.item->isAcceptable(c.item->text())) << c.name;
        c.item->setFromString(std::string(c.maxLength + 1, 'y'));
        EXPECT_EQ(c.item->text(), std::string(c.maxLength, 'y')) << c.name;
        c.item->setText(std::string(c.maxLength + 1, '\t'));
        EXPECT_EQ(c.item->text(), std::string(c.maxLength + 1, '\t')) << c.name;
    }
}

// Separators become blanks first, then the text is cut by bytes, even inside a character.
TEST(tkRecordItem, SanitizeTurnsSeparatorsIntoBlanksThenCutsBytes) {
    std::string accents;
    for (int i = 0; i < 180; ++i) {
        accents += "\xC3\xA9";
    }
    const struct {
        std::string input, expected;
    } cases[] = {
        {"a\tb\nc\rd", "a b c d"},
        {"line\r\nend", "line  end"},
        {"  Mixed Case  ", "  Mixed Case  "},
        {accents, accents},
        {"x" + accents, "x" + accents.substr(0, 359)},
    };
    tkDescription description;
    for (const auto& c : cases) {
        EXPECT_EQ(description.sanitize(c.input), c.expected) << c.input;
    }
    EXPECT_EQ(tkEmployee("a\tbcde").text(), "a bc");
}

TEST(tkRecordItem, CompareTextIgnoresCaseAndOrdersByUnsignedBytesShorterFirst) {
    const struct {
        const char* a;
        const char* b;
        int expectedSign;
    } cases[] = {
        {"abc", "ABD", -1}, {"ABC", "abc", 0},     {"AB", "ABC", -1}, {"ABC", "AB", 1},
        {"", "", 0},        {"", "A", -1},         {"9", "A", -1},    {"Z", "\xC3\xA9", -1},
        {"b", "A", 1},      {"a\xC3", "A\x7F", 1},
    };
    for (const auto& c : cases) {
        const tkEmployee a(c.a);
        const tkEmployee b(c.b);
        const int32_t result = a.compareText(b);
        EXPECT_EQ((result > 0) - (result < 0), c.expectedSign) << c.a << " vs " << c.b;
        EXPECT_EQ(a.compare(b), result) << c.a << " vs " << c.b;
        EXPECT_EQ(a.isEqual(b), c.expectedSign == 0) << c.a << " vs " << c.b;
    }
    // Across fields compare throws the other value; compareText looks only at the texts.
    const tkFeeCode feeCode("ABC");
    try {
        tkEmployee("ABC").compare(feeCode);
        FAIL() << "comparing an employee with a fee code must throw";
    } catch (const tkStringConvertible* thrown) {
        EXPECT_EQ(thrown, &feeCode);
    }
    EXPECT_EQ(tkEmployee("ABC").compareText(feeCode), 0);
}

// A clone of a private code object is the list's shared object, not a copy.
TEST(tkRecordItem, BillingCodesCreateAndCloneThroughTheKnownLists) {
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    const tkEmployee privateEmployee("abc");
    EXPECT_EQ(known.count("employee"), 0);
    auto created = privateEmployee.create("xy");
    EXPECT_EQ(created->toString(), "XY");
    EXPECT_EQ(created, known.getOrAddEmployee("xy"));
    EXPECT_EQ(privateEmployee.clone(), known.getOrAddEmployee("ABC"));
    EXPECT_EQ(tkFeeCode("f1").clone(), known.getOrAddFeeCode("F1"));
    EXPECT_EQ(tkJobNumber("j-9").clone(), known.getOrAddJobNumber("J-9"));
}
