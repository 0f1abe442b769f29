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
using testing::SizeIs;
using testkit::Call;
using testkit::Exists;
using testkit::Fail;
using testkit::kDhcpConfigCopy;
using testkit::kDhcpConfigFile;
using testkit::kOff;
using testkit::kOn;
using testkit::ReadFile;
using testkit::WriteFile;

constexpr bool kAdd = true;
constexpr bool kRemove = false;

class RequestOptionsTest : public testkit::DeviceTest {
  protected:
    void TearDown() override {
        rmdir(kDhcpConfigCopy);  // left by the tests with a folder in the copy's place
        DeviceTest::TearDown();
    }
    static bool Requests(std::string_view text, const std::string& option = "ntp-servers",
                         const std::string& nic = "eth0", bool comment_aware = false) {
        WriteFile(kDhcpConfigFile, text);
        bool requested = false;
        EXPECT_EQ(GetDhcpServer(nic, option, requested, comment_aware), 0);
        bool again = true;  // the answer does not depend on the old value
        EXPECT_EQ(GetDhcpServer(nic, option, again, comment_aware), 0);
        EXPECT_EQ(requested, again);
        return requested;
    }
    static std::string Edited(std::string_view text, bool add,
                              const std::string& option = "ntp-servers",
                              const std::string& nic = "eth0", bool comment_aware = false) {
        WriteFile(kDhcpConfigFile, text);
        EXPECT_EQ(SetDhcpServer(nic, option, add, comment_aware), 0);
        EXPECT_FALSE(Exists(kDhcpConfigCopy));
        return ReadFile(kDhcpConfigFile);
    }
    static std::string Switched(std::string_view text, bool enable,
                                const std::string& nic = "eth0") {
        WriteFile(kDhcpConfigFile, text);
        EXPECT_EQ(SetDhcpRequest(nic, enable), 0);
        EXPECT_FALSE(Exists(kDhcpConfigCopy));
        return ReadFile(kDhcpConfigFile);
    }
    testkit::FakeShell shell;
};

// ---- reading

TEST_F(RequestOptionsTest, FindsAnOptionInTheRequestStatement) {
    EXPECT_TRUE(Requests("request subnet-mask, ntp-servers;\n"));
    EXPECT_TRUE(Requests("request ntp-servers;\n"));
    EXPECT_TRUE(Requests("request ntp-servers, subnet-mask;"));
    EXPECT_TRUE(Requests("  request\tntp-servers;\n"));
}

TEST_F(RequestOptionsTest, AStatementWithoutTheOptionDoesNotRequestIt) {
    EXPECT_FALSE(Requests("request subnet-mask, routers;\n"));
    EXPECT_FALSE(Requests(""));
    EXPECT_FALSE(Requests("ntp-servers\nsend ntp-servers;\n"));
    EXPECT_FALSE(Requests("require ntp-servers;\n"));
}

TEST_F(RequestOptionsTest, RequestMustBeAWholeWord) {
    EXPECT_FALSE(Requests("requests ntp-servers;\n"));
    EXPECT_FALSE(Requests("also-request ntp-servers;\n"));
    EXPECT_FALSE(Requests("request\r\n ntp-servers;\n"));
    EXPECT_TRUE(Requests("also request ntp-servers;\n"));
    EXPECT_TRUE(Requests("request;ntp-servers\n"));
}

TEST_F(RequestOptionsTest, TheOptionIsAnyPartOfTheText) {
    EXPECT_TRUE(Requests("request sntp-serversx;\n"));
    EXPECT_TRUE(Requests("interface \"eth0\" {\nrequest subnet-mask; # ntp-servers\n}\n"));
    EXPECT_TRUE(Requests("request subnet-mask;\n", ""));
}

TEST_F(RequestOptionsTest, AStatementMayRunOverLines) {
    EXPECT_TRUE(Requests("request subnet-mask,\n    ntp-servers;\n"));
    EXPECT_TRUE(Requests("request\n  subnet-mask,\n\n  # more\n  routers,\n  ntp-servers\n  ;\n"))
        << "a commented line at global scope is passed over";
    EXPECT_FALSE(Requests("request subnet-mask,\n  routers;\n  ntp-servers;\n"));
    EXPECT_FALSE(Requests("request subnet-mask,\n  ntp-servers; # x\n"))
        << "a global line with a \"#\" is passed over whole";
}

