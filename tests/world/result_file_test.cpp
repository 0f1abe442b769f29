// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Other users plant things under the name of the file into which tools print.
#include <chrono>
#include <functional>
#include <string>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/paths.h"
#include "world/child.h"

namespace world {
namespace {

using testkit::kEditFolder;
using testkit::kResultFile;
using testkit::kUsbDevices;

using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr char kVictim[] = "/var/tmp/victim";
// A call that waits for another process would take longer, and usually never end.
constexpr seconds kLongest{60};
constexpr char kRightSpeed[] = "Speed: 100Mb/s\nDuplex: Full\nAuto-negotiation: off\n";
constexpr char kPlanted[] = "Speed: 10Mb/s\nDuplex: Half\nAuto-negotiation: off\n";

class ResultFileTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        if (!IsPossible({.user = kNobody})) {
            GTEST_SKIP() << "the private device has no other users";
        }
        ASSERT_EQ(chmod(kEditFolder, 01777), 0);
        tools_.Prints("sudo ethtool eth0", {kRightSpeed});
        tools_.Prints("sudo /usr/sbin/ethtool eth0", {"Link detected: yes\n"});
    }

    // Runs the function as another user.
    static void Plant(const std::function<int()>& planting) {
        ASSERT_EQ(InChild({.user = kNobody}, planting), 0);
    }
    static int PlantFile() {
        testkit::WriteFile(kResultFile, kPlanted);
        return testkit::Exists(kResultFile) ? 0 : 1;
    }
    static int PlantFolder() {
        return mkdir(kResultFile, 0777) + mkdir((std::string(kResultFile) + "/deep").c_str(), 0777);
    }

    // Checks that the get has the right answer and waits for nobody.
    void ExpectTheRightSpeed() {
        const auto start = steady_clock::now();
        EXPECT_EQ(Execute(VELK_GET, VELK_CMD_LINK_SPEED, "eth0"), 0);
        EXPECT_EQ(response.data[0], VELK_LINK_100_FULL);
        EXPECT_LT(steady_clock::now() - start, kLongest);
        EXPECT_FALSE(testkit::Exists(kResultFile));
    }
    // Checks that the get fails, waits for nobody and runs no shell line.
    void ExpectAFailureAtOnce() {
        const auto start = steady_clock::now();
        const int result = InChild({.user = kNobody}, [] {
            const _velk_request request =
                testkit::MakeRequest(VELK_GET, VELK_CMD_LINK_SPEED, "eth0");
            _velk_request answered;
            const int answer = execute_velk_command(&request, &answered);
            const testkit::LibcRecorder& libc = testkit::LibcRecorder::Get();
            const bool is_quiet =
                libc.Commands().empty() && libc.Logs() == std::vector<std::string>{"ifstream"};
            return answer == LIB_VELK_FAILURE && is_quiet ? 0 : 1;
        });
        EXPECT_EQ(result, 0);
        EXPECT_LT(steady_clock::now() - start, kLongest);
    }

  private:
    testkit::FakeShell tools_;
};

TEST_F(ResultFileTest, AFileOfAnotherUserIsReplaced) {
    Plant(PlantFile);
    ExpectTheRightSpeed();
}

TEST_F(ResultFileTest, APipeIsRemovedAndNotWaitedFor) {
    Plant([] { return mkfifo(kResultFile, 0666); });
    ExpectTheRightSpeed();
}

TEST_F(ResultFileTest, APipeIsNotWaitedForIfOnlyRead) {
    libc().OnCall(testkit::Call::kSystem, [](const testkit::Event&) {
        unlink(kResultFile);
        EXPECT_EQ(mkfifo(kResultFile, 0666), 0);
    });
    const auto start = steady_clock::now();
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_LINK_SPEED, "eth0"), -1);
    EXPECT_LT(steady_clock::now() - start, kLongest);
}

TEST_F(ResultFileTest, ASymbolicLinkIsRemovedAndNotFollowed) {
    testkit::WriteFile(kVictim, "keep me\n");
    Plant([] { return symlink(kVictim, kResultFile); });
    ExpectTheRightSpeed();
    EXPECT_EQ(testkit::ReadFile(kVictim), "keep me\n");
}

TEST_F(ResultFileTest, AHardLinkIsRemovedAndNotWrittenTo) {
    testkit::WriteFile(kVictim, "keep me\n");
    ASSERT_EQ(link(kVictim, kResultFile), 0);
    ExpectTheRightSpeed();
    EXPECT_EQ(testkit::ReadFile(kVictim), "keep me\n");
}

TEST_F(ResultFileTest, AFolderIsMovedAway) {
    Plant(PlantFolder);
    ExpectTheRightSpeed();
}

