// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about /sbin/dhclient-script.
#include <string>
#include <string_view>

#include "support/device_test.h"
#include "velkctl/doctor/checks.h"

namespace {

using velkctl::CheckClientScript;
using velkctl::FormatFindings;

class ClientScriptCheck : public testkit::DeviceTest {
  protected:
    static std::string Examine(std::string_view text) {
        testkit::WriteFile("/sbin/dhclient-script", text);
        return FormatFindings(CheckClientScript());
    }
};

TEST_F(ClientScriptCheck, SaysNothingAboutCallsForBothInterfaces) {
    EXPECT_EQ(Examine("make_resolv_conf() {\n:\n}\nif [ \"$interface\" = eth0 ]; then\n"
                      "\tmake_resolv_conf\nelse\n#\tmake_resolv_conf\nfi\n"),
              "");
}

TEST_F(ClientScriptCheck, FindsNoCall) {
    EXPECT_EQ(Examine("make_resolv_conf() {\n:\n}\nif [ \"$interface\" = eth0 ]; then\n"
                      "\tmake_resolv_conf\nfi\n"),
              "problem: eth1.dhcp-dns does not switch the name servers of a lease\n"
              "  /sbin/dhclient-script: no line that runs for eth1 calls make_resolv_conf\n"
              "  fix: add a line with make_resolv_conf alone, with a '#' before it for off\n");
}

TEST_F(ClientScriptCheck, FindsADefinitionThatIsTakenForACall) {
    EXPECT_EQ(Examine("make_resolv_conf () {\n:\n}\nif [ \"$interface\" = eth0 ]; then\n"
                      "\tmake_resolv_conf\nelse\n\tmake_resolv_conf\nfi\n"),
              "problem: eth0.dhcp-dns would break the script\n"
              "  /sbin/dhclient-script:1: the library takes this definition for a call\n"
              "  fix: leave no blank between make_resolv_conf and ()\n"
              "problem: eth1.dhcp-dns would break the script\n"
              "  /sbin/dhclient-script:1: the library takes this definition for a call\n"
              "  fix: leave no blank between make_resolv_conf and ()\n");
}

TEST_F(ClientScriptCheck, FindsTwoMarks) {
    EXPECT_EQ(Examine("if [ \"$interface\" = eth0 ]; then\n##make_resolv_conf\nelse\n"
                      "make_resolv_conf\nfi\n"),
              "problem: eth0.dhcp-dns cannot be switched on\n"
              "  /sbin/dhclient-script:2: there are two '#' before the call\n"
              "  switching on removes only one\n"
              "  fix: leave one '#', in the first column\n");
}

}  // namespace
