// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about /etc/network/interfaces.
#include <string>
#include <string_view>

#include "support/device_test.h"
#include "velkctl/doctor/checks.h"

namespace {

using testkit::WriteFile;
using velkctl::CheckInterfaces;
using velkctl::FormatFindings;

class InterfacesCheck : public testkit::DeviceTest {
  protected:
    static std::string Examine(std::string_view text) {
        testkit::WriteFile("/etc/network/interfaces", text);
        return FormatFindings(CheckInterfaces());
    }
};

constexpr char kEth1Stanza[] =
    "iface eth1 inet static\n\taddress 10.0.0.2\n\tnetmask 255.0.0.0\n\tgateway 10.0.0.1\n";

TEST_F(InterfacesCheck, SaysNothingAboutCompleteStanzas) {
    EXPECT_EQ(Examine("auto lo\niface lo inet loopback\nauto eth0\niface eth0 inet dhcp\n"
                      "\taddress 10.0.0.9\n\tnetmask 255.0.0.0\n\tgateway 10.0.0.1\n" +
                      std::string(kEth1Stanza)),
              "");
}

TEST_F(InterfacesCheck, SaysNothingAboutAFileThatIsNotThere) {
    EXPECT_EQ(FormatFindings(CheckInterfaces()), "");
}

TEST_F(InterfacesCheck, FindsNoStanza) {
    EXPECT_EQ(Examine(kEth1Stanza),
              "problem: eth0.method, eth0.address, eth0.netmask and eth0.gateway can be neither "
              "read nor set\n"
              "  /etc/network/interfaces: there is no stanza\n"
              "  no line begins with 'iface eth0 inet static' or '... dhcp'\n"
              "  fix: add \"iface eth0 inet static\", and below it address, netmask and gateway\n");
}

TEST_F(InterfacesCheck, FindsHeadersThatAreNotRecognised) {
    const std::string fix = "  fix: instead of line 1 write \"iface eth0 inet dhcp\"\n";
    for (const std::string header :
         {" iface eth0 inet dhcp", "iface  eth0 inet dhcp", "iface eth0\tinet dhcp"}) {
        const std::string shown = header.front() == ' ' ? header.substr(1) : header;
        const std::string tab = "iface eth0\\x09inet dhcp";
        EXPECT_EQ(Examine(header + "\n" + kEth1Stanza),
                  "problem: eth0.method, eth0.address, eth0.netmask and eth0.gateway are not found "
                  "in a stanza\n"
                  "  /etc/network/interfaces:1: the library does not recognise the header\n"
                  "  it is '" +
                      (header.find('\t') == std::string::npos ? shown : tab) + "'\n" + fix);
    }
}

TEST_F(InterfacesCheck, FindsAnotherMethod) {
    EXPECT_EQ(Examine("iface eth0 inet manual\n" + std::string(kEth1Stanza)),
              "problem: eth0.method, eth0.address, eth0.netmask and eth0.gateway cannot be read\n"
              "  /etc/network/interfaces:1: 'manual' is neither static nor dhcp\n"
              "  fix: choose a method: velkctl set eth0.method static\n");
}

TEST_F(InterfacesCheck, FindsTheLinesThatALastStanzaCannotGain) {
    EXPECT_EQ(Examine("iface eth0 inet dhcp\niface eth1 inet static\n\tnetmask 255.0.0.0"),
              "problem: eth1.address and eth1.gateway cannot be set\n"
              "  /etc/network/interfaces:2: the last stanza lacks address and gateway\n"
              "  fix: below line 2 add \"address ADDRESS\", \"gateway GATEWAY\"\n");
}

TEST_F(InterfacesCheck, WarnsOfTheLinesThatAnInterfaceOnDhcpDoesNotNeedYet) {
    EXPECT_EQ(Examine("iface eth0 inet dhcp\niface eth1 inet dhcp\n"),
              "warning: eth1.address, eth1.netmask and eth1.gateway cannot be set\n"
              "  /etc/network/interfaces:2: the last stanza lacks address, netmask and gateway\n"
              "  fix: below line 2 add \"address ADDRESS\", \"netmask NETMASK\", \"gateway "
              "GATEWAY\"\n");
}

TEST_F(InterfacesCheck, NamesTheGivenValueInTheFixForASet) {
    WriteFile("/etc/network/interfaces", "iface eth1 inet dhcp\n");
    const std::string start =
        "problem: eth1.gateway cannot be set\n"
        "  /etc/network/interfaces:1: the stanza is the last one and has no gateway line\n"
        "  fix: below line 1 add ";
    const velkctl::Setting gateway = velkctl::FindSetting("eth1.gateway").value();
    EXPECT_EQ(FormatFindings(CheckInterfacesFor(gateway, "10.0.0.1")),
              start + "\"gateway 10.0.0.1\"\n");
    EXPECT_EQ(FormatFindings(CheckInterfacesFor(gateway, "")), start + "\"gateway GATEWAY\"\n");
    WriteFile("/etc/network/interfaces", "iface eth1 inet dhcp\n\tgateway\t10.0.0.2\n");
    const std::string text = FormatFindings(CheckInterfacesFor(gateway, "10.0.0.1"));
    EXPECT_NE(text.find("  fix: instead of line 2 write \"gateway 10.0.0.1\"\n"), std::string::npos)
        << text;
}

TEST_F(InterfacesCheck, ExaminesNoLinesForTheMethod) {
    WriteFile("/etc/network/interfaces", "iface eth1 inet dhcp\n");
    EXPECT_EQ(FormatFindings(CheckInterfacesFor(velkctl::FindSetting("eth1.method").value(), "")),
              "");
}

TEST_F(InterfacesCheck, KeepsTheMethodOfAHeaderInItsFix) {
    const auto fix_of = [](const std::string& header) {
        const std::string text = Examine(header + "\n" + kEth1Stanza);
        return text.substr(text.find("  fix: "));
    };
    EXPECT_EQ(fix_of("iface  eth0 inet dhcp"),
              "  fix: instead of line 1 write \"iface eth0 inet dhcp\"\n");
    EXPECT_EQ(fix_of("iface  eth0 inet static"),
              "  fix: instead of line 1 write \"iface eth0 inet static\"\n");
    EXPECT_EQ(fix_of("iface  eth0 inet"),
              "  fix: instead of line 1 write \"iface eth0 inet static\"\n");
}

TEST_F(InterfacesCheck, FindsASecondStanza) {
    EXPECT_EQ(Examine("iface eth0 inet dhcp\niface eth0 inet static\n" + std::string(kEth1Stanza)),
              "warning: eth0.method, eth0.address, eth0.netmask and eth0.gateway are not read from "
              "a second stanza\n"
              "  /etc/network/interfaces:2: only the one on line 1 counts\n"
              "  fix: move the lines that are needed below line 1, and remove the rest\n");
}

TEST_F(InterfacesCheck, FindsALineThatIsTakenForTheOneWithTheValue) {
    EXPECT_EQ(Examine("iface eth0 inet static\n\thwaddress ether 02:00:00:00:00:01\n\taddress "
                      "10.0.0.1\n\t# the gateway is not set\n" +
                      std::string(kEth1Stanza)),
              "problem: eth0.address is read and set in the wrong line\n"
              "  /etc/network/interfaces:2: the library takes this line for the address line\n"
              "  'hwaddress ether 02:00:00:00:00:01' contains 'address '\n"
              "  fix: move it below line 3\n"
              "problem: eth0.gateway is read and set in the wrong line\n"
              "  /etc/network/interfaces:4: the library takes this line for the gateway line\n"
              "  '# the gateway is not set' contains 'gateway '\n"
              "  fix: remove the word 'gateway' from the comment\n");
    const std::string without_address = Examine(
        "iface eth0 inet static\n\thwaddress ether 02:00:00:00:00:01\n" + std::string(kEth1Stanza));
    EXPECT_NE(without_address.find("  fix: above line 2 add \"address ADDRESS\"\n"),
              std::string::npos)
        << without_address;
}

TEST_F(InterfacesCheck, FindsATabAfterAWord) {
    EXPECT_EQ(Examine("iface eth0 inet static\naddress\t10.0.0.1\n" + std::string(kEth1Stanza)),
              "problem: eth0.address cannot be read, and a set adds a second address line\n"
              "  /etc/network/interfaces:2: no blank follows the word 'address'\n"
              "  fix: instead of line 2 write \"address 10.0.0.1\"\n");
    EXPECT_EQ(Examine("iface eth0 inet dhcp\niface eth1 inet static\n\taddress\t10.0.0.1\n"
                      "\tnetmask 255.0.0.0\n\tgateway 10.0.0.1\n"),
              "problem: eth1.address can be neither read nor set\n"
              "  /etc/network/interfaces:3: no blank follows the word 'address'\n"
              "  fix: instead of line 3 write \"address 10.0.0.1\"\n");
}

TEST_F(InterfacesCheck, FindsWhiteSpaceAroundAValue) {
    EXPECT_EQ(Examine("iface eth0 inet static\n\taddress  10.0.0.1\r\n" + std::string(kEth1Stanza)),
              "warning: eth0.address is read with white space around it\n"
              "  /etc/network/interfaces:2: there is more than one blank around the value\n"
              "  fix: instead of line 2 write \"address 10.0.0.1\"\n");
}

TEST_F(InterfacesCheck, DoesNotTakeACarriageReturnAsABlank) {
    EXPECT_EQ(
        Examine("iface eth0 inet static\r\n\taddress 10.0.0.1\r\n" + std::string(kEth1Stanza)), "");
}

TEST_F(InterfacesCheck, FindsAGatewayThatOutlivesTheFirst) {
    EXPECT_EQ(Examine("iface eth0 inet static\n\tgateway 10.0.0.1\n\tgateway 10.0.0.2\n" +
                      std::string(kEth1Stanza)),
              "warning: eth0.gateway cannot be set to none in one set\n"
              "  /etc/network/interfaces:3: a set removes line 2 alone\n"
              "  'gateway 10.0.0.2' still applies\n"
              "  fix: remove 'gateway 10.0.0.2'\n");
}

TEST_F(InterfacesCheck, FindsWhereANewLineWouldLeaveTheStanza) {
    EXPECT_EQ(
        Examine("iface eth0 inet static\n\taddress 10.0.0.1\n\tnetmask 255.0.0.0\nauto eth1\n" +
                std::string(kEth1Stanza)),
        "warning: eth0.gateway would be set in the wrong place\n"
        "  /etc/network/interfaces:1: the stanza has no gateway line\n"
        "  a new one would be below 'auto eth1', outside the stanza\n"
        "  fix: below line 1 add \"gateway GATEWAY\"\n");
}

TEST_F(InterfacesCheck, FindsALineThatHasLeftTheStanza) {
    EXPECT_EQ(
        Examine("iface eth0 inet static\n\taddress 10.0.0.1\n\tnetmask 255.0.0.0\n"
                "allow-hotplug eth1\n\tgateway 10.0.0.254\n" +
                std::string(kEth1Stanza)),
        "problem: eth0.gateway does not reach the interface\n"
        "  /etc/network/interfaces:5: the line is below 'allow-hotplug eth1', outside the stanza\n"
        "  fix: move it up, below line 1\n");
}

TEST_F(InterfacesCheck, ShowsControlCharactersAsText) {
    const std::string words = Examine("iface eth0 inet \x1b[2Jmanual\n" + std::string(kEth1Stanza));
    EXPECT_NE(words.find("'\\x1b[2Jmanual' is neither"), std::string::npos) << words;
}

}  // namespace
