// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
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
using testing::Gt;
using testing::IsEmpty;
using testing::Lt;
using testing::SizeIs;
using testkit::Call;
using testkit::Exists;
using testkit::Fail;
using testkit::kExitHooks;
using testkit::kExitHooksCopy;
using testkit::MakeRequest;
using testkit::Pass;
using testkit::ReadFile;
using testkit::WriteFile;

constexpr char kOnByte = 1;
constexpr char kOffByte = 2;

constexpr char kNotices[] =
    "/sbin/printdhcpnotice.pl $interface\n"
    "/sbin/printdhcpstart.pl $interface\n";

_velk_request Switch(std::string_view interface, char state) {
    return MakeRequest(VELK_SET, VELK_CMD_APIPA, interface, {&state, 1});
}

class ExitHooksTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        rmdir(kExitHooksCopy);  // left by the tests with a folder in the copy's place
        DeviceTest::TearDown();
    }
    // Returns whether the link-local daemon is switched on: 1 or 2.
    static int Apipa(std::string_view script, std::string_view interface = "eth0") {
        WriteFile(kExitHooks, script);
        char out[VELK_DATA_SIZE] = "?unchanged";
        EXPECT_EQ(GetApipa(MakeRequest(VELK_GET, VELK_CMD_APIPA, interface), out), 0);
        EXPECT_STREQ(out + 1, "unchanged") << "one byte and nothing else";
        return out[0];
    }
    // The script after a switch.
    static std::string Switched(std::string_view script, const char* command, char state,
                                std::string_view interface = "eth0") {
        WriteFile(kExitHooks, script);
        EXPECT_EQ(SetDhclient(Switch(interface, state), command), 0);
        return ReadFile(kExitHooks);
    }
    testkit::FakeShell shell;
};

// ---- reading

TEST_F(ExitHooksTest, ADaemonLineOutsideBlocksIsOnForEveryInterface) {
    EXPECT_EQ(Apipa("/usr/sbin/avahi-autoipd -D $interface\n", "eth0"), 1);
    EXPECT_EQ(Apipa("/usr/sbin/avahi-autoipd -D $interface\n", "eth1"), 1);
    EXPECT_EQ(Apipa("/usr/sbin/avahi-autoipd", "eth1"), 1) << "also without its newline";
}

TEST_F(ExitHooksTest, WithoutADaemonLineItIsOff) {
    EXPECT_EQ(Apipa(""), 2);
    EXPECT_EQ(Apipa("#!/bin/sh\nexit 0\n"), 2);
    EXPECT_EQ(Apipa("/usr/sbin/avahi-autoip -D\n"), 2);
}

TEST_F(ExitHooksTest, ACommentedDaemonLineIsOff) {
    EXPECT_EQ(Apipa("#/usr/sbin/avahi-autoipd -D\n"), 2);
    EXPECT_EQ(Apipa("  # /usr/sbin/avahi-autoipd -D\n"), 2);
    EXPECT_EQ(Apipa("x # y; /usr/sbin/avahi-autoipd -D\n"), 2);
    EXPECT_EQ(Apipa("/usr/sbin/avahi-autoipd -D # x\n"), 1);
}

