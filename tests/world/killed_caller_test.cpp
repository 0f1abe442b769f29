// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The caller alone is killed, its tools run on, and another program sets at once.
#include <csignal>
#include <string>

#include <gmock/gmock.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/paths.h"
#include "world/calls.h"
#include "world/child.h"
#include "world/samples.h"

namespace world {
namespace {

using testkit::kIdentityFile;
using testkit::kInterfacesFile;
using testkit::kUsbDevices;

constexpr int kRounds = 300;

class KilledCallerTest : public testkit::DeviceTest {};

TEST_F(KilledCallerTest, AnotherSetAtOnceLosesNothing) {
    testkit::WriteFile(kInterfacesFile, InterfacesWith("10.0.0.10"));
    for (int i = 0; i < kRounds; ++i) {
        Child caller({}, [] { return SetAddress("10.0.0.20"); });
        usleep(static_cast<useconds_t>(i * 17 % 4000));
        caller.Kill();
        const int result = SetAddress("10.0.0.30");
        EXPECT_TRUE(result == LIB_VELK_SUCCESS || result == LIB_VELK_LOCKED) << result;
        while (SetAddress("10.0.0.40") == LIB_VELK_LOCKED) {
            usleep(100);  // the killed caller's tool still copies
        }
        ASSERT_EQ(testkit::ReadFile(kInterfacesFile), InterfacesWith("10.0.0.40")) << "round " << i;
    }
}

// A tool that a restart leaves running would keep the lock for minutes.
TEST_F(KilledCallerTest, NoOtherToolInheritsTheLock) {
    testkit::WriteFile(kUsbDevices, "S:  Product=QT4408RKM\n");
    libc().OnCall(testkit::Call::kSystem, [](const testkit::Event&) {
        const testkit::Unrecorded ours;
        EXPECT_EQ(system("ls -l /proc/self/fd | grep -q vklib_lock"), 1 << 8)
            << "a tool has the lock";
    });
    libc().ScriptAlways(testkit::Call::kSystem, testkit::Return(0));
    (void)Execute(VELK_RESTART, VELK_CMD_RESTART, "eth1");
    (void)Execute(VELK_RESTART, VELK_CMD_RESTART, "eth0");
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_LINK_SPEED, "eth0", "\x01"), 0);
}

TEST_F(KilledCallerTest, TheLinesThatCopyInheritTheLock) {
    testkit::WriteFile(kInterfacesFile, InterfacesWith("10.0.0.10"));
    int inherited = 0;
    libc().OnCall(testkit::Call::kSystem, [&](const testkit::Event&) {
        const testkit::Unrecorded ours;
        inherited += system("ls -l /proc/self/fd | grep -q vklib_lock") == 0 ? 1 : 0;
    });
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.0.0.20"), 0);
    EXPECT_EQ(inherited, 2);
}

// The daemon of the SNMP restart keeps running. The settings file's own two lines inherit the lock.
TEST_F(KilledCallerTest, TheSnmpLinesDoNotInheritTheLock) {
    testkit::WriteFile(kIdentityFile, "");
    std::vector<std::string> holders;
    libc().OnCall(testkit::Call::kSystem, [&](const testkit::Event& event) {
        const testkit::Unrecorded ours;
        if (system("ls -l /proc/self/fd | grep -q vklib_lock") == 0) {
            holders.push_back(event.text);
        }
    });
    libc().ScriptAlways(testkit::Call::kSystem, testkit::Return(0));
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_LOCATION, "", "Cellar"), 0);
    EXPECT_EQ(libc().Commands().size(), 4U);
    EXPECT_THAT(holders, testing::ElementsAre("cat /var/tmp/libvelk > /var/libvelk/libvelk",
                                              "rm /var/tmp/libvelk"));
}

}  // namespace
}  // namespace world
