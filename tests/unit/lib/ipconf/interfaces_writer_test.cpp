// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <string>

#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Exists;
using testkit::Fail;
using testkit::IdentityOf;
using testkit::kDhcpConfigCopy;
using testkit::kDhcpConfigFile;
using testkit::kInterfacesCopy;
using testkit::kInterfacesFile;
using testkit::kOldAddressFile;
using testkit::MakeRequest;
using testkit::ReadFile;
using testkit::WriteFile;

constexpr char kText[] =
    "iface eth0 inet static\n"
    "\taddress 192.168.0.10\n"
    "\tgateway 192.168.0.1\n"
    "iface eth1 inet dhcp\n";
constexpr char kUnusedConfigText[] =
    "#interface \"eth0\" {\n"
    "#request subnet-mask;\n"
    "#}\n";

_velk_request MethodRequest(std::string_view interface, char method) {
    return MakeRequest(VELK_SET, VELK_CMD_IP_METHOD, interface, {&method, 1});
}

_velk_request ValueRequest(std::string_view value) {
    return MakeRequest(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", value);
}

class InterfacesWriterTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        WriteFile(kInterfacesFile, kText);
        WriteFile(kDhcpConfigFile, kUnusedConfigText);
        WriteFile(kOldAddressFile, "192.168.0.9\n");
    }
    void TearDown() override {
        rmdir(kInterfacesCopy);  // left by the tests with a folder in the copy's place
        rmdir(kDhcpConfigCopy);
        DeviceTest::TearDown();
    }
    testkit::FakeShell shell;
};

// ---- addresses

TEST_F(InterfacesWriterTest, ANullKeyIsAFailureThatTouchesNothing) {
    EXPECT_EQ(SetAddressConf(ValueRequest("10.0.0.1"), nullptr), -1);
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_FALSE(Exists(kInterfacesCopy));
    EXPECT_EQ(ReadFile(kInterfacesFile), kText);
}

TEST_F(InterfacesWriterTest, AnAddressIsPutInPlaceByTheseLines) {
    EXPECT_EQ(SetAddressConf(ValueRequest("10.0.0.1"), "address "), 0);
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/interfaces > /etc/network/interfaces",
                            "system rm /var/tmp/interfaces"));
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet static\n"
              "\taddress 10.0.0.1\n"
              "\tgateway 192.168.0.1\n"
              "iface eth1 inet dhcp\n");
}

TEST_F(InterfacesWriterTest, AnyKeyMayBeSet) {
    EXPECT_EQ(SetAddressConf(ValueRequest("10.0.0.255"), "broadcast "), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet static\n"
              "\taddress 192.168.0.10\n"
              "\tgateway 192.168.0.1\n"
              "\tbroadcast 10.0.0.255\n"
              "iface eth1 inet dhcp\n");
}

TEST_F(InterfacesWriterTest, OnlyTheExactGatewayKeyRemoves) {
    EXPECT_EQ(SetAddressConf(ValueRequest(""), "gateway"), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet static\n"
              "\taddress 192.168.0.10\n"
              "\tgateway\n"
              "iface eth1 inet dhcp\n");
}

TEST_F(InterfacesWriterTest, TheEmptyKeyIsFoundOnEveryLine) {
    EXPECT_EQ(SetAddressConf(ValueRequest("x"), ""), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet static\n"
              "\tx\n"
              "\tgateway 192.168.0.1\n"
              "iface eth1 inet dhcp\n");
}

TEST_F(InterfacesWriterTest, AValueWithoutANulEndsAtTheDataArea) {
    EXPECT_EQ(SetAddressConf(ValueRequest(std::string(512, '1')), "address "), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet static\n"
              "\taddress " +
                  std::string(512, '1') +
                  "\n"
                  "\tgateway 192.168.0.1\n"
                  "iface eth1 inet dhcp\n");
}

