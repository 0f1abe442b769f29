// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/edit_copy.h"
#include "support/fake_shell.h"
#include "support/paths.h"
#include "unit/lib/ntp/samples.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Exists;
using testkit::Fail;
using testkit::kCrontab;
using testkit::kCrontabCopy;
using testkit::kEntry;
using testkit::kNtpLog;
using testkit::MakeRequest;
using testkit::ReadFile;
using testkit::WriteFile;

// ---- the server of a line

struct LineAndServer {
    std::string line;
    std::string server;
};

// Without this, a failing test would show the bytes of the record.
void PrintTo(const LineAndServer& row, std::ostream* out) {
    *out << row.line;
}

class ServerOfLine : public testing::TestWithParam<LineAndServer> {};

TEST_P(ServerOfLine, IsTheFirstWordThatBeginsWithALetterOrDigit) {
    std::string server = "(as before)";
    EXPECT_EQ(GetNtpdate(GetParam().line, server), 0);
    EXPECT_EQ(server, GetParam().server);
}

INSTANTIATE_TEST_SUITE_P(
    Plain, ServerOfLine,
    testing::Values(LineAndServer{"0 * * * * /usr/bin/ntpdate -u 192.168.1.10 > log",
                                  "192.168.1.10"},
                    LineAndServer{"ntpdate pool.ntp.org > log", "pool.ntp.org"},
                    LineAndServer{"ntpdate -u -b time > log", "time"},
                    LineAndServer{"ntpdate Z", "Z"}, LineAndServer{"ntpdate z", "z"},
                    LineAndServer{"ntpdate A", "A"}, LineAndServer{"ntpdate a", "a"},
                    LineAndServer{"ntpdate 0", "0"}, LineAndServer{"ntpdate 9", "9"},
                    LineAndServer{"ntpdate one two > log", "one"},
                    LineAndServer{"ntpdate a ntpdate b", "a"},
                    LineAndServer{"#0 * * * * ntpdate a > log", "a"}));

INSTANTIATE_TEST_SUITE_P(
    WithOptions, ServerOfLine,
    testing::Values(LineAndServer{"ntpdate -p 4 10.0.0.1 > log", "4"},
                    LineAndServer{"ntpdate -o key -u a", "key"},
                    LineAndServer{"ntpdate -- -q _a [::1] :a .a 'a' \"a\" $a ~ a", "a"},
                    LineAndServer{"ntpdate \xc3\xa4 a", "a"}, LineAndServer{"ntpdate # a", "a"},
                    LineAndServer{"ntpdate < in a", "in"}, LineAndServer{"ntpdate 2>&1 a", "2>&1"},
                    LineAndServer{"ntpdate a>log b", "a>log"}));

INSTANTIATE_TEST_SUITE_P(
    WithBlanks, ServerOfLine,
    testing::Values(LineAndServer{"ntpdate  -u   a  > log", "a"}, LineAndServer{"ntpdate   a", "a"},
                    LineAndServer{"ntpdate a\n", "a\n"}, LineAndServer{"ntpdate a\t> log", "a\t>"},
                    LineAndServer{"ntpdate a\r\n", "a\r\n"}, LineAndServer{"ntpdate \ta b", "b"},
                    LineAndServer{"ntpdate -u\ta b", "b"}, LineAndServer{"ntpdate\ta b", "b"}));

INSTANTIATE_TEST_SUITE_P(Glued, ServerOfLine,
                         testing::Values(LineAndServer{"ntpdates > log", "s"},
                                         LineAndServer{"ntpdate4 a", "4"},
                                         LineAndServer{"ntpdate-debian a", "a"},
                                         LineAndServer{"/opt/ntpdate/bin/x a", "a"},
                                         LineAndServer{"ntpdatentpdate a", "ntpdate"}));