TEST_F(RequestOptionsTest, OnlyTheFirstStatementIsConsulted) {
    EXPECT_FALSE(Requests("request subnet-mask;\nrequest ntp-servers;\n"));
    EXPECT_FALSE(
        Requests("request subnet-mask, routers;\n"
                 "interface \"eth0\" {\n"
                 "  request subnet-mask, ntp-servers;\n"
                 "}\n"));
}

TEST_F(RequestOptionsTest, AStatementWithoutAnEndIncludesTheNextOne) {
    EXPECT_TRUE(Requests("request subnet-mask\nrequest ntp-servers;\n"));
}

TEST_F(RequestOptionsTest, TheInterfacesBlockCountsAndOthersDoNot) {
    const std::string text =
        "interface \"eth1\" {\n"
        "  request ntp-servers;\n"
        "}\n"
        "interface \"eth0\" {\n"
        "  request subnet-mask;\n"
        "}\n";
    EXPECT_FALSE(Requests(text, "ntp-servers", "eth0"));
    EXPECT_TRUE(Requests(text, "ntp-servers", "eth1"));
    EXPECT_TRUE(Requests(text, "subnet-mask", "eth0"));
    EXPECT_TRUE(Requests(text, "ntp-servers", ""));
}

TEST_F(RequestOptionsTest, AGlobalStatementAfterTheBlocksCounts) {
    EXPECT_TRUE(Requests("interface \"eth1\" {\n request x;\n}\nrequest ntp-servers;\n"));
    EXPECT_TRUE(Requests("interface \"eth1\" { request x; }\nrequest ntp-servers;\n"));
}

TEST_F(RequestOptionsTest, ACommentedGlobalStatementIsPassedOver) {
    EXPECT_FALSE(Requests("#request ntp-servers;\n"));
    EXPECT_FALSE(Requests("request ntp-servers; # time\n"));
    EXPECT_TRUE(Requests("#request subnet-mask;\nrequest ntp-servers;\n"));
}

TEST_F(RequestOptionsTest, ACommentedStatementWithinTheBlockCountsUnlessCommentsAreSkipped) {
    const std::string text =
        "interface \"eth0\" {\n"
        "#  request ntp-servers;\n"
        "#request ntp-servers;\n"
        "}\n";
    EXPECT_TRUE(Requests(text, "ntp-servers", "eth0", /*comment_aware=*/false));
    EXPECT_FALSE(Requests(text, "ntp-servers", "eth0", /*comment_aware=*/true));
}

TEST_F(RequestOptionsTest, ASwitchedOffBlockIsABlockUnlessCommentsAreSkipped) {
    const std::string text =
        "#interface \"eth1\" {\n"
        "#request ntp-servers;\n"
        "#}\n"
        "request subnet-mask;\n";
    EXPECT_FALSE(Requests(text, "ntp-servers", "eth0", /*comment_aware=*/false));
    EXPECT_TRUE(Requests(text, "ntp-servers", "eth1", /*comment_aware=*/false));
    EXPECT_FALSE(Requests(text, "ntp-servers", "eth1", /*comment_aware=*/true));
    EXPECT_TRUE(Requests(text, "subnet-mask", "eth1", /*comment_aware=*/true));
}

TEST_F(RequestOptionsTest, TheClosingLineIsNoLineOfTheBlock) {
    EXPECT_TRUE(Requests("interface \"eth0\" {\n} request ntp-servers;\n"));
    EXPECT_FALSE(Requests("interface \"eth0\" {\n} request ntp-servers; # x\n"));
}

TEST_F(RequestOptionsTest, TheOpeningLineIsALineOfTheBlock) {
    EXPECT_TRUE(Requests("interface \"eth0\" { request ntp-servers; # x\n"));
}

TEST_F(RequestOptionsTest, AStatementRunsOnAcrossOtherBlocks) {
    EXPECT_TRUE(
        Requests("request subnet-mask,\n"
                 "interface \"eth1\" {\n"
                 "  routers;\n"
                 "}\n"
                 "ntp-servers;\n"));
}