TEST_F(ResultFileTest, AHugeFileIsNotRead) {
    Plant([] {
        const int fd = open(kResultFile, O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
        return ftruncate(fd, 20LL << 30);
    });
    ExpectTheRightSpeed();
}

TEST_F(ResultFileTest, AFileThatCannotBeRemovedIsNotOpened) {
    testkit::WriteFile(kResultFile, kPlanted);  // a file of root in a sticky folder
    ExpectAFailureAtOnce();
    EXPECT_EQ(testkit::ReadFile(kResultFile), kPlanted);
}

TEST_F(ResultFileTest, AFolderThatCannotBeRemovedIsAFailure) {
    ASSERT_EQ(mkdir(kResultFile, 0755), 0);
    ExpectAFailureAtOnce();
    EXPECT_EQ(rmdir(kResultFile), 0);
}

TEST_F(ResultFileTest, TheCallersOwnOldFileIsWrittenAgain) {
    testkit::WriteFile(kResultFile, kPlanted);
    ExpectTheRightSpeed();
}

// A user who plants without a pause may make a get fail, and nothing else.
TEST_F(ResultFileTest, AUserWhoPlantsWithoutAPauseInjectsNoValue) {
    Child planter({.user = kNobody}, [] {
        for (;;) {
            (void)symlink(kVictim, kResultFile);
            (void)mkfifo(kResultFile, 0666);
        }
        return 0;
    });
    testkit::WriteFile(kVictim, "keep me\n");
    for (int i = 0; i < 300; ++i) {
        const int result = Execute(VELK_GET, VELK_CMD_LINK_SPEED, "eth0");
        ASSERT_TRUE(result == -1 || response.data[0] == VELK_LINK_100_FULL) << result;
    }
    EXPECT_EQ(testkit::ReadFile(kVictim), "keep me\n");
}

TEST_F(ResultFileTest, ARestartEndsWithAnyPlantedFile) {
    testkit::WriteFile(kUsbDevices, "S:  Product=QT4408RKM\n");
    for (const auto& planting : {std::function<int()>(PlantFile), std::function<int()>(PlantFolder),
                                 std::function<int()>([] { return mkfifo(kResultFile, 0666); })}) {
        Plant(planting);
        const auto start = steady_clock::now();
        EXPECT_EQ(Execute(VELK_RESTART, VELK_CMD_RESTART, "eth0"), 0);
        EXPECT_LT(steady_clock::now() - start, kLongest) << "sleep(3) returns at once here";
        EXPECT_EQ(libc().Texts(testkit::Call::kSleep),
                  (std::vector<std::string>{"1", "5", "30", "30"}));
        libc().ForgetEvents();
    }
}

// A lock that another user keeps costs each run of a tool 3 seconds, and no value.
TEST_F(ResultFileTest, ALockOfAnotherUserIsNotWaitedForForEver) {
    Child holder({.user = kNobody}, [] {
        const int fd = open(kEditFolder, O_RDONLY | O_CLOEXEC);
        if (flock(fd, LOCK_EX) != 0) {
            return 1;
        }
        testkit::WriteFile("/var/tmp/held", "");
        pause();
        return 0;
    });
    while (!testkit::Exists("/var/tmp/held")) {
        usleep(1000);
    }
    libc().ScriptAlways(testkit::Call::kNanosleep, testkit::Return(0));
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_LINK_SPEED, "eth0"), 0);
    EXPECT_EQ(response.data[0], VELK_LINK_100_FULL);
    EXPECT_EQ(libc().Events(testkit::Call::kNanosleep).size(), 1500U);
}

// The lock is never released, and files are created and removed endlessly.
TEST_F(ResultFileTest, AKeptLockAndComingFilesHoldNoReaderForLong) {
    Child holder({.user = kNobody}, [] {
        const int fd = open(kEditFolder, O_RDONLY | O_CLOEXEC);
        if (flock(fd, LOCK_EX) != 0) {
            return 1;
        }
        for (;;) {
            testkit::WriteFile("/var/tmp/held", "");
            (void)mkfifo(kResultFile, 0666);
            usleep(100000);
            (void)unlink(kResultFile);
        }
    });
    while (!testkit::Exists("/var/tmp/held")) {
        usleep(1000);
    }
    libc().ScriptAlways(testkit::Call::kNanosleep, testkit::Return(0));
    (void)Execute(VELK_GET, VELK_CMD_LINK_SPEED, "eth0");
    EXPECT_LE(libc().Events(testkit::Call::kNanosleep).size(), 7500U) << "of 2 ms";
}

}  // namespace
}  // namespace world
