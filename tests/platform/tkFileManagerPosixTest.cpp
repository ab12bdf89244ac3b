#include "platform/tkFileManagerPosix.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "foundation/IOException.h"
#include "platform/tkFilePosix.h"
#include "tests/platform/tkPlatformTestSupport.h"
#include "tests/support/tkTempHome.h"

namespace {

class tkFileManagerPosixTest : public ::testing::Test {
  protected:
    std::unique_ptr<tkFile> file(const std::string& relative) {
        return manager.makeFile(home.path(relative));
    }
    std::vector<std::string> sortedEntries(const std::string& relative) {
        std::vector<std::string> names = manager.listDirectory(home.path(relative));
        std::sort(names.begin(), names.end());
        return names;
    }

    tkTempHome home;
    tkFileManagerPosix manager;
};

// ---- createDirectory, createFile ----

TEST_F(tkFileManagerPosixTest, CreateDirectoryMakesThePrivateChainButNotThroughAFile) {
    EXPECT_TRUE(manager.createDirectory("~/a/b/c"));
    EXPECT_TRUE(std::filesystem::is_directory(home.path("a/b/c")));
    for (const char* folder : {"a", "a/b", "a/b/c"}) {
        EXPECT_EQ(permissionsOf(home.path(folder)), 0700u) << folder;
    }
    home.writeText("plain", "x");
    EXPECT_TRUE(manager.createDirectory(home.path("plain")));
    EXPECT_FALSE(manager.createDirectory(home.path("plain/sub")));
    EXPECT_FALSE(home.exists("plain/sub"));
}

TEST_F(tkFileManagerPosixTest, CreateFileMakesAnEmptyFileOrLeavesAnExistingOneAlone) {
    manager.createFile(*file("x/y/f.txt"));
    EXPECT_EQ(home.readText("x/y/f.txt"), "");
    home.writeText("f.txt", "content");
    manager.createFile(*file("f.txt"));
    EXPECT_EQ(home.readText("f.txt"), "content");
}

TEST_F(tkFileManagerPosixTest, CreateFileFailuresCarryTheirTexts) {
    home.writeText("plain", "x");
    try {
        manager.createFile(*file("plain/sub/f.txt"));
        FAIL() << "no exception";
    } catch (const IOException& e) {
        EXPECT_EQ(e.message(), "Could not create directory.");
    }
    const std::string tooLong = home.path(std::string(300, 'n'));
    try {
        manager.createFile(tkFilePosix(tooLong));
        FAIL() << "no exception";
    } catch (const IOException& e) {
        EXPECT_EQ(e.message(), "Could not create file " + tooLong + ".");
    }
}

// ---- checkReadable, createWritableFile ----

TEST_F(tkFileManagerPosixTest, CheckReadableOfMissingFileSaysSoTwiceOnStandardOutput) {
    const std::string path = home.path("missing.txt");
    testing::internal::CaptureStdout();
    try {
        manager.checkReadable(tkFilePosix(path));
        testing::internal::GetCapturedStdout();
        FAIL() << "no exception";
    } catch (const IOException& e) {
        const std::string out = testing::internal::GetCapturedStdout();
        EXPECT_EQ(e.message(), "Cannot read file at: " + path);
        EXPECT_NE(out.find("Cannot read file at: " + path + "\n"), std::string::npos) << out;
        EXPECT_NE(out.find("tkException IOException thrown: Cannot read file at: " + path),
                  std::string::npos)
            << out;
    }
}

TEST_F(tkFileManagerPosixTest, WritePermissionIsCheckedForAnOrdinaryUser) {
    home.writeText("ro.txt", "keep");
    ::chmod(home.path("ro.txt").c_str(), 0444);
    home.writeText("rw.txt", "");
    ::chmod(home.path("rw.txt").c_str(), 0666);
    runUnprivileged(home.root(), [&] {
        tkFileManagerPosix unprivileged;
        EXPECT_FALSE(unprivileged.isWritable(tkFilePosix(home.path("ro.txt"))));
        EXPECT_TRUE(unprivileged.isWritable(tkFilePosix(home.path("rw.txt"))));
        try {
            unprivileged.createWritableFile(tkFilePosix(home.path("ro.txt")));
            ADD_FAILURE() << "no exception";
        } catch (const IOException& e) {
            EXPECT_EQ(e.message(), "Cannot write to file at: " + home.path("ro.txt"));
        }
        EXPECT_EQ(home.readText("ro.txt"), "keep");
    });
}

// ---- moveFile, removeFile ----

TEST_F(tkFileManagerPosixTest, MoveFileMovesAndRefusesAnExistingDestination) {
    home.writeText("a.txt", "A");
    EXPECT_TRUE(manager.moveFile(*file("a.txt"), home.path("b.txt")));
    EXPECT_FALSE(home.exists("a.txt"));
    EXPECT_EQ(home.readText("b.txt"), "A");

    home.writeText("c.txt", "C");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(manager.moveFile(*file("c.txt"), home.path("b.txt")));
    const std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("move file failed with error "), std::string::npos) << log;
    EXPECT_EQ(home.readText("b.txt"), "A");
    EXPECT_EQ(home.readText("c.txt"), "C");
}