TEST_F(ExitHooksTest, TheDaemonMustBeAWholeWord) {
    EXPECT_EQ(Apipa("/usr/sbin/avahi-autoipd\n"), 1);
    EXPECT_EQ(Apipa("/usr/sbin/avahi-autoipd;\n"), 1);
    EXPECT_EQ(Apipa("/usr/sbin/avahi-autoipd,\n"), 1);
    EXPECT_EQ(Apipa("\t/usr/sbin/avahi-autoipd\t-D\n"), 1);
    EXPECT_EQ(Apipa("sudo /usr/sbin/avahi-autoipd -D\n"), 1);
    EXPECT_EQ(Apipa("/usr/sbin/avahi-autoipd.action\n"), 2);
    EXPECT_EQ(Apipa("/usr/sbin/avahi-autoipd&\n"), 2);
    EXPECT_EQ(Apipa("/usr/sbin/avahi-autoipd\r\n"), 2);
    EXPECT_EQ(Apipa("/usr/sbin/avahi-autoipd#x\n"), 2);
    EXPECT_EQ(Apipa("\"/usr/sbin/avahi-autoipd\" -D\n"), 2);
    EXPECT_EQ(Apipa("x;/usr/sbin/avahi-autoipd -D\n"), 2);
    EXPECT_EQ(Apipa("[ -x /usr/sbin/avahi-autoipd] && /usr/sbin/avahi-autoipd -D\n"), 2)
        << "only its first place on a line is looked at";
}

TEST_F(ExitHooksTest, EachInterfaceAnswersForItsBranch) {
    const std::string script =
        "if [ \"$interface\" = eth0 ]; then\n"
        "  /usr/sbin/avahi-autoipd -D eth0\n"
        "else\n"
        "  #/usr/sbin/avahi-autoipd -D eth1\n"
        "fi\n";
    EXPECT_EQ(Apipa(script, "eth0"), 1);
    EXPECT_EQ(Apipa(script, "eth1"), 2);
    const std::string other =
        "if [ \"$interface\" = eth0 ]; then\n"
        "  #/usr/sbin/avahi-autoipd -D eth0\n"
        "else\n"
        "  /usr/sbin/avahi-autoipd -D eth1\n"
        "fi\n";
    EXPECT_EQ(Apipa(other, "eth0"), 2);
    EXPECT_EQ(Apipa(other, "eth1"), 1);
}

TEST_F(ExitHooksTest, ALineThatRunsForTheOtherInterfaceAloneIsOff) {
    const std::string script =
        "if [ \"$interface\" = eth0 ]; then\n"
        "  /usr/sbin/avahi-autoipd -D\n"
        "fi\n";
    EXPECT_EQ(Apipa(script, "eth0"), 1);
    EXPECT_EQ(Apipa(script, "eth1"), 2);
}

TEST_F(ExitHooksTest, ALaterLineThatRunsCounts) {
    EXPECT_EQ(Apipa("#/usr/sbin/avahi-autoipd -D\n"
                    "if [ \"$interface\" = eth0 ]; then\n"
                    "  /usr/sbin/avahi-autoipd -D\n"
                    "fi\n"
                    "/usr/sbin/avahi-autoipd -D\n",
                    "eth1"),
              1);
}

TEST_F(ExitHooksTest, TheLineThatEndsABlockIsLookedAt) {
    EXPECT_EQ(Apipa("if [ \"$interface\" = eth0 ]; then\n"
                    "  true\n"
                    "/usr/sbin/avahi-autoipd -D ; fi\n",
                    "eth1"),
              1);
    EXPECT_EQ(Apipa("if [ \"$interface\" = eth0 ]; then /usr/sbin/avahi-autoipd -D ; fi\n", "eth1"),
              1);
}

TEST_F(ExitHooksTest, TheLineThatBeginsABranchBelongsToIt) {
    EXPECT_EQ(Apipa("if [ \"$interface\" = eth0 ]; then /usr/sbin/avahi-autoipd -D\nfi\n", "eth0"),
              1);
    EXPECT_EQ(Apipa("if [ \"$interface\" = eth0 ]; then /usr/sbin/avahi-autoipd -D\nfi\n", "eth1"),
              2);
    EXPECT_EQ(Apipa("if [ \"$interface\" = eth0 ]\n/usr/sbin/avahi-autoipd -D\nthen\nfi\n", "eth1"),
              1)
        << "lines before \"then\" run";
}

