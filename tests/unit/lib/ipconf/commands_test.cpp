// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <string>

#include <gmock/gmock.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testing::IsEmpty;
using testkit::Call;
using testkit::kDhcpConfigFile;
using testkit::kExitHooks;
using testkit::kInterfacesFile;
using testkit::MakeRequest;
using testkit::ReadFile;
using testkit::WriteFile;

constexpr char kInterfacesText[] =
    "iface eth0 inet static\n"
    "\taddress 192.168.0.10\n"
    "\tnetmask 255.255.255.0\n"
    "\tgateway 192.168.0.1\n";
constexpr char kConfigText[] =
    "interface \"eth0\" {\n"
    "request subnet-mask;\n"
    "}\n";
constexpr char kHooksText[] =
    "/usr/sbin/avahi-autoipd -D\n"
    "/sbin/printdhcpnotice.pl\n"
    "/sbin/printdhcpstart.pl\n";

class InterfaceCommandsTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        WriteFile(kInterfacesFile, kInterfacesText);
        WriteFile(kDhcpConfigFile, kConfigText);
        WriteFile(kExitHooks, kHooksText);
    }
    static std::string Get(uint32_t id) {
        char out[VELK_DATA_SIZE] = "";
        EXPECT_EQ(GetInterfaces(MakeRequest(VELK_GET, id, "eth0"), out), 0);
        return out;
    }
    static int Set(uint32_t id, std::string_view data, std::string_view interface = "eth0") {
        return SetInterfaces(MakeRequest(VELK_SET, id, interface, data), nullptr);
    }
    testkit::FakeShell shell;
};

TEST_F(InterfaceCommandsTest, EachIdGetsItsSetting) {
    EXPECT_EQ(Get(102), "\x01");
    EXPECT_EQ(Get(103), "\x01");
    EXPECT_EQ(Get(104), "192.168.0.10");
    EXPECT_EQ(Get(105), "255.255.255.0");
    EXPECT_EQ(Get(106), "192.168.0.1");
}

TEST_F(InterfaceCommandsTest, OtherIdsAreRefusedByTheGetter) {
    char out[VELK_DATA_SIZE] = "unchanged";
    for (const uint32_t id : {0U, 1U, 101U, 107U, 108U, 109U, 110U, 0x10066U, 0xffffffffU}) {
        EXPECT_EQ(GetInterfaces(MakeRequest(VELK_GET, id, "eth0"), out), -4) << id;
    }
    EXPECT_STREQ(out, "unchanged");
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
}

TEST_F(InterfaceCommandsTest, ANullOutputIsRefusedForEveryId) {
    for (const uint32_t id : {102U, 103U, 104U, 105U, 106U, 107U, 0U}) {
        EXPECT_EQ(GetInterfaces(MakeRequest(VELK_GET, id, "eth0"), nullptr), -4) << id;
    }
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
}

TEST_F(InterfaceCommandsTest, ResultsOfTheGettersArePassedOn) {
    WriteFile(kInterfacesFile, "iface eth0 inet manual\n");
    char out[VELK_DATA_SIZE] = "";
    for (const uint32_t id : {102U, 104U, 105U, 106U}) {
        EXPECT_EQ(GetInterfaces(MakeRequest(VELK_GET, id, "eth0"), out), -1) << id;
    }
}

TEST_F(InterfaceCommandsTest, TheMethodIsSetInBothFilesAndNowhereElse) {
    EXPECT_EQ(Set(102, "\x02"), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet dhcp\n"
              "\taddress 192.168.0.10\n"
              "\tnetmask 255.255.255.0\n"
              "\tgateway 192.168.0.1\n");
    EXPECT_EQ(Set(102, "\x01"), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile), kInterfacesText);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), "#interface \"eth0\" {\n#request subnet-mask;\n#}\n");
    EXPECT_EQ(ReadFile(kExitHooks), kHooksText);
}

TEST_F(InterfaceCommandsTest, TheLinkLocalDaemonIsSet) {
    EXPECT_EQ(Set(103, "\x02"), 0);
    EXPECT_EQ(ReadFile(kExitHooks),
              "#/usr/sbin/avahi-autoipd -D\n"
              "/sbin/printdhcpnotice.pl\n"
              "/sbin/printdhcpstart.pl\n");
    EXPECT_EQ(ReadFile(kInterfacesFile), kInterfacesText);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), kConfigText);
}

TEST_F(InterfaceCommandsTest, TheAddressIsSetAndTheMethodStays) {
    WriteFile(kInterfacesFile, "iface eth0 inet dhcp\n\taddress 1\n\tnetmask 2\n\tgateway 3\n");
    EXPECT_EQ(Set(104, "10.0.0.1"), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet dhcp\n\taddress 10.0.0.1\n\tnetmask 2\n\tgateway 3\n");
    EXPECT_EQ(ReadFile(kDhcpConfigFile), kConfigText);
    EXPECT_EQ(ReadFile(kExitHooks), kHooksText);
}

TEST_F(InterfaceCommandsTest, TheMaskIsSet) {
    EXPECT_EQ(Set(105, "255.0.0.0"), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet static\n"
              "\taddress 192.168.0.10\n"
              "\tnetmask 255.0.0.0\n"
              "\tgateway 192.168.0.1\n");
}

TEST_F(InterfaceCommandsTest, TheGatewayIsSetAndRemoved) {
    EXPECT_EQ(Set(106, "192.168.0.254"), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet static\n"
              "\taddress 192.168.0.10\n"
              "\tnetmask 255.255.255.0\n"
              "\tgateway 192.168.0.254\n");
    EXPECT_EQ(Set(106, ""), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet static\n"
              "\taddress 192.168.0.10\n"
              "\tnetmask 255.255.255.0\n");
    EXPECT_EQ(Set(106, ""), 0);
    EXPECT_EQ(ReadFile(kInterfacesFile),
              "iface eth0 inet static\n"
              "\taddress 192.168.0.10\n"
              "\tnetmask 255.255.255.0\n");
}

TEST_F(InterfaceCommandsTest, TheNoticesAreSet) {
    EXPECT_EQ(Set(109, "\x02"), 0);
    EXPECT_EQ(ReadFile(kExitHooks),
              "/usr/sbin/avahi-autoipd -D\n"
              "#/sbin/printdhcpnotice.pl\n"
              "#/sbin/printdhcpstart.pl\n");
    EXPECT_EQ(ReadFile(kInterfacesFile), kInterfacesText);
}

TEST_F(InterfaceCommandsTest, OtherIdsAreRefusedByTheSetter) {
    for (const uint32_t id : {0U, 1U, 101U, 107U, 108U, 110U, 0x10066U, 0xffffffffU}) {
        EXPECT_EQ(Set(id, "\x01"), -4) << id;
    }
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(InterfaceCommandsTest, ResultsOfTheSettersArePassedOn) {
    EXPECT_EQ(Set(102, "\x03"), -4);
    EXPECT_GT(Set(109, "\x01", "eth1"), 0);
    for (const char* file : {kInterfacesFile, kDhcpConfigFile, kExitHooks}) {
        unlink(file);
    }
    for (const uint32_t id : {102U, 103U, 104U, 105U, 106U, 109U}) {
        EXPECT_EQ(Set(id, "\x01"), -1) << id;
    }
}

}  // namespace