TEST_F(RequestOptionsTest, AConfigurationThatCannotBeReadIsAFailure) {
    for (bool requested : {true, false}) {
        const bool before = requested;
        EXPECT_EQ(GetDhcpServer("eth0", "ntp-servers", requested, false), -1);
        EXPECT_EQ(requested, before);
    }
    EXPECT_FALSE(Exists(kDhcpConfigCopy));
    EXPECT_THAT(libc().Logs(), IsEmpty());
}

TEST_F(RequestOptionsTest, AGetReadsTheFileOnceAndRunsNothing) {
    WriteFile(kDhcpConfigFile, "request ntp-servers;\n");
    bool requested = false;
    EXPECT_EQ(GetDhcpServer("eth0", "ntp-servers", requested, false), 0);
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kDhcpConfigFile));
    EXPECT_THAT(libc().Events(Call::kRead), SizeIs(1));
    EXPECT_THAT(libc().Commands(), IsEmpty());
}

// ---- adding and removing an option

TEST_F(RequestOptionsTest, AnAddedOptionIsTheLastOne) {
    EXPECT_EQ(Edited("request subnet-mask, routers;\n", kAdd),
              "request subnet-mask, routers,ntp-servers;\n");
    EXPECT_EQ(Edited("request subnet-mask,\n  routers ; # x\n", kAdd),
              "request subnet-mask,\n  routers ; # x\n")
        << "a global line with a \"#\" is passed over";
    EXPECT_EQ(Edited("request subnet-mask,\n  routers;\n", kAdd),
              "request subnet-mask,\n  routers,ntp-servers;\n");
    EXPECT_EQ(Edited("request;\n", kAdd), "request,ntp-servers;\n");
}

TEST_F(RequestOptionsTest, AddingAfterAStatementWithTheOptionChangesTheNextLineWithAnEnd) {
    EXPECT_EQ(Edited("request subnet-mask, routers;\n"
                     "interface \"eth0\" {\n"
                     "  request subnet-mask, ntp-servers;\n"
                     "  send host-name \"velk\";\n"
                     "}\n",
                     kAdd),
              "request subnet-mask, routers,ntp-servers;\n"
              "interface \"eth0\" {\n"
              "  request subnet-mask, ntp-servers;\n"
              "  send host-name \"velk\",ntp-servers;\n"
              "}\n");
    EXPECT_EQ(Edited("request subnet-mask, routers;\n"
                     "interface \"eth0\" {\n"
                     "  request subnet-mask, ntp-servers;\n"
                     "}\n"
                     "timeout 60;\n"
                     "retry 60;\n",
                     kAdd),
              "request subnet-mask, routers,ntp-servers;\n"
              "interface \"eth0\" {\n"
              "  request subnet-mask, ntp-servers;\n"
              "}\n"
              "timeout 60,ntp-servers;\n"
              "retry 60;\n");
}

TEST_F(RequestOptionsTest, RemovingOnAContinuationLineKeepsItsFirstCharacter) {
    EXPECT_EQ(Edited("request subnet-mask,\n    ntp-servers;\n", kRemove),
              "request subnet-mask,\n ;\n");
    EXPECT_EQ(Edited("request subnet-mask,\n\tntp-servers;\n", kRemove),
              "request subnet-mask,\n\t;\n");
    EXPECT_EQ(Edited("request subnet-mask,\nntp-servers;\n", kRemove), "request subnet-mask,\n;\n");
}

TEST_F(RequestOptionsTest, RemovingTheOnlyOptionLeavesTheKeyword) {
    EXPECT_EQ(Edited("request ntp-servers;\n", kRemove), "request;\n");
}

TEST_F(RequestOptionsTest, RemovingTheLastOptionTakesItsSeparatorAlong) {
    EXPECT_EQ(Edited("request subnet-mask, ntp-servers;\n", kRemove), "request subnet-mask;\n");
    EXPECT_EQ(Edited("request subnet-mask,ntp-servers;\n", kRemove), "request subnet-mask;\n");
    EXPECT_EQ(Edited("request option-121, ntp-servers;\n", kRemove), "request option;\n")
        << "back to the first letter, over digits too";
}