INSTANTIATE_TEST_SUITE_P(None, ServerOfLine,
                         testing::Values(LineAndServer{"", "(as before)"},
                                         LineAndServer{"\n", "(as before)"},
                                         LineAndServer{"ntpdat e a", "(as before)"},
                                         LineAndServer{"NTPDATE a", "(as before)"},
                                         LineAndServer{"ntpdate", "(as before)"},
                                         LineAndServer{"ntpdate ", "(as before)"},
                                         LineAndServer{"ntpdate   ", "(as before)"},
                                         LineAndServer{"ntpdate\n", "(as before)"},
                                         LineAndServer{"ntpdate -u\n", "(as before)"},
                                         LineAndServer{"ntpdate > log a", "(as before)"},
                                         LineAndServer{"ntpdate -u >log a", "(as before)"},
                                         LineAndServer{"ntpdate -u> a", "(as before)"},
                                         LineAndServer{"ntpdate>log a", "(as before)"},
                                         LineAndServer{"ntpdate \t> a", "(as before)"},
                                         LineAndServer{"ntpdate >> log a", "(as before)"},
                                         LineAndServer{"a 10.0.0.1 ntpdate", "(as before)"}));

TEST(GetNtpdate, TakesAServerOfAnyLength) {
    const std::string name(5000, 'x');
    std::string server;
    EXPECT_EQ(GetNtpdate("ntpdate -u " + name + " > log", server), 0);
    EXPECT_EQ(server, name);
}

// ---- another server for a line

struct Change {
    std::string line;
    std::string server;
    std::string changed;
};

void PrintTo(const Change& row, std::ostream* out) {
    *out << row.line << " with " << row.server;
}

class ChangedLine : public testing::TestWithParam<Change> {};

TEST_P(ChangedLine, HasTheNewServer) {
    std::string line = GetParam().line;
    EXPECT_EQ(ChangeNtpdate(line, GetParam().server), 0);
    EXPECT_EQ(line, GetParam().changed);
}

INSTANTIATE_TEST_SUITE_P(
    InPlaceOfTheOldServer, ChangedLine,
    testing::Values(Change{"0 * * * * /usr/bin/ntpdate -u 192.168.1.10 > /var/libvelk/ntp.log\n",
                           "10.0.0.1",
                           "0 * * * * /usr/bin/ntpdate -u 10.0.0.1 > /var/libvelk/ntp.log\n"},
                    Change{"ntpdate a > log\n", "a", "ntpdate a > log\n"},
                    Change{"ntpdate a > log\n", "", "ntpdte a > log\n"},
                    Change{"ntpdate -u x > log\n", "", "ntpdate -u  > log\n"},
                    Change{"ntpdate -p 4 x > log\n", "y", "ntpdate -p y x > log\n"},
                    Change{"ntpdate  x  y > log\n", "z", "ntpdate  z  y > log\n"},
                    Change{"ntpdate x>log 2>&1\n", "z", "ntpdate z 2>&1\n"},
                    Change{"ntpdate x\t> log\n", "z", "ntpdate z log\n"},
                    Change{"ntpdate x", "z", "ntpdate z"}));

// A line's end belongs to a server that ends the line.
INSTANTIATE_TEST_SUITE_P(AtTheEndOfTheLine, ChangedLine,
                         testing::Values(Change{"ntpdate x\n", "z", "ntpdate z"},
                                         Change{"ntpdate x\r\n", "z", "ntpdate z"},
                                         Change{"ntpdate x\n", "", "ntpdate "},
                                         Change{"ntpdate x \n", "z", "ntpdate z \n"}));

// The old server is looked for from the line's beginning.
INSTANTIATE_TEST_SUITE_P(
    WhereItsTextOccursFirst, ChangedLine,
    testing::Values(Change{"0 * * * * ntpdate -p 0 > log\n", "z", "z * * * * ntpdate -p 0 > log\n"},
                    Change{"ntpdate n > log\n", "z", "ztpdate n > log\n"},
                    Change{"x.y ntpdate x > log\n", "10.0.0.1", "10.0.0.1.y ntpdate x > log\n"}));

