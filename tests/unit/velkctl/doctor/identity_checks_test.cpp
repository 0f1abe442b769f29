// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The doctor's findings about administrator and location.
#include <cerrno>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/doctor/checks.h"

namespace {

using testing::HasSubstr;
using testkit::WriteFile;
using velkctl::FormatFindings;

class IdentityCheck : public testkit::DeviceTest {};

TEST_F(IdentityCheck, FindsDirectivesThatTheSnmpAgentsFileLacks) {
    constexpr auto& kSnmp = testkit::kSnmpFile;
    WriteFile(kSnmp, "syscontact a\nsyslocation b\n");
    EXPECT_EQ(FormatFindings(velkctl::CheckIdentity()), "");
    WriteFile(kSnmp, "sysContact a\n# syslocation b\n");
    EXPECT_EQ(
        FormatFindings(velkctl::CheckIdentity()),
        "problem: administrator does not reach the SNMP agent\n"
        "  /usr/local/share/etc/snmp/snmpd.conf:1: 'sysContact a' is not written in small letters\n"
        "  fix: write syscontact\n"
        "problem: location does not reach the SNMP agent\n"
        "  /usr/local/share/etc/snmp/snmpd.conf: no line has the directive syslocation\n"
        "  fix: add a line \"syslocation unknown\"\n");
}

TEST_F(IdentityCheck, FindsATextThatASetOfTheOtherOneCuts) {
    using testkit::kIdentityFile;
    WriteFile(kIdentityFile, "ADMINISTRATOR=syscontact a\nLOCATION=syslocation b\n");
    EXPECT_EQ(FormatFindings(velkctl::CheckIdentity()), "");
    WriteFile(kIdentityFile, "ADMINISTRATOR=see syslocation\nLOCATION=by syscontact\n");
    EXPECT_EQ(FormatFindings(velkctl::CheckIdentity()),
              "problem: administrator is cut for the SNMP agent when location is set\n"
              "  /var/libvelk/libvelk: the text contains 'syslocation'\n"
              "  a set of location replaces the line from there on\n"
              "  fix: velkctl set administrator TEXT, where TEXT does not contain 'syslocation'\n"
              "problem: location is cut for the SNMP agent when administrator is set\n"
              "  /var/libvelk/libvelk: the text contains 'syscontact'\n"
              "  a set of administrator replaces the line from there on\n"
              "  fix: velkctl set location TEXT, where TEXT does not contain 'syscontact'\n");
    EXPECT_TRUE(libc().Logs().empty());
    ASSERT_EQ(unlink(kIdentityFile), 0);
    EXPECT_EQ(FormatFindings(velkctl::CheckIdentity()), "");
    EXPECT_TRUE(libc().Logs().empty());
}

// A get of the library would log that, and wait while nobody reads the system log.
TEST_F(IdentityCheck, LogsNothingOfATextThatIsGoneInTheMiddle) {
    WriteFile("/usr/local/share/etc/snmp/snmpd.conf", "syscontact a\nsyslocation b\n");
    WriteFile("/var/libvelk/libvelk", "ADMINISTRATOR=see syslocation\n");
    libc().Script(testkit::Call::kOpen, {testkit::Pass(), testkit::Pass(), testkit::Fail(ENOENT)});
    EXPECT_THAT(FormatFindings(velkctl::CheckIdentity()),
                HasSubstr("the text contains 'syslocation'"));
    EXPECT_TRUE(libc().Logs().empty());
}

// As the library reads it: 511 bytes of the first line of a setting.
TEST_F(IdentityCheck, LooksOnlyAtTheTextThatIsRead) {
    const std::string filler(511 - std::string_view("syslocation").size(), 'a');
    WriteFile("/var/libvelk/libvelk", "ADMINISTRATOR=" + filler + "asyslocation\n");
    EXPECT_EQ(FormatFindings(velkctl::CheckIdentity()), "");
    WriteFile("/var/libvelk/libvelk", "ADMINISTRATOR=a\nADMINISTRATOR=syslocation\n");
    EXPECT_EQ(FormatFindings(velkctl::CheckIdentity()), "");
    WriteFile("/var/libvelk/libvelk", "ADMINISTRATOR=" + filler + "syslocation\n");
    EXPECT_THAT(FormatFindings(velkctl::CheckIdentity()),
                HasSubstr("the text contains 'syslocation'"));
}

}  // namespace