TEST_F(InterfacesWriterTest, ANameWithoutANulEndsAtItsField) {
    WriteFile(kInterfacesFile, "iface eth0eth0eth0eth0 inet static\n\taddress 1\n");
    EXPECT_EQ(SetIpAddressConf(MakeRequest(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0eth0eth0eth0", "2"),
                               nullptr),
              0);
    EXPECT_EQ(ReadFile(kInterfacesFile), "iface eth0eth0eth0eth0 inet static\n\taddress 2\n");
}

TEST_F(InterfacesWriterTest, TheThreeSettersDifferInTheirKeys) {
    EXPECT_EQ(SetIpAddressConf(ValueRequest("1"), nullptr), 0);
    EXPECT_EQ(SetSubNetMaskConf(ValueRequest("2"), nullptr), 0);
    EXPECT_EQ(SetDefGatewayConf(ValueRequest("3"), nullptr), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet static\n"
              "\taddress 1\n"
              "\tgateway 3\n"
              "\tnetmask 2\n"
              "iface eth1 inet dhcp\n");
}

TEST_F(InterfacesWriterTest, AnAddressWithoutAWritableCopyIsAFailure) {
    ASSERT_EQ(mkdir(kInterfacesCopy, 0755), 0);
    EXPECT_EQ(SetAddressConf(ValueRequest("10.0.0.1"), "address "), -1);
    EXPECT_THAT(libc().Story(), IsEmpty());
    EXPECT_EQ(ReadFile(kInterfacesFile), kText);
}

TEST_F(InterfacesWriterTest, AnAddressWithoutTheFileIsAFailure) {
    unlink(kInterfacesFile);
    EXPECT_EQ(SetAddressConf(ValueRequest("10.0.0.1"), "address "), -1);
    EXPECT_THAT(libc().Story(), IsEmpty());
    EXPECT_FALSE(Exists(kInterfacesFile));
    EXPECT_EQ(ReadFile(kInterfacesCopy), "");
}

TEST_F(InterfacesWriterTest, ACopyThatCannotBeWrittenLeavesTheAddressAsItWas) {
    libc().Script(Call::kWrite, {Fail(ENOSPC)});
    EXPECT_EQ(SetAddressConf(ValueRequest("10.0.0.1"), "address "), -1);
    EXPECT_THAT(libc().Story(), ElementsAre("log FileEdit write errno=28:No space left on device"));
    EXPECT_EQ(ReadFile(kInterfacesFile), kText);
    EXPECT_FALSE(Exists(kInterfacesCopy));
}

TEST_F(InterfacesWriterTest, AFailingCopyingOfAnAddressIsNotNoticed) {
    libc().Script(Call::kSystem, {Fail(EAGAIN), Fail(EAGAIN)});
    EXPECT_EQ(SetAddressConf(ValueRequest("10.0.0.1"), "address "), 0);
}

// ---- method

TEST_F(InterfacesWriterTest, DhcpRunsTheseLinesInThisOrder) {
    EXPECT_EQ(SetIpSettingMethod(MethodRequest("eth0", 2), nullptr), 0);
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/interfaces > /etc/network/interfaces",
                            "system rm /var/tmp/interfaces",
                            "system cat /var/tmp/dhclient.conf > /etc/dhclient.conf",
                            "system rm /var/tmp/dhclient.conf", "system rm -f /tmp/oldIPAddress"));
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet dhcp\n"
              "\taddress 192.168.0.10\n"
              "\tgateway 192.168.0.1\n"
              "iface eth1 inet dhcp\n");
    EXPECT_EQ(ReadFile(kDhcpConfigFile), "interface \"eth0\" {\nrequest subnet-mask;\n}\n");
    EXPECT_FALSE(Exists(kOldAddressFile));
}

TEST_F(InterfacesWriterTest, AStaticMethodRunsTheSameLinesButTheLast) {
    EXPECT_EQ(SetIpSettingMethod(MethodRequest("eth0", 1), nullptr), 0);
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/interfaces > /etc/network/interfaces",
                            "system rm /var/tmp/interfaces",
                            "system cat /var/tmp/dhclient.conf > /etc/dhclient.conf",
                            "system rm /var/tmp/dhclient.conf"));
    EXPECT_TRUE(Exists(kOldAddressFile));
}