TEST_F(tkFileManagerPosixTest, MoveFileWorksAcrossFileSystems) {
    struct stat shm;
    struct stat tmp;
    if (::stat("/dev/shm", &shm) != 0 || ::stat(home.root().c_str(), &tmp) != 0 ||
        shm.st_dev == tmp.st_dev) {
        GTEST_SKIP() << "no second file system to move to";
    }
    const std::string destination = "/dev/shm/tkmove." + std::to_string(::getpid());
    ::unlink(destination.c_str());
    home.writeText("sheet.txt", "rows\n");
    ::chmod(home.path("sheet.txt").c_str(), 0640);
    EXPECT_TRUE(manager.moveFile(*file("sheet.txt"), destination));
    EXPECT_FALSE(home.exists("sheet.txt"));
    EXPECT_EQ(home.readText(destination), "rows\n");
    EXPECT_EQ(permissionsOf(destination), 0640u);

    // Back again, onto an existing file: refused, both kept.
    home.writeText("sheet.txt", "other");
    EXPECT_FALSE(manager.moveFile(tkFilePosix(destination), home.path("sheet.txt")));
    EXPECT_EQ(home.readText("sheet.txt"), "other");
    EXPECT_EQ(home.readText(destination), "rows\n");
    ::unlink(destination.c_str());
}

TEST_F(tkFileManagerPosixTest, RemoveFileRemovesFilesAndFolders) {
    home.writeText("d/e/f.txt", "x");
    home.writeText("g.txt", "x");
    EXPECT_TRUE(manager.removeFile(*file("g.txt")));
    EXPECT_TRUE(manager.removeFile(*file("d")));
    EXPECT_FALSE(home.exists("g.txt"));
    EXPECT_FALSE(home.exists("d"));
    EXPECT_FALSE(manager.removeFile(*file("g.txt")));
}

// ---- listDirectory ----

TEST_F(tkFileManagerPosixTest, ListDirectoryGivesNamesWithDotFiles) {
    home.writeText("d/.hidden", "");
    home.writeText("d/b.txt", "");
    home.writeText("d/sub/x", "");
    EXPECT_EQ(sortedEntries("d"), (std::vector<std::string>{".hidden", "b.txt", "sub"}));
    EXPECT_TRUE(manager.listDirectory(home.path("missing")).empty());
}

// ---- safeSave ----

TEST_F(tkFileManagerPosixTest, SafeSaveCreatesOrReplacesAndLeavesNoTemporary) {
    EXPECT_FALSE(manager.safeSave(*file("d/data"), "no folder, no file"));
    ASSERT_TRUE(manager.createDirectory(home.path("d")));
    EXPECT_TRUE(manager.safeSave(*file("d/data"), "old contents, longer"));
    EXPECT_EQ(home.readText("d/data"), "old contents, longer");
    ::chmod(home.path("d/data").c_str(), 0604);
    EXPECT_TRUE(manager.safeSave(*file("d/data"), "new"));
    EXPECT_EQ(home.readText("d/data"), "new");
    EXPECT_EQ(permissionsOf(home.path("d/data")), 0604u);
    EXPECT_EQ(sortedEntries("d"), (std::vector<std::string>{"data"}));
}

TEST_F(tkFileManagerPosixTest, SafeSavePicksALongerTemporaryNameAndLeavesOldOnesAlone) {
    home.writeText("d/data", "old");
    home.writeText("d/~data", "leftover 1");
    home.writeText("d/~~data", "leftover 2");
    EXPECT_EQ(tkFileManagerPosix::temporaryPathFor(home.path("d/data")), home.path("d/~~~data"));
    EXPECT_TRUE(manager.safeSave(*file("d/data"), "new"));
    EXPECT_EQ(home.readText("d/data"), "new");
    EXPECT_EQ(home.readText("d/~data"), "leftover 1");
    EXPECT_EQ(home.readText("d/~~data"), "leftover 2");
    EXPECT_FALSE(home.exists("d/~~~data"));
}

// ---- replaceFile ----

// While a save writes a big file, its temporary never shows anyone more than
// the finished file will: it has the target's permissions from its first byte.
TEST_F(tkFileManagerPosixTest, TemporariesNeverShowWiderPermissionsThanTheTarget) {
    home.writeText("d/secret", "old");
    home.writeText("d/export", "old");
    ::chmod(home.path("d/secret").c_str(), 0600);
    ::chmod(home.path("d/export").c_str(), 0600);
    const pid_t writer = ::fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
        tkFileManagerPosix own;
        const std::string big(4 << 20, 'x');
        for (;;) {
            own.replaceFile(*own.makeFile(home.path("d/secret")), big);
            own.safeSave(*own.makeFile(home.path("d/export")), big);
        }
    }
    // Temporaries of either save, caught in flight.
    int seen[2] = {0, 0};
    for (int look = 0; look < 20000 && (seen[0] < 10 || seen[1] < 10); ++look) {
        for (const std::string& name : manager.listDirectory(home.path("d"))) {
            struct stat info;
            if (name == "secret" || name == "export" ||
                ::lstat(home.path("d/" + name).c_str(), &info) != 0) {
                continue;
            }
            ++seen[name[0] == '~' ? 1 : 0];
            EXPECT_EQ(info.st_mode & 07777, 0600u) << name;
        }
    }
    ::kill(writer, SIGKILL);
    ::waitpid(writer, nullptr, 0);
    EXPECT_GT(seen[0], 0) << "no temporary of replaceFile was caught in flight";
    EXPECT_GT(seen[1], 0) << "no temporary of safeSave was caught in flight";
}

