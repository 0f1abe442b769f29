#include "frame/lock.h"

#include <cerrno>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/device_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Event;
using testkit::Fail;

constexpr char kLockFile[] = "/var/tmp/vklib_lock";

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

TEST_F(LockTest, EveryCallThatFindsTheFileSaysSo) {
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
    EXPECT_EQ(opens[1].number, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC);
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
    EXPECT_THAT(libc().Logs(),
                ElementsAre("VkLibLock open2 errno=40:Too many levels of symbolic links",
                            "VkLibLock open2 errno=40:Too many levels of symbolic links"));
}

TEST_F(LockTest, AnUnexpectedLockErrorIsLogged) {
    libc().Script(Call::kFlock, {Fail(ENOLCK)});
    EXPECT_EQ(VkLibLock(), LIB_VELK_FAILURE);
    EXPECT_THAT(libc().Logs(), ElementsAre("VkLibLock flock errno=37:No locks available"));
}

TEST_F(LockTest, DescriptorOneIsADescriptor) {
    libc().Script(Call::kOpen, {testkit::Return(1)});
    libc().Script(Call::kFlock, {testkit::Return(0)});
    EXPECT_EQ(VkLibLock(), 1);
}

TEST_F(LockTest, SoItIsForTheSecondOpen) {
    libc().Script(Call::kOpen, {Fail(ENOENT), testkit::Return(1)});
    libc().Script(Call::kFchmod, {testkit::Return(0)});
    libc().Script(Call::kFlock, {testkit::Return(0)});
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

TEST_F(LockTest, CommandLockGivesBackWhatItOwns) {
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

}  // namespace
