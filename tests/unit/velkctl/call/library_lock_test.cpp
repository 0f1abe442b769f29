// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The lock between programs that change settings, as velkctl takes it by itself.
#include "velkctl/call/library_lock.h"

#include <cerrno>
#include <chrono>

#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/paths.h"

namespace {

using testkit::Call;
using testkit::Event;
using testkit::kLockFile;
using velkctl::LibraryLock;

class LibraryLockTest : public testkit::DeviceTest {
  protected:
    static void MakeLockFile() { testkit::WriteFile(kLockFile, ""); }
};

TEST_F(LibraryLockTest, KeepsTheLibraryAwayUntilItsEnd) {
    MakeLockFile();
    {
        const LibraryLock lock;
        EXPECT_TRUE(lock.is_held());
        EXPECT_FALSE(lock.is_busy());
        EXPECT_EQ(VkLibLock(), LIB_VELK_LOCKED);
    }
    EXPECT_TRUE(testkit::IsLockFree());
}

TEST_F(LibraryLockTest, IsBusyWhileTheLibraryHoldsIt) {
    const int held = VkLibLock();
    {
        const LibraryLock lock;
        EXPECT_FALSE(lock.is_held());
        EXPECT_TRUE(lock.is_busy());
    }
    VkLibUnLock(held);
}

TEST_F(LibraryLockTest, MakesNoFile) {
    const LibraryLock lock;
    EXPECT_FALSE(lock.is_held());
    EXPECT_FALSE(lock.is_busy());
    EXPECT_FALSE(testkit::Exists(kLockFile));
}

TEST_F(LibraryLockTest, FollowsNoLink) {
    testkit::WriteFile("/tmp/other", "");
    ASSERT_EQ(symlink("/tmp/other", kLockFile), 0);
    const LibraryLock lock;
    EXPECT_FALSE(lock.is_held());
    EXPECT_TRUE(lock.is_busy());
}

TEST_F(LibraryLockTest, IsNotAwaitedIfItsFileCannotBeOpened) {
    MakeLockFile();
    libc().PlanFault(Call::kOpen, 1, testkit::Reach::kAllFrom, EROFS);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(velkctl::AwaitLibraryLock(60));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

// Another program can open the new file and lock it at the same time.
TEST_F(LibraryLockTest, IsNotHeldOnAFileThatWasMadeAnew) {
    MakeLockFile();
    libc().OnCall(Call::kFlock, [](const Event&) {
        const testkit::Unrecorded own;
        (void)rename(kLockFile, "/var/tmp/old_lock");
        MakeLockFile();
    });
    const LibraryLock lock;
    EXPECT_FALSE(lock.is_held());
    EXPECT_TRUE(lock.is_busy());
}

TEST_F(LibraryLockTest, IsNotHeldOnAFileThatIsGone) {
    MakeLockFile();
    libc().OnCall(Call::kFlock, [](const Event&) {
        const testkit::Unrecorded own;
        (void)unlink(kLockFile);
    });
    const LibraryLock lock;
    EXPECT_FALSE(lock.is_held());
    EXPECT_TRUE(lock.is_busy());
}

TEST_F(LibraryLockTest, WritesNothingToTheSystemLog) {
    { const LibraryLock lock; }
    MakeLockFile();
    { const LibraryLock lock; }
    libc().Script(Call::kFlock, {testkit::Fail(EIO)});
    { const LibraryLock lock; }
    EXPECT_TRUE(libc().Logs().empty());
}

}  // namespace
