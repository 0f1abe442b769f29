// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <cstring>
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/machine.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testkit::Call;
using testkit::Data;
using testkit::Fail;
using testkit::kInterfacesFile;
using testkit::MakeRequest;
using testkit::WriteFile;

constexpr char kEthtool[] = "sudo /usr/sbin/ethtool eth0";

constexpr char kStatic[] =
    "auto lo\n"
    "iface lo inet loopback\n"
    "\n"
    "auto eth0\n"
    "iface eth0 inet static\n"
    "\taddress 192.168.0.10\n"
    "\tnetmask 255.255.255.0\n"
    "\tgateway 192.168.0.1\n"
    "\n"
    "iface eth1 inet static\n"
    "\taddress 10.0.0.7\n"
    "\tnetmask 255.255.0.0\n"
    "\tgateway 10.0.0.1\n";

constexpr char kDhcp[] =
    "iface eth0 inet dhcp\n"
    "\taddress 1.1.1.1\n"
    "\tnetmask 2.2.2.2\n"
    "\tgateway 3.3.3.3\n"
    "iface eth1 inet dhcp\n";

constexpr char kIfconfig[] =
    "eth0      Link encap:Ethernet  HWaddr 02:00:00:00:00:10  \n"
    "          inet addr:192.168.0.77  Bcast:192.168.0.255  Mask:255.255.255.128\n"
    "\n"
    "eth1      Link encap:Ethernet  HWaddr 02:00:00:00:00:11  \n"
    "          inet addr:10.0.0.77  Bcast:10.0.0.255  Mask:255.255.128.0\n"
    "\n";

const std::string kRoutes =
    "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT\n"
    "eth0\t00000000\t" +
    testkit::RouteNumber("FE00A8C0") +
    "\t0003\t0\t0\t0\t00000000\t0\t0\t0\n"
    "eth1\t00000000\t" +
    testkit::RouteNumber("FE00000A") + "\t0003\t0\t0\t0\t00000000\t0\t0\t0\n";

class InterfacesReaderTest : public testkit::DeviceTest {
  protected:
    static int Setting(std::string_view text, const std::string& interface = "eth0") {
        WriteFile(kInterfacesFile, text);
        return GetIpSetting(interface);
    }
    // Returns the value of a direct call for a key; "unchanged" if it writes nothing.
    static std::string Value(std::string_view text, const char* key,
                             const std::string& interface = "eth0") {
        WriteFile(kInterfacesFile, text);
        char out[VELK_DATA_SIZE] = "unchanged";
        EXPECT_EQ(GetAddressConf(MakeRequest(VELK_GET, 104, interface), key, out), 0);
        return out;
    }
    // Returns the answer of a get as text.
    std::string Get(uint32_t id, std::string_view interface = "eth0") {
        EXPECT_EQ(Execute(VELK_GET, id, interface), 0);
        return Data(response).c_str();
    }
    void ShowLiveValues(const char* ethtool_output) {
        shell.Prints("ifconfig", {kIfconfig});
        shell.Prints(kEthtool, {ethtool_output});
        WriteFile("/var/tmp/route", kRoutes);
        libc().Redirect(testkit::kRoutingTable, "/var/tmp/route");
    }
    testkit::FakeShell shell;
};

// ---- method

TEST_F(InterfacesReaderTest, ReturnsTheMethodOfEachInterface) {
    EXPECT_EQ(Setting("iface eth0 inet static\niface eth1 inet dhcp\n", "eth0"), 1);
    EXPECT_EQ(Setting("iface eth0 inet static\niface eth1 inet dhcp\n", "eth1"), 2);
}

TEST_F(InterfacesReaderTest, AnyOtherMethodIsAFailure) {
    EXPECT_EQ(Setting("iface eth0 inet manual\n"), -1);
    EXPECT_EQ(Setting("iface eth0 inet loopback\n"), -1);
    EXPECT_EQ(Setting("iface eth0 inet DHCP\n"), -1);
    EXPECT_EQ(Setting("iface eth0 inet dhc\n"), -1);
    EXPECT_EQ(Setting("iface eth0 inet stat\n"), -1);
    EXPECT_EQ(Setting("iface eth0 inet \n"), -1);
    EXPECT_EQ(Setting("iface eth0 inet  dhcp\n"), -1);
}

