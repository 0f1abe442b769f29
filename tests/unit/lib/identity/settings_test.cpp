// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iterator>
#include <string>

#include <gmock/gmock.h>
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
using testkit::kIdentityCopy;
using testkit::kIdentityFile;
using testkit::kSnmpFile;
using testkit::MakeRequest;
using testkit::ReadFile;
using testkit::Return;
using testkit::WriteFile;

constexpr char kText[] = "ADMINISTRATOR=Bob\nLOCATION=Lab\n";

constexpr char kCopyLine[] = "cat /var/tmp/libvelk > /var/libvelk/libvelk";
constexpr char kRemoveLine[] = "rm /var/tmp/libvelk";
constexpr char kRestartLine[] = "sudo /etc/init.d/snmpd restart > /dev/null 2>&1";

constexpr uint32_t kAdministrator = VELK_CMD_ADMINISTRATOR;
constexpr uint32_t kLocation = VELK_CMD_LOCATION;

class SettingsTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        rmdir(kIdentityCopy);  // left by the tests with a folder in the copy's place
        DeviceTest::TearDown();
    }
    static std::string Got(uint32_t id, std::string_view file) {
        WriteFile(kIdentityFile, file);
        char out[VELK_DATA_SIZE] = "";
        EXPECT_EQ(GetSettingFile(MakeRequest(VELK_GET, id, ""), out), 0);
        return out;
    }
    static int Set(uint32_t id, std::string_view value) {
        return SetSettingFile(MakeRequest(VELK_SET, id, "", value), nullptr);
    }
    static std::string WithValue(uint32_t id, std::string_view value, std::string_view file) {
        WriteFile(kIdentityFile, file);
        EXPECT_EQ(Set(id, value), 0);
        EXPECT_FALSE(Exists(kIdentityCopy));
        return ReadFile(kIdentityFile);
    }
    // The line that hands a value on to the SNMP daemon.
    std::string SnmpLine(uint32_t id, std::string_view value) {
        WriteFile(kIdentityFile, kText);
        const size_t earlier = libc().Commands().size();
        EXPECT_EQ(Set(id, value), 0);
        const std::vector<std::string> commands = libc().Commands();
        EXPECT_EQ(commands.size(), earlier + 4);
        EXPECT_EQ(commands.at(earlier), kCopyLine);
        EXPECT_EQ(commands.at(earlier + 1), kRemoveLine);
        EXPECT_EQ(commands.at(earlier + 3), kRestartLine);
        return commands.at(earlier + 2);
    }
    testkit::FakeShell shell;
};

// ---- reading

TEST_F(SettingsTest, EachIdReadsItsSetting) {
    EXPECT_EQ(Got(kAdministrator, kText), "Bob");
    EXPECT_EQ(Got(kLocation, kText), "Lab");
    EXPECT_EQ(Got(kLocation, "LOCATION=Lab"), "Lab") << "also without its newline";
}

TEST_F(SettingsTest, TheValueIsTheRestOfTheLineAsItIs) {
    EXPECT_EQ(Got(kAdministrator, "ADMINISTRATOR= a = b # c \\' \t\n"), " a = b # c \\' \t");
    EXPECT_EQ(Got(kAdministrator, "ADMINISTRATOR=ADMINISTRATOR=x\n"), "ADMINISTRATOR=x");
    EXPECT_EQ(Got(kAdministrator, "ADMINISTRATOR=x\r\n"), "x\r");
    EXPECT_EQ(Got(kAdministrator, "ADMINISTRATOR=\n"), "");
    EXPECT_EQ(Got(kAdministrator, "ADMINISTRATOR=\xc3\xa4\xff\n"), "\xc3\xa4\xff");
}

TEST_F(SettingsTest, TheKeyMustBeginTheLine) {
    EXPECT_EQ(Got(kLocation, " LOCATION=x\nMYLOCATION=x\n#LOCATION=x\n"), "");
    EXPECT_EQ(Got(kLocation, "location=x\nLOCATION =x\nLOCATION\nLOCATIO=x\n"), "");
    EXPECT_EQ(Got(kLocation, "ADMINISTRATOR=LOCATION=x\nLOCATION=y\n"), "y");
}

TEST_F(SettingsTest, TheFirstLineOfTheKeyCounts) {
    EXPECT_EQ(Got(kAdministrator, "ADMINISTRATOR=one\nADMINISTRATOR=two\n"), "one");
    EXPECT_EQ(Got(kAdministrator, "ADMINISTRATOR=\nADMINISTRATOR=two\n"), "");
}