INSTANTIATE_TEST_SUITE_P(
    WithoutAnOldServer, ChangedLine,
    testing::Values(Change{"ntpdate -u > log\n", "10.0.0.1", "ntpdate -u10.0.0.1 > log\n"},
                    Change{"ntpdate -u  > log\n", "10.0.0.1", "ntpdate -u 10.0.0.1 > log\n"},
                    Change{"ntpdate > log\n", "x", "ntpdatex > log\n"},
                    Change{"ntpdate -u > log\n", "", "ntpdate -u > log\n"},
                    Change{"ntpdate -u>log\n", "x", "ntpdatex -u>log\n"},
                    Change{"0 * * * * ntpdate>log\n", "x", "0 * * * *x ntpdate>log\n"},
                    Change{"ntpdate > a > b\n", "x", "ntpdatex > a > b\n"},
                    Change{"ntpdate -u >> log\n", "x", "ntpdate -ux >> log\n"},
                    Change{"ntpdate -u\t> log\n", "x", "ntpdatex -u\t> log\n"},
                    Change{"echo > x; ntpdate -u\n", "z", "echoz > x; ntpdate -u\n"}));

INSTANTIATE_TEST_SUITE_P(WithoutABlankBeforeTheRedirection, ChangedLine,
                         testing::Values(Change{"ntpdate>log\n", "x", "ntpdatex>log\n"},
                                         Change{"> ntpdate\n", "x", "x> ntpdate\n"},
                                         Change{">ntpdate", "x", "x>ntpdate"},
                                         Change{"a> ntpdate\n", "x", "ax> ntpdate\n"},
                                         Change{" > ntpdate\n", "x", " x> ntpdate\n"},
                                         Change{" ntpdate>log\n", "x", " ntpdatex>log\n"},
                                         Change{"  ntpdate>log\n", "x", " x ntpdate>log\n"},
                                         Change{"a >ntpdate\n", "x", "ax >ntpdate\n"}));

// A line without the client has no server, and is treated like one.
INSTANTIATE_TEST_SUITE_P(WithoutTheClient, ChangedLine,
                         testing::Values(Change{"a b > log\n", "x", "a bx > log\n"},
                                         Change{">", "x", "x>"}));

class UnchangeableLine : public testing::TestWithParam<const char*> {};

TEST_P(UnchangeableLine, ThrowsAndStaysAsItWas) {
    std::string line = GetParam();
    try {
        (void)ChangeNtpdate(line, "10.0.0.1");
        FAIL() << "nothing was thrown";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "basic_string::at");
    }
    EXPECT_EQ(line, GetParam());
}

INSTANTIATE_TEST_SUITE_P(WithoutServerAndRedirection, UnchangeableLine,
                         testing::Values("ntpdate", "ntpdate\n", "ntpdate -u\n", "ntpdate \n",
                                         "# ntpdate -u\n", "ntpdate\tx\n", "", "\n", "a b\n"));

// ---- the method

class CrontabEntryTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        rmdir(kCrontabCopy);  // left by the tests with a folder in the copy's place
        DeviceTest::TearDown();
    }
    static _velk_request Method(char byte) {
        return MakeRequest(VELK_SET, VELK_CMD_NTP, "", {&byte, 1});
    }
    static _velk_request Server(std::string_view server) {
        return MakeRequest(VELK_SET, VELK_CMD_NTP_SERVER, "", server);
    }
    static int MethodOf(std::string_view crontab) {
        WriteFile(kCrontab, crontab);
        char out[VELK_DATA_SIZE] = "?unchanged";
        EXPECT_EQ(GetNtpMethod(MakeRequest(VELK_GET, VELK_CMD_NTP, ""), out), 0);
        EXPECT_STREQ(out + 1, "unchanged") << "one byte and nothing else";
        return out[0];
    }
    static std::string ServerOf(std::string_view crontab) {
        WriteFile(kCrontab, crontab);
        char out[VELK_DATA_SIZE] = "";
        EXPECT_EQ(GetNtpIp(MakeRequest(VELK_GET, VELK_CMD_NTP_SERVER, ""), out), 0);
        return out;
    }
    static std::string WithMethod(char byte, std::string_view crontab) {
        WriteFile(kCrontab, crontab);
        EXPECT_EQ(SetNtpMethod(Method(byte), nullptr), 0);
        return ReadFile(kCrontab);
    }
    static std::string WithServer(std::string_view server, std::string_view crontab) {
        WriteFile(kCrontab, crontab);
        EXPECT_EQ(SetNtpIp(Server(server), nullptr), 0);
        return ReadFile(kCrontab);
    }
    testkit::FakeShell shell;
};

