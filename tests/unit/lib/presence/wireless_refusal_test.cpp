// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/presence/wireless_refusal.h"

#include <gmock/gmock.h>

#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testing::IsEmpty;
using testkit::kShowLink;
using testkit::WriteFile;

class WirelessRefusalTest : public testkit::DeviceTest {
  protected:
    testkit::FakeShell shell;
};

TEST_F(WirelessRefusalTest, AMissingAdapterIsReportedBeforeTheCable) {
    shell.Prints(kShowLink, {"Link detected: yes\n"});
    EXPECT_EQ(velk::WirelessRefusal(), -5);
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(WirelessRefusalTest, AConnectedCableIsReportedIfTheAdapterIsThere) {
    WriteFile(testkit::kUsbDevices, "S:  Product=QT4408RKM\n");
    shell.Prints(kShowLink, {"Link detected: yes\n"});
    EXPECT_EQ(velk::WirelessRefusal(), -6);
}

TEST_F(WirelessRefusalTest, NothingIsRefusedWithAnAdapterAndWithoutACable) {
    WriteFile(testkit::kUsbDevices, "S:  Product=QT4408RKM\n");
    shell.Prints(kShowLink, {"Link detected: no\n"});
    EXPECT_EQ(velk::WirelessRefusal(), 0);
}

}  // namespace