TEST_F(SettingsTest, WithoutALineNothingIsWritten) {
    WriteFile(kIdentityFile, "LOCATION=Lab\n");
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetSettingFile(MakeRequest(VELK_GET, kAdministrator, ""), out), 0);
    EXPECT_STREQ(out, "unchanged");
    EXPECT_EQ(Execute(VELK_GET, kAdministrator, ""), 0);
    EXPECT_EQ(testkit::Data(response), std::string(512, '\0'));
    WriteFile(kIdentityFile, "");
    EXPECT_EQ(Execute(VELK_GET, kAdministrator, ""), 0);
    EXPECT_EQ(testkit::Data(response), std::string(512, '\0'));
}

TEST_F(SettingsTest, AValueIsCutToTheDataArea) {
    EXPECT_EQ(Got(kLocation, "LOCATION=" + std::string(511, 'x')), std::string(511, 'x'));
    WriteFile(kIdentityFile, "LOCATION=" + std::string(100000, 'x') + "\n");
    char out[VELK_DATA_SIZE + 8];
    std::fill(std::begin(out), std::end(out), '?');
    EXPECT_EQ(GetSettingFile(MakeRequest(VELK_GET, kLocation, ""), out), 0);
    EXPECT_EQ(std::string(out, sizeof(out)), std::string(511, 'x') + '\0' + "????????");
}

TEST_F(SettingsTest, AValueIsWrittenWithItsNulAndNoMore) {
    WriteFile(kIdentityFile, "LOCATION=abc\n");
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetSettingFile(MakeRequest(VELK_GET, kLocation, ""), out), 0);
    EXPECT_EQ(std::string(out, 9), std::string("abc\0anged", 9));
}

TEST_F(SettingsTest, AGetReadsTheFileOnceAndRunsNothing) {
    WriteFile(kIdentityFile, kText);
    EXPECT_EQ(Execute(VELK_GET, kLocation, ""), 0);
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kIdentityFile));
    EXPECT_THAT(libc().Events(Call::kRead), testing::SizeIs(1));
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(SettingsTest, ANullOutputIsRefusedBeforeAnythingElse) {
    WriteFile(kIdentityFile, kText);
    for (const uint32_t id : {2U, 3U, 4U}) {
        EXPECT_EQ(GetSettingFile(MakeRequest(VELK_GET, id, ""), nullptr), -4) << id;
    }
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(SettingsTest, OtherIdsAreRefusedByTheGetterWithALogLine) {
    WriteFile(kIdentityFile, kText);
    char out[VELK_DATA_SIZE] = "unchanged";
    for (const uint32_t id : {0U, 1U, 4U, 103U, 0x10002U}) {
        EXPECT_EQ(GetSettingFile(MakeRequest(VELK_GET, id, ""), out), -4) << id;
    }
    EXPECT_STREQ(out, "unchanged");
    EXPECT_THAT(
        libc().Story(),
        ElementsAre("log LIB_VELK_INVALID_PARAMETER = 0", "log LIB_VELK_INVALID_PARAMETER = 1",
                    "log LIB_VELK_INVALID_PARAMETER = 4", "log LIB_VELK_INVALID_PARAMETER = 103",
                    "log LIB_VELK_INVALID_PARAMETER = 65538"));
    EXPECT_EQ(libc().Events(Call::kSyslog).at(0).number, 5);
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
}

TEST_F(SettingsTest, AMissingFileIsAFailureOfTheGetterWithALogLine) {
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetSettingFile(MakeRequest(VELK_GET, kLocation, ""), out), -1);
    EXPECT_STREQ(out, "unchanged");
    libc().Script(Call::kOpen, {Fail(EACCES)});
    EXPECT_EQ(GetSettingFile(MakeRequest(VELK_GET, kAdministrator, ""), out), -1);
    EXPECT_THAT(libc().Story(),
                ElementsAre("log GetSettingFile ifstream errno=2:No such file or directory",
                            "log GetSettingFile ifstream errno=13:Permission denied"));
    EXPECT_EQ(libc().Events(Call::kSyslog).at(0).number, 5);
}

// ---- writing the file