TEST_F(ExitHooksTest, WithoutAnInterfaceThenBranchesAreLookedAt) {
    EXPECT_EQ(Apipa("if [ \"$interface\" = eth0 ]; then\n/usr/sbin/avahi-autoipd\nfi\n", ""), 1);
    EXPECT_EQ(
        Apipa("if [ \"$interface\" = eth0 ]; then\ntrue\nelse\n/usr/sbin/avahi-autoipd\nfi\n", ""),
        2);
}

TEST_F(ExitHooksTest, GetsTheDaemonsSwitchThroughTheTables) {
    WriteFile(kExitHooks, "if [ \"$interface\" = eth1 ]; then\n/usr/sbin/avahi-autoipd -D\nfi\n");
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_APIPA, "eth1"), 0);
    EXPECT_EQ(testkit::Data(response), "\x01" + std::string(511, '\0'));
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_APIPA, "eth0"), 0);
    EXPECT_EQ(testkit::Data(response), "\x02" + std::string(511, '\0'));
}

TEST_F(ExitHooksTest, AGetReadsTheScriptOnceAndRunsNothing) {
    WriteFile(kExitHooks, "/usr/sbin/avahi-autoipd -D\nexit 0\n");
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_APIPA, "eth0"), 0);
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kExitHooks));
    EXPECT_THAT(libc().Events(Call::kRead), SizeIs(1));
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

