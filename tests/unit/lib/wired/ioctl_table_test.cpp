// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/wired/ioctl_table.h"

#include <cerrno>
#include <cstring>
#include <string>

#include <gmock/gmock.h>
#include <sys/socket.h>

#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Fail;
using testkit::kShowLink;
using testkit::MakeRequest;
using testkit::WriteFile;

class IoctlTableTest : public testkit::DeviceTest {
  protected:
    static void PlugAdapter() {
        WriteFile(testkit::kSupportList, "VID=1a2b\nPID=3c4d\n");
        WriteFile(testkit::kUsbDevices, "P:  Vendor=1a2b ProdID=3c4d Rev= 1.01\n");
    }
    testkit::FakeShell shell;
};

TEST_F(IoctlTableTest, TheRowsAreInTheirOrder) {
    const std::span<const velk::IoctlEntry> rows = velk::kIoctlTable;
    ASSERT_EQ(rows.size(), 5U);
    const struct {
        uint32_t id, get, set;
        bool can_set;
    } expected[] = {{101, 0x8927, 0, false},
                    {201, 0x8946, 0x8946, true},
                    {104, 0x8915, 0x8916, true},
                    {105, 0x891B, 0x891C, true},
                    {106, 0, 0x890B, true}};
    for (size_t i = 0; i < rows.size(); ++i) {
        SCOPED_TRACE("row " + std::to_string(i));
        EXPECT_EQ(rows[i].command_id, expected[i].id);
        EXPECT_EQ(rows[i].get_request, expected[i].get);
        EXPECT_NE(rows[i].get_handler, nullptr);
        EXPECT_EQ(rows[i].set_request, expected[i].set);
        EXPECT_EQ(rows[i].set_handler != nullptr, expected[i].can_set);
    }
}

TEST_F(IoctlTableTest, EveryRowHasItsHandlers) {
    const std::span<const velk::IoctlEntry> rows = velk::kIoctlTable;
    EXPECT_EQ(rows[0].get_handler, static_cast<velk::IoctlGetHandler>(GetMacAddress));
    EXPECT_EQ(rows[1].get_handler, static_cast<velk::IoctlGetHandler>(GetLinkSpeed));
    EXPECT_EQ(rows[1].set_handler, static_cast<velk::IoctlSetHandler>(SetLinkSpeed));
    EXPECT_EQ(rows[2].get_handler, static_cast<velk::IoctlGetHandler>(GetIpAddress));
    EXPECT_EQ(rows[2].set_handler, static_cast<velk::IoctlSetHandler>(SetIpAddress));
    EXPECT_EQ(rows[3].get_handler, static_cast<velk::IoctlGetHandler>(GetSubNetMask));
    EXPECT_EQ(rows[3].set_handler, static_cast<velk::IoctlSetHandler>(SetSubNetMask));
    EXPECT_EQ(rows[4].get_handler, static_cast<velk::IoctlGetHandler>(GetDefGateway));
    EXPECT_EQ(rows[4].set_handler, static_cast<velk::IoctlSetHandler>(SetDefGateway));
}

TEST_F(IoctlTableTest, ANullOutputIsRefusedBeforeAnythingElse) {
    EXPECT_EQ(GetIoctl(MakeRequest(VELK_GET, 101, "eth1"), nullptr), -4);
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_TRUE(libc().Events(Call::kOpen).empty());
}

TEST_F(IoctlTableTest, UnknownIdsAnswerWithNothing) {
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetIoctl(MakeRequest(VELK_GET, 102, "eth0"), out), 0);
    EXPECT_STREQ(out, "unchanged");
    EXPECT_EQ(SetIoctl(MakeRequest(VELK_SET, 102, "eth0"), out), 0);
    EXPECT_TRUE(libc().Events(Call::kSocket).empty());
}

TEST_F(IoctlTableTest, TheMacAddressCannotBeSet) {
    EXPECT_EQ(SetIoctl(MakeRequest(VELK_SET, 101, "eth0", "x"), nullptr), 0);
    EXPECT_TRUE(libc().Events(Call::kSocket).empty());
}

TEST_F(IoctlTableTest, TheSocketIsCloseOnExecAndClosed) {
    char out[VELK_DATA_SIZE] = "";
    EXPECT_EQ(GetIoctl(MakeRequest(VELK_GET, 106, "eth0"), out), 0);
    const std::vector<testkit::Event> sockets = libc().Events(Call::kSocket);
    ASSERT_EQ(sockets.size(), 1U);
    EXPECT_EQ(sockets[0].text, std::to_string(AF_INET));
    EXPECT_EQ(sockets[0].number, SOCK_STREAM | SOCK_CLOEXEC);
}

