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
#include "unit/lib/dhcp/switch.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Exists;
using testkit::Fail;
using testkit::kClientScript;
using testkit::kClientScriptCopy;
using testkit::kOff;
using testkit::kOn;
using testkit::ReadFile;
using testkit::Return;
using testkit::WriteFile;

constexpr char kBothBranches[] =
    "if [ \"$interface\" = \"eth0\" ]; then\n"
    "  make_resolv_conf\n"
    "else\n"
    "  make_resolv_conf\n"
    "fi\n";

class ClientScriptTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        rmdir(kClientScriptCopy);  // left by the tests with a folder in the copy's place
        DeviceTest::TearDown();
    }
    // The script after a switch.
    static std::string Switched(std::string_view script, bool enable,
                                const std::string& nic = "eth0") {
        WriteFile(kClientScript, script);
        EXPECT_EQ(SetDnsDhcpScript(nic, enable), 0);
        EXPECT_FALSE(Exists(kClientScriptCopy));
        return ReadFile(kClientScript);
    }
    testkit::FakeShell shell;
};

// ---- the switched lines

TEST_F(ClientScriptTest, ACallOutsideBlocksIsSwitchedForEveryInterface) {
    for (const char* nic : {"eth0", "eth1", "wlan0", ""}) {
        EXPECT_EQ(Switched("make_resolv_conf\n", kOff, nic), "#make_resolv_conf\n");
        EXPECT_EQ(Switched("#make_resolv_conf\n", kOn, nic), "make_resolv_conf\n");
    }
}

TEST_F(ClientScriptTest, EachInterfaceHasItsBranch) {
    EXPECT_EQ(Switched(kBothBranches, kOff, "eth0"),
              "if [ \"$interface\" = \"eth0\" ]; then\n"
              "#  make_resolv_conf\n"
              "else\n"
              "  make_resolv_conf\n"
              "fi\n");
    EXPECT_EQ(Switched(kBothBranches, kOff, "eth1"),
              "if [ \"$interface\" = \"eth0\" ]; then\n"
              "  make_resolv_conf\n"
              "else\n"
              "#  make_resolv_conf\n"
              "fi\n");
}

TEST_F(ClientScriptTest, TheEmptyInterfaceIsNamedInEveryCondition) {
    EXPECT_EQ(Switched(kBothBranches, kOff, ""),
              "if [ \"$interface\" = \"eth0\" ]; then\n"
              "#  make_resolv_conf\n"
              "else\n"
              "  make_resolv_conf\n"
              "fi\n")
        << "the else branch is for those that are not named";
    EXPECT_EQ(Switched("if [ -n \"$interface\" ]; then\n"
                       "  make_resolv_conf\n"
                       "fi\n"
                       "make_resolv_conf\n",
                       kOff, ""),
              "if [ -n \"$interface\" ]; then\n"
              "#  make_resolv_conf\n"
              "fi\n"
              "#make_resolv_conf\n");
}

TEST_F(ClientScriptTest, AnIfWithoutTheInterfaceIsNoBlock) {
    EXPECT_EQ(Switched("if [ \"$reason\" = eth1 ]; then\n"
                       "  make_resolv_conf\n"
                       "else\n"
                       "  make_resolv_conf\n"
                       "fi\n",
                       kOff, "eth0"),
              "if [ \"$reason\" = eth1 ]; then\n"
              "#  make_resolv_conf\n"
              "else\n"
              "#  make_resolv_conf\n"
              "fi\n");
}

TEST_F(ClientScriptTest, TheDefinitionIsNoCall) {
    const std::string script = "make_resolv_conf() {\n  true\n}\n#make_resolv_conf() {\n";
    EXPECT_EQ(Switched(script, kOff), script);
    EXPECT_EQ(Switched(script, kOn), script);
}