TEST_F(SettingsTest, EachIdWritesItsLine) {
    EXPECT_EQ(WithValue(kAdministrator, "Alice", kText), "ADMINISTRATOR=Alice\nLOCATION=Lab\n");
    EXPECT_EQ(WithValue(kLocation, "Attic", kText), "ADMINISTRATOR=Bob\nLOCATION=Attic\n");
    EXPECT_EQ(WithValue(kLocation, "Attic", "ADMINISTRATOR=Bob"),
              "ADMINISTRATOR=Bob\nLOCATION=Attic\n");
    EXPECT_EQ(WithValue(kLocation, "", kText), "ADMINISTRATOR=Bob\nLOCATION=\n");
}

TEST_F(SettingsTest, TheValueEndsAtItsNulOrWithTheDataArea) {
    EXPECT_EQ(WithValue(kLocation, std::string_view("ab\0cd", 5), ""), "LOCATION=ab\n");
    EXPECT_EQ(WithValue(kLocation, std::string(512, 'q'), ""),
              "LOCATION=" + std::string(512, 'q') + "\n");
}

TEST_F(SettingsTest, ASetValueIsReadBackUnchanged) {
    const std::string value = R"( O'Neil & "Co"\IT/%s%n$(x)`y` )";
    WriteFile(kIdentityFile, kText);
    EXPECT_EQ(Execute(VELK_SET, kAdministrator, "", value), 0);
    EXPECT_EQ(Execute(VELK_GET, kAdministrator, ""), 0);
    EXPECT_EQ(std::string(response.data), value);
    EXPECT_EQ(Execute(VELK_GET, kLocation, ""), 0);
    EXPECT_EQ(std::string(response.data), "Lab");
}

TEST_F(SettingsTest, TheInterfaceIsIgnored) {
    WriteFile(kIdentityFile, kText);
    for (const uint32_t id : {kAdministrator, kLocation}) {
        for (const char* interface : {"eth0", "eth1"}) {
            EXPECT_EQ(Execute(VELK_GET, id, interface), -4);
            EXPECT_EQ(Execute(VELK_SET, id, interface, "x"), -4);
        }
    }
    EXPECT_EQ(ReadFile(kIdentityFile), kText);
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(SettingsTest, OtherIdsAreRefusedByTheSetterWithoutALogLine) {
    WriteFile(kIdentityFile, kText);
    for (const uint32_t id : {0U, 1U, 4U, 103U, 0x10002U}) {
        EXPECT_EQ(Set(id, "x"), -4) << id;
    }
    EXPECT_EQ(ReadFile(kIdentityFile), kText);
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(SettingsTest, AMissingFileIsAFailureThatLeavesAnEmptyCopy) {
    WriteFile(kIdentityCopy, "of another edit");
    EXPECT_EQ(Set(kLocation, "x"), -1);
    EXPECT_FALSE(Exists(kIdentityFile));
    EXPECT_EQ(ReadFile(kIdentityCopy), "");
    EXPECT_THAT(libc().Story(),
                ElementsAre("log SetSettingFile ifstream errno=2:No such file or directory"));
}

TEST_F(SettingsTest, ACopyThatCannotBeOpenedIsAFailureThatChangesNothing) {
    ASSERT_EQ(mkdir(kIdentityCopy, 0700), 0);
    WriteFile(kIdentityFile, kText);
    EXPECT_EQ(Set(kLocation, "x"), -1);
    EXPECT_EQ(ReadFile(kIdentityFile), kText);
    EXPECT_THAT(libc().Story(), ElementsAre("log SetSettingFile ofstream errno=21:Is a directory"));
}

TEST_F(SettingsTest, BothFailuresAreLoggedInOrder) {
    ASSERT_EQ(mkdir(kIdentityCopy, 0700), 0);
    EXPECT_EQ(Set(kAdministrator, ""), -1);
    EXPECT_THAT(libc().Story(),
                ElementsAre("log SetSettingFile ifstream errno=2:No such file or directory",
                            "log SetSettingFile ofstream errno=21:Is a directory"));
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kIdentityFile, kIdentityCopy));
}

TEST_F(SettingsTest, ACopyThatCannotBeWrittenLeavesFileAndSnmpAlone) {
    WriteFile(kIdentityFile, kText);
    libc().Script(Call::kWrite, {Fail(ENOSPC)});
    EXPECT_EQ(Set(kAdministrator, "Alice"), -1);
    EXPECT_EQ(ReadFile(kIdentityFile), kText);
    EXPECT_FALSE(Exists(kIdentityCopy));
    EXPECT_THAT(libc().Story(), ElementsAre("log FileEdit write errno=28:No space left on device"));
}

