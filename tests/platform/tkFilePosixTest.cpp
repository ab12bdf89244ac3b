#include "platform/tkFilePosix.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/platform/tkPlatformTestSupport.h"
#include "tests/support/tkTempHome.h"

namespace {

struct PathCase {
    const char* path;
    const char* name;
    const char* directory;
};

TEST(tkFilePaths, NameAndDirectoryFollowTheLastComponent) {
    const PathCase cases[] = {
        {"/a/b/c.txt", "c.txt", "/a/b"},
        {"/a/b/", "b", "/a"},
        {"/a", "a", "/"},
        {"/", "/", "/"},
        {"name", "name", ""},
        {"rel/name", "name", "rel"},
        {"/a//b", "b", "/a"},
        {"", "", ""},
        {"/Users/x/J. Doe's Time Sheet.txt", "J. Doe's Time Sheet.txt", "/Users/x"},
    };
    for (const PathCase& c : cases) {
        tkFilePosix file(c.path);
        EXPECT_EQ(file.name(), c.name) << "path: " << c.path;
        EXPECT_EQ(file.directory(), c.directory) << "path: " << c.path;
    }
}

TEST(tkFilePaths, LeadingTildeIsExpandedAtConstruction) {
    tkTempHome home;
    EXPECT_EQ(tkFilePosix("~/x/y.txt").path(), home.root() + "/x/y.txt");
    EXPECT_EQ(tkFilePosix("~").path(), home.root());
    EXPECT_EQ(tkFilePosix("/abs/~/y").path(), "/abs/~/y");
    EXPECT_EQ(tkFilePosix("a~b").path(), "a~b");
    const struct passwd* rootEntry = ::getpwnam("root");
    ASSERT_NE(rootEntry, nullptr);
    EXPECT_EQ(tkFilePosix("~root/f").path(), std::string(rootEntry->pw_dir) + "/f");
    // An unknown user leaves the path alone rather than inventing a folder.
    EXPECT_EQ(tkFilePosix("~no-such-user-tk/f").path(), "~no-such-user-tk/f");
}

TEST(tkFilePosixRead, ReadsBytesAsTheyAreAndMissingFileAsEmpty) {
    tkTempHome home;
    const std::string bytes("tab\there\r\nnul\0byte\xff", 20);
    home.writeText("f.bin", bytes);
    EXPECT_EQ(tkFilePosix(home.path("f.bin")).read(), bytes);
    EXPECT_EQ(tkFilePosix(home.path("missing")).read(), "");
    EXPECT_EQ(tkFilePosix(home.root()).read(), "");
}

TEST(tkFilePosixWrite, MissingFileStaysMissing) {
    tkTempHome home;
    tkFilePosix file(home.path("missing.txt"));
    file.write("text");
    EXPECT_FALSE(home.exists("missing.txt"));
}

TEST(tkFilePosixWrite, ReplacesWholeContentAndLeavesNothingBehind) {
    tkTempHome home;
    home.writeText("f.txt", "a much longer old content than the new one");
    tkFilePosix file(home.path("f.txt"));
    file.write("short");
    EXPECT_EQ(home.readText("f.txt"), "short");
    file.write("");
    EXPECT_EQ(home.readText("f.txt"), "");
    // Only the file itself: no temporary stays in the folder.
    int entries = 0;
    for (const auto& entry : std::filesystem::directory_iterator(home.root())) {
        (void)entry;
        ++entries;
    }
    EXPECT_EQ(entries, 1);
}

TEST(tkFilePosixWrite, KeepsPermissionsOfTheOldFile) {
    tkTempHome home;
    home.writeText("f.txt", "old");
    ::chmod(home.path("f.txt").c_str(), 0640);
    tkFilePosix(home.path("f.txt")).write("new");
    EXPECT_EQ(home.readText("f.txt"), "new");
    EXPECT_EQ(permissionsOf(home.path("f.txt")), 0640u);
}

TEST(tkFilePosixWrite, WritesThroughSymlinkAndKeepsTheLink) {
    tkTempHome home;
    home.writeText("target.txt", "old");
    ASSERT_EQ(::symlink(home.path("target.txt").c_str(), home.path("link.txt").c_str()), 0);
    tkFilePosix(home.path("link.txt")).write("new");
    struct stat info;
    ASSERT_EQ(::lstat(home.path("link.txt").c_str(), &info), 0);
    EXPECT_TRUE(S_ISLNK(info.st_mode));
    EXPECT_EQ(home.readText("target.txt"), "new");
}

// Who may replace what, as an ordinary user sees it: a file is replaced only
// by a whole new copy that everyone who used it can still use, and otherwise
// left exactly as it was, never rewritten in place.
TEST(tkFilePosixWrite, ReplacesOnlyWhatCanBeReplacedWholeAndKeepsSharing) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root to stand in for a second user";
    }
    tkTempHome home;
    struct Case {
        const char* path;
        mode_t mode;
        gid_t group;
        bool replaced;
    };
    const Case cases[] = {
        // The folder takes no new file: refused, not written in place.
        {"locked/f.txt", 0666, 0, false},
        {"open/ro.txt", 0444, 0, false},
        // Everyone may write it: the new copy is the writer's, as usable.
        {"open/shared.txt", 0666, 0, true},
        // Shared through a group that its owner is not in: the owner would
        // lose it to a copy owned by the writer.
        {"open/group.txt", 0664, 65534, false},
    };
    for (const Case& c : cases) {
        home.writeText(c.path, "old");
        ASSERT_EQ(::chown(home.path(c.path).c_str(), 0, c.group), 0);
        ASSERT_EQ(::chmod(home.path(c.path).c_str(), c.mode), 0);
    }
    ::chmod(home.path("locked").c_str(), 0555);
    ::chmod(home.path("open").c_str(), 0777);
    runUnprivileged(home.root(), [&] {
        testing::internal::CaptureStdout();
        for (const Case& c : cases) {
            tkFilePosix(home.path(c.path)).write("new");
        }
        testing::internal::GetCapturedStdout();
    });
    for (const Case& c : cases) {
        EXPECT_EQ(home.readText(c.path), c.replaced ? "new" : "old") << c.path;
        EXPECT_EQ(permissionsOf(home.path(c.path)), c.mode) << c.path;
    }
}

}  // namespace
