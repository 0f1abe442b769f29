// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The files that are removed after a call that was ended early, and those that stay.
#include "velkctl/call/cleanup.h"

#include <string>
#include <vector>

#include <fcntl.h>
#include <semaphore.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>

#include "lib/base/unique_fd.h"
#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/paths.h"
#include "unit/velkctl/call/samples.h"

namespace {

using testkit::Exists;
using testkit::kChange;
using testkit::kInterfacesCopy;
using testkit::kInterfacesFile;
using testkit::kLockFile;
using testkit::kReplySocket;
using testkit::WriteCopy;
using testkit::WriteFile;
using velkctl::CleanUp;
using velkctl::Command;

constexpr auto& kSemaphore = testkit::kSemaphoreFile;
constexpr auto& kToolOutput = testkit::kResultFile;
// Readers of a tool's output take turns on it.
constexpr auto& kReadersFolder = testkit::kEditFolder;

constexpr Command kQuery{VELK_GET, VELK_CMD_SSID, "eth1"};

class CleanUpTest : public testkit::DeviceTest {
  protected:
    // Makes every file that a killed call can leave.
    void LeaveEverything() {
        (void)sem_close(sem_open("/WlanAplRecvSem", O_CREAT | O_RDWR, 0666, 1));
        const velk::UniqueFd reply(BoundReplySocket());
        WriteFile(kToolOutput, "Link detected: yes\n");
        WriteFile(kLockFile, "");
        WriteFile(kInterfacesFile, "iface eth0 inet static\n");
        WriteCopy(kInterfacesCopy, "iface eth0 inet dhcp\n");
    }
    static int BoundReplySocket() {
        const int fd = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::string(kReplySocket).copy(address.sun_path, sizeof(address.sun_path) - 1);
        EXPECT_EQ(bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
        return fd;
    }
    static std::vector<std::string> Left() {
        std::vector<std::string> left;
        for (const char* path : {kReplySocket, kSemaphore, kToolOutput, kInterfacesCopy}) {
            if (Exists(path)) {
                left.emplace_back(path);
            }
        }
        return left;
    }
};

using Paths = std::vector<std::string>;

TEST_F(CleanUpTest, AQueryLeavesNoSocketAndNoSemaphore) {
    LeaveEverything();
    CleanUp(kQuery, true);
    EXPECT_EQ(Left(), Paths{kInterfacesCopy});
}

TEST_F(CleanUpTest, AQueryLeavesNoSemaphoreWithoutASocket) {
    LeaveEverything();
    unlink(kReplySocket);
    CleanUp(kQuery, true);
    EXPECT_EQ(Left(), Paths{kInterfacesCopy});
}

TEST_F(CleanUpTest, TheQueryOfAnotherProgramStays) {
    LeaveEverything();
    unlink(kReplySocket);
    const velk::UniqueFd other(BoundReplySocket());
    CleanUp(kQuery, true);
    EXPECT_EQ(Left(), (Paths{kReplySocket, kSemaphore, kInterfacesCopy}));
}

TEST_F(CleanUpTest, AChangeLeavesNoEditCopyOfItsOwn) {
    LeaveEverything();
    WriteFile("/etc/dhclient.conf", "timeout 9;\n");
    for (const char* copy : {"dhclient.conf", "dhclient-exit-hooks", "dhclient-script", "libvelk",
                             "root", "a-file-of-somebody"}) {
        WriteCopy(std::string("/var/tmp/") + copy, "timeout 10;\n");
    }
    CleanUp(kChange, true);
    EXPECT_EQ(Left(), (Paths{kReplySocket, kSemaphore}));
    EXPECT_FALSE(Exists("/var/tmp/dhclient.conf"));
    for (const char* copy :
         {"dhclient-exit-hooks", "dhclient-script", "libvelk", "root", "a-file-of-somebody"}) {
        EXPECT_TRUE(Exists(std::string("/var/tmp/") + copy)) << copy;
    }
}

TEST_F(CleanUpTest, AChangeLeavesNoEditCopyInAnyState) {
    for (const char* copy : {"", "iface eth0", "iface eth0 inet static\n", "iface eth1\n"}) {
        LeaveEverything();
        WriteCopy(kInterfacesCopy, copy);
        CleanUp(kChange, true);
        EXPECT_EQ(Left(), (Paths{kReplySocket, kSemaphore})) << copy;
        unlink(kReplySocket);
    }
}

TEST_F(CleanUpTest, TheRestOfAFileThatWasCutStays) {
    for (const char* cut : {"", "iface eth0"}) {
        LeaveEverything();
        WriteFile(kInterfacesFile, cut);
        CleanUp(kChange, true);
        EXPECT_EQ(testkit::ReadFile(kInterfacesCopy), "iface eth0 inet dhcp\n");
        unlink(kReplySocket);
    }
    unlink(kInterfacesFile);
    CleanUp(kChange, true);
    EXPECT_TRUE(Exists(kInterfacesCopy));
}

TEST_F(CleanUpTest, AFileThatNoEditMadeStays) {
    WriteFile(kInterfacesFile, "iface eth0 inet static\n");
    WriteFile(kLockFile, "");
    WriteFile("/tmp/mine", "iface eth0 inet dhcp\n");
    ASSERT_EQ(symlink("/tmp/mine", kInterfacesCopy), 0);
    CleanUp(kChange, true);
    EXPECT_TRUE(Exists(kInterfacesCopy));
}

TEST_F(CleanUpTest, AnEditCopyStaysWhileAToolMayBePuttingItInPlace) {
    LeaveEverything();
    CleanUp(kChange, false);
    EXPECT_EQ(Left(), (Paths{kReplySocket, kSemaphore, kInterfacesCopy}));
}

TEST_F(CleanUpTest, AnEditCopyStaysWhileAnotherProgramChangesSettings) {
    LeaveEverything();
    const int lock = VkLibLock();
    CleanUp(kChange, true);
    VkLibUnLock(lock);
    EXPECT_EQ(Left(), (Paths{kReplySocket, kSemaphore, kInterfacesCopy}));
}

// The library makes that file before its first edit copy.
TEST_F(CleanUpTest, AnEditCopyStaysWithoutALockFile) {
    LeaveEverything();
    unlink(kLockFile);
    CleanUp(kChange, true);
    EXPECT_EQ(Left(), (Paths{kReplySocket, kSemaphore, kInterfacesCopy}));
    EXPECT_FALSE(Exists(kLockFile));
}

// A log without a reader blocks its writers.
TEST_F(CleanUpTest, NothingIsWrittenToTheSystemLog) {
    LeaveEverything();
    CleanUp(kChange, true);
    EXPECT_EQ(Left(), (Paths{kReplySocket, kSemaphore}));
    EXPECT_TRUE(libc().Logs().empty());
}

TEST_F(CleanUpTest, TheToolOutputOfAnotherProgramStays) {
    LeaveEverything();
    const velk::UniqueFd lock(open(kReadersFolder, O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(flock(lock.get(), LOCK_EX | LOCK_NB), 0);
    CleanUp(kChange, true);
    EXPECT_EQ(Left(), (Paths{kReplySocket, kSemaphore, kToolOutput}));
}

TEST_F(CleanUpTest, ARestartLeavesNoQueryAndNoEditCopy) {
    LeaveEverything();
    CleanUp({VELK_RESTART, VELK_CMD_RESTART, "eth1"}, true);
    EXPECT_EQ(Left(), (Paths{kReplySocket, kSemaphore, kInterfacesCopy}));
}

TEST_F(CleanUpTest, WithoutFilesThereIsNothingToRemove) {
    CleanUp(kQuery, true);
    CleanUp({VELK_GET, VELK_CMD_DNS, "eth0"}, true);
    EXPECT_EQ(Left(), Paths{});
    EXPECT_FALSE(Exists(kLockFile));
}

}  // namespace