// ---- lockFile ----

TEST_F(tkFileManagerPosixTest, LockFileTriesOnceOrWaitsForTheHolderToLetGo) {
    const std::string lock = home.path(".data.lock");
    int release[2];
    int ready[2];
    ASSERT_EQ(::pipe(release), 0);
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t holder = ::fork();
    ASSERT_GE(holder, 0);
    if (holder == 0) {
        tkFileManagerPosix own;
        const char ok = own.lockFile(lock, 0).fd >= 0 ? '1' : '0';
        (void)!::write(ready[1], &ok, 1);
        char go = 0;
        (void)!::read(release[0], &go, 1);
        ::_exit(0);  // the lock dies with the process
    }
    char ok = 0;
    ASSERT_EQ(::read(ready[0], &ok, 1), 1);
    ASSERT_EQ(ok, '1');
    EXPECT_EQ(permissionsOf(lock), 0644u) << "others who share a sheet lock it too";

    const tkLockAttempt refused = manager.lockFile(lock, 0);
    EXPECT_EQ(refused.fd, -1);
    EXPECT_TRUE(refused.heldElsewhere);

    const char go = 'g';
    ASSERT_EQ(::write(release[1], &go, 1), 1);
    // Generous: the holder exits at once, but the machine may be busy.
    const tkLockAttempt waited = manager.lockFile(lock, 60000);
    EXPECT_GE(waited.fd, 0);
    EXPECT_NE(::fcntl(waited.fd, F_GETFD) & FD_CLOEXEC, 0) << "a forked child must not inherit it";
    manager.closeLocked(waited.fd);
    ::waitpid(holder, nullptr, 0);
}

// ---- openLocked, closeLocked ----

TEST_F(tkFileManagerPosixTest, LockHeldByAnotherDescriptorFailsAtOnceUntilClosed) {
    EXPECT_EQ(manager.openLocked(home.path("sheet"), 0644), -1);
    EXPECT_FALSE(home.exists("sheet")) << "never creates the file";
    home.writeText("sheet", "");
    const int32_t first = manager.openLocked(home.path("sheet"), 0);
    ASSERT_GE(first, 0);
    EXPECT_NE(::fcntl(first, F_GETFD) & FD_CLOEXEC, 0) << "a forked child must not inherit it";
    EXPECT_EQ(manager.openLocked(home.path("sheet"), 0), -1);
    EXPECT_EQ(manager.closeLocked(first), 0);
    const int32_t second = manager.openLocked(home.path("sheet"), 0);
    EXPECT_GE(second, 0);
    manager.closeLocked(second);
}

TEST_F(tkFileManagerPosixTest, LockOfAnotherProcessHoldsUntilThatProcessDies) {
    home.writeText("sheet", "");
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        tkFileManagerPosix own;
        const char ok = own.openLocked(home.path("sheet"), 0) >= 0 ? '1' : '0';
        (void)!::write(ready[1], &ok, 1);
        ::pause();
        ::_exit(0);
    }
    ::close(ready[1]);
    char ok = 0;
    ASSERT_EQ(::read(ready[0], &ok, 1), 1);
    ASSERT_EQ(ok, '1');
    EXPECT_EQ(manager.openLocked(home.path("sheet"), 0), -1);

    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(ready[0]);
    const int32_t fd = manager.openLocked(home.path("sheet"), 0);
    EXPECT_GE(fd, 0) << "the lock must die with its process";
    manager.closeLocked(fd);
}

TEST_F(tkFileManagerPosixTest, LockFollowsTheFileThatTheNameShowsAfterARewrite) {
    home.writeText("sheet", "old");
    const int32_t fd = manager.openLocked(home.path("sheet"), 0);
    ASSERT_GE(fd, 0);
    // A rewrite renames a new file over the old one. Its lock must be
    // takeable, or the writer could never lock its own file again.
    manager.closeLocked(fd);
    manager.makeFile(home.path("sheet"))->write("new");
    const int32_t again = manager.openLocked(home.path("sheet"), 0);
    ASSERT_GE(again, 0);
    struct stat locked;
    struct stat named;
    ASSERT_EQ(::fstat(again, &locked), 0);
    ASSERT_EQ(::stat(home.path("sheet").c_str(), &named), 0);
    EXPECT_EQ(locked.st_ino, named.st_ino);
    manager.closeLocked(again);
}

}  // namespace
