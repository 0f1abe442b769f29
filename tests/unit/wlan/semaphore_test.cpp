#include <cerrno>

#include <fcntl.h>
#include <gmock/gmock.h>

#include "support/device_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;

constexpr char kSemaphoreFile[] = "/dev/shm/sem.WlanAplRecvSem";

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
    sem_unlink("/WlanAplRecvSem");
    DeleteSemaphore(sem);
    EXPECT_THAT(libc().Logs(),
                ElementsAre("DeleteSemaphore sem_unlink errno=2:No such file or directory"));
}

}  // namespace