TEST_F(ClientScriptTest, OnlyTheNameAsAWordIsACall) {
    EXPECT_EQ(Switched("make_resolv_conf;\n", kOff), "#make_resolv_conf;\n");
    EXPECT_EQ(Switched("make_resolv_conf,\n", kOff), "#make_resolv_conf,\n");
    EXPECT_EQ(Switched("\tmake_resolv_conf\tx\n", kOff), "#\tmake_resolv_conf\tx\n");
    EXPECT_EQ(Switched("true, make_resolv_conf\n", kOff), "#true, make_resolv_conf\n");
    EXPECT_EQ(Switched("true,make_resolv_conf\n", kOff), "#true,make_resolv_conf\n");
    for (const char* line : {"make_resolv_conf ()\n", "x make_resolv_conf #\n"}) {
        EXPECT_EQ(Switched(line, kOff), "#" + std::string(line));
    }
    for (const char* line : {"make_resolv_conf&\n", "make_resolv_conf)\n", "make_resolv_conf\r\n",
                             "make_resolv_conf#\n", ";make_resolv_conf\n", "`make_resolv_conf`\n",
                             "x_make_resolv_conf\n", "make_resolv_conf2\n", "Make_resolv_conf\n",
                             "\"make_resolv_conf\" make_resolv_conf\n"}) {
        EXPECT_EQ(Switched(line, kOff), line);
        EXPECT_EQ(Switched("#" + std::string(line), kOn), "#" + std::string(line));
    }
}

TEST_F(ClientScriptTest, ALineAlreadyInTheWantedStateStays) {
    EXPECT_EQ(Switched("#make_resolv_conf\n", kOff), "#make_resolv_conf\n");
    EXPECT_EQ(Switched("# make_resolv_conf\n", kOff), "# make_resolv_conf\n");
    EXPECT_EQ(Switched("make_resolv_conf\n", kOn), "make_resolv_conf\n");
    EXPECT_EQ(Switched("make_resolv_conf # x\n", kOn), "make_resolv_conf # x\n");
}

TEST_F(ClientScriptTest, OffPutsAMarkIntoColumnOneAndOnDeletesTheFirstMark) {
    EXPECT_EQ(Switched("    make_resolv_conf\n", kOff), "#    make_resolv_conf\n");
    EXPECT_EQ(Switched("#    make_resolv_conf\n", kOn), "    make_resolv_conf\n");
    EXPECT_EQ(Switched("  # make_resolv_conf\n", kOn), "   make_resolv_conf\n");
    EXPECT_EQ(Switched("##make_resolv_conf\n", kOn), "#make_resolv_conf\n");
    EXPECT_EQ(Switched("# # make_resolv_conf\n", kOn), " # make_resolv_conf\n");
    EXPECT_EQ(Switched("make_resolv_conf # x\n", kOff), "#make_resolv_conf # x\n");
    EXPECT_EQ(Switched("#make_resolv_conf # x\n", kOn), "make_resolv_conf # x\n");
}

TEST_F(ClientScriptTest, ACallOnTheLineOfFiIsSwitchedForEveryInterface) {
    EXPECT_EQ(
        Switched("if [ $interface = eth0 ]; then true\n make_resolv_conf; fi\n", kOff, "eth1"),
        "if [ $interface = eth0 ]; then true\n# make_resolv_conf; fi\n");
    EXPECT_EQ(Switched("if [ $interface = eth0 ]; then make_resolv_conf; fi\n", kOff, "eth1"),
              "#if [ $interface = eth0 ]; then make_resolv_conf; fi\n");
}

TEST_F(ClientScriptTest, ABlockSwitchedOffByItsOwnIfStaysOffForGood) {
    // Without its "if" line there is no block, and both calls are outside blocks.
    const std::string script =
        "if [ $interface = eth0 ]; then make_resolv_conf\n"
        "else\n"
        "  make_resolv_conf\n"
        "fi\n";
    const std::string off =
        "#if [ $interface = eth0 ]; then make_resolv_conf\n"
        "else\n"
        "  make_resolv_conf\n"
        "fi\n";
    EXPECT_EQ(Switched(script, kOff, "eth0"), off);
    EXPECT_EQ(Switched(off, kOff, "eth0"),
              "#if [ $interface = eth0 ]; then make_resolv_conf\n"
              "else\n"
              "#  make_resolv_conf\n"
              "fi\n");
}

TEST_F(ClientScriptTest, ALastLineWithoutItsEndGetsOne) {
    EXPECT_EQ(Switched("x\nmake_resolv_conf", kOff), "x\n#make_resolv_conf\n");
    EXPECT_EQ(Switched("x", kOff), "x\n");
    EXPECT_EQ(Switched("", kOff), "");
}

// ---- files and results

TEST_F(ClientScriptTest, TheCopyIsPutInPlaceByTheShell) {
    WriteFile(kClientScript, "make_resolv_conf\n");
    std::string copy;
    libc().OnCall(Call::kSystem, [&](const testkit::Event& event) {
        if (event.text.starts_with("cat ")) {
            copy = ReadFile(kClientScriptCopy);
        }
    });
    EXPECT_EQ(SetDnsDhcpScript("eth0", kOff), 0);
    EXPECT_EQ(copy, "#make_resolv_conf\n");
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/dhclient-script > /sbin/dhclient-script",
                            "system rm /var/tmp/dhclient-script"));
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kClientScript, kClientScriptCopy));
}

