// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about /etc/dhclient.conf.
#include <string>
#include <string_view>

#include "support/device_test.h"
#include "velkctl/doctor/checks.h"

namespace {

using velkctl::CheckDhcpConfig;
using velkctl::FormatFindings;

class DhcpCheck : public testkit::DeviceTest {
  protected:
    static std::string Examine(std::string_view text) {
        testkit::WriteFile("/etc/dhclient.conf", text);
        return FormatFindings(CheckDhcpConfig());
    }
};

constexpr char kEth0Block[] = "interface \"eth0\" {\n\trequest routers, ntp-servers;\n}\n";
constexpr char kEth1Block[] = "interface \"eth1\"\n{\n\trequest routers,\n\t\tntp-servers;\n}\n";

TEST_F(DhcpCheck, SaysNothingAboutABlockForEachInterface) {
    EXPECT_EQ(Examine("# options\ntimeout 10;\n" + std::string(kEth0Block) + kEth1Block), "");
}

TEST_F(DhcpCheck, FindsNoBlockAndNoRequest) {
    EXPECT_EQ(Examine(kEth0Block),
              "warning: eth1.method switches nothing here\n"
              "  /etc/dhclient.conf: there is no block of the interface\n"
              "  fix: add: \"interface \"eth1\" {\", its statements, \"}\", each on its own line\n"
              "problem: eth1.dhcp-dns cannot be set\n"
              "  /etc/dhclient.conf: no request statement applies to eth1\n"
              "  fix: add one: request subnet-mask, broadcast-address, routers;\n");
}

TEST_F(DhcpCheck, TakesARequestOutsideTheBlocksForAll) {
    EXPECT_EQ(Examine("request routers;\ninterface \"eth0\" {\n}\ninterface \"eth1\" {\n}\n"), "");
}

TEST_F(DhcpCheck, FindsABlockThatIsSwitchedOff) {
    EXPECT_EQ(
        Examine("#interface \"eth0\" {\n#\trequest routers;\n#\n#}\n" + std::string(kEth1Block)),
        "note: eth0.dhcp-dns cannot be set while the method is static\n"
        "  /etc/dhclient.conf:1: the block of the interface is switched off\n"
        "  no other request statement applies\n"
        "  fix: if DHCP is wanted: velkctl set eth0.method dhcp\n");
}

TEST_F(DhcpCheck, FindsARequestWithoutAnEnd) {
    EXPECT_EQ(Examine("interface \"eth0\" {\n\trequest routers\n}\n" + std::string(kEth1Block)),
              "problem: eth0.dhcp-dns is switched in the wrong statement\n"
              "  /etc/dhclient.conf:2: no ';' ends this request statement\n"
              "  fix: write one after its last option\n"
              "problem: dhcp-ntp is switched in the wrong statement\n"
              "  /etc/dhclient.conf:2: no ';' ends this request statement\n"
              "  fix: write one after its last option\n");
}

TEST_F(DhcpCheck, FindsAStatementThatWouldGainTheOption) {
    EXPECT_EQ(Examine("interface \"eth0\" {\n\trequest ntp-servers;\n\tsend host-name \"x\";\n}\n" +
                      std::string(kEth1Block)),
              "problem: dhcp-ntp would break the file when set to on once more\n"
              "  /etc/dhclient.conf:3: ntp-servers is also added to 'send host-name \"x\";'\n"
              "  the request statement above has it already\n"
              "  fix: move the request statement below it\n");
}

TEST_F(DhcpCheck, FindsRemarksThatSwitchingOnWouldBringToLife) {
    EXPECT_EQ(Examine("interface \"eth0\" {\n\t# all of it\n\trequest routers; # and more\n}\n" +
                      std::string(kEth1Block)),
              "problem: eth0.method would break the file when set to dhcp\n"
              "  /etc/dhclient.conf:2: the '#' of '# all of it' is removed\n"
              "  fix: put the comment above the block\n"
              "problem: eth0.method would break the file when set to dhcp\n"
              "  /etc/dhclient.conf:3: the '#' of the comment in 'request routers; # and more' is "
              "removed\n"
              "  fix: put the comment above the block\n");
    EXPECT_EQ(Examine("request routers;\n#interface \"eth0\" {\n# all of it\n#}\n" +
                      std::string(kEth1Block)),
              "warning: eth0.method may break the file when set to dhcp\n"
              "  /etc/dhclient.conf:3: the '#' of '# all of it' is removed\n"
              "  it looks like a comment\n"
              "  fix: put the comment above the block\n");
}

TEST_F(DhcpCheck, FindsAnOpeningLineThatIsNotRecognised) {
    EXPECT_EQ(Examine("request routers;\ninterface\"eth0\" {\n\tsend host-name \"x\";\n}\n" +
                      std::string(kEth1Block)),
              "problem: eth0.method also switches a line outside its block\n"
              "  /etc/dhclient.conf:4: a '}' is outside the blocks of interfaces\n"
              "  fix: move these braces into a file of their own, and include it here\n"
              "problem: eth0.method does not switch the interface's block\n"
              "  /etc/dhclient.conf:2: the library does not recognise the opening line\n"
              "  it is 'interface\"eth0\" {'\n"
              "  fix: write: interface \"eth0\" {\n"
              "problem: eth1.method also switches a line outside its block\n"
              "  /etc/dhclient.conf:4: a '}' is outside the blocks of interfaces\n"
              "  fix: move these braces into a file of their own, and include it here\n");
}

TEST_F(DhcpCheck, FindsARemarkThatIsTakenForABlock) {
    EXPECT_EQ(
        Examine("# for every interface\n" + std::string(kEth0Block) + kEth1Block),
        "problem: method, dhcp-dns and dhcp-ntp are not found, or switched for the wrong lines\n"
        "  /etc/dhclient.conf:1: the library takes a comment for the start of a block\n"
        "  it is '# for every interface'\n"
        "  fix: remove the word 'interface' from the comment\n");
}

TEST_F(DhcpCheck, FindsBlocksThatDoNotEndWhereTheySeemTo) {
    EXPECT_EQ(Examine("interface \"eth0\" { request routers; }\n" + std::string(kEth1Block)),
              "problem: method, dhcp-dns and dhcp-ntp are switched for the wrong lines\n"
              "  /etc/dhclient.conf:1: the block ends on its first line\n"
              "  all lines up to the next '}' count as its own\n"
              "  fix: write the closing brace on a line of its own\n");
    EXPECT_EQ(Examine("interface \"eth0\" {\n\trequest routers;}\n"),
              "problem: method, dhcp-dns and dhcp-ntp are switched for the wrong lines\n"
              "  /etc/dhclient.conf:1: no line with '}' as a word ends the block\n"
              "  fix: write the closing brace on a line of its own\n");
}

}  // namespace