TEST_F(InterfacesWriterTest, TheWirelessInterfaceNeverRemovesTheOldAddress) {
    EXPECT_EQ(SetIpSettingMethod(MethodRequest("eth1", 2), nullptr), 0);
    EXPECT_EQ(SetIpSettingMethod(MethodRequest("eth1", 1), nullptr), 0);
    EXPECT_TRUE(Exists(kOldAddressFile));
    EXPECT_THAT(libc().Commands(), testing::Not(testing::Contains("rm -f /tmp/oldIPAddress")));
}

TEST_F(InterfacesWriterTest, TheMethodByteIsLookedAtBeforeTheFiles) {
    unlink(kInterfacesFile);
    ASSERT_EQ(mkdir(kInterfacesCopy, 0755), 0);
    for (const char method : {'\0', '\3', '1', '\xff'}) {
        EXPECT_EQ(SetIpSettingMethod(MethodRequest("eth0", method), nullptr), -4);
    }
    EXPECT_EQ(SetIpSettingMethod(MethodRequest("eth0", 1), nullptr), -1);
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(InterfacesWriterTest, ARefusedMethodStillOpensBothFiles) {
    EXPECT_EQ(SetIpSettingMethod(MethodRequest("eth0", 0), nullptr), -4);
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kInterfacesFile, kInterfacesCopy));
    EXPECT_EQ(ReadFile(kInterfacesCopy), "");
    EXPECT_EQ(ReadFile(kInterfacesFile), kText);
    EXPECT_TRUE(Exists(kOldAddressFile));
}

TEST_F(InterfacesWriterTest, AMethodWithoutTheFileIsAFailureThatRemovesTheOldAddress) {
    unlink(kInterfacesFile);
    EXPECT_EQ(SetIpSettingMethod(MethodRequest("eth0", 2), nullptr), -1);
    EXPECT_THAT(libc().Story(), ElementsAre("system rm -f /tmp/oldIPAddress"));
    EXPECT_FALSE(Exists(kOldAddressFile));
    EXPECT_EQ(ReadFile(kDhcpConfigFile), kUnusedConfigText);
    EXPECT_EQ(ReadFile(kInterfacesCopy), "");
}

TEST_F(InterfacesWriterTest, AMethodWithoutAWritableCopyIsAFailureThatRemovesTheOldAddress) {
    ASSERT_EQ(mkdir(kInterfacesCopy, 0755), 0);
    EXPECT_EQ(SetIpSettingMethod(MethodRequest("eth0", 2), nullptr), -1);
    EXPECT_THAT(libc().Story(), ElementsAre("system rm -f /tmp/oldIPAddress"));
    EXPECT_EQ(ReadFile(kInterfacesFile), kText);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), kUnusedConfigText);
}

TEST_F(InterfacesWriterTest, AMethodThatCannotBeWrittenDoesNotSwitchTheClient) {
    libc().Script(Call::kWrite, {Fail(ENOSPC)});
    EXPECT_EQ(SetIpSettingMethod(MethodRequest("eth0", 2), nullptr), -1);
    EXPECT_THAT(libc().Story(), ElementsAre("log FileEdit write errno=28:No space left on device",
                                            "system rm -f /tmp/oldIPAddress"));
    EXPECT_EQ(ReadFile(kInterfacesFile), kText);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), kUnusedConfigText);
    EXPECT_FALSE(Exists(kOldAddressFile));
    EXPECT_FALSE(Exists(kInterfacesCopy));
}

TEST_F(InterfacesWriterTest, AFailureToSwitchTheClientIsPassedOnWithTheMethodChanged) {
    unlink(kDhcpConfigFile);
    EXPECT_EQ(SetIpSettingMethod(MethodRequest("eth0", 2), nullptr), -1);
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/interfaces > /etc/network/interfaces",
                            "system rm /var/tmp/interfaces", "system rm -f /tmp/oldIPAddress"));
    EXPECT_EQ(GetIpSetting("eth0"), 2);
    EXPECT_EQ(ReadFile(kDhcpConfigCopy), "");
}

