#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "records/tkDescription.h"
#include "records/tkEmployee.h"
#include "records/tkFeeCode.h"
#include "records/tkJobNumber.h"
#include "records/tkKnownRecordItems.h"

TEST(tkRecordItem, LeavesCarryTheirNamesAndByteLimits) {
    struct Case {
        std::unique_ptr<tkRecordItem> item;
        const char* name;
        int32_t maxLength;
    };
    Case cases[] = {
        {std::make_unique<tkDescription>(), "description", 360},
        {std::make_unique<tkEmployee>(), "employee", 4},
        {std::make_unique<tkFeeCode>(), "fee code", 4},
        {std::make_unique<tkJobNumber>(), "job number", 10},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.item->fieldName(), c.name);
        EXPECT_EQ(c.item->maxLength(), c.maxLength) << c.name;
        EXPECT_EQ(c.item->toString(), "") << c.name;
        // Stored whole at the limit, cut one byte past it.
        c.item->setFromString(std::string(c.maxLength, 'x'));
        EXPECT_EQ(c.item->text().size(), static_cast<size_t>(c.maxLength)) << c.name;
        c.item->setFromString(std::string(c.maxLength + 1, 'y'));
        EXPECT_EQ(c.item->text(), std::string(c.maxLength, 'y')) << c.name;
    }
}

TEST(tkRecordItem, SanitizeTurnsSeparatorsIntoBlanksThenCuts) {
    struct Case {
        std::string input;
        std::string expected;
    };
    const Case cases[] = {
        {"a\tb\nc\rd", "a b c d"},
        {"line\r\nend", "line  end"},
        {"  leading and trailing  ", "  leading and trailing  "},
        {"MiXeD", "MiXeD"},
    };
    tkDescription description;
    for (const Case& c : cases) {
        EXPECT_EQ(description.sanitize(c.input), c.expected) << c.input;
    }
    // The cut comes after the replacements, so a tab near the end still counts one byte.
    EXPECT_EQ(tkEmployee("a\tbcde").text(), "a bc");
    EXPECT_EQ(tkJobNumber("12345678901").text(), "1234567890");
}

TEST(tkRecordItem, TheLengthLimitCountsBytesNotCharacters) {
    // "é" is two bytes in UTF-8: 180 of them fill a description exactly.
    std::string accents;
    for (int i = 0; i < 180; ++i)
        accents += "\xC3\xA9";
    EXPECT_EQ(tkDescription(accents).text(), accents);
    // One more ASCII byte in front pushes the last character half over the limit; its first
    // byte stays, the second goes.
    const tkDescription cut("x" + accents);
    EXPECT_EQ(cut.text().size(), 360u);
    EXPECT_EQ(cut.text().back(), '\xC3');
}

TEST(tkRecordItem, SetTextStoresTrustedTextUnchanged) {
    tkEmployee employee;
    employee.setText("too\tlong");
    EXPECT_EQ(employee.toString(), "too\tlong");
    employee.setFromString("too\tlong");
    EXPECT_EQ(employee.toString(), "too ");
}

TEST(tkRecordItem, IsAcceptableIsOneByteStricterThanTheCut) {
    tkEmployee employee;
    EXPECT_TRUE(employee.isAcceptable("abc"));
    EXPECT_FALSE(employee.isAcceptable("abcd"));
    EXPECT_EQ(tkEmployee("abcd").text(), "abcd");
}

TEST(tkRecordItem, CompareTextIgnoresCaseAndOrdersByUnsignedBytesShorterFirst) {
    struct Case {
        const char* a;
        const char* b;
        int expectedSign;
    };
    const Case cases[] = {
        {"abc", "ABD", -1}, {"ABC", "abc", 0},     {"AB", "ABC", -1}, {"ABC", "AB", 1},
        {"", "", 0},        {"", "A", -1},         {"9", "A", -1},    {"Z", "\xC3\xA9", -1},
        {"b", "A", 1},      {"a\xC3", "A\x7F", 1},
    };
    for (const Case& c : cases) {
        const tkEmployee a(c.a);
        const tkEmployee b(c.b);
        const int32_t result = a.compareText(b);
        const int sign = (result > 0) - (result < 0);
        EXPECT_EQ(sign, c.expectedSign) << '"' << c.a << "\" vs \"" << c.b << '"';
        EXPECT_EQ(a.compare(b), result) << c.a << " vs " << c.b;
        EXPECT_EQ(a.isEqual(b), c.expectedSign == 0) << c.a << " vs " << c.b;
    }
}

TEST(tkRecordItem, CompareAcrossFieldsThrowsTheOtherValue) {
    const tkEmployee employee("ABC");
    const tkFeeCode feeCode("ABC");
    try {
        employee.compare(feeCode);
        FAIL() << "comparing an employee with a fee code must throw";
    } catch (const tkStringConvertible* thrown) {
        EXPECT_EQ(thrown, &feeCode);
    }
    // compareText looks only at the texts.
    EXPECT_EQ(employee.compareText(feeCode), 0);
}

TEST(tkRecordItem, BillingCodesCreateAndCloneThroughTheKnownLists) {
    tkKnownRecordItems& known = tkKnownRecordItems::instance();
    const tkEmployee privateEmployee("abc");
    EXPECT_EQ(known.count("employee"), 0);

    auto created = privateEmployee.create("xy");
    EXPECT_EQ(created->toString(), "XY");
    EXPECT_EQ(known.count("employee"), 1);
    EXPECT_EQ(created, known.getOrAddEmployee("xy"));

    // A clone of a private object is the list's shared object, not a copy.
    auto cloned = privateEmployee.clone();
    EXPECT_EQ(cloned, known.getOrAddEmployee("ABC"));
    EXPECT_NE(cloned.get(), &privateEmployee);
    EXPECT_EQ(tkFeeCode("f1").clone(), known.getOrAddFeeCode("F1"));
    EXPECT_EQ(tkJobNumber("j-9").clone(), known.getOrAddJobNumber("J-9"));
}
