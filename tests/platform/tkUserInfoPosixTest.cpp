#include "platform/tkUserInfoPosix.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

#include "tests/support/tkTempHome.h"

namespace {

TEST(tkUserInfoPosix, FullNameIsTheFirstGecosFieldOrTheLoginName) {
    const struct passwd* entry = ::getpwuid(::getuid());
    ASSERT_NE(entry, nullptr);
    std::string expected = entry->pw_gecos != nullptr ? entry->pw_gecos : "";
    expected = expected.substr(0, expected.find(','));
    if (expected.empty()) {
        expected = entry->pw_name;
    }
    EXPECT_EQ(posixFullUserName(), expected);
    EXPECT_EQ(posixFullUserName().find(','), std::string::npos);
}

TEST(tkUserInfoPosix, DataFolderFollowsTheBaseDirectoryRule) {
    tkTempHome home;
    struct Case {
        const char* xdg;  // nullptr: unset
        std::string expected;
    };
    const Case cases[] = {
        {"/custom/data", "/custom/data"},
        {"", home.root() + "/.local/share"},
        {"relative/data", home.root() + "/.local/share"},
        {nullptr, home.root() + "/.local/share"},
    };
    for (const Case& c : cases) {
        if (c.xdg != nullptr) {
            ::setenv("XDG_DATA_HOME", c.xdg, 1);
        } else {
            ::unsetenv("XDG_DATA_HOME");
        }
        EXPECT_EQ(posixDataFolder(), c.expected) << "XDG_DATA_HOME=" << (c.xdg ? c.xdg : "(unset)");
    }
}

}  // namespace