TEST_F(InterfacesReaderTest, OnlyTheBeginningOfTheMethodIsCompared) {
    EXPECT_EQ(Setting("iface eth0 inet dhcp6\n"), 2);
    EXPECT_EQ(Setting("iface eth0 inet dhcpstatic\n"), 2);
    EXPECT_EQ(Setting("iface eth0 inet statically\n"), 1);
    EXPECT_EQ(Setting("iface eth0 inet static # for now\n"), 1);
    EXPECT_EQ(Setting("iface eth0 inet dhcp\r\n"), 2);
}

TEST_F(InterfacesReaderTest, AHeaderBeginsAtTheFirstColumnAndWithSingleBlanks) {
    EXPECT_EQ(Setting(" iface eth0 inet dhcp\n"), -1);
    EXPECT_EQ(Setting("\tiface eth0 inet dhcp\n"), -1);
    EXPECT_EQ(Setting("#iface eth0 inet dhcp\n"), -1);
    EXPECT_EQ(Setting("iface  eth0 inet dhcp\n"), -1);
    EXPECT_EQ(Setting("iface eth0\tinet dhcp\n"), -1);
    EXPECT_EQ(Setting("iface eth0 inet\tdhcp\n"), -1);
    EXPECT_EQ(Setting("iface eth0 inet6 dhcp\n"), -1);
    EXPECT_EQ(Setting("iface eth01 inet dhcp\n"), -1);
    EXPECT_EQ(Setting("iface eth0:1 inet dhcp\n"), -1);
    EXPECT_EQ(Setting("Iface eth0 inet dhcp\n"), -1);
}

TEST_F(InterfacesReaderTest, TheFirstHeaderDecidesTheMethod) {
    EXPECT_EQ(Setting("iface eth0 inet static\niface eth0 inet dhcp\n"), 1);
    EXPECT_EQ(Setting("iface eth0 inet manual\niface eth0 inet dhcp\n"), -1);
    EXPECT_EQ(Setting(" iface eth0 inet static\niface eth0 inet dhcp\n"), 2);
}

TEST_F(InterfacesReaderTest, ALastLineWithoutANewlineCounts) {
    EXPECT_EQ(Setting("auto eth0\niface eth0 inet static"), 1);
    EXPECT_EQ(Setting("iface eth0 inet dhcp"), 2);
}

TEST_F(InterfacesReaderTest, WithoutAHeaderThereIsNoMethod) {
    EXPECT_EQ(Setting(""), -1);
    EXPECT_EQ(Setting("auto eth0\n"), -1);
    EXPECT_EQ(Setting(kStatic, "eth2"), -1);
    EXPECT_EQ(Setting(kStatic, ""), -1);
}

TEST_F(InterfacesReaderTest, WithoutTheFileThereIsNoMethod) {
    EXPECT_EQ(GetIpSetting("eth0"), -1);
    ASSERT_EQ(mkdir(kInterfacesFile, 0755), 0);
    EXPECT_EQ(GetIpSetting("eth0"), -1);
    rmdir(kInterfacesFile);
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(InterfacesReaderTest, GetsTheMethodByte) {
    WriteFile(kInterfacesFile, "iface eth0 inet static\niface eth1 inet dhcp\n");
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_IP_METHOD, "eth0"), 0);
    EXPECT_EQ(Data(response), "\x01" + std::string(511, '\0'));
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_IP_METHOD, "eth1"), 0);
    EXPECT_EQ(Data(response), "\x02" + std::string(511, '\0'));
}

TEST_F(InterfacesReaderTest, TheMethodIsOneByteAndNothingElse) {
    WriteFile(kInterfacesFile, kDhcp);
    char out[VELK_DATA_SIZE] = "xyz";
    EXPECT_EQ(GetIpSettingMethod(MakeRequest(VELK_GET, 102, "eth0"), out), 0);
    EXPECT_STREQ(out, "\x02yz");
}