TEST_F(CrontabEntryTest, AnEntryWithoutAMarkIsOn) {
    EXPECT_EQ(MethodOf(kEntry), 1);
    EXPECT_EQ(MethodOf("0 * * * * ntpdate"), 1);
    EXPECT_EQ(MethodOf("ntpdate # x\n"), 1);
    EXPECT_EQ(MethodOf("ntpdate#\n"), 1);
    EXPECT_EQ(MethodOf("xntpdatex\n"), 1);
}

TEST_F(CrontabEntryTest, AnEntryAfterAMarkIsOff) {
    EXPECT_EQ(MethodOf("#" + std::string(kEntry)), 2);
    EXPECT_EQ(MethodOf("0 * * * * # ntpdate\n"), 2);
    EXPECT_EQ(MethodOf("0 * * * * echo \\#; ntpdate\n"), 2);
    EXPECT_EQ(MethodOf("# ntpdate\n; ntpdat\n"), 2);
    EXPECT_EQ(MethodOf("# ntpdate ntpdate\n"), 2);
}

TEST_F(CrontabEntryTest, WithoutAnEntryItIsOff) {
    EXPECT_EQ(MethodOf(""), 2);
    EXPECT_EQ(MethodOf("\n0 * * * * true\nNTPDATE\n"), 2);
}

TEST_F(CrontabEntryTest, OneEntryThatIsOnIsEnough) {
    EXPECT_EQ(MethodOf("#" + std::string(kEntry) + kEntry), 1);
    EXPECT_EQ(MethodOf(std::string(kEntry) + "#" + kEntry), 1);
    EXPECT_EQ(MethodOf("#ntpdate\n#ntpdate\n#ntpdate\n"), 2);
}

TEST_F(CrontabEntryTest, TheMethodOfAMissingCrontabIsAFailureWithALogLine) {
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetNtpMethod(MakeRequest(VELK_GET, VELK_CMD_NTP, ""), out), -1);
    EXPECT_STREQ(out, "unchanged");
    EXPECT_THAT(libc().Story(),
                ElementsAre("log GetNtpMethod ifstream errno=2:No such file or directory"));
    EXPECT_EQ(libc().Events(Call::kSyslog).at(0).number, 5);
}

TEST_F(CrontabEntryTest, TheLogLineOfTheMethodHasTheErrorOfTheOpen) {
    WriteFile(kCrontab, kEntry);
    libc().Script(Call::kOpen, {Fail(EACCES)});
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetNtpMethod(MakeRequest(VELK_GET, VELK_CMD_NTP, ""), out), -1);
    EXPECT_STREQ(out, "unchanged");
    EXPECT_THAT(libc().Logs(), ElementsAre("GetNtpMethod ifstream errno=13:Permission denied"));
}

TEST_F(CrontabEntryTest, ANullOutputIsRefusedByBothGetters) {
    WriteFile(kCrontab, kEntry);
    EXPECT_EQ(GetNtpMethod(MakeRequest(VELK_GET, VELK_CMD_NTP, ""), nullptr), -4);
    EXPECT_EQ(GetNtpIp(MakeRequest(VELK_GET, VELK_CMD_NTP_SERVER, ""), nullptr), -4);
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(CrontabEntryTest, TheMethodIsSwitchedOnEveryEntry) {
    const std::string entry = kEntry;
    const std::string updater = "30 2 * * * perl /usr/bin/web_contents_updater.pl\n";
    EXPECT_EQ(WithMethod(2, entry + updater + entry), "#" + entry + updater + "#" + entry);
    EXPECT_EQ(WithMethod(1, "#" + entry + updater + "#" + entry), entry + updater + entry);
    EXPECT_EQ(WithMethod(1, "##" + entry), "#" + entry);
    EXPECT_EQ(WithMethod(1, "  # " + entry), "   " + entry);
    EXPECT_EQ(WithMethod(2, "ntpdate # x"), "#ntpdate # x\n");
    EXPECT_EQ(WithMethod(1, "ntpdate # x"), "ntpdate # x\n");
}

TEST_F(CrontabEntryTest, OffPutsTheCopyInPlaceAndThenDeletesTheLog) {
    WriteFile(kCrontab, kEntry);
    WriteFile(kNtpLog, "old\n");
    EXPECT_EQ(SetNtpMethod(Method(2), nullptr), 0);
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/root > /var/cron/tabs/root",
                            "system rm /var/tmp/root", "system rm /var/libvelk/ntp.log"));
    EXPECT_FALSE(Exists(kNtpLog));
    EXPECT_FALSE(Exists(kCrontabCopy));
}

