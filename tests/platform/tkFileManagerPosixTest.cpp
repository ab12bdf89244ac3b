#include "platform/tkFileManagerPosix.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>

#include "foundation/IOException.h"
#include "platform/tkFilePosix.h"
#include "tests/platform/tkPlatformTestSupport.h"
#include "tests/support/tkTempHome.h"
#include "tests/support/tkThrown.h"

namespace {

class tkFileManagerPosixTest : public ::testing::Test {
  protected:
    std::unique_ptr<tkFile> file(const std::string& relative) {
        return manager.makeFile(home.path(relative));
    }
    std::string entries(const std::string& relative) {
        std::vector<std::string> names = manager.listDirectory(home.path(relative));
        std::sort(names.begin(), names.end());
        std::string text;
        for (const auto& name : names) {
            text += name + " ";
        }
        return text;
    }
    tkTempHome home;
    tkFileManagerPosix manager;
};

// Folders are made private, chain and all, but never through a file; a file is made empty, an
// existing one left alone, and each failure says what could not be made.
TEST_F(tkFileManagerPosixTest, CreatesPrivateFoldersAndEmptyFilesOrSaysWhatFailed) {
    EXPECT_TRUE(manager.createDirectory("~/a/b/c"));
    for (const char* folder : {"a", "a/b", "a/b/c"}) {
        EXPECT_EQ(permissionsOf(home.path(folder)), 0700u) << folder;
    }
    home.writeText("plain", "x");
    EXPECT_TRUE(manager.createDirectory(home.path("plain")));
    EXPECT_FALSE(manager.createDirectory(home.path("plain/sub")));
    manager.createFile(*file("x/y/f.txt"));
    EXPECT_EQ(home.readText("x/y/f.txt"), "");
    manager.createFile(*file("plain"));
    EXPECT_EQ(home.readText("plain"), "x");
    EXPECT_EQ(thrown<IOException>([&] { manager.createFile(*file("plain/sub/f.txt")); }),
              "IOException|Could not create directory.");
    const std::string tooLong = home.path(std::string(300, 'n'));
    EXPECT_EQ(thrown<IOException>([&] { manager.createFile(tkFilePosix(tooLong)); }),
              "IOException|Could not create file " + tooLong + ".");
    std::string log;
    EXPECT_EQ(thrown<IOException>([&] { manager.checkReadable(*file("missing")); }, &log),
              "IOException|Cannot read file at: " + home.path("missing"));
    EXPECT_EQ(log.find("Cannot read file at: " + home.path("missing") + "\n"), 0u);
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
        EXPECT_EQ(thrown<IOException>(
                      [&] { unprivileged.createWritableFile(tkFilePosix(home.path("ro.txt"))); }),
                  "IOException|Cannot write to file at: " + home.path("ro.txt"));
        EXPECT_EQ(home.readText("ro.txt"), "keep");
    });
}

// A move never replaces a file, also across file systems, where it keeps the permissions.
TEST_F(tkFileManagerPosixTest, MovesNeverReplaceAFile) {
    home.writeText("a.txt", "A");
    home.writeText("c.txt", "C");
    EXPECT_TRUE(manager.moveFile(*file("a.txt"), home.path("b.txt")));
    testing::internal::CaptureStderr();
    EXPECT_FALSE(manager.moveFile(*file("c.txt"), home.path("b.txt")));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("move file failed with error "),
              std::string::npos);
    EXPECT_FALSE(home.exists("a.txt"));
    EXPECT_EQ(*home.readText("b.txt") + *home.readText("c.txt"), "AC");

    struct stat shm, tmp;
    if (::stat("/dev/shm", &shm) != 0 || ::stat(home.root().c_str(), &tmp) != 0 ||
        shm.st_dev == tmp.st_dev) {
        GTEST_SKIP() << "no second file system to move to";
    }
    const std::string away = "/dev/shm/tkmove." + std::to_string(::getpid());
    ::unlink(away.c_str());
    ::chmod(home.path("b.txt").c_str(), 0640);
    EXPECT_TRUE(manager.moveFile(*file("b.txt"), away));
    EXPECT_EQ(home.readText(away), "A");
    EXPECT_EQ(permissionsOf(away), 0640u);
    EXPECT_FALSE(manager.moveFile(tkFilePosix(away), home.path("c.txt")));
    EXPECT_EQ(home.readText("c.txt"), "C");
    ::unlink(away.c_str());
}

