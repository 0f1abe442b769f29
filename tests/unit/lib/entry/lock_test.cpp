// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/entry/lock.h"

#include <cerrno>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/machine.h"
#include "support/paths.h"
#include "velk.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Event;
using testkit::Fail;
using testkit::kLockFile;
using testkit::kSomebody;

mode_t ModeOf(const char* path) {
    struct stat status {};
    stat(path, &status);
    return status.st_mode & 07777;
}

class LockTest : public testkit::DeviceTest {
  protected:
    // Another process that holds the lock until the end of the scope.
    class OtherHolder {
      public:
        OtherHolder() {
            EXPECT_EQ(pipe2(ready_, O_CLOEXEC), 0);
            EXPECT_EQ(pipe2(done_, O_CLOEXEC), 0);
            child_ = fork();
            if (child_ == 0) {
                const int lock = VkLibLock();
                char byte = lock > 0 ? 'y' : 'n';
                (void)!write(ready_[1], &byte, 1);
                close(done_[1]);
                (void)!read(done_[0], &byte, 1);  // until the parent closes its end
                _exit(0);
            }
            char byte = 0;
            EXPECT_EQ(read(ready_[0], &byte, 1), 1);
            EXPECT_EQ(byte, 'y');
        }
        ~OtherHolder() {
            for (const int fd : {ready_[0], ready_[1], done_[0], done_[1]}) {
                close(fd);
            }
            waitpid(child_, nullptr, 0);
        }
        OtherHolder(const OtherHolder&) = delete;
        OtherHolder& operator=(const OtherHolder&) = delete;

      private:
        int ready_[2] = {-1, -1};
        int done_[2] = {-1, -1};
        pid_t child_ = -1;
    };

    // Takes the place of descriptor 0, as in a daemon that was started with it closed.
    class StandardInputClosed {
      public:
        StandardInputClosed() : saved_(fcntl(0, F_DUPFD_CLOEXEC, 100)) { close(0); }
        ~StandardInputClosed() {
            dup2(saved_, 0);
            close(saved_);
        }
        StandardInputClosed(const StandardInputClosed&) = delete;
        StandardInputClosed& operator=(const StandardInputClosed&) = delete;

      private:
        const int saved_;
    };

    // The lock file under descriptor 1.
    class LockFileAsStandardOutput {
      public:
        LockFileAsStandardOutput() : saved_(fcntl(1, F_DUPFD_CLOEXEC, 100)) {
            const testkit::Unrecorded ours;
            const int fd = open(kLockFile, O_RDWR | O_CREAT | O_CLOEXEC, 0666);
            dup2(fd, 1);
            close(fd);
        }
        ~LockFileAsStandardOutput() {
            dup2(saved_, 1);
            close(saved_);
        }
        LockFileAsStandardOutput(const LockFileAsStandardOutput&) = delete;
        LockFileAsStandardOutput& operator=(const LockFileAsStandardOutput&) = delete;

      private:
        const int saved_;
    };

    // Another file of the same name.
    static void ReplaceLockFile() {
        testkit::WriteFile("/var/tmp/other_lock", "");
        ASSERT_EQ(rename("/var/tmp/other_lock", kLockFile), 0);
    }

    // The lock file as another user has made it.
    static bool GiveLockFileAway(mode_t mode) {
        testkit::WriteFile(kLockFile, "");
        return chmod(kLockFile, mode) == 0 && chown(kLockFile, kSomebody, kSomebody) == 0;
    }
};

TEST_F(LockTest, TheFirstCallCreatesTheFileAndLogsNothing) {
    const int lock = VkLibLock();
    EXPECT_GT(lock, 0);
    EXPECT_EQ(ModeOf(kLockFile), 0666U);
    EXPECT_THAT(libc().Logs(), IsEmpty());
    VkLibUnLock(lock);
}

TEST_F(LockTest, TheUmaskCannotNarrowTheMode) {
    const mode_t saved = umask(077);
    const int lock = VkLibLock();
    umask(saved);
    EXPECT_EQ(ModeOf(kLockFile), 0666U);
    VkLibUnLock(lock);
}