TEST_F(RequestOptionsTest, RemovingAnEarlierOptionTakesItsCommaAlong) {
    EXPECT_EQ(Edited("request ntp-servers, routers;\n", kRemove), "request  routers;\n");
    EXPECT_EQ(Edited("request routers,ntp-servers,x;\n", kRemove), "request routers,x;\n");
}

TEST_F(RequestOptionsTest, RemovingGoesOnUntilAStatementEndsWithoutTheOption) {
    EXPECT_EQ(Edited("request ntp-servers;\n"
                     "send ntp-servers;\n"
                     "timeout 60;\n"
                     "send ntp-servers;\n",
                     kRemove),
              "request;\n"
              "send;\n"
              "timeout 60;\n"
              "send ntp-servers;\n");
}

TEST_F(RequestOptionsTest, EveryStatementThatAppliesIsEdited) {
    EXPECT_EQ(Edited("request a;\n"
                     "interface \"eth1\" {\n"
                     "request b;\n"
                     "}\n"
                     "interface \"eth0\" {\n"
                     "request c;\n"
                     "}\n"
                     "request d;\n",
                     kAdd),
              "request a,ntp-servers;\n"
              "interface \"eth1\" {\n"
              "request b;\n"
              "}\n"
              "interface \"eth0\" {\n"
              "request c,ntp-servers;\n"
              "}\n"
              "request d,ntp-servers;\n");
}

TEST_F(RequestOptionsTest, ACommentedStatementIsEditedWithinTheBlockAlone) {
    const std::string text =
        "#request a;\n"
        "interface \"eth0\" {\n"
        "#request b;\n"
        "}\n";
    EXPECT_EQ(Edited(text, kAdd, "ntp-servers", "eth0", /*comment_aware=*/false),
              "#request a;\n"
              "interface \"eth0\" {\n"
              "#request b,ntp-servers;\n"
              "}\n");
    EXPECT_EQ(Edited(text, kAdd, "ntp-servers", "eth0", /*comment_aware=*/true), text);
}

TEST_F(RequestOptionsTest, WithoutAnInterfaceEveryBlockIsEdited) {
    EXPECT_EQ(Edited("#request a;\n"
                     "}\n"
                     "#request b;\n"
                     "interface \"eth1\" {\n"
                     "#request c;\n"
                     "}\n",
                     kAdd, "ntp-servers", ""),
              "#request a,ntp-servers;\n"
              "}\n"
              "#request b;\n"
              "interface \"eth1\" {\n"
              "#request c,ntp-servers;\n"
              "}\n");
}

TEST_F(RequestOptionsTest, WithoutAStatementOnlyTheLastNewlineIsAdded) {
    EXPECT_EQ(Edited("timeout 60;\nretry 60;", kAdd), "timeout 60;\nretry 60;\n");
    EXPECT_EQ(Edited("", kAdd), "");
}

TEST_F(RequestOptionsTest, AnOptionIsPutInPlaceByTheseLines) {
    EXPECT_EQ(Edited("request a;\n", kAdd), "request a,ntp-servers;\n");
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/dhclient.conf > /etc/dhclient.conf",
                            "system rm /var/tmp/dhclient.conf"));
}

// ---- switching a block

TEST_F(RequestOptionsTest, ABlockIsSwitchedOffAndOnAgain) {
    const std::string on =
        "timeout 60;\n"
        "interface \"eth0\" {\n"
        "  request subnet-mask;\n"
        "\n"
        "}\n"
        "interface \"eth1\" {\n"
        "  request routers;\n"
        "}\n"
        "retry 60;\n";
    const std::string off =
        "timeout 60;\n"
        "#interface \"eth0\" {\n"
        "#  request subnet-mask;\n"
        "#\n"
        "#}\n"
        "interface \"eth1\" {\n"
        "  request routers;\n"
        "}\n"
        "retry 60;\n";
    EXPECT_EQ(Switched(on, kOff), off);
    EXPECT_EQ(Switched(off, kOff), off);
    EXPECT_EQ(Switched(off, kOn), on);
    EXPECT_EQ(Switched(on, kOn), on);
}