TEST_F(tkFileManagerPosixTest, RemovesFilesAndFoldersAndListsDotFiles) {
    home.writeText("d/.hidden", "");
    home.writeText("d/sub/x", "");
    home.writeText("g.txt", "x");
    EXPECT_EQ(entries("d"), ".hidden sub ");
    EXPECT_EQ(entries("missing"), "");
    EXPECT_TRUE(manager.removeFile(*file("g.txt")));
    EXPECT_TRUE(manager.removeFile(*file("d")));
    EXPECT_FALSE(manager.removeFile(*file("g.txt")));
    EXPECT_FALSE(home.exists("g.txt") || home.exists("d"));
}

// A safe save needs the folder, keeps the file's permissions, and swaps in a temporary whose
// name is one tilde longer than any left over, which it leaves alone.
TEST_F(tkFileManagerPosixTest, SafeSaveSwapsInATemporaryAndLeavesOldOnesAlone) {
    EXPECT_FALSE(manager.safeSave(*file("d/data"), "no folder, no file"));
    home.writeText("d/~data", "leftover 1");
    home.writeText("d/~~data", "leftover 2");
    EXPECT_TRUE(manager.safeSave(*file("d/data"), "old contents, longer"));
    ::chmod(home.path("d/data").c_str(), 0604);
    EXPECT_EQ(tkFileManagerPosix::temporaryPathFor(home.path("d/data")), home.path("d/~~~data"));
    EXPECT_TRUE(manager.safeSave(*file("d/data"), "new"));
    EXPECT_EQ(home.readText("d/data"), "new");
    EXPECT_EQ(permissionsOf(home.path("d/data")), 0604u);
    EXPECT_EQ(entries("d"), "data ~data ~~data ");
    EXPECT_EQ(home.readText("d/~~data"), "leftover 2");
}

// While a save writes a big file, its temporary never shows anyone more than the finished file
// will: it has the target's permissions from its first byte.
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
    int seen[2] = {0, 0};  // temporaries of either save, caught in flight
    // Generous, for a busy machine where the writer gets little time; a passing run stops early.
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while ((seen[0] < 10 || seen[1] < 10) && std::chrono::steady_clock::now() < giveUp) {
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

// A lock file everyone who shares the sheet can lock; taken by one process it is refused at
// once to another, or waited for until the holder ends, and no child inherits it.
TEST_F(tkFileManagerPosixTest, LockFileTriesOnceOrWaitsForTheHolderToLetGo) {
    const std::string lock = home.path(".data.lock");
    int release[2], ready[2];
    ASSERT_EQ(::pipe(release), 0);
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t holder = ::fork();
    ASSERT_GE(holder, 0);
    if (holder == 0) {
        const char ok = tkFileManagerPosix().lockFile(lock, 0).fd >= 0 ? '1' : '0';
        (void)!::write(ready[1], &ok, 1);
        char go = 0;
        (void)!::read(release[0], &go, 1);
        ::_exit(0);  // the lock dies with the process
    }
    char ok = 0;
    ASSERT_EQ(::read(ready[0], &ok, 1), 1);
    ASSERT_EQ(ok, '1');
    EXPECT_EQ(permissionsOf(lock), 0644u);
    const tkLockAttempt refused = manager.lockFile(lock, 0);
    EXPECT_EQ(refused.fd, -1);
    EXPECT_TRUE(refused.heldElsewhere);
    ASSERT_EQ(::write(release[1], "g", 1), 1);
    // Generous: the holder exits at once, but the machine may be busy.
    const tkLockAttempt waited = manager.lockFile(lock, 60000);
    ASSERT_GE(waited.fd, 0);
    EXPECT_NE(::fcntl(waited.fd, F_GETFD) & FD_CLOEXEC, 0);
    manager.closeLocked(waited.fd);
    ::waitpid(holder, nullptr, 0);
}

}  // namespace
