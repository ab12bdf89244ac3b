#include "platform/tkFilePosix.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "tests/platform/tkPlatformTestSupport.h"
#include "tests/support/tkTempHome.h"

namespace {

// Name and folder follow the last component; a leading tilde is expanded at construction,
// for this user or a named one, and an unknown user leaves the path alone.
TEST(tkFilePosix, PathsSplitAtTheLastComponentAndExpandALeadingTilde) {
    const struct {
        const char* path;
        const char* name;
        const char* directory;
    } cases[] = {
        {"/a/b/c.txt", "c.txt", "/a/b"},
        {"/a/b/", "b", "/a"},
        {"/a", "a", "/"},
        {"/", "/", "/"},
        {"name", "name", ""},
        {"rel/name", "name", "rel"},
        {"/a//b", "b", "/a"},
        {"", "", ""},
        {"/U/J. Doe's T.txt", "J. Doe's T.txt", "/U"},
    };
    for (const auto& c : cases) {
        tkFilePosix file(c.path);
        EXPECT_EQ(file.name(), c.name) << "path: " << c.path;
        EXPECT_EQ(file.directory(), c.directory) << "path: " << c.path;
    }
    tkTempHome home;
    const struct passwd* rootEntry = ::getpwnam("root");
    ASSERT_NE(rootEntry, nullptr);
    const std::vector<std::pair<std::string, std::string>> tildes = {
        {"~/x/y.txt", home.root() + "/x/y.txt"},
        {"~", home.root()},
        {"/abs/~/y", "/abs/~/y"},
        {"a~b", "a~b"},
        {"~root/f", std::string(rootEntry->pw_dir) + "/f"},
        {"~no-such-user-tk/f", "~no-such-user-tk/f"},
    };
    for (const auto& [path, expanded] : tildes) {
        EXPECT_EQ(tkFilePosix(path).path(), expanded) << path;
    }
}

// Reads give the bytes as they are, and nothing for a missing file or a folder. A write
// replaces the whole content of an existing file only, through a link, keeping its
// permissions and leaving nothing behind.
TEST(tkFilePosix, WritesReplaceAnExistingFileWhole) {
    tkTempHome home;
    const std::string bytes("tab\there\r\nnul\0byte\xff", 20);
    home.writeText("d/f.bin", bytes);
    EXPECT_EQ(tkFilePosix(home.path("d/f.bin")).read(), bytes);
    EXPECT_EQ(tkFilePosix(home.path("missing")).read() + tkFilePosix(home.root()).read(), "");
    tkFilePosix(home.path("d/missing.txt")).write("text");
    EXPECT_FALSE(home.exists("d/missing.txt"));

    ::chmod(home.path("d/f.bin").c_str(), 0640);
    ASSERT_EQ(::symlink(home.path("d/f.bin").c_str(), home.path("d/link").c_str()), 0);
    tkFilePosix(home.path("d/link")).write("short");
    EXPECT_EQ(home.readText("d/f.bin"), "short");
    EXPECT_EQ(permissionsOf(home.path("d/f.bin")), 0640u);
    struct stat info;
    ASSERT_EQ(::lstat(home.path("d/link").c_str(), &info), 0);
    EXPECT_TRUE(S_ISLNK(info.st_mode));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(home.path("d")), {}), 2);
}

// Who may replace what, as an ordinary user sees it: a file is replaced only by a whole new
// copy that everyone who used it can still use, and otherwise left exactly as it was, never
// rewritten in place.
TEST(tkFilePosix, ReplacesOnlyWhatCanBeReplacedWholeAndKeepsSharing) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs root to stand in for a second user";
    }
    tkTempHome home;
    const struct {
        const char* path;
        mode_t mode;
        gid_t group;
        bool replaced;
    } cases[] = {
        {"locked/f.txt", 0666, 0, false},  // the folder takes no new file
        {"open/ro.txt", 0444, 0, false},
        {"open/shared.txt", 0666, 0, true},  // the new copy is the writer's, as usable
        // Shared through a group that its owner is not in: the owner would lose it to a copy
        // owned by the writer.
        {"open/group.txt", 0664, 65534, false},
    };
    for (const auto& c : cases) {
        home.writeText(c.path, "old");
        ASSERT_EQ(::chown(home.path(c.path).c_str(), 0, c.group), 0);
        ASSERT_EQ(::chmod(home.path(c.path).c_str(), c.mode), 0);
    }
    ::chmod(home.path("locked").c_str(), 0555);
    ::chmod(home.path("open").c_str(), 0777);
    runUnprivileged(home.root(), [&] {
        testing::internal::CaptureStdout();
        for (const auto& c : cases) {
            tkFilePosix(home.path(c.path)).write("new");
        }
        testing::internal::GetCapturedStdout();
    });
    for (const auto& c : cases) {
        EXPECT_EQ(home.readText(c.path), c.replaced ? "new" : "old") << c.path;
        EXPECT_EQ(permissionsOf(home.path(c.path)), c.mode) << c.path;
    }
}

}  // namespace
