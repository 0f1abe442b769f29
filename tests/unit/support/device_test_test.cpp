// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The unit ring must run on a private device, and notice the remains of a test.
#include "support/device_test.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <gtest/gtest-spi.h>
#include <unistd.h>

#include "support/paths.h"

namespace {

using testkit::DeviceTest;

class PrivateDeviceTest : public DeviceTest {
  protected:
    void Leave() { DeviceTest::TearDown(); }
};

// Reads the line of /proc/self/mountinfo with exactly this folder as its mount point.
bool IsTmpfs(const std::string& folder) {
    std::ifstream mounts("/proc/self/mountinfo");
    for (std::string line; std::getline(mounts, line);) {
        if (line.find(" " + folder + " ") != std::string::npos &&
            line.find(" - tmpfs ") != std::string::npos) {
            return true;
        }
    }
    return false;
}

TEST_F(PrivateDeviceTest, TheFoldersTheLibraryWritesInArePrivate) {
    for (const char* folder : {testkit::kSocketFolder, testkit::kEditFolder,
                               testkit::kSemaphoreFolder, "/run", "/proc/bus"}) {
        EXPECT_TRUE(IsTmpfs(folder)) << folder;
    }
}

TEST_F(PrivateDeviceTest, TheFoldersOfTheDevicesFilesArePrivate) {
    for (const char* folder : {"/etc", "/var"}) {
        EXPECT_TRUE(IsTmpfs(folder)) << folder;
    }
    for (const char* folder :
         {"/etc/network", "/var/cron/tabs", testkit::kLibraryFolder, "/var/log/syslog",
          "/usr/local/share/etc/snmp", "/usr/local/share/apps/wlan"}) {
        EXPECT_TRUE(std::filesystem::is_directory(folder)) << folder;
    }
}

TEST_F(PrivateDeviceTest, TheNetworkIsPrivate) {
    std::vector<std::string> names;
    std::ifstream devices("/proc/self/net/dev");
    for (std::string line; std::getline(devices, line);) {
        if (const size_t colon = line.find(':'); colon != std::string::npos) {
            names.push_back(line.substr(line.find_first_not_of(' '), colon));
        }
    }
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(names[0].substr(0, 2), "lo");
}

TEST_F(PrivateDeviceTest, TheClockCannotBeSet) {
    constexpr int kSysTime = 25;
    std::ifstream status("/proc/self/status");
    int seen = 0;
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("CapEff:") || line.starts_with("CapBnd:")) {
            ++seen;
            EXPECT_EQ(strtoull(line.c_str() + 7, nullptr, 16) >> kSysTime & 1, 0U) << line;
        }
    }
    EXPECT_EQ(seen, 2);
}

TEST_F(PrivateDeviceTest, ALeakedDescriptorFailsTheTest) {
    const int fd = open("/dev/null", O_RDONLY);
    EXPECT_NONFATAL_FAILURE(Leave(), "a descriptor was left open");
    close(fd);
}

TEST_F(PrivateDeviceTest, AnEarlierTestsFilesAreGone) {
    testkit::WriteFile("/var/tmp/left", "x");
    testkit::WriteFile(testkit::kResolverFile, "x");
    const PrivateDeviceTest_AnEarlierTestsFilesAreGone_Test next;
    EXPECT_FALSE(testkit::Exists("/var/tmp/left"));
    EXPECT_FALSE(testkit::Exists(testkit::kResolverFile));
}

TEST_F(PrivateDeviceTest, AHeldLockFailsTheTest) {
    const int lock = VkLibLock();
    ASSERT_GT(lock, 0);
    EXPECT_NONFATAL_FAILURE({ EXPECT_NONFATAL_FAILURE(Leave(), "a descriptor was left open"); },
                            "the lock was left taken");
    VkLibUnLock(lock);
}

}  // namespace