TEST_F(LockTest, EveryCallThatFindsTheFileLogsIt) {
    VkLibUnLock(VkLibLock());
    VkLibUnLock(VkLibLock());
    VkLibUnLock(VkLibLock());
    EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock indelible", "VkLibLock indelible"));
}

TEST_F(LockTest, TheFileStaysAndKeepsItsContent) {
    testkit::WriteFile(kLockFile, "kept");
    VkLibUnLock(VkLibLock());
    EXPECT_EQ(testkit::ReadFile(kLockFile), "kept");
}

TEST_F(LockTest, OpensWithoutCreatingFirst) {
    VkLibUnLock(VkLibLock());
    const std::vector<Event> opens = libc().Events(Call::kOpen);
    ASSERT_EQ(opens.size(), 2U);
    EXPECT_EQ(opens[0].text, kLockFile);
    EXPECT_EQ(opens[0].number, O_RDWR | O_NOFOLLOW | O_CLOEXEC);
    EXPECT_EQ(opens[1].text, kLockFile);
    EXPECT_EQ(opens[1].number, O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC);
}

TEST_F(LockTest, LocksWithoutWaiting) {
    VkLibUnLock(VkLibLock());
    const std::vector<Event> calls = libc().Events(Call::kFlock);
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0].number, LOCK_EX | LOCK_NB);
    EXPECT_EQ(calls[1].number, LOCK_UN);
}

TEST_F(LockTest, AnotherProcessHoldingItIsAnsweredAtOnceWithoutALogLine) {
    const OtherHolder holder;
    EXPECT_EQ(VkLibLock(), LIB_VELK_LOCKED);
    EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock indelible"));
}

TEST_F(LockTest, ASecondCallInTheSameProcessIsRefusedToo) {
    const int lock = VkLibLock();
    EXPECT_EQ(VkLibLock(), LIB_VELK_LOCKED);
    VkLibUnLock(lock);
    const int again = VkLibLock();
    EXPECT_GT(again, 0);
    VkLibUnLock(again);
}

TEST_F(LockTest, AFailedCreationIsLoggedWithItsErrno) {
    libc().Script(Call::kOpen, {Fail(ENOENT), Fail(EROFS)});
    EXPECT_EQ(VkLibLock(), LIB_VELK_FAILURE);
    EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock open2 errno=30:Read-only file system"));
}

TEST_F(LockTest, AMissingFolderIsAFailure) {
    libc().Script(Call::kOpen, {Fail(ENOENT), Fail(ENOENT)});
    EXPECT_EQ(VkLibLock(), LIB_VELK_FAILURE);
    EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock open2 errno=2:No such file or directory"));
}

TEST_F(LockTest, AFailedModeChangeIsLoggedAndTheLockTaken) {
    libc().Script(Call::kFchmod, {Fail(EPERM)});
    const int lock = VkLibLock();
    EXPECT_GT(lock, 0);
    EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock fchmod errno=1:Operation not permitted"));
    VkLibUnLock(lock);
}

TEST_F(LockTest, TheModeIsLeftAloneWhenTheFileIsThere) {
    testkit::WriteFile(kLockFile, "");
    chmod(kLockFile, 0600);
    VkLibUnLock(VkLibLock());
    EXPECT_EQ(ModeOf(kLockFile), 0600U);
    EXPECT_TRUE(libc().Events(Call::kFchmod).empty());
}

TEST_F(LockTest, APlantedLinkIsNotFollowed) {
    ASSERT_EQ(symlink("/var/tmp/elsewhere", kLockFile), 0);
    EXPECT_EQ(VkLibLock(), LIB_VELK_FAILURE);
    EXPECT_FALSE(testkit::Exists("/var/tmp/elsewhere"));
    testkit::WriteFile("/var/tmp/elsewhere", "");
    EXPECT_EQ(VkLibLock(), LIB_VELK_FAILURE);
    EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock open2 " + testkit::ErrnoText(ELOOP) +
                                               ":Too many levels of symbolic links",
                                           "VkLibLock open2 " + testkit::ErrnoText(ELOOP) +
                                               ":Too many levels of symbolic links"));
}