TEST_F(RequestOptionsTest, SwitchingOnDeletesTheFirstHashOfALineAtAnyPosition) {
    EXPECT_EQ(Switched("interface \"eth0\" { # wired\n  # all\n##x\n}\n", kOn),
              "interface \"eth0\" {  wired\n   all\n#x\n}\n");
}

TEST_F(RequestOptionsTest, SwitchingOffLeavesLinesThatHoldAHash) {
    EXPECT_EQ(Switched("interface \"eth0\" { # wired\n  a\n}\n", kOff),
              "interface \"eth0\" { # wired\n#  a\n#}\n");
}

TEST_F(RequestOptionsTest, AGlobalLineWithABraceIsSwitchedToo) {
    EXPECT_EQ(Switched("alias { x; }\nlease {\n}\na\n", kOff), "#alias { x; }\nlease {\n#}\na\n");
}

TEST_F(RequestOptionsTest, WithoutAnInterfaceEveryBlockIsSwitched) {
    EXPECT_EQ(Switched("a\n}\nb\ninterface \"eth1\" {\nc\n}\nx\n", kOff, ""),
              "#a\n#}\nb\n#interface \"eth1\" {\n#c\n#}\nx\n");
}

TEST_F(RequestOptionsTest, ABlockIsPutInPlaceByTheseLines) {
    EXPECT_EQ(Switched("interface \"eth0\" {\n}", kOff), "#interface \"eth0\" {\n#}\n");
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/dhclient.conf > /etc/dhclient.conf",
                            "system rm /var/tmp/dhclient.conf"));
}

// ---- failures of both editors

TEST_F(RequestOptionsTest, AMissingConfigurationIsAFailureThatLeavesAnEmptyCopy) {
    EXPECT_EQ(SetDhcpServer("eth0", "ntp-servers", kAdd, false), -1);
    EXPECT_EQ(ReadFile(kDhcpConfigCopy), "");
    unlink(kDhcpConfigCopy);
    EXPECT_EQ(SetDhcpRequest("eth0", kOn), -1);
    EXPECT_EQ(ReadFile(kDhcpConfigCopy), "");
    EXPECT_THAT(libc().Story(), IsEmpty());
    EXPECT_FALSE(Exists(kDhcpConfigFile));
}

TEST_F(RequestOptionsTest, ACopyThatCannotBeOpenedIsAFailure) {
    WriteFile(kDhcpConfigFile, "request a;");
    ASSERT_EQ(mkdir(kDhcpConfigCopy, 0755), 0);
    EXPECT_EQ(SetDhcpServer("eth0", "ntp-servers", kAdd, false), -1);
    EXPECT_EQ(SetDhcpRequest("", kOff), -1);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), "request a;");
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(RequestOptionsTest, BothFilesAreOpenedBeforeAFailure) {
    EXPECT_EQ(SetDhcpServer("eth0", "ntp-servers", kAdd, false), -1);
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kDhcpConfigFile, kDhcpConfigCopy));
}

TEST_F(RequestOptionsTest, ACopyThatCannotBeWrittenLeavesTheConfigurationAsItWas) {
    WriteFile(kDhcpConfigFile, "request a;");
    libc().Script(Call::kWrite, {Fail(ENOSPC), Fail(ENOSPC)});
    EXPECT_EQ(SetDhcpServer("eth0", "ntp-servers", kAdd, false), -1);
    EXPECT_EQ(SetDhcpRequest("", kOff), -1);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), "request a;");
    EXPECT_FALSE(Exists(kDhcpConfigCopy));
    EXPECT_THAT(libc().Story(), ElementsAre("log FileEdit write errno=28:No space left on device",
                                            "log FileEdit write errno=28:No space left on device"));
}

TEST_F(RequestOptionsTest, AFailingCopyingIsNotNoticed) {
    WriteFile(kDhcpConfigFile, "request a;\n");
    libc().ScriptAlways(Call::kSystem, Fail(EAGAIN));
    EXPECT_EQ(SetDhcpServer("eth0", "ntp-servers", kAdd, false), 0);
    EXPECT_EQ(SetDhcpRequest("eth0", kOff), 0);
}

}  // namespace
