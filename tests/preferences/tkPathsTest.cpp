#include "preferences/tkPaths.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/tkTempHome.h"

namespace {

TEST(tkPaths, DefaultsLieInTheApplicationFolderOfTheDataFolder) {
    tkTempHome home;
    setUserInfoSource([] { return std::string("J. Random User"); }, nullptr);
    EXPECT_EQ(applicationSupportFolder(), home.dataFolder() + "/Tekamo");
    EXPECT_EQ(timersFilePath(false), home.dataFolder() + "/Tekamo/Chronolet Timers.txt");
    EXPECT_EQ(preferencesFilePath(false), home.dataFolder() + "/Tekamo/Chronolet Preferences.txt");
    EXPECT_EQ(defaultTimeSheetFilePath(),
              home.dataFolder() + "/Tekamo/J. Random User's Time Sheet.txt");
}

TEST(tkPaths, OldPathsStayExactlyAsEarlierVersionsWroteThem) {
    EXPECT_EQ(timersFilePath(true),
              "~/Library/Application Support/Tekamo Chronolet/Chronolet Timers.txt");
    EXPECT_EQ(preferencesFilePath(true),
              "~/Library/Application Support/Tekamo Chronolet/Chronolet Preferences.txt");
}

TEST(tkPaths, WithoutPlatformTheDataFolderFollowsTheEnvironment) {
    tkTempHome home;
    setUserInfoSource(nullptr, nullptr);
    ::unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(userDataFolder(), home.root() + "/.local/share");
    ::setenv("XDG_DATA_HOME", (home.root() + "/x/").c_str(), 1);
    EXPECT_EQ(applicationSupportFolder(), home.root() + "/x/Tekamo");
}

TEST(tkPaths, FileModeOpensAndClosesTheFile) {
    tkTempHome home;
    home.writeText("f", "");
    ASSERT_TRUE(setFileMode(home.path("f"), true));
    struct stat info;
    ASSERT_EQ(::stat(home.path("f").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0666u);
    ASSERT_TRUE(setFileMode(home.path("f"), false));
    ASSERT_EQ(::stat(home.path("f").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0644u);
    EXPECT_FALSE(setFileMode(home.path("missing"), true));
}

}  // namespace
