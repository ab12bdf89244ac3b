#include "preferences/tkPaths.h"

#include <gtest/gtest.h>

#include "tests/platform/tkPlatformTestSupport.h"
#include "tests/support/tkTempHome.h"

// Defaults lie in the application folder of the data folder, which without a platform follows
// the environment; the old paths stay exactly as earlier versions wrote them.
TEST(tkPaths, DefaultsLieInTheApplicationFolderOfTheDataFolder) {
    tkTempHome home;
    setUserInfoSource([] { return std::string("J. Random User"); }, nullptr);
    const std::string folder = home.dataFolder() + "/Tekamo";
    EXPECT_EQ(timersFilePath(false), folder + "/Chronolet Timers.txt");
    EXPECT_EQ(preferencesFilePath(false), folder + "/Chronolet Preferences.txt");
    EXPECT_EQ(defaultTimeSheetFilePath(), folder + "/J. Random User's Time Sheet.txt");
    EXPECT_EQ(timersFilePath(true),
              "~/Library/Application Support/Tekamo Chronolet/Chronolet Timers.txt");
    EXPECT_EQ(preferencesFilePath(true),
              "~/Library/Application Support/Tekamo Chronolet/Chronolet Preferences.txt");
    ::unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(userDataFolder(), home.root() + "/.local/share");
    ::setenv("XDG_DATA_HOME", (home.root() + "/x/").c_str(), 1);
    EXPECT_EQ(applicationSupportFolder(), home.root() + "/x/Tekamo");
}

TEST(tkPaths, FileModeOpensAndClosesTheFile) {
    tkTempHome home;
    home.writeText("f", "");
    EXPECT_TRUE(setFileMode(home.path("f"), true));
    EXPECT_EQ(permissionsOf(home.path("f")), 0666u);
    EXPECT_TRUE(setFileMode(home.path("f"), false));
    EXPECT_EQ(permissionsOf(home.path("f")), 0644u);
    EXPECT_FALSE(setFileMode(home.path("missing"), true));
}
