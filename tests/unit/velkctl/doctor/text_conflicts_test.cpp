// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Values that velkctl refuses because a set would change the wrong text.
#include <string>

#include "support/device_test.h"
#include "support/paths.h"
#include "velkctl/doctor/set_checks.h"

namespace {

using testkit::kCrontab;
using testkit::kIdentityFile;
using testkit::WriteFile;
using velkctl::FindSetting;
using velkctl::Setting;
using velkctl::WayOut;

constexpr char kEntry[] = "0 * * * * /usr/bin/ntpdate -u 10.0.0.1 > /var/libvelk/ntp.log\n";

class TextConflictTest : public testkit::DeviceTest {
  protected:
    static std::string Problem(const std::string& name, const std::string& value,
                               WayOut way_out = WayOut::kOfSet) {
        const Setting setting = *FindSetting(name);
        velkctl::Data data{};
        (void)value.copy(data.data(), data.size());
        velkctl::Report report(velkctl::Report::Form::kText);
        const auto problem = TextConflict({setting, data}, velkctl::Device({}, report), way_out);
        return problem ? OneLine(*problem) : "";
    }
};

TEST_F(TextConflictTest, AnOrdinaryServerIsNoConflict) {
    WriteFile(kCrontab, kEntry);
    for (const char* server : {"time.example", "10.0.0.9", "python3", ""}) {
        EXPECT_EQ(Problem("ntp-server", server), "") << server;
    }
}

TEST_F(TextConflictTest, AServerThatIsAPartOfTheCommandIsAConflict) {
    WriteFile(kCrontab, std::string("15 3 * * * true\n") + kEntry);
    EXPECT_EQ(Problem("ntp-server", "ntp"),
              "ntp-server: 'ntp' also occurs earlier in /var/cron/tabs/root:2; the next set would "
              "replace it "
              "there, in the command that cron runs; fix: give the server's address or another "
              "name, or --force");
    for (const char* server : {"usr", "bin", "u", "d", "ntpdate"}) {
        EXPECT_NE(Problem("ntp-server", server), "") << server;
    }
}

TEST_F(TextConflictTest, EveryEntryIsChecked) {
    WriteFile(kCrontab, std::string("0 1 * * * ntpdate 10.0.0.1 > /dev/null\n#") + kEntry);
    EXPECT_EQ(Problem("ntp-server", "usr"),
              "ntp-server: 'usr' also occurs earlier in /var/cron/tabs/root:2; the next set would "
              "replace it "
              "there, in the command that cron runs; fix: give the server's address or another "
              "name, or --force");
}

TEST_F(TextConflictTest, APresentServerThatIsAPartOfTheCommandConflictsWithEveryOther) {
    WriteFile(kCrontab, "0 * * * * /usr/bin/ntpdate -u ntp > /var/libvelk/ntp.log\n");
    for (const char* server : {"10.0.0.1", ""}) {
        EXPECT_EQ(Problem("ntp-server", server),
                  "ntp-server: the present server 'ntp' also occurs earlier in "
                  "/var/cron/tabs/root:1; this set "
                  "would replace it there, in the command that cron runs; fix: write another "
                  "server into that line with an editor, or give --force");
    }
}

TEST_F(TextConflictTest, AnEntryWithoutAServerIsCheckedForTheNewOne) {
    WriteFile(kCrontab, "0 * * * * /usr/bin/ntpdate -u  > /var/libvelk/ntp.log\n");
    EXPECT_EQ(Problem("ntp-server", "10.0.0.1"), "");
    EXPECT_NE(Problem("ntp-server", "ntp"), "");
}

TEST_F(TextConflictTest, ACrontabWithoutAPlaceForAServerIsNoConflict) {
    EXPECT_EQ(Problem("ntp-server", "ntp"), "") << "there is no crontab";
    WriteFile(kCrontab, "0 * * * * ntpdate -u\n15 3 * * * true\n");
    EXPECT_EQ(Problem("ntp-server", "ntp"), "") << "the set fails";
}

TEST_F(TextConflictTest, OrdinaryTextsAreNoConflict) {
    WriteFile(kIdentityFile, "ADMINISTRATOR=Alice\nLOCATION=Lab\n");
    EXPECT_EQ(Problem("administrator", "O'Neil & Co"), "");
    EXPECT_EQ(Problem("location", "Room 5, Syslocation and SYSCONTACT"), "");
    EXPECT_EQ(Problem("location", ""), "");
}

TEST_F(TextConflictTest, ATextWithADirectiveIsAConflict) {
    WriteFile(kIdentityFile, "ADMINISTRATOR=Alice\nLOCATION=Lab\n");
    EXPECT_EQ(Problem("administrator", "ask for syslocation at the desk"),
              "administrator: the text contains 'syslocation'; a set of location replaces the line "
              "from there on; its file is /usr/local/share/etc/snmp/snmpd.conf; fix: give other "
              "words, or --force");
    EXPECT_EQ(
        Problem("location", "ask for syslocation at the desk"),
        "location: the text contains 'syslocation'; a set of location replaces the line from there "
        "on; its file is /usr/local/share/etc/snmp/snmpd.conf; fix: give other words, or --force");
    EXPECT_EQ(Problem("location", "mysyscontacts"),
              "location: the text contains 'syscontact'; a set of administrator replaces the line "
              "from there on; its file is /usr/local/share/etc/snmp/snmpd.conf; fix: give other "
              "words, or --force");
}

TEST_F(TextConflictTest, APresentTextThatTheSetWouldCutIsAConflict) {
    WriteFile(kIdentityFile, "ADMINISTRATOR=ask for syslocation\nLOCATION=Lab\n");
    EXPECT_EQ(Problem("location", "Room 5"),
              "location: the present administrator contains 'syslocation'; this set would replace "
              "the line from there on; its file is /usr/local/share/etc/snmp/snmpd.conf; fix: give "
              "--force, or first velkctl set administrator TEXT without that word");
    EXPECT_EQ(Problem("administrator", "Alice"), "") << "it takes the word away";
    WriteFile(kIdentityFile, "ADMINISTRATOR=Alice\nLOCATION=by syscontact\n");
    EXPECT_EQ(Problem("administrator", "Bob"),
              "administrator: the present location contains 'syscontact'; this set would replace "
              "the line from there on; its file is /usr/local/share/etc/snmp/snmpd.conf; fix: give "
              "--force, or first velkctl set location TEXT without that word");
}

TEST_F(TextConflictTest, TwoPresentTextsThatWouldCutEachOtherNeedForce) {
    WriteFile(kIdentityFile, "ADMINISTRATOR=ask for syslocation\nLOCATION=by syscontact\n");
    EXPECT_EQ(Problem("location", "Room 5"),
              "location: the present administrator contains 'syslocation'; this set would replace "
              "the line from there on; its file is /usr/local/share/etc/snmp/snmpd.conf; fix: give "
              "--force, or first velkctl set --force administrator TEXT without that word");
}

// apply has no --force.
TEST_F(TextConflictTest, AConflictOfAnApplyOffersNoForce) {
    const auto fix = [](const std::string& name, const std::string& value) {
        const std::string problem = Problem(name, value, WayOut::kOfApply);
        return problem.substr(problem.find("; fix: "));
    };
    WriteFile(kCrontab, kEntry);
    EXPECT_EQ(fix("ntp-server", "ntp"), "; fix: give the server's address or another name");
    WriteFile(kCrontab, "0 * * * * /usr/bin/ntpdate -u ntp > /var/libvelk/ntp.log\n");
    EXPECT_EQ(fix("ntp-server", "10.0.0.1"),
              "; fix: write another server into that line with an editor");
    WriteFile(kIdentityFile, "ADMINISTRATOR=ask for syslocation\nLOCATION=Lab\n");
    EXPECT_EQ(fix("location", "syscontact"), "; fix: give other words");
    EXPECT_EQ(fix("location", "Room 5"),
              "; fix: first velkctl set administrator TEXT without that word");
}

TEST_F(TextConflictTest, OtherSettingsHaveNoConflicts) {
    WriteFile(kCrontab, kEntry);
    EXPECT_EQ(Problem("eth0.dns", "ntp"), "");
    EXPECT_EQ(Problem("eth1.ssid", "syscontact"), "");
}

}  // namespace