// Another file system may be mounted over the folder while the file is being locked.
TEST_F(LockTest, AFileOfAnotherFileSystemIsNotTheLockFile) {
    testkit::WriteFile(kLockFile, "");
    const int elsewhere = memfd_create("velk_lock", MFD_CLOEXEC);
    libc().Script(Call::kOpen, {testkit::Return(elsewhere)});
    const int lock = VkLibLock();
    EXPECT_GT(lock, 0);
    struct stat locked {};
    EXPECT_EQ(fstat(lock, &locked), 0);
    EXPECT_EQ(locked.st_ino, testkit::IdentityOf(kLockFile).inode);
    EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock indelible"));
    VkLibUnLock(lock);
}

TEST_F(LockTest, AnUnexpectedLockErrorIsLogged) {
    libc().Script(Call::kFlock, {Fail(ENOLCK)});
    EXPECT_EQ(VkLibLock(), LIB_VELK_FAILURE);
    EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock flock " + testkit::ErrnoText(ENOLCK) +
                                           ":No locks available"));
}

TEST_F(LockTest, DescriptorOneIsAccepted) {
    const LockFileAsStandardOutput lock_file;
    libc().Script(Call::kOpen, {testkit::Return(1)});
    EXPECT_EQ(VkLibLock(), 1);
}

TEST_F(LockTest, DescriptorOneIsAcceptedFromTheSecondOpen) {
    const LockFileAsStandardOutput lock_file;
    libc().Script(Call::kOpen, {Fail(ENOENT), testkit::Return(1)});
    EXPECT_EQ(VkLibLock(), 1);
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(LockTest, DescriptorZeroCountsAsAFailedFirstOpen) {
    testkit::WriteFile(kLockFile, "");
    const StandardInputClosed closed;
    const int lock = VkLibLock();
    EXPECT_GT(lock, 0);
    EXPECT_EQ(fcntl(0, F_GETFD), -1) << "the descriptor of the first open is closed again";
    EXPECT_THAT(libc().Logs(), IsEmpty());
    EXPECT_EQ(libc().Events(Call::kFchmod).size(), 1U);
    VkLibUnLock(lock);
}

TEST_F(LockTest, DescriptorZeroCountsAsAFailedSecondOpen) {
    const StandardInputClosed closed;
    EXPECT_EQ(VkLibLock(), LIB_VELK_FAILURE);
    EXPECT_EQ(fcntl(0, F_GETFD), -1);
    const std::vector<std::string> logs = libc().Logs();
    ASSERT_EQ(logs.size(), 1U);
    EXPECT_TRUE(logs[0].starts_with("VkLibLock open2 errno="));
}

TEST_F(LockTest, DescriptorZeroChangesNoModeOfAFileWithOtherNames) {
    testkit::WriteFile("/var/tmp/victim", "");
    ASSERT_EQ(chmod("/var/tmp/victim", 0600), 0);
    ASSERT_EQ(link("/var/tmp/victim", kLockFile), 0);
    const StandardInputClosed closed;
    VkLibUnLock(VkLibLock());
    EXPECT_EQ(ModeOf("/var/tmp/victim"), 0600U);
}

// ---- files that another user replaces

TEST_F(LockTest, AFileThatIsPlantedBetweenTheOpensKeepsItsMode) {
    testkit::WriteFile("/var/tmp/victim", "");
    ASSERT_EQ(chmod("/var/tmp/victim", 0600), 0);
    libc().OnCall(Call::kOpen, [](const Event& open) {
        if ((open.number & O_CREAT) != 0) {
            EXPECT_EQ(link("/var/tmp/victim", kLockFile), 0);
        }
    });
    const int lock = VkLibLock();
    EXPECT_GT(lock, 0);
    EXPECT_EQ(ModeOf("/var/tmp/victim"), 0600U);
    EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock indelible"));
    VkLibUnLock(lock);
}

TEST_F(LockTest, AFileThatIsReplacedBeforeItIsLockedIsTriedAgain) {
    testkit::WriteFile(kLockFile, "");
    int replacements = 1;
    libc().OnCall(Call::kFlock, [&](const Event&) {
        if (replacements-- > 0) {
            ReplaceLockFile();
        }
    });
    const int lock = VkLibLock();
    EXPECT_GT(lock, 0);
    EXPECT_EQ(VkLibLock(), LIB_VELK_LOCKED) << "the file at the path is the locked one";
    EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock indelible", "VkLibLock indelible"));
    VkLibUnLock(lock);
}

TEST_F(LockTest, AFileThatIsReplacedEachTimeIsAFailure) {
    testkit::WriteFile(kLockFile, "");
    libc().OnCall(Call::kFlock, [](const Event&) { ReplaceLockFile(); });
    EXPECT_EQ(VkLibLock(), LIB_VELK_FAILURE);
    EXPECT_EQ(libc().Events(Call::kFlock).size(), 100U);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("VkLibLock indelible", "VkLibLock open2 " + testkit::ErrnoText(ESTALE) +
                                                       ":Stale file handle"));
}

