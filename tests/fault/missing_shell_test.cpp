// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// If no shell can be started, an earlier output of tools is read as new: system(3) reports that
// like a command that failed, and the library does not notice. See docs/reliability.md.
#include <optional>

#include <gmock/gmock.h>

#include "fault/kit/scene.h"
#include "support/device_test.h"
#include "support/paths.h"

namespace fault {
namespace {

using testing::ElementsAre;
using testkit::Call;
using testkit::kResultFile;

class MissingShellTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        EXPECT_EQ(testkit::Exists(kResultFile), has_old_result_) << "nothing removes or makes it";
        device_.reset();
        DeviceTest::TearDown();
    }

    void StartWithoutAShell(const Scene& scene) {
        has_old_result_ = scene.has_old_result;
        device_.emplace(scene);
        libc().PlanFault(Call::kSystem, 1, testkit::Reach::kAllFrom, testkit::Return(127 << 8));
    }

  private:
    bool has_old_result_ = false;
    std::optional<Device> device_;
};

constexpr Scene kWithOldResult{.uses_dhcp = true, .has_old_result = true};

TEST_F(MissingShellTest, TheLinkSpeedIsTheOldOne) {
    StartWithoutAShell(kWithOldResult);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_LINK_SPEED, "eth0"), 0);
    EXPECT_EQ(response.data[0], VELK_LINK_10_HALF);
}

TEST_F(MissingShellTest, TheLiveAddressIsTheOldOne) {
    StartWithoutAShell(kWithOldResult);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_IP_ADDRESS, "eth0"), 0);
    EXPECT_STREQ(response.data, "10.99.0.5");
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_NETMASK, "eth0"), 0);
    EXPECT_STREQ(response.data, "255.255.0.0");
}

// The cable is out now and was in earlier.
TEST_F(MissingShellTest, TheLinkIsTheOldOne) {
    StartWithoutAShell(kWithOldResult);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_RATE, "eth1"), LIB_VELK_WIRED_LINKED);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_IP_ADDRESS, "eth1"), 0);
    EXPECT_STREQ(response.data, "");
}

TEST_F(MissingShellTest, ARestartUsesTheOldLinkAndGetsSuccess) {
    StartWithoutAShell(kWithOldResult);
    EXPECT_EQ(Execute(VELK_RESTART, VELK_CMD_RESTART, "eth1"), 0);
    EXPECT_THAT(libc().Commands(),
                ElementsAre("sudo ifdown eth1", "sudo /usr/sbin/ethtool eth0 > /var/tmp/get_result",
                            "rm /var/tmp/get_result", "sudo ifconfig eth1 up"));
}

TEST_F(MissingShellTest, WithoutAnOldResultTheValueIsMissing) {
    StartWithoutAShell({.has_cable = true, .uses_dhcp = true});
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_LINK_SPEED, "eth0"), -1);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_IP_ADDRESS, "eth0"), -1);
}

// After a minute of attempts the link counts as down.
TEST_F(MissingShellTest, WithoutAnOldResultThereIsNoLink) {
    StartWithoutAShell({.has_cable = true});
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_RATE, "eth1"), 0);
    EXPECT_EQ(libc().Texts(Call::kSleep).size(), 60U);
}

}  // namespace
}  // namespace fault