TEST_F(IoctlTableTest, ASocketThatCannotBeOpenedIsAFailure) {
    libc().ScriptAlways(Call::kSocket, Fail(EMFILE));
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetIoctl(MakeRequest(VELK_GET, 101, "eth0"), out), -1);
    EXPECT_EQ(SetIoctl(MakeRequest(VELK_SET, 201, "eth0", "\1"), out), -1);
    EXPECT_THAT(libc().Logs(), ElementsAre("socket errno=24:Too many open files",
                                           "socket errno=24:Too many open files"));
    EXPECT_STREQ(out, "unchanged");
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(IoctlTableTest, TheWirelessInterfaceNeedsAnAdapter) {
    shell.Prints(kShowLink, {"Link detected: no\n"});
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_MAC_ADDRESS, "eth1"), -5);
    EXPECT_THAT(libc().Commands(), IsEmpty()) << "without an adapter the link is not asked for";
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(IoctlTableTest, TheWirelessInterfaceIsRefusedWhileTheCableIsIn) {
    PlugAdapter();
    shell.Prints(kShowLink, {"Link detected: yes\n"});
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_MAC_ADDRESS, "eth1"), -6);
    EXPECT_TRUE(libc().Events(Call::kSocket).empty());
}

TEST_F(IoctlTableTest, TheWirelessInterfaceAnswersWhenTheCableIsOut) {
    PlugAdapter();
    shell.Prints(kShowLink, {"Link detected: no\n"});
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_MAC_ADDRESS, "eth1"), 0);
    EXPECT_THAT(libc().Logs(), ElementsAre("ioctl errno=19:No such device"));
}

TEST_F(IoctlTableTest, TheWiredPortAndOtherNamesAreNotChecked) {
    char out[VELK_DATA_SIZE] = "";
    EXPECT_EQ(GetIoctl(MakeRequest(VELK_GET, 101, "eth0"), out), 0);
    EXPECT_EQ(GetIoctl(MakeRequest(VELK_GET, 101, "eth10"), out), 0);
    EXPECT_EQ(GetIoctl(MakeRequest(VELK_GET, 101, ""), out), 0);
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(IoctlTableTest, AnUnknownIdOnTheWirelessInterfaceIsCheckedFirst) {
    char out[VELK_DATA_SIZE] = "";
    EXPECT_EQ(GetIoctl(MakeRequest(VELK_GET, 399, "eth1"), out), -5);
}

TEST_F(IoctlTableTest, ASetAsksForNoAdapter) {
    EXPECT_EQ(SetIoctl(MakeRequest(VELK_SET, 104, "eth1", "10.0.0.5"), nullptr), 0);
    EXPECT_THAT(libc().Commands(), ElementsAre("sudo ifconfig eth1 10.0.0.5"));
}

TEST_F(IoctlTableTest, SetsReachTheirHandlersWithTheRequestsText) {
    EXPECT_EQ(SetIoctl(MakeRequest(VELK_SET, 104, "eth0", "10.0.0.5"), nullptr), 0);
    EXPECT_EQ(SetIoctl(MakeRequest(VELK_SET, 105, "eth0", "255.0.0.0"), nullptr), 0);
    EXPECT_EQ(SetIoctl(MakeRequest(VELK_SET, 106, "eth0", "10.0.0.1"), nullptr), 0);
    EXPECT_EQ(SetIoctl(MakeRequest(VELK_SET, 201, "eth0", "\2"), nullptr), 0);
    EXPECT_THAT(libc().Commands(),
                ElementsAre("sudo ifconfig eth0 10.0.0.5", "sudo ifconfig eth0 netmask 255.0.0.0",
                            "sudo route del default gw ", "sudo route add default gw 10.0.0.1",
                            "sudo ethtool -s eth0 speed 100 duplex full autoneg off"));
}

TEST_F(IoctlTableTest, ATextWithoutANulIsHandledWithinItsField) {
    _velk_request request = MakeRequest(VELK_SET, 104, "eth0eth0eth0eth0");
    memset(request.data, '1', sizeof(request.data));
    EXPECT_EQ(SetIoctl(request, nullptr), -4);
    EXPECT_THAT(libc().Logs(), ElementsAre("command line of 542 bytes does not fit"))
        << "14 bytes, a name of 15, a blank and 512";
}

}  // namespace
