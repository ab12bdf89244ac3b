#include "platform/tkUserInfoPosix.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/tkTempHome.h"

// The full name is the gecos field up to its first comma; the data folder follows the base
// directory rule: an absolute XDG_DATA_HOME, otherwise ~/.local/share.
TEST(tkUserInfoPosix, NameAndDataFolderFollowTheSystemsRules) {
    EXPECT_EQ(posixFullUserName().find(','), std::string::npos);
    EXPECT_FALSE(posixFullUserName().empty());
    tkTempHome home;
    const struct {
        const char* xdg;  // nullptr: unset
        std::string expected;
    } cases[] = {
        {"/custom/data", "/custom/data"},
        {"", home.root() + "/.local/share"},
        {"relative/data", home.root() + "/.local/share"},
        {nullptr, home.root() + "/.local/share"},
    };
    for (const auto& c : cases) {
        c.xdg != nullptr ? ::setenv("XDG_DATA_HOME", c.xdg, 1) : ::unsetenv("XDG_DATA_HOME");
        EXPECT_EQ(posixDataFolder(), c.expected) << "XDG_DATA_HOME=" << (c.xdg ? c.xdg : "(unset)");
    }
}
