// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about /etc/dhclient-exit-hooks.
#include <string>
#include <string_view>

#include "support/device_test.h"
#include "velkctl/doctor/checks.h"

namespace {

using velkctl::CheckExitHooks;
using velkctl::FormatFindings;

class HooksCheck : public testkit::DeviceTest {
  protected:
    static std::string Examine(std::string_view text) {
        testkit::WriteFile("/etc/dhclient-exit-hooks", text);
        return FormatFindings(CheckExitHooks());
    }
};

constexpr std::string_view kServices =
    "#/usr/sbin/avahi-autoipd -k\n"
    "/usr/bin/ntpdate -u 10.0.0.1\n"
    "\t/sbin/printdhcpnotice.pl eth0\n"
    "/sbin/printdhcpstart.pl eth0 # at the start\n";

std::string WithServices(std::string_view text) {
    return std::string(text).append(kServices);
}

TEST_F(HooksCheck, SaysNothingAboutServicesOnAndOff) {
    EXPECT_EQ(Examine(kServices), "");
    EXPECT_EQ(Examine(WithServices("if [ \"$interface\" = \"eth0\" ]; then\n:\nelse\n:\nfi\n")),
              "");
}

TEST_F(HooksCheck, FindsServicesThatNoLineRuns) {
    EXPECT_EQ(
        Examine("if [ \"$interface\" = eth0 ]; then\n/usr/sbin/avahi-autoipd -k\nfi\n"),
        "problem: eth1.apipa cannot be switched\n"
        "  /etc/dhclient-exit-hooks: no line that runs for eth1 has /usr/sbin/avahi-autoipd\n"
        "  fix: add the line that runs /usr/sbin/avahi-autoipd, with a '#' before it for off\n"
        "problem: eth0.dhcp-notice cannot be switched\n"
        "  /etc/dhclient-exit-hooks: no line that runs for eth0 has /sbin/printdhcpnotice.pl\n"
        "  fix: add the line that runs /sbin/printdhcpnotice.pl, with a '#' before it for off\n"
        "problem: eth0.dhcp-notice cannot be switched\n"
        "  /etc/dhclient-exit-hooks: no line that runs for eth0 has /sbin/printdhcpstart.pl\n"
        "  fix: add the line that runs /sbin/printdhcpstart.pl, with a '#' before it for off\n"
        "problem: dhcp-ntp cannot be switched\n"
        "  /etc/dhclient-exit-hooks: no line has /usr/bin/ntpdate\n"
        "  fix: add the line that runs /usr/bin/ntpdate, with a '#' before it for off\n");
}

TEST_F(HooksCheck, FindsTwoMarks) {
    EXPECT_EQ(Examine(WithServices("# #/usr/bin/ntpdate -u 10.0.0.2\n")),
              "problem: dhcp-ntp cannot be switched on\n"
              "  /etc/dhclient-exit-hooks:1: there are two '#' before the command\n"
              "  switching on removes only one\n"
              "  fix: leave one '#', in the first column\n");
}

TEST_F(HooksCheck, FindsACommandThatIsShownAsOff) {
    EXPECT_EQ(Examine(WithServices("if [ $interface = eth1 ]; then\n"
                                   "'/usr/sbin/avahi-autoipd' -k\nfi\n")),
              "problem: eth1.apipa is shown as off although it is on\n"
              "  /etc/dhclient-exit-hooks:2: there is no blank before or after the command's name\n"
              "  fix: write /usr/sbin/avahi-autoipd between blanks\n");
}

TEST_F(HooksCheck, FindsNestedBlocks) {
    EXPECT_EQ(Examine(WithServices("if [ \"$interface\" = eth0 ]\nthen\n"
                                   "\tif [ a ]; then\n\t\t:\n\tfi\nfi\n")),
              "problem: apipa and dhcp-notice may be switched for another interface\n"
              "  /etc/dhclient-exit-hooks:3: an 'if' within a block\n"
              "  for the library the block ends at the first 'fi'\n"
              "  fix: write it without an 'if', as in: [ CONDITION ] && COMMAND\n");
    EXPECT_EQ(Examine(WithServices("if [ \"$interface\" = eth0 ]; then\n\t:\n"
                                   "elif [ \"$interface\" = eth1 ]; then\n\t:\nfi\n")),
              "problem: apipa and dhcp-notice may be switched for another interface\n"
              "  /etc/dhclient-exit-hooks:3: an 'elif' within a block\n"
              "  the library takes the lines below it for the branch above\n"
              "  fix: write 'else', or a block of its own for each interface\n");
}

TEST_F(HooksCheck, FindsConditionsThatAreReadOtherwise) {
    EXPECT_EQ(Examine(WithServices("if [ \"$interface\" != eth0 ]; then\n:\nfi\n")),
              "problem: apipa and dhcp-notice would be switched for the wrong interface\n"
              "  /etc/dhclient-exit-hooks:1: the library takes '!=' for '='\n"
              "  fix: compare with '=', and exchange the branches\n");
    EXPECT_EQ(Examine(WithServices("if [ ${interface} = eth0 ]; then\n:\nfi\n")),
              "problem: apipa and dhcp-notice would be switched for every interface\n"
              "  /etc/dhclient-exit-hooks:1: a condition that the library does not see\n"
              "  'if [ ${interface} = eth0 ]; then' depends on the interface\n"
              "  fix: write $interface instead of ${interface}\n");
    EXPECT_EQ(Examine(WithServices("case $interface in\nesac\n")),
              "problem: apipa and dhcp-notice would be switched for every interface\n"
              "  /etc/dhclient-exit-hooks:1: a condition that the library does not see\n"
              "  'case $interface in' depends on the interface\n"
              "  fix: for each interface write: if [ \"$interface\" = \"NAME\" ]; then\n");
}

TEST_F(HooksCheck, FindsABlockWithoutAnEnd) {
    const std::string words =
        Examine(WithServices("if [ \"$interface\" = eth0 ]; then\n:\nfi; true\n"
                             "if [ \"$interface\" = eth0 ]; then :;fi\n"));
    EXPECT_NE(words.find("/etc/dhclient-exit-hooks:4: no line with 'fi' as a word ends the block"),
              std::string::npos)
        << words;
}

}  // namespace