TEST_F(InterfacesReaderTest, AnUnknownMethodWritesNothing) {
    WriteFile(kInterfacesFile, "iface eth0 inet manual\n");
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetIpSettingMethod(MakeRequest(VELK_GET, 102, "eth0"), out), -1);
    EXPECT_STREQ(out, "unchanged");
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_IP_METHOD, "eth0"), -1);
    EXPECT_EQ(Data(response), std::string(512, '\0'));
}

TEST_F(InterfacesReaderTest, ANullOutputOfTheMethodIsAFailure) {
    WriteFile(kInterfacesFile, kDhcp);
    EXPECT_EQ(GetIpSettingMethod(MakeRequest(VELK_GET, 102, "eth0"), nullptr), -1);
}

TEST_F(InterfacesReaderTest, ANameWithoutANulEndsAtItsField) {
    WriteFile(kInterfacesFile, "iface eth0eth0eth0eth0 inet dhcp\n");
    char out[VELK_DATA_SIZE] = "";
    EXPECT_EQ(GetIpSettingMethod(MakeRequest(VELK_GET, 102, "eth0eth0eth0eth0"), out), 0);
    EXPECT_STREQ(out, "\x02");
}

// ---- values by key

TEST_F(InterfacesReaderTest, CopiesTheTextAfterTheKey) {
    EXPECT_EQ(Value(kStatic, "address "), "192.168.0.10");
    EXPECT_EQ(Value(kStatic, "netmask "), "255.255.255.0");
    EXPECT_EQ(Value(kStatic, "gateway "), "192.168.0.1");
    EXPECT_EQ(Value(kStatic, "address ", "eth1"), "10.0.0.7");
}

TEST_F(InterfacesReaderTest, AnyKeyMayBeAskedFor) {
    EXPECT_EQ(Value("iface eth0 inet static\n\tbroadcast 1.2.3.255\n", "broadcast "), "1.2.3.255");
    EXPECT_EQ(Value("iface eth0 inet static\n\n\tup x\n", ""), "") << "the first body line";
}

TEST_F(InterfacesReaderTest, TheMethodDoesNotMatterToAKey) {
    EXPECT_EQ(Value(kDhcp, "address "), "1.1.1.1");
    EXPECT_EQ(Value("iface eth0 inet manual\naddress 1.1.1.1\n", "address "), "1.1.1.1");
}

TEST_F(InterfacesReaderTest, AValueIsTheRestOfTheLineUnchanged) {
    EXPECT_EQ(Value("iface eth0 inet static\n  address  1.1.1.1  \n", "address "), " 1.1.1.1  ");
    EXPECT_EQ(Value("iface eth0 inet static\naddress 1.1.1.1 # x\n", "address "), "1.1.1.1 # x");
    EXPECT_EQ(Value("iface eth0 inet static\naddress 1.1.1.1\r\n", "address "), "1.1.1.1\r");
    EXPECT_EQ(Value("iface eth0 inet static\naddress 1.1.1.1", "address "), "1.1.1.1");
    EXPECT_EQ(Value("iface eth0 inet static\naddress \n", "address "), "");
    EXPECT_EQ(Value("iface eth0 inet static\naddress address 1\n", "address "), "address 1");
}

TEST_F(InterfacesReaderTest, ACommentedLineCounts) {
    EXPECT_EQ(Value("iface eth0 inet static\n#\taddress 9.9.9.9\n\taddress 1.1.1.1\n", "address "),
              "9.9.9.9");
}

TEST_F(InterfacesReaderTest, AKeyInsideALongerWordCounts) {
    EXPECT_EQ(
        Value("iface eth0 inet static\n\thwaddress ether 02:00\n\taddress 1.1.1.1\n", "address "),
        "ether 02:00");
}

TEST_F(InterfacesReaderTest, AKeyWithoutItsBlankDoesNotCount) {
    EXPECT_EQ(Value("iface eth0 inet static\n\taddress\n\taddress\t1\n\taddress 2\n", "address "),
              "2");
}