TEST_F(CrontabEntryTest, OnLeavesTheLog) {
    WriteFile(kCrontab, kEntry);
    WriteFile(kNtpLog, "old\n");
    EXPECT_EQ(SetNtpMethod(Method(1), nullptr), 0);
    EXPECT_THAT(libc().Commands(),
                ElementsAre("cat /var/tmp/root > /var/cron/tabs/root", "rm /var/tmp/root"));
    EXPECT_EQ(ReadFile(kNtpLog), "old\n");
}

TEST_F(CrontabEntryTest, OffDeletesTheLogAlsoWithoutAnEntryOrALog) {
    EXPECT_EQ(WithMethod(2, ""), "");
    EXPECT_EQ(WithMethod(2, "#ntpdate\n"), "#ntpdate\n");
    EXPECT_THAT(libc().Commands(), testing::Contains("rm /var/libvelk/ntp.log").Times(2));
}

TEST_F(CrontabEntryTest, AFailingShellChangesNothingInTheResultOfOff) {
    WriteFile(kCrontab, kEntry);
    libc().Script(Call::kSystem, {Fail(ENOMEM), Fail(ENOMEM), Fail(ENOMEM)});
    EXPECT_EQ(SetNtpMethod(Method(2), nullptr), 0);
    EXPECT_THAT(
        libc().Story(),
        ElementsAre("system cat /var/tmp/root > /var/cron/tabs/root",
                    "log system errno=12:Cannot allocate memory", "system rm /var/tmp/root",
                    "log system errno=12:Cannot allocate memory", "system rm /var/libvelk/ntp.log",
                    "log system errno=12:Cannot allocate memory"));
}

TEST_F(CrontabEntryTest, AnUnknownMethodIsRefusedAfterBothFilesWereOpened) {
    for (const char byte : {'\0', '\3', '1', '2', '\xff', '\x81'}) {
        WriteFile(kCrontab, kEntry);
        WriteFile(kCrontabCopy, "of another edit");
        WriteFile(kNtpLog, "old\n");
        EXPECT_EQ(SetNtpMethod(Method(byte), nullptr), -4);
        EXPECT_EQ(ReadFile(kCrontab), kEntry);
        EXPECT_EQ(ReadFile(kCrontabCopy), "");
        EXPECT_EQ(ReadFile(kNtpLog), "old\n");
    }
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(CrontabEntryTest, AnUnknownMethodIsRefusedBeforeAFileThatCannotBeOpened) {
    EXPECT_EQ(SetNtpMethod(Method(3), nullptr), -4);
    EXPECT_EQ(ReadFile(kCrontabCopy), "");
    unlink(kCrontabCopy);
    ASSERT_EQ(mkdir(kCrontabCopy, 0700), 0);
    EXPECT_EQ(SetNtpMethod(Method(3), nullptr), -4);
    WriteFile(kCrontab, kEntry);
    EXPECT_EQ(SetNtpMethod(Method(3), nullptr), -4);
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kCrontab, kCrontabCopy, kCrontab,
                                                       kCrontabCopy, kCrontab, kCrontabCopy));
}