TEST_F(ExitHooksTest, AScriptThatCannotBeReadIsAFailure) {
    char out[VELK_DATA_SIZE] = "unchanged";
    EXPECT_EQ(GetApipa(MakeRequest(VELK_GET, VELK_CMD_APIPA, "eth0"), out), -1);
    EXPECT_STREQ(out, "unchanged");
    EXPECT_EQ(Execute(VELK_GET, VELK_CMD_APIPA, "eth0"), -1);
    EXPECT_EQ(testkit::Data(response), std::string(512, '\0'));
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(ExitHooksTest, ANullOutputIsAFailure) {
    WriteFile(kExitHooks, "/usr/sbin/avahi-autoipd\n");
    EXPECT_EQ(GetApipa(MakeRequest(VELK_GET, VELK_CMD_APIPA, "eth0"), nullptr), -1);
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
}

// ---- switching

TEST_F(ExitHooksTest, AnyCommandMayBeSwitched) {
    EXPECT_EQ(Switched("/bin/a x\n/bin/b y\n", "/bin/b", kOffByte), "/bin/a x\n#/bin/b y\n");
    EXPECT_EQ(Switched("#/bin/a x\n#/bin/b y\n", "/bin/a", kOnByte), "/bin/a x\n#/bin/b y\n");
}

TEST_F(ExitHooksTest, TheEmptyCommandIsFoundOnEveryLine) {
    EXPECT_EQ(Switched("a\n\n#b\n", "", kOffByte), "#a\n#\n#b\n");
    EXPECT_EQ(Switched("#a\n#\nb # c\n", "", kOnByte), "a\n\nb # c\n");
}

TEST_F(ExitHooksTest, ANullCommandIsAFailureThatTouchesNothing) {
    WriteFile(kExitHooks, "a");
    EXPECT_EQ(SetDhclient(Switch("eth0", kOnByte), nullptr), -1);
    EXPECT_EQ(ReadFile(kExitHooks), "a");
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
    EXPECT_FALSE(Exists(kExitHooksCopy));
}

TEST_F(ExitHooksTest, AnUnknownStateSwitchesNothingButRewritesTheScript) {
    for (const char state : {'\0', '\3', '1', '\xff'}) {
        EXPECT_EQ(Switched("/bin/a\n#/bin/a", "/bin/a", state), "/bin/a\n#/bin/a\n");
    }
    EXPECT_EQ(libc().Commands().size(), 8U);
}

TEST_F(ExitHooksTest, WithoutAnInterfaceEveryLineIsSwitched) {
    EXPECT_EQ(Switched("/bin/a 1\n"
                       "if [ \"$interface\" = eth0 ]; then\n"
                       "  /bin/a 2\n"
                       "else\n"
                       "  /bin/a 3\n"
                       "fi\n"
                       "/bin/a 4\n",
                       "/bin/a", kOffByte, ""),
              "#/bin/a 1\n"
              "if [ \"$interface\" = eth0 ]; then\n"
              "#  /bin/a 2\n"
              "else\n"
              "#  /bin/a 3\n"
              "fi\n"
              "#/bin/a 4\n");
}

TEST_F(ExitHooksTest, TheApipaSetterSwitchesTheLinkLocalDaemon) {
    WriteFile(kExitHooks, "/usr/sbin/avahi-autoipd -D\n/usr/bin/ntpdate x\n");
    EXPECT_EQ(SetApipa(Switch("eth0", kOffByte), nullptr), 0);
    EXPECT_EQ(ReadFile(kExitHooks), "#/usr/sbin/avahi-autoipd -D\n/usr/bin/ntpdate x\n");
    EXPECT_EQ(SetApipa(Switch("eth0", kOnByte), nullptr), 0);
    EXPECT_EQ(ReadFile(kExitHooks), "/usr/sbin/avahi-autoipd -D\n/usr/bin/ntpdate x\n");
}

TEST_F(ExitHooksTest, TheClockSetterIsSwitchedForEveryInterfaceWithoutOne) {
    WriteFile(kExitHooks,
              "if [ \"$interface\" = eth0 ]; then\n"
              "/usr/bin/ntpdate x\n"
              "fi\n"
              "/usr/sbin/avahi-autoipd -D\n");
    EXPECT_EQ(SetNtpdate(Switch("", kOffByte)), 0);
    EXPECT_EQ(ReadFile(kExitHooks),
              "if [ \"$interface\" = eth0 ]; then\n"
              "#/usr/bin/ntpdate x\n"
              "fi\n"
              "/usr/sbin/avahi-autoipd -D\n");
    EXPECT_EQ(SetNtpdate(Switch("eth1", kOnByte)), 0);
    EXPECT_EQ(ReadFile(kExitHooks),
              "if [ \"$interface\" = eth0 ]; then\n"
              "#/usr/bin/ntpdate x\n"
              "fi\n"
              "/usr/sbin/avahi-autoipd -D\n");
}

TEST_F(ExitHooksTest, AScriptThatCannotBeOpenedIsAFailure) {
    EXPECT_EQ(SetApipa(Switch("eth0", kOnByte), nullptr), -1);
    EXPECT_EQ(ReadFile(kExitHooksCopy), "");
    EXPECT_THAT(libc().Story(), IsEmpty());
    EXPECT_FALSE(Exists(kExitHooks));
}

TEST_F(ExitHooksTest, ACopyThatCannotBeOpenedIsAFailure) {
    WriteFile(kExitHooks, "/usr/sbin/avahi-autoipd -D");
    ASSERT_EQ(mkdir(kExitHooksCopy, 0755), 0);
    EXPECT_EQ(SetApipa(Switch("eth0", kOffByte), nullptr), -1);
    EXPECT_EQ(ReadFile(kExitHooks), "/usr/sbin/avahi-autoipd -D");
    EXPECT_THAT(libc().Story(), IsEmpty());
}

// ---- print notices

TEST_F(ExitHooksTest, BothNoticesAreSwitchedInOrder) {
    WriteFile(kExitHooks, kNotices);
    EXPECT_EQ(SetPrintDHCPFinished(Switch("eth0", kOffByte), nullptr), 0);
    EXPECT_EQ(ReadFile(kExitHooks),
              "#/sbin/printdhcpnotice.pl $interface\n"
              "#/sbin/printdhcpstart.pl $interface\n");
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/dhclient-exit-hooks > /etc/dhclient-exit-hooks",
                            "system rm /var/tmp/dhclient-exit-hooks",
                            "system cat /var/tmp/dhclient-exit-hooks > /etc/dhclient-exit-hooks",
                            "system rm /var/tmp/dhclient-exit-hooks"));
    EXPECT_EQ(SetPrintDHCPFinished(Switch("eth0", kOnByte), nullptr), 0);
    EXPECT_EQ(ReadFile(kExitHooks), kNotices);
}