TEST_F(InterfacesReaderTest, TheFirstOfTwoValuesCounts) {
    EXPECT_EQ(Value("iface eth0 inet static\naddress 1\naddress 2\n", "address "), "1");
}

TEST_F(InterfacesReaderTest, AStanzaReachesToTheNextIfaceLine) {
    EXPECT_EQ(Value("iface eth0 inet static\n\nauto eth1\nallow-hotplug eth1\nmapping x\n"
                    "gateway 1\niface eth1 inet static\n",
                    "gateway "),
              "1");
    EXPECT_EQ(Value("iface eth0 inet static\niface eth1 inet static\ngateway 1\n", "gateway "),
              "unchanged");
    EXPECT_EQ(Value("iface eth0 inet static\nifacex\ngateway 1\n", "gateway "), "unchanged");
    EXPECT_EQ(Value("iface eth0 inet static\n iface eth1 inet static\ngateway 1\n", "gateway "),
              "1")
        << "an indented line ends no stanza";
}

TEST_F(InterfacesReaderTest, TheHeaderItselfIsNotSearched) {
    EXPECT_EQ(Value("iface eth0 inet static gateway 1\ngateway 2\n", "gateway "), "2");
    EXPECT_EQ(Value("iface eth0 inet static\niface eth1 inet gateway 1\n", "gateway "),
              "unchanged");
}

TEST_F(InterfacesReaderTest, ALaterStanzaIsNeverLookedAt) {
    EXPECT_EQ(Value("iface eth0 inet static\naddress 1\niface eth0 inet static\naddress 2\n"
                    "gateway 3\n",
                    "gateway "),
              "unchanged");
}

TEST_F(InterfacesReaderTest, LinesBeforeTheStanzaDoNotCount) {
    EXPECT_EQ(Value("address 9\niface eth0 inet static\naddress 1\n", "address "), "1");
}

TEST_F(InterfacesReaderTest, AMissingStanzaOrValueIsNoFailure) {
    EXPECT_EQ(Value(kStatic, "address ", "eth2"), "unchanged");
    EXPECT_EQ(Value(kStatic, "broadcast "), "unchanged");
    EXPECT_EQ(Value("", "address "), "unchanged");
}

TEST_F(InterfacesReaderTest, ALongValueIsCutToTheDataArea) {
    struct {
        char out[VELK_DATA_SIZE] = {};
        char behind[16] = "behind";
    } area;
    const _velk_request request = MakeRequest(VELK_GET, 104, "eth0");
    for (const size_t size : {510U, 511U, 512U, 513U, 100000U}) {
        WriteFile(kInterfacesFile,
                  "iface eth0 inet static\naddress " + std::string(size, '1') + "\n");
        EXPECT_EQ(GetAddressConf(request, "address ", area.out), 0);
        EXPECT_EQ(std::string(area.out), std::string(std::min<size_t>(size, 511), '1')) << size;
        EXPECT_EQ(GetIpAddressConf(request, area.out), 0);
        EXPECT_EQ(std::string(area.out), std::string(std::min<size_t>(size, 511), '1')) << size;
        EXPECT_STREQ(area.behind, "behind");
    }
}

TEST_F(InterfacesReaderTest, NullArgumentsOfTheKeySearchAreFailures) {
    WriteFile(kInterfacesFile, kStatic);
    const _velk_request request = MakeRequest(VELK_GET, 104, "eth0");
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetAddressConf(request, nullptr, out), -1);
    EXPECT_EQ(GetAddressConf(request, "address ", nullptr), -1);
    EXPECT_EQ(GetAddressConf(request, nullptr, nullptr), -1);
    EXPECT_STREQ(out, "unchanged");
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
}