TEST_F(CrontabEntryTest, NothingIsSetWithoutACrontab) {
    WriteFile(kNtpLog, "old\n");
    EXPECT_EQ(SetNtpMethod(Method(1), nullptr), -1);
    EXPECT_EQ(SetNtpMethod(Method(2), nullptr), -1);
    EXPECT_EQ(ReadFile(kCrontabCopy), "");
    unlink(kCrontabCopy);
    EXPECT_EQ(SetNtpIp(Server("x"), nullptr), -1);
    EXPECT_EQ(ReadFile(kCrontabCopy), "");
    EXPECT_FALSE(Exists(kCrontab));
    EXPECT_EQ(ReadFile(kNtpLog), "old\n");
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(CrontabEntryTest, NothingIsSetWhenTheCopyCannotBeOpened) {
    ASSERT_EQ(mkdir(kCrontabCopy, 0700), 0);
    WriteFile(kCrontab, kEntry);
    WriteFile(kNtpLog, "old\n");
    EXPECT_EQ(SetNtpMethod(Method(1), nullptr), -1);
    EXPECT_EQ(SetNtpMethod(Method(2), nullptr), -1);
    EXPECT_EQ(SetNtpIp(Server("x"), nullptr), -1);
    EXPECT_EQ(ReadFile(kCrontab), kEntry);
    EXPECT_EQ(ReadFile(kNtpLog), "old\n");
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(CrontabEntryTest, ACopyThatCannotBeWrittenLeavesCrontabAndLog) {
    WriteFile(kCrontab, kEntry);
    WriteFile(kNtpLog, "old\n");
    libc().Script(Call::kWrite, {Fail(ENOSPC), Fail(ENOSPC)});
    EXPECT_EQ(SetNtpMethod(Method(2), nullptr), -1);
    EXPECT_EQ(SetNtpIp(Server("x"), nullptr), -1);
    EXPECT_EQ(ReadFile(kCrontab), kEntry);
    EXPECT_EQ(ReadFile(kNtpLog), "old\n");
    EXPECT_FALSE(Exists(kCrontabCopy));
    EXPECT_THAT(libc().Story(), ElementsAre("log FileEdit write errno=28:No space left on device",
                                            "log FileEdit write errno=28:No space left on device"));
}

// ---- the server

TEST_F(CrontabEntryTest, TheServerIsThatOfTheFirstEntry) {
    EXPECT_EQ(ServerOf(kEntry), "192.168.1.10");
    EXPECT_EQ(ServerOf("true\n#ntpdate off > log\nntpdate on > log\n"), "off");
    EXPECT_EQ(ServerOf("# about ntpdate here\nntpdate x > log\n"), "here");
    EXPECT_EQ(ServerOf("ntpdate x"), "x");
    EXPECT_EQ(ServerOf("ntpdate x\n"), "x") << "the line's end is none of it";
    EXPECT_EQ(ServerOf("ntpdate x\r\n"), "x\r");
}

TEST_F(CrontabEntryTest, WithoutAServerInTheFirstEntryThereIsNone) {
    EXPECT_EQ(ServerOf("ntpdate -u > log\nntpdate x > log\n"), "");
    EXPECT_EQ(ServerOf("ntpdate\nntpdate x > log\n"), "");
    EXPECT_EQ(ServerOf("0 * * * * true x\n"), "");
    EXPECT_EQ(ServerOf(""), "");
}

TEST_F(CrontabEntryTest, TheServerIsCutToTheDataArea) {
    EXPECT_EQ(ServerOf("ntpdate " + std::string(511, 'x') + " > log\n"), std::string(511, 'x'));
    WriteFile(kCrontab, "ntpdate " + std::string(5000, 'x') + " > log\n");
    char out[VELK_DATA_SIZE + 8];
    std::fill(std::begin(out), std::end(out), '?');
    EXPECT_EQ(GetNtpIp(MakeRequest(VELK_GET, VELK_CMD_NTP_SERVER, ""), out), 0);
    EXPECT_EQ(std::string(out, sizeof(out)), std::string(511, 'x') + '\0' + "????????");
}

TEST_F(CrontabEntryTest, TheServerIsWrittenWithItsNulAndNoMore) {
    WriteFile(kCrontab, "ntpdate abc > log\n");
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetNtpIp(MakeRequest(VELK_GET, VELK_CMD_NTP_SERVER, ""), out), 0);
    EXPECT_EQ(std::string(out, 9), std::string("abc\0anged", 9));
}

TEST_F(CrontabEntryTest, TheServerOfAMissingCrontabIsAFailureWithoutALogLine) {
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetNtpIp(MakeRequest(VELK_GET, VELK_CMD_NTP_SERVER, ""), out), -1);
    EXPECT_STREQ(out, "unchanged");
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(CrontabEntryTest, GetsReadTheCrontabOnceAndRunNothing) {
    WriteFile(kCrontab, std::string("\n#x\n") + kEntry + kEntry);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_NTP, ""), 0);
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_NTP_SERVER, ""), 0);
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kCrontab, kCrontab));
    EXPECT_THAT(libc().Events(Call::kRead), testing::SizeIs(2));
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(CrontabEntryTest, TheServerIsSetOnEveryEntry) {
    EXPECT_EQ(WithServer("10.0.0.1", "#ntpdate y > log\ntrue y\nntpdate -u z > log\n"),
              "#ntpdate 10.0.0.1 > log\ntrue y\nntpdate -u 10.0.0.1 > log\n");
    EXPECT_THAT(libc().Story(), ElementsAre("system cat /var/tmp/root > /var/cron/tabs/root",
                                            "system rm /var/tmp/root"));
}

