#include "platform/tkSystemVersionPosix.h"

#include <gtest/gtest.h>

namespace {

TEST(tkSystemVersionPosix, MinorNumberOfTheRelease) {
    struct Case {
        const char* release;
        uint32_t minor;
    };
    const Case cases[] = {
        {"6.1.0-18-amd64", 1}, {"5.15.153.1-microsoft", 15}, {"10.4", 4},
        {"6", 0xFFFFFFFFU},    {"6.x", 0xFFFFFFFFU},         {"", 0xFFFFFFFFU},
        {".1", 0xFFFFFFFFU},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(minorVersionOfRelease(c.release), c.minor) << c.release;
    }
    EXPECT_NE(posixSystemMinorVersion(), 0xFFFFFFFFU) << "this system's own release reads";
}

}  // namespace