TEST_F(InterfacesReaderTest, AFileThatCannotBeReadIsAFailureOfTheKeySearch) {
    char out[VELK_DATA_SIZE] = "unchanged";
    const _velk_request request = MakeRequest(VELK_GET, 104, "eth0");
    EXPECT_EQ(GetAddressConf(request, "address ", out), -1);
    WriteFile(kInterfacesFile, kStatic);
    libc().Script(Call::kOpen, {Fail(EACCES)});
    EXPECT_EQ(GetAddressConf(request, "address ", out), -1);
    EXPECT_STREQ(out, "unchanged");
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

// ---- the three values of a static interface

TEST_F(InterfacesReaderTest, AStaticInterfaceAnswersAsConfigured) {
    WriteFile(kInterfacesFile, kStatic);
    ShowLiveValues("Link detected: yes\n");
    EXPECT_EQ(Get(VELK_CMD_IP_ADDRESS), "192.168.0.10");
    EXPECT_EQ(Get(VELK_CMD_NETMASK), "255.255.255.0");
    EXPECT_EQ(Get(VELK_CMD_GATEWAY), "192.168.0.1");
    EXPECT_EQ(Get(VELK_CMD_IP_ADDRESS, "eth1"), "10.0.0.7");
    EXPECT_EQ(Get(VELK_CMD_NETMASK, "eth1"), "255.255.0.0");
    EXPECT_EQ(Get(VELK_CMD_GATEWAY, "eth1"), "10.0.0.1");
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(InterfacesReaderTest, AStaticInterfaceWithoutAValueAnswersAnEmptyText) {
    WriteFile(kInterfacesFile, "iface eth0 inet static\n\taddress 192.168.0.10\n");
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_GATEWAY, "eth0"), 0);
    EXPECT_EQ(Data(response), std::string(512, '\0'));
}

TEST_F(InterfacesReaderTest, AStaticGetOpensAndReadsTheFileOnce) {
    WriteFile(kInterfacesFile, kStatic);
    for (const uint32_t id :
         {VELK_CMD_IP_METHOD, VELK_CMD_IP_ADDRESS, VELK_CMD_NETMASK, VELK_CMD_GATEWAY}) {
        libc().Reset();
        EXPECT_EQ(Execute(VELK_GET, id, "eth0"), 0);
        EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kInterfacesFile)) << id;
        EXPECT_THAT(libc().Events(Call::kRead), SizeIs(1)) << id;
    }
}