// ---- handing the value on

TEST_F(SettingsTest, APlainValueIsHandedOn) {
    EXPECT_EQ(SnmpLine(kAdministrator, "Alice"),
              "sudo sed -i 's/syscontact.*/syscontact Alice/' "
              "/usr/local/share/etc/snmp/snmpd.conf");
    EXPECT_EQ(SnmpLine(kLocation, "2nd floor"),
              "sudo sed -i 's/syslocation.*/syslocation 2nd floor/' "
              "/usr/local/share/etc/snmp/snmpd.conf");
}

TEST_F(SettingsTest, AnEmptyValueIsHandedOnAsAPairOfQuotes) {
    EXPECT_EQ(SnmpLine(kAdministrator, ""),
              "sudo sed -i 's/syscontact.*/syscontact \"\"/' "
              "/usr/local/share/etc/snmp/snmpd.conf");
    EXPECT_EQ(SnmpLine(kLocation, std::string_view("\0x", 2)),
              "sudo sed -i 's/syslocation.*/syslocation \"\"/' "
              "/usr/local/share/etc/snmp/snmpd.conf");
}

TEST_F(SettingsTest, AValueIsHandedOnEscaped) {
    EXPECT_EQ(SnmpLine(kAdministrator, "O'Neil & Co/IT"),
              R"(sudo sed -i 's/syscontact.*/syscontact O'\''Neil \& Co\/IT/' )"
              "/usr/local/share/etc/snmp/snmpd.conf");
    EXPECT_EQ(SnmpLine(kLocation, R"(\&"'/)"),
              R"(sudo sed -i 's/syslocation.*/syslocation \\\&\"'\''\//' )"
              "/usr/local/share/etc/snmp/snmpd.conf");
    EXPECT_EQ(SnmpLine(kLocation, "%s %n %"),
              "sudo sed -i 's/syslocation.*/syslocation %s %n %/' "
              "/usr/local/share/etc/snmp/snmpd.conf");
}

TEST_F(SettingsTest, TheLongestEscapedValueIsHandedOnWhole) {
    std::string quotes;
    for (int i = 0; i < 511; ++i) {
        quotes += R"('\'')";
    }
    EXPECT_EQ(SnmpLine(kAdministrator, std::string(511, '\'')),
              "sudo sed -i 's/syscontact.*/syscontact " + quotes +
                  "/' /usr/local/share/etc/snmp/snmpd.conf");
    EXPECT_EQ(SnmpLine(kLocation, std::string(511, '\'')),
              "sudo sed -i 's/syslocation.*/syslocation " + quotes +
                  "/' /usr/local/share/etc/snmp/snmpd.conf");
    EXPECT_EQ(ReadFile(kIdentityFile),
              "ADMINISTRATOR=Bob\nLOCATION=" + std::string(511, '\'') + "\n");
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(SettingsTest, TheFileComesFirstThenTheValueThenTheRestart) {
    WriteFile(kIdentityFile, kText);
    EXPECT_EQ(Set(kAdministrator, "Alice"), 0);
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/libvelk > /var/libvelk/libvelk",
                            "system rm /var/tmp/libvelk",
                            "system sudo sed -i 's/syscontact.*/syscontact Alice/' "
                            "/usr/local/share/etc/snmp/snmpd.conf",
                            "system sudo /etc/init.d/snmpd restart > /dev/null 2>&1"));
}

TEST_F(SettingsTest, TheSameValueIsHandedOnAgain) {
    const std::string line = SnmpLine(kAdministrator, "Bob");
    EXPECT_EQ(SnmpLine(kAdministrator, "Bob"), line);
}

TEST_F(SettingsTest, TheExitStatusOfTheShellIsIgnored) {
    for (const testkit::Outcome outcome : {Return(256), Return(127 * 256)}) {
        WriteFile(kIdentityFile, kText);
        libc().Script(Call::kSystem, {outcome, outcome, outcome, outcome});
        EXPECT_EQ(Set(kAdministrator, "Alice"), 0);
    }
    EXPECT_THAT(libc().Logs(), IsEmpty());
    EXPECT_EQ(libc().Commands().size(), 8U);
}

