#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "records/tkDescription.h"
#include "records/tkEmployee.h"
#include "records/tkFeeCode.h"
#include "records/tkJobNumber.h"
#include "records/tkKnownRecordItems.h"

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
