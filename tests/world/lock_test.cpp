// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Another user has made the file of the set/restart lock, and replaces it at any moment.
#include <atomic>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/paths.h"
#include "world/child.h"
#include "world/shared.h"

namespace world {
namespace {

using testkit::kInterfacesFile;
using testkit::kLockFile;

const Conditions kAsNobody{.user = kNobody};

bool MakeLockFile() {
    const int fd = open(kLockFile, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    return fd != -1 && fchmod(fd, 0666) == 0 && close(fd) == 0;
}

bool ReplaceLockFile() {
    return unlink(kLockFile) == 0 && MakeLockFile();
}

int SwapForEver() {
    while (true) {
        (void)unlink(kLockFile);
        (void)MakeLockFile();
        usleep(50);
    }
}

class WorldLockTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        if (!IsPossible(kAsNobody)) {
            GTEST_SKIP() << "no other users on this private device";
        }
        ASSERT_EQ(InChild(kAsNobody, [] { return MakeLockFile() ? 0 : 1; }), 0);
    }
};

TEST_F(WorldLockTest, AnotherUserCannotReplaceTheFileOfAHolder) {
    const int lock = VkLibLock();
    EXPECT_GT(lock, 0);
    EXPECT_EQ(InChild(kAsNobody, [] { return ReplaceLockFile() ? 0 : 1; }), 1);
    EXPECT_EQ(VkLibLock(), LIB_VELK_LOCKED);
    VkLibUnLock(lock);
}

TEST_F(WorldLockTest, EveryUserLocksTheFileThatRootHasTakenOver) {
    ASSERT_EQ(chmod(kLockFile, 0600), 0);
    const auto can_lock = [] { return VkLibLock() > 0 ? 0 : 1; };
    const Conditions as_third{.user = kNobody - 1};
    EXPECT_EQ(InChild(as_third, can_lock), 1) << "its maker lets nobody else";
    VkLibUnLock(VkLibLock());
    EXPECT_EQ(InChild(kAsNobody, can_lock), 0);
    EXPECT_EQ(InChild(as_third, can_lock), 0);
}

// The holder gives the file back before he releases the lock, so that every round begins anew.
int HoldAgainAndAgain(std::atomic<int>& holders, std::atomic<int>& rounds) {
    while (rounds < 500) {
        const int lock = VkLibLock();
        if (lock <= 0) {
            usleep(20);
            continue;
        }
        if (holders.fetch_add(1) != 0) {
            return 1;
        }
        ++rounds;
        usleep(200);
        --holders;
        (void)!fchown(lock, kNobody, kNobody);
        VkLibUnLock(lock);
    }
    return 0;
}

TEST_F(WorldLockTest, AUserWhoReplacesTheFileMakesNoSecondHolder) {
    const Shared<std::atomic<int>> holders;
    const Shared<std::atomic<int>> rounds;
    const Child swapper(kAsNobody, SwapForEver);
    std::vector<std::unique_ptr<Child>> callers;
    for (int number = 0; number < 3; ++number) {
        callers.push_back(std::make_unique<Child>(
            Conditions{}, [&] { return HoldAgainAndAgain(*holders, *rounds); }));
    }
    for (const std::unique_ptr<Child>& caller : callers) {
        EXPECT_EQ(caller->Wait(), 0) << "two held the lock at once";
    }
}

void SetAddresses(int number) {
    const std::string address = "10.0.0." + std::to_string(number);
    for (int round = 0; round < 20; ++round) {
        const _velk_request request =
            testkit::MakeRequest(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", address);
        _velk_request response{};
        (void)execute_velk_command(&request, &response);
    }
}

// A long file is empty or cut for longer while cat(1) copies.
TEST_F(WorldLockTest, AUserWhoReplacesTheFileCutsNoEditedFile) {
    const std::string comments(4'000, '#');
    std::string text = "iface eth0 inet static\n\taddress 10.0.0.9\n";
    for (int line = 0; line < 200; ++line) {
        text += comments + "\n";
    }
    testkit::WriteFile(kInterfacesFile, text);
    const Child swapper(kAsNobody, SwapForEver);
    for (int round = 0; round < 10; ++round) {
        (void)unlink(kLockFile);  // now it is the other user's again
        usleep(1000);
        std::vector<std::unique_ptr<Child>> callers;
        for (int number = 1; number <= 4; ++number) {
            callers.push_back(std::make_unique<Child>(Conditions{}, [=] {
                SetAddresses(number);
                return 0;
            }));
        }
        for (const std::unique_ptr<Child>& caller : callers) {
            EXPECT_EQ(caller->Wait(), 0);
        }
        EXPECT_EQ(testkit::ReadFile(kInterfacesFile).size(), text.size());
    }
}

// The boot script replaces any file that another user left there before the reboot.
TEST_F(WorldLockTest, TheBootScriptMakesTheFileRoots) {
    const std::string script = "'" VELK_SOURCE_DIR "/packaging/init.d/velk-lock' start";
    ASSERT_EQ(unlink(kLockFile), 0);
    ASSERT_EQ(InChild(kAsNobody, [] { return mkdir(kLockFile, 0700); }), 0);
    for (int boot = 0; boot < 2; ++boot) {
        EXPECT_EQ(system(script.c_str()), 0);
        const testkit::FileIdentity file = testkit::IdentityOf(kLockFile);
        EXPECT_EQ(file.owner, 0U);
        EXPECT_EQ(file.mode, S_IFREG | 0666U);
    }
}

// Another program may hold the lock.
TEST_F(WorldLockTest, TheBootScriptLeavesAFileOfRootsAsItIs) {
    const int lock = VkLibLock();
    ASSERT_GT(lock, 0);
    ASSERT_EQ(fchmod(lock, 0600), 0);
    const testkit::FileIdentity before = testkit::IdentityOf(kLockFile);
    for (const std::string order : {"start", "restart", "force-reload"}) {
        const std::string line = "'" VELK_SOURCE_DIR "/packaging/init.d/velk-lock' " + order;
        EXPECT_EQ(system(line.c_str()), 0) << order;
        EXPECT_EQ(testkit::IdentityOf(kLockFile).inode, before.inode) << order;
        EXPECT_EQ(testkit::IdentityOf(kLockFile).mode, S_IFREG | 0666U) << order;
    }
    VkLibUnLock(lock);
}

}  // namespace
}  // namespace world