TEST_F(InterfacesWriterTest, AFailingRemovalOfTheOldAddressIsNotNoticed) {
    libc().Script(Call::kSystem, {testkit::Return(0), testkit::Return(0), testkit::Return(0),
                                  testkit::Return(0), Fail(EAGAIN)});
    EXPECT_EQ(SetIpSettingMethod(MethodRequest("eth0", 2), nullptr), 0);
}

TEST_F(InterfacesWriterTest, AFailingCopyingOfAMethodIsNotNoticed) {
    libc().Script(Call::kSystem, {Fail(EAGAIN), Fail(EAGAIN)});
    EXPECT_EQ(SetIpSettingMethod(MethodRequest("eth1", 2), nullptr), 0);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), kUnusedConfigText);
}

// ---- the same with the real shell

class InterfacesWriterShellTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        WriteFile(kInterfacesFile, kText);
        WriteFile(kDhcpConfigFile, kUnusedConfigText);
        WriteFile(kOldAddressFile, "192.168.0.9\n");
        for (const char* path : {kInterfacesFile, kDhcpConfigFile}) {
            ASSERT_EQ(chmod(path, 0640), 0);
            (void)!chown(path, 12, 34);  // only where the test runs as root
        }
    }
};

TEST_F(InterfacesWriterShellTest, AMethodKeepsInodeOwnerAndMode) {
    const testkit::FileIdentity interfaces = IdentityOf(kInterfacesFile);
    const testkit::FileIdentity config = IdentityOf(kDhcpConfigFile);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_METHOD, "eth0", "\x02"), 0);
    EXPECT_EQ(IdentityOf(kInterfacesFile), interfaces);
    EXPECT_EQ(IdentityOf(kDhcpConfigFile), config);
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet dhcp\n"
              "\taddress 192.168.0.10\n"
              "\tgateway 192.168.0.1\n"
              "iface eth1 inet dhcp\n");
    EXPECT_EQ(ReadFile(kDhcpConfigFile), "interface \"eth0\" {\nrequest subnet-mask;\n}\n");
    EXPECT_FALSE(Exists(kOldAddressFile));
    EXPECT_FALSE(Exists(kInterfacesCopy));
    EXPECT_FALSE(Exists(kDhcpConfigCopy));
}

TEST_F(InterfacesWriterShellTest, AnAddressKeepsInodeOwnerAndMode) {
    const testkit::FileIdentity interfaces = IdentityOf(kInterfacesFile);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.0.0.1"), 0);
    EXPECT_EQ(IdentityOf(kInterfacesFile), interfaces);
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet static\n"
              "\taddress 10.0.0.1\n"
              "\tgateway 192.168.0.1\n"
              "iface eth1 inet dhcp\n");
    EXPECT_FALSE(Exists(kInterfacesCopy));
}

TEST_F(InterfacesWriterShellTest, AnAddressOnAFileOfManyBlocksArrivesWhole) {
    std::string rest;
    for (int i = 0; i < 10000; ++i) {
        rest += "# comment " + std::to_string(i) + "\n";
    }
    WriteFile(kInterfacesFile, "iface eth0 inet static\n\taddress 1\n" + rest);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.0.0.1"), 0);
    EXPECT_TRUE(ReadFile(kInterfacesFile) == "iface eth0 inet static\n\taddress 10.0.0.1\n" + rest);
}

TEST_F(InterfacesWriterShellTest, AFileThatCannotBeWrittenStaysAsItWasAndIsNotNoticed) {
    ASSERT_EQ(mount(kInterfacesFile, kInterfacesFile, "none", MS_BIND, nullptr), 0);
    const bool is_read_only =
        mount("none", kInterfacesFile, "none", MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    EXPECT_TRUE(is_read_only);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_IP_ADDRESS, "eth0", "10.0.0.1"), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), kText);
    EXPECT_FALSE(Exists(kInterfacesCopy));
    EXPECT_EQ(umount2(kInterfacesFile, MNT_DETACH), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), kText);
}

}  // namespace