TEST_F(ClientScriptTest, AScriptWithoutACallIsRewrittenAsItIs) {
    EXPECT_EQ(Switched("#!/bin/sh\nexit 0\n", kOff), "#!/bin/sh\nexit 0\n");
    EXPECT_THAT(libc().Commands(),
                ElementsAre("cat /var/tmp/dhclient-script > /sbin/dhclient-script",
                            "rm /var/tmp/dhclient-script"));
}

TEST_F(ClientScriptTest, AFailedCopyIsNotReported) {
    for (const testkit::Outcome outcome : {Return(256), Fail(ENOMEM)}) {
        WriteFile(kClientScript, "make_resolv_conf\n");
        libc().Script(Call::kSystem, {outcome, outcome});
        EXPECT_EQ(SetDnsDhcpScript("eth0", kOff), 0);
    }
    EXPECT_THAT(libc().Logs(), ElementsAre("system errno=12:Cannot allocate memory",
                                           "system errno=12:Cannot allocate memory"));
}

TEST_F(ClientScriptTest, AMissingScriptIsAFailureThatLeavesAnEmptyCopy) {
    WriteFile(kClientScriptCopy, "of another edit\n");
    EXPECT_EQ(SetDnsDhcpScript("eth0", kOff), -1);
    EXPECT_FALSE(Exists(kClientScript));
    EXPECT_EQ(ReadFile(kClientScriptCopy), "");
    EXPECT_THAT(libc().Story(), IsEmpty());
    unlink(kClientScriptCopy);
    EXPECT_EQ(SetDnsDhcpScript("", kOn), -1);
    EXPECT_TRUE(Exists(kClientScriptCopy));
    EXPECT_EQ(ReadFile(kClientScriptCopy), "");
}

TEST_F(ClientScriptTest, ACopyThatCannotBeWrittenIsAFailure) {
    ASSERT_EQ(mkdir(kClientScriptCopy, 0700), 0);
    WriteFile(kClientScript, "make_resolv_conf");
    EXPECT_EQ(SetDnsDhcpScript("eth0", kOff), -1);
    EXPECT_EQ(ReadFile(kClientScript), "make_resolv_conf");
    EXPECT_THAT(libc().Story(), IsEmpty());
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kClientScript, kClientScriptCopy));
}

TEST_F(ClientScriptTest, BothFilesAreOpenedBeforeAFailure) {
    ASSERT_EQ(mkdir(kClientScriptCopy, 0700), 0);
    EXPECT_EQ(SetDnsDhcpScript("eth0", kOff), -1);
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kClientScript, kClientScriptCopy));
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(ClientScriptTest, AFullFolderForCopiesLeavesTheScriptAsItWas) {
    WriteFile(kClientScript, "make_resolv_conf");
    libc().Script(Call::kWrite, {Fail(ENOSPC)});
    EXPECT_EQ(SetDnsDhcpScript("eth0", kOff), -1);
    EXPECT_THAT(libc().Story(), ElementsAre("log FileEdit write errno=28:No space left on device"));
    EXPECT_EQ(ReadFile(kClientScript), "make_resolv_conf");
    EXPECT_FALSE(Exists(kClientScriptCopy));
}

class ClientScriptFileTest : public testkit::DeviceTest {};

TEST_F(ClientScriptFileTest, TheScriptStaysExecutable) {
    WriteFile(kClientScript, "#!/bin/sh\nmake_resolv_conf\n");
    ASSERT_EQ(chmod(kClientScript, 0755), 0);
    struct stat before {};
    ASSERT_EQ(stat(kClientScript, &before), 0);
    EXPECT_EQ(SetDnsDhcpScript("eth0", kOff), 0);
    struct stat after {};
    ASSERT_EQ(stat(kClientScript, &after), 0);
    EXPECT_EQ(ReadFile(kClientScript), "#!/bin/sh\n#make_resolv_conf\n");
    EXPECT_EQ(after.st_mode, before.st_mode);
    EXPECT_EQ(after.st_ino, before.st_ino);
    EXPECT_FALSE(Exists(kClientScriptCopy));
}

}  // namespace