TEST_F(LockTest, AFileThatIsRemovedEachTimeIsAFailure) {
    testkit::WriteFile(kLockFile, "");
    libc().OnCall(Call::kFlock, [](const Event&) { unlink(kLockFile); });
    EXPECT_EQ(VkLibLock(), LIB_VELK_FAILURE);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("VkLibLock indelible", "VkLibLock open2 " + testkit::ErrnoText(ESTALE) +
                                                       ":Stale file handle"));
}

TEST_F(LockTest, AFileThatAppearsAndDisappearsIsAFailure) {
    libc().OnCall(Call::kOpen, [](const Event& open) {
        if ((open.number & O_CREAT) != 0) {
            EXPECT_EQ(symlink("anywhere", kLockFile), 0);
        } else {
            (void)unlink(kLockFile);
        }
    });
    EXPECT_EQ(VkLibLock(), LIB_VELK_FAILURE);
    EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock open2 errno=17:File exists"));
}

TEST_F(LockTest, ADescriptorThatIsClosedMeanwhileIsOpenedAgain) {
    testkit::WriteFile(kLockFile, "");
    const StandardInputClosed closed;
    libc().Script(Call::kOpen, {testkit::Return(0), testkit::Return(1000)});
    libc().Script(Call::kFlock, {testkit::Return(0)});
    libc().OnCall(Call::kFchmod, [](const Event& fchmod) { EXPECT_NE(fchmod.text, "1000"); });
    const int lock = VkLibLock();
    EXPECT_GT(lock, 0);
    EXPECT_NE(lock, 1000);
    VkLibUnLock(lock);
}

TEST_F(LockTest, RootTakesAnotherUsersFileOver) {
    if (!GiveLockFileAway(04700)) {
        GTEST_SKIP() << "only root may give files away";
    }
    const testkit::FileIdentity theirs = testkit::IdentityOf(kLockFile);
    const int lock = VkLibLock();
    EXPECT_GT(lock, 0);
    const testkit::FileIdentity ours = testkit::IdentityOf(kLockFile);
    EXPECT_EQ(ours.inode, theirs.inode) << "somebody else may be about to lock it";
    EXPECT_EQ(ours.owner, 0U);
    EXPECT_EQ(ours.group, 0U);
    EXPECT_EQ(ModeOf(kLockFile), 0666U);
    EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock indelible"));
    VkLibUnLock(lock);
}

TEST_F(LockTest, AnotherUsersFileThatIsLockedIsLeftAlone) {
    if (!GiveLockFileAway(0666)) {
        GTEST_SKIP() << "only root may give files away";
    }
    const int theirs = open(kLockFile, O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(theirs, LOCK_EX), 0);
    EXPECT_EQ(VkLibLock(), LIB_VELK_LOCKED);
    EXPECT_EQ(testkit::IdentityOf(kLockFile).owner, kSomebody);
    close(theirs);
}