TEST_F(CrontabEntryTest, ARemovedServerIsInsertedAgainAtTheSamePlace) {
    const std::string without = WithServer("", kEntry);
    EXPECT_EQ(without, "0 * * * * /usr/bin/ntpdate -u  > /var/libvelk/ntp.log\n");
    EXPECT_EQ(ServerOf(without), "");
    EXPECT_EQ(WithServer("192.168.1.10", without), kEntry);
}

TEST_F(CrontabEntryTest, AnEntryThatEndsWithItsServerIsJoinedWithTheNextLine) {
    EXPECT_EQ(WithServer("b", "ntpdate xyz\ntrue\n"), "ntpdate btrue\n");
    EXPECT_EQ(WithServer("b", "true\nntpdate xyz"), "true\nntpdate b");
}

TEST_F(CrontabEntryTest, TheServerEndsAtItsNulOrWithTheDataArea) {
    EXPECT_EQ(WithServer(std::string_view("ab\0cd", 5), "ntpdate xyz > log\n"),
              "ntpdate ab > log\n");
    EXPECT_EQ(WithServer(std::string(512, 'q'), "ntpdate xyz > log\n"),
              "ntpdate " + std::string(512, 'q') + " > log\n");
}

TEST_F(CrontabEntryTest, AnEntryThatTakesNoServerThrowsToADirectCaller) {
    WriteFile(kCrontab, "ntpdate a > log\nntpdate -u");
    try {
        (void)SetNtpIp(Server("10.0.0.1"), nullptr);
        FAIL() << "nothing was thrown";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "basic_string::at");
    }
    EXPECT_EQ(ReadFile(kCrontab), "ntpdate a > log\nntpdate -u");
    EXPECT_TRUE(Exists(kCrontabCopy));
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(CrontabEntryTest, AnEntryThatTakesNoServerIsALoggedFailureOfTheCommand) {
    WriteFile(kCrontab, "ntpdate a > log\nntpdate -u");
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_NTP_SERVER, "", "10.0.0.1"), -1);
    EXPECT_EQ(testkit::Data(response), std::string(512, '\0'));
    EXPECT_EQ(ReadFile(kCrontab), "ntpdate a > log\nntpdate -u");
    EXPECT_THAT(libc().Story(), ElementsAre("log execute_velk_command exception basic_string::at"));
    const int lock = VkLibLock();
    EXPECT_GT(lock, 0) << "the lock is free";
    VkLibUnLock(lock);
    WriteFile(kCrontab, kEntry);
    EXPECT_EQ(Execute(VELK_SET, VELK_CMD_NTP_SERVER, "", "10.0.0.1"), 0);
    EXPECT_EQ(ReadFile(kCrontab),
              "0 * * * * /usr/bin/ntpdate -u 10.0.0.1 > /var/libvelk/ntp.log\n");
}

}  // namespace
