// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The process that holds the library's lock, from the kernel's tables of locks and processes.
#include "velkctl/files/lock_holder.h"

#include <csignal>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/device_test.h"

namespace {

using velkctl::FindLockHolder;
using velkctl::FlockHolder;
using velkctl::LockHolder;
using velkctl::SecondsRunning;

constexpr std::string_view kLocks =
    "1: POSIX  ADVISORY  WRITE 9340 fe:00:404740 0 EOF\n"
    "2: FLOCK  ADVISORY  WRITE 1234 00:2f:12 0 EOF\n"
    "2: -> FLOCK  ADVISORY  WRITE 99 00:2f:13 0 EOF\n"
    "3: FLOCK  ADVISORY  READ  77 103:00:13 0 EOF\n"
    "4: FLOCK  ADVISORY  WRITE 0 00:2f:14 0 EOF\n"
    "5: LEASE  ACTIVE    READ  55 00:2f:15 0 EOF\n";

TEST(FlockHolder, IsTheProcessWithTheLockOnTheFile) {
    EXPECT_EQ(FlockHolder(kLocks, makedev(0, 0x2f), 12), 1234);
    EXPECT_EQ(FlockHolder(kLocks, makedev(0x103, 0), 13), 77);
}

TEST(FlockHolder, IsNotAProcessThatWaits) {
    EXPECT_EQ(FlockHolder(kLocks, makedev(0, 0x2f), 13), std::nullopt);
}

TEST(FlockHolder, IsNotAProcessWithALockOfAnotherKind) {
    EXPECT_EQ(FlockHolder(kLocks, makedev(0xfe, 0), 404740), std::nullopt);
    EXPECT_EQ(FlockHolder(kLocks, makedev(0, 0x2f), 15), std::nullopt);
}

TEST(FlockHolder, IsUnknownInAnotherNamespace) {
    EXPECT_EQ(FlockHolder(kLocks, makedev(0, 0x2f), 14), std::nullopt);
}

TEST(FlockHolder, IsUnknownWithoutAReadableTable) {
    EXPECT_EQ(FlockHolder("", makedev(0, 0x2f), 12), std::nullopt);
    EXPECT_EQ(FlockHolder("\n\n2: FLOCK\n2: FLOCK  ADVISORY  WRITE\n", makedev(0, 0x2f), 12),
              std::nullopt);
    EXPECT_EQ(FlockHolder("2: FLOCK  ADVISORY  WRITE 1234 00:2f:12", makedev(0, 0x2f), 12), 1234);
}

constexpr std::string_view kStat =
    "1234 (a name) with) blanks) S 1 1234 1234 0 -1 4194304 100 0 0 0 0 0 0 0 20 0 1 0 4250 "
    "1000000 200 18446744073709551615\n";

TEST(SecondsRunning, CountFromTheStartOfTheProcess) {
    EXPECT_EQ(SecondsRunning(kStat, "45.90 80.00\n", 100), 3);
    EXPECT_EQ(SecondsRunning(kStat, "100000.01 80.00\n", 100), 99958);
}

TEST(SecondsRunning, AreNeverNegative) {
    EXPECT_EQ(SecondsRunning(kStat, "41.00 80.00\n", 100), 0);
}

TEST(SecondsRunning, AreUnknownWithoutReadableTexts) {
    EXPECT_EQ(SecondsRunning("", "45.90 80.00\n", 100), std::nullopt);
    EXPECT_EQ(SecondsRunning("1234 (name) S 1 1234\n", "45.90 80.00\n", 100), std::nullopt);
    EXPECT_EQ(SecondsRunning(kStat, "", 100), std::nullopt);
    EXPECT_EQ(SecondsRunning(kStat, "45.90 80.00\n", 0), std::nullopt);
}

TEST(LockHolderWords, NameTheProcessAndItsAge) {
    EXPECT_EQ(velkctl::DescribeHolder({1234, "velkctl", 3, {}}),
              "process 1234 (velkctl, 3 seconds old)");
    EXPECT_EQ(velkctl::DescribeHolder({12, "sh", 3, {13, 14}}),
              "process 12 (sh, 3 seconds old, shared with 13, 14)");
}

TEST(LockHolderWords, NeverControlTheTerminal) {
    EXPECT_EQ(velkctl::DescribeHolder({7, "\x1b[31m", 0, {}}),
              "process 7 (\\x1b[31m, 0 seconds old)");
}

class FindLockHolderTest : public testkit::DeviceTest {};

TEST_F(FindLockHolderTest, NamesTheProcessThatHoldsTheLock) {
    const int lock = VkLibLock();
    const std::optional<LockHolder> holder = FindLockHolder();
    VkLibUnLock(lock);
    ASSERT_TRUE(holder);
    EXPECT_EQ(holder->process, getpid());
    EXPECT_EQ(holder->name, "unit_tests");
    EXPECT_LT(holder->seconds, 3600);
}

TEST_F(FindLockHolderTest, NamesNobodyWhileTheLockIsFree) {
    EXPECT_FALSE(FindLockHolder());
    VkLibUnLock(VkLibLock());
    EXPECT_FALSE(FindLockHolder());
}

TEST_F(FindLockHolderTest, NamesTheProcessWithTheDescriptorWhenTheTableLacksIt) {
    libc().Redirect("/proc/locks", "/tmp/missing");
    const int lock = VkLibLock();
    const std::optional<LockHolder> holder = FindLockHolder();
    VkLibUnLock(lock);
    ASSERT_TRUE(holder);
    EXPECT_EQ(holder->process, getpid());
    EXPECT_EQ(holder->others, std::vector<int>());
    EXPECT_FALSE(FindLockHolder());
}

// Takes the lock in a child that ends, and leaves the descriptor to others.
TEST_F(FindLockHolderTest, NamesProcessesThatHaveInheritedTheDescriptor) {
    VkLibUnLock(VkLibLock());
    const int descriptor = open("/var/tmp/vklib_lock", O_RDWR);
    if (const pid_t taker = fork(); taker == 0) {
        _exit(flock(descriptor, LOCK_EX));
    } else {
        ASSERT_EQ(waitpid(taker, nullptr, 0), taker);
    }
    const pid_t sharer = fork();
    if (sharer == 0) {
        (void)pause();
    }
    const std::optional<LockHolder> holder = FindLockHolder();
    kill(sharer, SIGKILL);
    (void)waitpid(sharer, nullptr, 0);
    close(descriptor);
    ASSERT_TRUE(holder);
    // Process numbers start again from below, so the child's may be the lower one.
    std::vector<int> processes = holder->others;
    processes.push_back(holder->process);
    EXPECT_THAT(processes, testing::UnorderedElementsAre(getpid(), sharer));
    EXPECT_EQ(velkctl::DescribeLockHolder(), "");
}

// A kernel that does not show the locks of descriptors still names the process that took one.
TEST_F(FindLockHolderTest, NamesTheParentIfNothingElseIsKnown) {
    VkLibUnLock(VkLibLock());
    struct stat file {};
    ASSERT_EQ(stat("/var/tmp/vklib_lock", &file), 0);
    char line[100];
    (void)snprintf(line, sizeof(line), "1: FLOCK  ADVISORY  WRITE 999999999 %02x:%02x:%llu 0 EOF\n",
                   major(file.st_dev), minor(file.st_dev),
                   static_cast<unsigned long long>(file.st_ino));
    testkit::WriteFile("/tmp/locks", line);
    libc().Redirect("/proc/locks", "/tmp/locks");
    EXPECT_EQ(velkctl::DescribeLockHolder(), "a child of process 999999999, which has ended");
}

}  // namespace