// It may be a third user's file, to which the maker of the second name has no rights.
TEST_F(LockTest, AnotherUsersFileWithOtherNamesIsRefusedAndLeftAlone) {
    if (!GiveLockFileAway(0600)) {
        GTEST_SKIP() << "only root may give files away";
    }
    ASSERT_EQ(link(kLockFile, "/var/tmp/theirs"), 0);
    EXPECT_EQ(VkLibLock(), LIB_VELK_FAILURE);
    EXPECT_EQ(testkit::IdentityOf(kLockFile).owner, kSomebody);
    EXPECT_EQ(ModeOf(kLockFile), 0600U);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("VkLibLock indelible", "VkLibLock open2 errno=31:Too many links"));
}

TEST_F(LockTest, AChildProgramDoesNotInheritTheLock) {
    const int lock = VkLibLock();
    EXPECT_EQ(SystemCommand("ls -l /proc/self/fd > /var/tmp/listing; sleep 5 > /dev/null 2>&1 &"),
              0);
    EXPECT_EQ(testkit::ReadFile("/var/tmp/listing").find("vklib_lock"), std::string::npos);
    VkLibUnLock(lock);
    const int again = VkLibLock();  // the sleeping child would hold an inherited lock
    EXPECT_GT(again, 0);
    VkLibUnLock(again);
}

TEST_F(LockTest, UnlockingNothingDoesNothing) {
    VkLibUnLock(-1);
    EXPECT_THAT(libc().Logs(), IsEmpty());
    EXPECT_TRUE(libc().Events(Call::kFlock).empty());
    EXPECT_TRUE(libc().Events(Call::kClose).empty());
}

TEST_F(LockTest, AFailedUnlockIsLoggedAndTheDescriptorClosed) {
    const int lock = VkLibLock();
    libc().Script(Call::kFlock, {Fail(EBADF)});
    VkLibUnLock(lock);
    EXPECT_THAT(libc().Logs(), ElementsAre("flock errno=9:Bad file descriptor"));
    EXPECT_EQ(fcntl(lock, F_GETFD), -1);
}

TEST_F(LockTest, CommandLockReleasesItsLock) {
    {
        const velk::CommandLock lock(VkLibLock());
        EXPECT_TRUE(lock.held());
        EXPECT_EQ(VkLibLock(), LIB_VELK_LOCKED);
    }
    VkLibUnLock(VkLibLock());
    EXPECT_EQ(libc().Events(Call::kFlock).size(), 5U);
}

TEST_F(LockTest, CommandLockNeverTurnsARefusalIntoSuccess) {
    EXPECT_EQ(velk::CommandLock(LIB_VELK_LOCKED).refusal(), LIB_VELK_LOCKED);
    EXPECT_EQ(velk::CommandLock(LIB_VELK_FAILURE).refusal(), LIB_VELK_FAILURE);
    EXPECT_EQ(velk::CommandLock(0).refusal(), LIB_VELK_INVALID_PARAMETER);
    EXPECT_FALSE(velk::CommandLock(0).held());
    EXPECT_TRUE(libc().Events(Call::kFlock).empty()) << "nothing to unlock";
}

TEST_F(LockTest, ACallerWhoIsNotRootTakesAnotherUsersFileAsItIs) {
    testkit::WriteFile(kLockFile, "");
    if (chmod(kLockFile, 0666) == -1 || chown(kLockFile, 4321, 4321) == -1 ||
        setresuid(1234, 1234, 0) == -1) {
        GTEST_SKIP() << "the private device has no other users";
    }
    const int lock = VkLibLock();
    EXPECT_EQ(setresuid(0, 0, 0), 0);
    EXPECT_GT(lock, 0);
    VkLibUnLock(lock);
    EXPECT_EQ(testkit::IdentityOf(kLockFile).owner, 4321U);
}

}  // namespace