TEST_F(ExitHooksTest, TheFinishNoticeIsSwitchedFirst) {
    WriteFile(kExitHooks, kNotices);
    std::vector<std::string> steps;
    libc().OnCall(Call::kSystem, [&](const testkit::Event& event) {
        if (event.text.starts_with("cat ")) {
            steps.push_back(ReadFile(kExitHooksCopy));
            WriteFile(kExitHooks, steps.back());
        }
    });
    EXPECT_EQ(SetPrintDHCPFinished(Switch("eth0", kOffByte), nullptr), 0);
    EXPECT_THAT(steps, ElementsAre("#/sbin/printdhcpnotice.pl $interface\n"
                                   "/sbin/printdhcpstart.pl $interface\n",
                                   "#/sbin/printdhcpnotice.pl $interface\n"
                                   "#/sbin/printdhcpstart.pl $interface\n"));
}

TEST_F(ExitHooksTest, TheStartNoticeIsLeftAloneWhenTheFirstCannotBeWritten) {
    WriteFile(kExitHooks, kNotices);
    libc().Script(Call::kWrite, {Fail(ENOSPC)});
    EXPECT_EQ(SetPrintDHCPFinished(Switch("eth0", kOffByte), nullptr), -1);
    EXPECT_THAT(libc().Story(), ElementsAre("log FileEdit write errno=28:No space left on device"));
    EXPECT_EQ(ReadFile(kExitHooks), kNotices);
    EXPECT_FALSE(Exists(kExitHooksCopy));
}

TEST_F(ExitHooksTest, TheStartNoticeIsLeftAloneWhenTheScriptIsMissing) {
    EXPECT_EQ(SetPrintDHCPFinished(Switch("eth0", kOffByte), nullptr), -1);
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kExitHooks, kExitHooksCopy));
}

TEST_F(ExitHooksTest, AFailureAtTheStartNoticeIsPassedOn) {
    WriteFile(kExitHooks, kNotices);
    libc().Script(Call::kWrite, {Pass(), Fail(ENOSPC)});
    EXPECT_EQ(SetPrintDHCPFinished(Switch("eth0", kOffByte), nullptr), -1);
    EXPECT_EQ(ReadFile(kExitHooks),
              "#/sbin/printdhcpnotice.pl $interface\n"
              "/sbin/printdhcpstart.pl $interface\n");
}

TEST_F(ExitHooksTest, OtherInterfacesGetTheDifferenceOfTheNamesAndChangeNothing) {
    WriteFile(kExitHooks, kNotices);
    EXPECT_THAT(SetPrintDHCPFinished(Switch("eth1", kOffByte), nullptr), Gt(0));
    EXPECT_THAT(SetPrintDHCPFinished(Switch("eth00", kOffByte), nullptr), Gt(0));
    EXPECT_THAT(SetPrintDHCPFinished(Switch("wlan0", kOffByte), nullptr), Gt(0));
    EXPECT_THAT(SetPrintDHCPFinished(Switch("eth", kOffByte), nullptr), Lt(0));
    EXPECT_THAT(SetPrintDHCPFinished(Switch("", kOffByte), nullptr), Lt(0));
    EXPECT_THAT(SetPrintDHCPFinished(Switch("Eth0", kOffByte), nullptr), Lt(0));
    EXPECT_THAT(SetPrintDHCPFinished(Switch("\xff", kOffByte), nullptr), Gt(0));
    EXPECT_THAT(SetPrintDHCPFinished(Switch("eth0eth0eth0eth0", kOffByte), nullptr), Gt(0));
    EXPECT_EQ(ReadFile(kExitHooks), kNotices);
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
}

}  // namespace
