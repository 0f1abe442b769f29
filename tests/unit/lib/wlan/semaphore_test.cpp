// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/wlan/semaphore.h"

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <semaphore.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/mounted.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::kSemaphoreFile;
using testkit::kSomebody;

class SemaphoreTest : public testkit::DeviceTest {};

TEST_F(SemaphoreTest, IsCreatedWithModeAndValue) {
    sem_t* sem = CreatSemaphore();
    ASSERT_NE(sem, nullptr);
    const testkit::Event call = libc().Events(Call::kSemOpen)[0];
    EXPECT_EQ(call.text, "/WlanAplRecvSem 438 0") << "438 is 0666";
    EXPECT_EQ(call.number, O_RDWR | O_CREAT);
    int value = -1;
    EXPECT_EQ(sem_getvalue(sem, &value), 0);
    EXPECT_EQ(value, 0);
    EXPECT_TRUE(testkit::Exists(kSemaphoreFile));
    DeleteSemaphore(sem);
    EXPECT_FALSE(testkit::Exists(kSemaphoreFile));
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(SemaphoreTest, AFailedCreationIsLoggedAndGivesNull) {
    libc().Script(Call::kSemOpen, {Fail(EMFILE)});
    EXPECT_EQ(CreatSemaphore(), nullptr);
    EXPECT_THAT(libc().Logs(), ElementsAre("CreatSemaphore sem_open:errno=24:Too many open files"));
}

TEST_F(SemaphoreTest, BothStepsOfDeletingAreTried) {
    sem_t* sem = CreatSemaphore();
    libc().Script(Call::kSemClose, {Fail(EINVAL)});
    libc().Script(Call::kSemUnlink, {Fail(EACCES)});
    DeleteSemaphore(sem);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("DeleteSemaphore sem_close errno=22:Invalid argument",
                            "DeleteSemaphore sem_unlink errno=13:Permission denied"));
    sem_close(sem);
}

TEST_F(SemaphoreTest, ANullHandleIsAnsweredAsInvalidAndTheNameRemoved) {
    sem_t* left_behind = CreatSemaphore();
    DeleteSemaphore(nullptr);
    EXPECT_THAT(libc().Logs(), ElementsAre("DeleteSemaphore sem_close errno=22:Invalid argument"));
    EXPECT_TRUE(libc().Events(Call::kSemClose).empty()) << "never passed on";
    EXPECT_FALSE(testkit::Exists(kSemaphoreFile));
    sem_close(left_behind);
}

TEST_F(SemaphoreTest, AMissingNameIsLogged) {
    sem_t* sem = CreatSemaphore();
    sem_unlink(testkit::kSemaphoreName);
    DeleteSemaphore(sem);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("DeleteSemaphore sem_unlink errno=2:No such file or directory"));
}

// ---- the semaphore of a query

class ReadySemaphoreTest : public testkit::DeviceTest {
  protected:
    // Mode and value of the file are those of a semaphore that nobody else can post.
    static void ExpectFresh(const velk::ReadySemaphore& ready) {
        ASSERT_TRUE(ready.is_private());
        ASSERT_NE(ready.handle(), nullptr);
        int value = -1;
        EXPECT_EQ(sem_getvalue(const_cast<sem_t*>(ready.handle()), &value), 0);
        EXPECT_EQ(value, 0);
        EXPECT_EQ(testkit::IdentityOf(kSemaphoreFile).mode & 0022U, 0U);
        EXPECT_EQ(testkit::IdentityOf(kSemaphoreFile).owner, 0U);
    }
    void ExpectNothingLeft() {
        EXPECT_FALSE(testkit::Exists(kSemaphoreFile));
        EXPECT_THAT(libc().Logs(), IsEmpty());
    }
};

TEST_F(ReadySemaphoreTest, IsOpenedOnceIfTheNameIsFree) {
    {
        const velk::ReadySemaphore ready;
        ExpectFresh(ready);
    }
    EXPECT_EQ(libc().Events(Call::kSemOpen).size(), 1U);
    ExpectNothingLeft();
}

TEST_F(ReadySemaphoreTest, SharesTheSemaphoreOfAnotherQueryOfTheSameUser) {
    sem_t* other = CreatSemaphore();
    {
        const velk::ReadySemaphore ready;
        EXPECT_EQ(ready.handle(), other);
        EXPECT_TRUE(ready.is_private());
    }
    sem_close(other);
    ExpectNothingLeft();
}

TEST_F(ReadySemaphoreTest, APostedLeftoverIsReplaced) {
    sem_t* left_behind = CreatSemaphore();
    sem_post(left_behind);
    {
        const velk::ReadySemaphore ready;
        ExpectFresh(ready);
        EXPECT_NE(ready.handle(), left_behind);
    }
    sem_close(left_behind);
    ExpectNothingLeft();
}