TEST_F(InterfacesReaderTest, NullOutputsOfTheValuesAreRefused) {
    const _velk_request request = MakeRequest(VELK_GET, VELK_CMD_GATEWAY, "eth0");
    WriteFile(kInterfacesFile, kStatic);
    EXPECT_EQ(GetIpAddressConf(request, nullptr), -1);
    EXPECT_EQ(GetSubNetMaskConf(request, nullptr), -1);
    EXPECT_EQ(GetDefGatewayConf(request, nullptr), -1);
    WriteFile(kInterfacesFile, kDhcp);
    EXPECT_EQ(GetIpAddressConf(request, nullptr), -4);
    EXPECT_EQ(GetSubNetMaskConf(request, nullptr), -4);
    EXPECT_EQ(GetDefGatewayConf(request, nullptr), -4);
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

// ---- those of a DHCP interface

TEST_F(InterfacesReaderTest, ADhcpInterfaceAnswersItsLiveValues) {
    WriteFile(kInterfacesFile, kDhcp);
    ShowLiveValues("Link detected: yes\n");
    EXPECT_EQ(Get(VELK_CMD_IP_ADDRESS), "192.168.0.77");
    EXPECT_EQ(Get(VELK_CMD_NETMASK), "255.255.255.128");
    EXPECT_EQ(Get(VELK_CMD_GATEWAY), "192.168.0.254");
}

TEST_F(InterfacesReaderTest, TheWiredInterfaceDoesNotAskForTheLink) {
    WriteFile(kInterfacesFile, kDhcp);
    ShowLiveValues("Link detected: yes\n");
    EXPECT_EQ(Get(VELK_CMD_IP_ADDRESS), "192.168.0.77");
    EXPECT_THAT(libc().Commands(),
                ElementsAre("ifconfig > /var/tmp/get_result", "rm /var/tmp/get_result"));
}

TEST_F(InterfacesReaderTest, ADhcpInterfaceWithoutALeaseAnswersEmptyTexts) {
    WriteFile(kInterfacesFile, kDhcp);
    ShowLiveValues("Link detected: yes\n");
    shell.Prints("ifconfig", {"eth0      Link encap:Ethernet\n          UP BROADCAST\n\n"});
    WriteFile("/var/tmp/route", "Iface\tDestination\n");
    EXPECT_EQ(Get(VELK_CMD_IP_ADDRESS), "");
    EXPECT_EQ(Get(VELK_CMD_NETMASK), "");
    EXPECT_EQ(Get(VELK_CMD_GATEWAY), "");
}

TEST_F(InterfacesReaderTest, TheWirelessInterfaceAnswersItsLiveValuesWithoutACable) {
    WriteFile(kInterfacesFile, kDhcp);
    ShowLiveValues("Link detected: no\n");
    EXPECT_EQ(Get(VELK_CMD_IP_ADDRESS, "eth1"), "10.0.0.77");
    EXPECT_EQ(Get(VELK_CMD_NETMASK, "eth1"), "255.255.128.0");
}

TEST_F(InterfacesReaderTest, TheWirelessInterfaceAnswersNothingWithACable) {
    WriteFile(kInterfacesFile, kDhcp);
    ShowLiveValues("Link detected: yes\n");
    for (const uint32_t id : {VELK_CMD_IP_ADDRESS, VELK_CMD_NETMASK, VELK_CMD_GATEWAY}) {
        EXPECT_EQ(Execute(VELK_GET, id, "eth1"), 0);
        EXPECT_EQ(Data(response), std::string(512, '\0')) << id;
    }
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetIpAddressConf(MakeRequest(VELK_GET, VELK_CMD_IP_ADDRESS, "eth1"), out), 0);
    EXPECT_EQ(GetSubNetMaskConf(MakeRequest(VELK_GET, VELK_CMD_NETMASK, "eth1"), out), 0);
    EXPECT_EQ(GetDefGatewayConf(MakeRequest(VELK_GET, VELK_CMD_GATEWAY, "eth1"), out), 0);
    EXPECT_STREQ(out, "unchanged");
}

TEST_F(InterfacesReaderTest, TheWirelessGatewayIsRefusedWithoutAnAdapter) {
    WriteFile(kInterfacesFile, kDhcp);
    ShowLiveValues("Link detected: no\n");
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_GATEWAY, "eth1"), -5);
    EXPECT_EQ(Data(response), std::string(512, '\0'));
}

TEST_F(InterfacesReaderTest, AFailureOfTheLiveValueIsPassedOn) {
    WriteFile(kInterfacesFile, kDhcp);
    ShowLiveValues("Link detected: yes\n");
    shell.LeavesNoFile("ifconfig");
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_IP_ADDRESS, "eth0"), -1);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_NETMASK, "eth0"), -1);
    libc().Redirect(testkit::kRoutingTable, "/var/tmp/missing");
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_GATEWAY, "eth0"), -1);
}

TEST_F(InterfacesReaderTest, AnUnknownMethodFailsAllThreeValues) {
    for (const char* text : {"iface eth0 inet manual\naddress 1\n", "", "auto eth0\n",
                             " iface eth0 inet static\naddress 1\n"}) {
        WriteFile(kInterfacesFile, text);
        for (const uint32_t id : {VELK_CMD_IP_ADDRESS, VELK_CMD_NETMASK, VELK_CMD_GATEWAY}) {
            EXPECT_EQ(Execute(VELK_GET, id, "eth0"), -1) << text;
            EXPECT_EQ(Data(response), std::string(512, '\0'));
        }
    }
    unlink(kInterfacesFile);
    for (const uint32_t id : {VELK_CMD_IP_ADDRESS, VELK_CMD_NETMASK, VELK_CMD_GATEWAY}) {
        EXPECT_EQ(Execute(VELK_GET, id, "eth0"), -1);
    }
    EXPECT_THAT(libc().Commands(), IsEmpty());
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

}  // namespace