TEST_F(SettingsTest, AShellThatCannotBeRunIsLoggedAndPassedOver) {
    WriteFile(kIdentityFile, kText);
    libc().ScriptAlways(Call::kSystem, Fail(ENOMEM));
    EXPECT_EQ(Set(kLocation, "x"), 0);
    EXPECT_THAT(
        libc().Story(),
        ElementsAre("system cat /var/tmp/libvelk > /var/libvelk/libvelk",
                    "log system errno=12:Cannot allocate memory", "system rm /var/tmp/libvelk",
                    "log system errno=12:Cannot allocate memory",
                    "system sudo sed -i 's/syslocation.*/syslocation x/' "
                    "/usr/local/share/etc/snmp/snmpd.conf",
                    "log system errno=12:Cannot allocate memory",
                    "system sudo /etc/init.d/snmpd restart > /dev/null 2>&1",
                    "log system errno=12:Cannot allocate memory"));
}

// The line that the library would run, without "sudo", through the real shell and sed(1).
class SnmpLineTest : public SettingsTest {
  protected:
    std::string SnmpFileAfter(uint32_t id, std::string_view value, std::string_view before) {
        const std::string line = SnmpLine(id, value).substr(5);
        WriteFile(kSnmpFile, before);
        const testkit::Unrecorded unrecorded;
        EXPECT_EQ(std::system(line.c_str()), 0) << line;
        return ReadFile(kSnmpFile);
    }
};

TEST_F(SnmpLineTest, SpecialCharactersArriveAsTheyAre) {
    for (const std::string value :
         {R"(O'Neil & Co/IT)", R"(\)", R"(\\)", R"(&)", R"(")", R"(')", R"(/)", R"('';&&//\\"")",
          R"(\1 \n \& \/)", R"($HOME `id` $(id) * ? ~)", "\xc3\xa4 %s", "#x", " x "}) {
        EXPECT_EQ(SnmpFileAfter(kAdministrator, value, "syscontact old\nsyslocation old\n"),
                  "syscontact " + value + "\nsyslocation old\n");
        EXPECT_EQ(SnmpFileAfter(kLocation, value, "syscontact old\nsyslocation old\n"),
                  "syscontact old\nsyslocation " + value + "\n");
    }
}

TEST_F(SnmpLineTest, TheLongestValueArrives) {
    const std::string value(511, '\'');
    EXPECT_EQ(SnmpFileAfter(kLocation, value, "syslocation\n"), "syslocation " + value + "\n");
}

TEST_F(SnmpLineTest, EveryLineWithTheDirectiveGetsTheValueAndNoLineIsAdded) {
    EXPECT_EQ(
        SnmpFileAfter(kAdministrator, "x", "#syscontact a\nb\n\tsyscontact\nmysyscontact c\n"),
        "#syscontact x\nb\n\tsyscontact x\nmysyscontact x\n");
    EXPECT_EQ(SnmpFileAfter(kLocation, "x", "syscontact a\n"), "syscontact a\n");
    EXPECT_EQ(SnmpFileAfter(kLocation, "", "syslocation a\n"), "syslocation \"\"\n");
}

TEST_F(SnmpLineTest, AValueWithALineEndLeavesTheSnmpFileAsItWas) {
    const std::string line = SnmpLine(kLocation, "a\nsyscontact b").substr(5) + " 2> /dev/null";
    EXPECT_EQ(ReadFile(kIdentityFile), "ADMINISTRATOR=Bob\nLOCATION=a\nsyscontact b\n");
    WriteFile(kSnmpFile, "syscontact old\nsyslocation old\n");
    const testkit::Unrecorded unrecorded;
    EXPECT_NE(std::system(line.c_str()), 0);
    EXPECT_EQ(ReadFile(kSnmpFile), "syscontact old\nsyslocation old\n");
}

TEST_F(SettingsTest, NoSnmpLineIsRunWhereTheLocaleSwallowsEscapes) {
    testkit::WriteFile(kIdentityFile, "LOCATION=Lab\n");
    setenv("LC_ALL", "ja_JP.SJIS", 1);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_LOCATION, "", "\x83/e"), 0);
    EXPECT_THAT(libc().Logs(), testing::Contains("SetSettingFile no SNMP line in the locale "
                                                 "ja_JP.SJIS"));
    EXPECT_EQ(libc().Commands().size(), 2U) << "cat and rm";
    EXPECT_EQ(testkit::ReadFile(kIdentityFile), "LOCATION=\x83/e\n");
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_LOCATION, "", "Lab"), 0);
    EXPECT_EQ(libc().Commands().size(), 6U);
    unsetenv("LC_ALL");
}

}  // namespace
