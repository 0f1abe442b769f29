// Values that velkctl refuses because a set would change the wrong text.
#include "velkctl/call/text_conflicts.h"

#include <string>

#include "support/device_test.h"

namespace {

using testkit::WriteFile;
using velkctl::Catalogue;
using velkctl::FindSetting;
using velkctl::Setting;

constexpr char kCrontab[] = "/var/cron/tabs/root";
constexpr char kEntry[] = "0 * * * * /usr/bin/ntpdate -u 10.0.0.1 > /var/libvelk/ntp.log\n";
constexpr char kIdentityFile[] = "/var/libvelk/libvelk";

class TextConflictTest : public testkit::DeviceTest {
  protected:
    static std::string Problem(const std::string& name, const std::string& value) {
        const Setting setting = *FindSetting(name);
        velkctl::Data data{};
        (void)value.copy(data.data(), data.size());
        velkctl::Report report(velkctl::Report::Form::kText);
        return TextConflict(setting, data, velkctl::Device({}, report));
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
              "'ntp' occurs earlier on the line /var/cron/tabs/root:2, too, where the next set "
              "would replace it, in the command that cron runs; give the server's address or "
              "another name, or --force");
    for (const char* server : {"usr", "bin", "u", "d", "ntpdate"}) {
        EXPECT_NE(Problem("ntp-server", server), "") << server;
    }
}

TEST_F(TextConflictTest, EveryEntryIsChecked) {
    WriteFile(kCrontab, std::string("0 1 * * * ntpdate 10.0.0.1 > /dev/null\n#") + kEntry);
    EXPECT_EQ(Problem("ntp-server", "usr"),
              "'usr' occurs earlier on the line /var/cron/tabs/root:2, too, where the next set "
              "would replace it, in the command that cron runs; give the server's address or "
              "another name, or --force");
}

TEST_F(TextConflictTest, APresentServerThatIsAPartOfTheCommandConflictsWithEveryOther) {
    WriteFile(kCrontab, "0 * * * * /usr/bin/ntpdate -u ntp > /var/libvelk/ntp.log\n");
    for (const char* server : {"10.0.0.1", ""}) {
        EXPECT_EQ(Problem("ntp-server", server),
                  "the present server 'ntp' occurs earlier on the line /var/cron/tabs/root:1, too, "
                  "where this set would replace it, in the command that cron runs; fix: write "
                  "another server into that line with an editor, or give --force");
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
              "the text holds 'syslocation', from which on a set of location would replace it in "
              "/usr/local/share/etc/snmp/snmpd.conf; give other words, or --force");
    EXPECT_EQ(Problem("location", "ask for syslocation at the desk"),
              "the text holds 'syslocation', from which on a set of location would replace it in "
              "/usr/local/share/etc/snmp/snmpd.conf; give other words, or --force");
    EXPECT_EQ(Problem("location", "mysyscontacts"),
              "the text holds 'syscontact', from which on a set of administrator would replace it "
              "in /usr/local/share/etc/snmp/snmpd.conf; give other words, or --force");
}

TEST_F(TextConflictTest, APresentTextThatTheSetWouldCutIsAConflict) {
    WriteFile(kIdentityFile, "ADMINISTRATOR=ask for syslocation\nLOCATION=Lab\n");
    EXPECT_EQ(Problem("location", "Room 5"),
              "the present administrator holds 'syslocation', from which on this set would replace "
              "it in /usr/local/share/etc/snmp/snmpd.conf; fix: velkctl set administrator TEXT "
              "first, without that word, or give --force");
    EXPECT_EQ(Problem("administrator", "Alice"), "") << "it takes the word away";
    WriteFile(kIdentityFile, "ADMINISTRATOR=Alice\nLOCATION=by syscontact\n");
    EXPECT_EQ(Problem("administrator", "Bob"),
              "the present location holds 'syscontact', from which on this set would replace it in "
              "/usr/local/share/etc/snmp/snmpd.conf; fix: velkctl set location TEXT first, "
              "without that word, or give --force");
}

TEST_F(TextConflictTest, TwoPresentTextsThatWouldCutEachOtherNeedForce) {
    WriteFile(kIdentityFile, "ADMINISTRATOR=ask for syslocation\nLOCATION=by syscontact\n");
    EXPECT_EQ(Problem("location", "Room 5"),
              "the present administrator holds 'syslocation', from which on this set would replace "
              "it in /usr/local/share/etc/snmp/snmpd.conf; fix: velkctl set --force administrator "
              "TEXT first, without that word, or give --force");
}

TEST_F(TextConflictTest, OtherSettingsHaveNoConflicts) {
    WriteFile(kCrontab, kEntry);
    EXPECT_EQ(Problem("eth0.dns", "ntp"), "");
    EXPECT_EQ(Problem("eth1.ssid", "syscontact"), "");
}

}  // namespace