TEST_F(ReadySemaphoreTest, AFileThatIsTooShortIsReplaced) {
    testkit::WriteFile(kSemaphoreFile, "short");
    {
        const velk::ReadySemaphore ready;
        ExpectFresh(ready);
    }
    EXPECT_FALSE(testkit::Exists(kSemaphoreFile));
}

TEST_F(ReadySemaphoreTest, OtherUsersCannotPostItWithAnOpenUmask) {
    const mode_t saved = umask(0);
    {
        const velk::ReadySemaphore ready;
        ExpectFresh(ready);
        EXPECT_EQ(testkit::IdentityOf(kSemaphoreFile).mode & 07777U, 0600U);
        const testkit::Event second = libc().Events(Call::kSemOpen)[1];
        EXPECT_EQ(second.text, "/WlanAplRecvSem 384 0") << "384 is 0600";
        EXPECT_EQ(second.number, O_RDWR | O_CREAT | O_EXCL);
    }
    umask(saved);
    ExpectNothingLeft();
}

TEST_F(ReadySemaphoreTest, ASemaphoreOfAnotherUserIsReplaced) {
    sem_close(CreatSemaphore());
    if (chown(kSemaphoreFile, kSomebody, kSomebody) == -1) {
        GTEST_SKIP() << "only root may give files away";
    }
    {
        const velk::ReadySemaphore ready;
        ExpectFresh(ready);
    }
    ExpectNothingLeft();
}

TEST_F(ReadySemaphoreTest, ANameThatComesBackEachTimeFailsAfterAllTries) {
    libc().OnCall(Call::kSemOpen, [](const testkit::Event&) {
        testkit::WriteFile(kSemaphoreFile, std::string(sizeof(sem_t), '\0'));
        EXPECT_EQ(chmod(kSemaphoreFile, 0666), 0);
    });
    {
        const velk::ReadySemaphore ready;
        EXPECT_FALSE(ready.is_private());
    }
    EXPECT_EQ(libc().Events(Call::kSemOpen).size(), 101U);
    EXPECT_THAT(libc().Logs(), ElementsAre("QueryWlanDaemon sem_open errno=17:File exists"));
    EXPECT_TRUE(testkit::Exists(kSemaphoreFile)) << "it is not ours to remove";
}

TEST_F(ReadySemaphoreTest, HasNoHandleIfTheNameIsAFolderOfTheCaller) {
    ASSERT_EQ(mkdir(kSemaphoreFile, 0755), 0);
    {
        const velk::ReadySemaphore ready;
        EXPECT_TRUE(ready.is_private());
        EXPECT_EQ(ready.handle(), nullptr);
    }
    EXPECT_EQ(rmdir(kSemaphoreFile), 0);
}

TEST_F(ReadySemaphoreTest, ANameWithoutASemaphoreIsKeptFromOthers) {
    libc().Script(Call::kSemOpen, {Fail(EMFILE)});
    {
        const velk::ReadySemaphore ready;
        EXPECT_TRUE(ready.is_private());
        EXPECT_EQ(ready.handle(), nullptr);
        EXPECT_EQ(sem_open(testkit::kSemaphoreName, O_RDWR | O_CREAT, 0666U, 0U), SEM_FAILED);
    }
    EXPECT_FALSE(testkit::Exists(kSemaphoreFile));
    EXPECT_THAT(libc().Logs(),
                ElementsAre("CreatSemaphore sem_open:errno=24:Too many open files",
                            "DeleteSemaphore sem_close errno=22:Invalid argument",
                            "DeleteSemaphore sem_unlink errno=2:No such file or directory"));
}

TEST_F(ReadySemaphoreTest, ALinkThatAKilledQueryHasLeftIsReplaced) {
    ASSERT_EQ(symlink("none", kSemaphoreFile), 0);
    {
        const velk::ReadySemaphore ready;
        ExpectFresh(ready);
    }
    EXPECT_FALSE(testkit::Exists(kSemaphoreFile));
}

TEST_F(ReadySemaphoreTest, IsPrivateWithoutAHandleIfNobodyCanMakeOne) {
    const testkit::Mounted read_only("none", testkit::kSemaphoreFolder, "tmpfs", MS_RDONLY, "");
    const velk::ReadySemaphore ready;
    EXPECT_TRUE(ready.is_private());
    EXPECT_EQ(ready.handle(), nullptr);
}

TEST_F(ReadySemaphoreTest, IsNotPrivateIfTheFileSystemIsFull) {
    const testkit::Emptied full(testkit::kSemaphoreFolder, "nr_inodes=1");
    const velk::ReadySemaphore ready;
    EXPECT_FALSE(ready.is_private());
    EXPECT_THAT(libc().Logs(),
                ElementsAre("CreatSemaphore sem_open:errno=28:No space left on device",
                            "QueryWlanDaemon sem_open errno=28:No space left on device"));
}

}  // namespace
