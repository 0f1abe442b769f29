// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The guardian leaves the login session.
#include "velkctl/guardian/control_group.h"

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/mounted.h"

namespace {

using testkit::ReadFile;
using testkit::WriteFile;

constexpr char kTopGroup[] = "/sys/fs/cgroup/cgroup.procs";

class ControlGroupTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        WriteFile(kTopGroup, "");
        (void)mkdir("/run/systemd", 0755);
        (void)mkdir("/run/systemd/system", 0755);
    }
    void TearDown() override {
        (void)rmdir("/run/systemd/system");
        (void)setenv("PATH", path_.c_str(), 1);
        testkit::DeviceTest::TearDown();
    }
    // Puts a busctl into PATH that ends with this status.
    static void MakeBusctl(int status) {
        WriteFile("/tmp/busctl",
                  "#!/bin/sh\necho \"$@\" >/tmp/asked\nexit " + std::to_string(status) + "\n");
        (void)chmod("/tmp/busctl", 0755);
        (void)setenv("PATH", "/tmp:/bin:/usr/bin", 1);
    }

  private:
    const testkit::Emptied groups_{"/sys/fs/cgroup"};
    const std::string path_ = getenv("PATH");
};

TEST_F(ControlGroupTest, GetsAScopeOfItsOwnFromSystemd) {
    MakeBusctl(0);
    velkctl::LeaveSession("k7f2");
    EXPECT_EQ(ReadFile("/tmp/asked"),
              "call org.freedesktop.systemd1 /org/freedesktop/systemd1 "
              "org.freedesktop.systemd1.Manager StartTransientUnit ssa(sv)a(sa(sv)) "
              "velkctl-guardian-k7f2.scope replace 4 PIDs au 1 " +
                  std::to_string(getpid()) +
                  " Slice s system.slice KillSignal i 9 CollectMode s inactive-or-failed 0\n");
    EXPECT_EQ(ReadFile(kTopGroup), "");
}

TEST_F(ControlGroupTest, IsTheTopOneIfSystemdDoesNotAnswer) {
    MakeBusctl(1);
    velkctl::LeaveSession("k7f2");
    EXPECT_EQ(ReadFile(kTopGroup), "0");
}

TEST_F(ControlGroupTest, StaysIfNoneCanBeLeft) {
    MakeBusctl(1);
    (void)unlink(kTopGroup);
    velkctl::LeaveSession("k7f2");
    EXPECT_FALSE(testkit::Exists(kTopGroup));
}

TEST_F(ControlGroupTest, StaysWithoutSystemd) {
    MakeBusctl(0);
    (void)unlink("/tmp/asked");
    (void)rmdir("/run/systemd/system");
    velkctl::LeaveSession("k7f2");
    EXPECT_FALSE(testkit::Exists("/tmp/asked"));
    EXPECT_EQ(ReadFile(kTopGroup), "");
}

}  // namespace
