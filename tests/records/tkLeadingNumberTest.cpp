// Date and duration parts are read without building a string for each; whatever the part,
// the number must be the one the general string reader gives.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "foundation/tkStrings.h"
#include "records/tkLeadingNumber.h"

TEST(LeadingNumber, ReadsEveryPartAsTheGeneralReaderDoes) {
    std::vector<std::string> parts = {"0", "7",  "07",  "12", "59x", "1 2", "",
                                      "x", " 5", "\t5", "+5", "-5",  "- 5", "0x1f"};
    const std::vector<std::string> large = {
        "2147483647",          "2147483648",           "4294967301",
        "999999999999999999",  "1000000000000000000",  "9223372036854775807",
        "9223372036854775808", "99999999999999999999", "-99999999999999999999",
        "00000000000000000042"};
    parts.insert(parts.end(), large.begin(), large.end());
    for (const std::string& part : parts) {
        for (long fallback : {-1L, 0L}) {
            EXPECT_EQ(leadingNumber(part, fallback), stringToLong(part, fallback))
                << "part \"" << part << "\", fallback " << fallback;
        }
    }
    EXPECT_EQ(leadingNumber(std::string("4\0002", 3), -1), 4);
}
