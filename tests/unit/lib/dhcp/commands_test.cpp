// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <cerrno>
#include <string>

#include <gmock/gmock.h>
#include <unistd.h>

#include "support/device_test.h"
#include "support/fake_shell.h"
#include "support/paths.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::Call;
using testkit::Exists;
using testkit::Fail;
using testkit::kClientScript;
using testkit::kDhcpConfigFile;
using testkit::kExitHooks;
using testkit::MakeRequest;
using testkit::Pass;
using testkit::ReadFile;
using testkit::WriteFile;

constexpr uint32_t kNtp = VELK_CMD_DHCP_NTP;
constexpr uint32_t kDns = VELK_CMD_DHCP_DNS;

constexpr char kHooksText[] =
    "/usr/bin/ntpdate -b $new_ntp_servers\n"
    "/usr/sbin/avahi-autoipd -D\n";
constexpr char kHooksOff[] =
    "#/usr/bin/ntpdate -b $new_ntp_servers\n"
    "/usr/sbin/avahi-autoipd -D\n";
constexpr char kScriptText[] =
    "if [ \"$interface\" = \"eth0\" ]; then\n"
    "  make_resolv_conf\n"
    "else\n"
    "  make_resolv_conf\n"
    "fi\n";

std::string Byte(int value) {
    return {static_cast<char>(value)};
}

class DhcpCommandsTest : public testkit::DeviceTest {
  protected:
    static int Set(uint32_t id, std::string_view interface, int byte) {
        return SetDhcp(MakeRequest(VELK_SET, id, interface, Byte(byte)), nullptr);
    }
    // Returns the byte of a getter: 1 or 2, or "unchanged" if it wrote nothing.
    static std::string Got(uint32_t id, std::string_view interface, int result = 0) {
        char out[VELK_DATA_SIZE] = "?unchanged";
        EXPECT_EQ(GetDhcp(MakeRequest(VELK_GET, id, interface), out), result);
        EXPECT_STREQ(out + 1, "unchanged") << "one byte and nothing else";
        return {out, 1};
    }
    testkit::FakeShell shell;
};

// ---- reading

TEST_F(DhcpCommandsTest, EachIdReadsItsOption) {
    WriteFile(kDhcpConfigFile, "request subnet-mask, ntp-servers;\n");
    EXPECT_EQ(Got(kNtp, ""), "\x01");
    EXPECT_EQ(Got(kDns, "eth0"), "\x02");
    WriteFile(kDhcpConfigFile, "request subnet-mask, domain-name-servers;\n");
    EXPECT_EQ(Got(kNtp, ""), "\x02");
    EXPECT_EQ(Got(kDns, "eth0"), "\x01");
    WriteFile(kDhcpConfigFile, "");
    EXPECT_EQ(Got(kNtp, ""), "\x02");
    EXPECT_EQ(Got(kDns, "eth1"), "\x02");
}

TEST_F(DhcpCommandsTest, TheWorkersReadTheirOptionForAnyId) {
    WriteFile(kDhcpConfigFile, "request ntp-servers;\n");
    char out[VELK_DATA_SIZE] = "";
    for (const uint32_t id : {kNtp, kDns, 0U}) {
        EXPECT_EQ(GetDhcpNtps(MakeRequest(VELK_GET, id, ""), out), 0);
        EXPECT_STREQ(out, "\x01");
        EXPECT_EQ(GetDhcpDns(MakeRequest(VELK_GET, id, ""), out), 0);
        EXPECT_STREQ(out, "\x02");
    }
}

TEST_F(DhcpCommandsTest, NameServersAreReadPerInterface) {
    WriteFile(kDhcpConfigFile,
              "interface \"eth0\" {\n"
              "  request subnet-mask;\n"
              "}\n"
              "interface \"eth1\" {\n"
              "  request subnet-mask, domain-name-servers;\n"
              "}\n");
    EXPECT_EQ(Got(kDns, "eth0"), "\x02");
    EXPECT_EQ(Got(kDns, "eth1"), "\x01");
}

TEST_F(DhcpCommandsTest, TimeServersAreReadInAnyBlock) {
    WriteFile(kDhcpConfigFile,
              "interface \"eth1\" {\n"
              "  request subnet-mask, ntp-servers;\n"
              "}\n");
    EXPECT_EQ(Got(kNtp, ""), "\x01");
}

TEST_F(DhcpCommandsTest, ASwitchedOffStatementCountsForTimeServersAlone) {
    WriteFile(kDhcpConfigFile,
              "interface \"eth0\" {\n"
              "#request ntp-servers, domain-name-servers;\n"
              "}\n");
    EXPECT_EQ(Got(kNtp, ""), "\x01");
    EXPECT_EQ(Got(kDns, "eth0"), "\x02");
}

TEST_F(DhcpCommandsTest, OnlyTheConfigurationIsReadAndOnce) {
    WriteFile(kDhcpConfigFile, "request ntp-servers;\n");
    EXPECT_EQ(Got(kNtp, ""), "\x01");
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kDhcpConfigFile));
    EXPECT_EQ(Got(kDns, "eth1"), "\x02");
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kDhcpConfigFile, kDhcpConfigFile));
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(DhcpCommandsTest, AMissingConfigurationLeavesTheByteAlone) {
    EXPECT_EQ(Got(kNtp, "", -1), "?");
    EXPECT_EQ(Got(kDns, "eth0", -1), "?");
    EXPECT_THAT(libc().Story(), IsEmpty());
    EXPECT_EQ(Execute(VELK_GET, kDns, "eth0"), -1);
    EXPECT_EQ(testkit::Data(response), std::string(512, '\0'));
    EXPECT_EQ(Execute(VELK_GET, kNtp, ""), -1);
    EXPECT_EQ(testkit::Data(response), std::string(512, '\0'));
}

TEST_F(DhcpCommandsTest, ANullOutputIsInvalidToTheCommandAndAFailureToItsWorkers) {
    WriteFile(kDhcpConfigFile, "request ntp-servers;\n");
    for (const uint32_t id : {kNtp, kDns, 0U, 108U}) {
        const _velk_request request = MakeRequest(VELK_GET, id, "");
        EXPECT_EQ(GetDhcp(request, nullptr), -4) << id;
        EXPECT_EQ(GetDhcpNtps(request, nullptr), -1) << id;
        EXPECT_EQ(GetDhcpDns(request, nullptr), -1) << id;
    }
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
}

TEST_F(DhcpCommandsTest, OtherIdsAreRefused) {
    WriteFile(kDhcpConfigFile, "request ntp-servers;\n");
    char out[VELK_DATA_SIZE] = "unchanged";
    for (const uint32_t id : {0U, 6U, 8U, 106U, 108U, 0x10007U, 0xffffffffU}) {
        EXPECT_EQ(GetDhcp(MakeRequest(VELK_GET, id, ""), out), -4) << id;
        EXPECT_EQ(Set(id, "", 1), -4) << id;
    }
    EXPECT_STREQ(out, "unchanged");
    EXPECT_THAT(libc().Events(Call::kOpen), IsEmpty());
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(DhcpCommandsTest, TheTablesKnowTheInterfacesOfEachId) {
    WriteFile(kDhcpConfigFile, "request ntp-servers, domain-name-servers;\n");
    WriteFile(kExitHooks, "");
    WriteFile(kClientScript, "");
    for (const uint32_t type : {VELK_GET, VELK_SET}) {
        EXPECT_EQ(Execute(type, kNtp, "", "\x01"), 0);
        EXPECT_EQ(Execute(type, kNtp, "eth0", "\x01"), -4);
        EXPECT_EQ(Execute(type, kNtp, "eth1", "\x01"), -4);
        EXPECT_EQ(Execute(type, kDns, "eth0", "\x01"), 0);
        EXPECT_EQ(Execute(type, kDns, "", "\x01"), -4);
        EXPECT_EQ(Execute(type, kDns, "eth2", "\x01"), -4);
    }
}

// ---- time servers

struct Case {
    int byte;
    std::string config;
    std::string consumer;
};

// Without this, a failing test would show the bytes of the record.
void PrintTo(const Case& row, std::ostream* out) {
    *out << "byte " << row.byte;
}

class TimeServersByte : public DhcpCommandsTest, public testing::WithParamInterface<Case> {};

TEST_P(TimeServersByte, SwitchesTheRequestAndTheClockSetter) {
    WriteFile(kDhcpConfigFile, "request subnet-mask;\n");
    WriteFile(kExitHooks, kHooksText);
    WriteFile(kClientScript, kScriptText);
    EXPECT_EQ(Set(kNtp, "", 1), 0);
    EXPECT_EQ(Set(kNtp, "", GetParam().byte), 0);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), GetParam().config);
    EXPECT_EQ(ReadFile(kExitHooks), GetParam().consumer);
    EXPECT_EQ(ReadFile(kClientScript), kScriptText);
}

INSTANTIATE_TEST_SUITE_P(FromOn, TimeServersByte,
                         testing::Values(Case{0, "request subnet-mask;\n", kHooksText},
                                         Case{1, "request subnet-mask,ntp-servers;\n", kHooksText},
                                         Case{2, "request subnet-mask;\n", kHooksOff},
                                         Case{3, "request subnet-mask;\n", kHooksText},
                                         Case{'1', "request subnet-mask;\n", kHooksText},
                                         Case{255, "request subnet-mask;\n", kHooksText}));

class TimeServersByteFromOff : public DhcpCommandsTest, public testing::WithParamInterface<Case> {};

TEST_P(TimeServersByteFromOff, SwitchesTheRequestAndTheClockSetter) {
    WriteFile(kDhcpConfigFile, "request subnet-mask;\n");
    WriteFile(kExitHooks, kHooksOff);
    EXPECT_EQ(Set(kNtp, "", GetParam().byte), 0);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), GetParam().config);
    EXPECT_EQ(ReadFile(kExitHooks), GetParam().consumer);
}

INSTANTIATE_TEST_SUITE_P(FromOff, TimeServersByteFromOff,
                         testing::Values(Case{0, "request subnet-mask;\n", kHooksOff},
                                         Case{1, "request subnet-mask,ntp-servers;\n", kHooksText},
                                         Case{2, "request subnet-mask;\n", kHooksOff},
                                         Case{3, "request subnet-mask;\n", kHooksOff}));

TEST_F(DhcpCommandsTest, TimeServersAreSetInEveryScope) {
    WriteFile(kDhcpConfigFile,
              "request subnet-mask;\n"
              "interface \"eth0\" {\n"
              "  request routers;\n"
              "}\n"
              "interface \"eth1\" {\n"
              "  request routers;\n"
              "}\n");
    WriteFile(kExitHooks, kHooksOff);
    EXPECT_EQ(Set(kNtp, "", 1), 0);
    EXPECT_EQ(ReadFile(kDhcpConfigFile),
              "request subnet-mask,ntp-servers;\n"
              "interface \"eth0\" {\n"
              "  request routers,ntp-servers;\n"
              "}\n"
              "interface \"eth1\" {\n"
              "  request routers,ntp-servers;\n"
              "}\n");
    EXPECT_EQ(ReadFile(kExitHooks), kHooksText);
}

TEST_F(DhcpCommandsTest, TimeServersOfASwitchedOffStatementAreSetToo) {
    WriteFile(kExitHooks, "");
    WriteFile(kDhcpConfigFile, "interface \"eth0\" {\n#request routers;\n}\n");
    EXPECT_EQ(Set(kNtp, "", 1), 0);
    EXPECT_EQ(ReadFile(kDhcpConfigFile),
              "interface \"eth0\" {\n#request routers,ntp-servers;\n}\n");
}

TEST_F(DhcpCommandsTest, TheConfigurationComesFirstAndThenTheHooks) {
    WriteFile(kDhcpConfigFile, "request subnet-mask;\n");
    WriteFile(kExitHooks, kHooksOff);
    EXPECT_EQ(SetDhcpNtps(MakeRequest(VELK_SET, kNtp, "", "\x01"), nullptr), 0);
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/dhclient.conf > /etc/dhclient.conf",
                            "system rm /var/tmp/dhclient.conf",
                            "system cat /var/tmp/dhclient-exit-hooks > /etc/dhclient-exit-hooks",
                            "system rm /var/tmp/dhclient-exit-hooks"));
}

TEST_F(DhcpCommandsTest, WithoutAConfigurationTheHooksAreLeftAlone) {
    WriteFile(kExitHooks, kHooksText);
    EXPECT_EQ(Set(kNtp, "", 2), -1);
    EXPECT_EQ(ReadFile(kExitHooks), kHooksText);
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kDhcpConfigFile, "/var/tmp/dhclient.conf"));
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(DhcpCommandsTest, WithoutHooksTheConfigurationIsChangedAllTheSame) {
    WriteFile(kDhcpConfigFile, "request subnet-mask;\n");
    EXPECT_EQ(Set(kNtp, "", 1), -1);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), "request subnet-mask,ntp-servers;\n");
    EXPECT_FALSE(Exists(kExitHooks));
    EXPECT_THAT(libc().Commands(), ElementsAre("cat /var/tmp/dhclient.conf > /etc/dhclient.conf",
                                               "rm /var/tmp/dhclient.conf"));
}

TEST_F(DhcpCommandsTest, AConfigurationThatCannotBeWrittenLeavesTheHooksAlone) {
    WriteFile(kDhcpConfigFile, "request subnet-mask;\n");
    WriteFile(kExitHooks, kHooksOff);
    libc().Script(Call::kWrite, {Fail(ENOSPC)});
    EXPECT_EQ(Set(kNtp, "", 1), -1);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), "request subnet-mask;\n");
    EXPECT_EQ(ReadFile(kExitHooks), kHooksOff);
    EXPECT_THAT(libc().Story(), ElementsAre("log FileEdit write errno=28:No space left on device"));
}

TEST_F(DhcpCommandsTest, AFailedShellDoesNotStopTheSecondFile) {
    WriteFile(kDhcpConfigFile, "request subnet-mask;\n");
    WriteFile(kExitHooks, kHooksOff);
    libc().Script(Call::kSystem, {Fail(ENOMEM), Fail(ENOMEM)});
    EXPECT_EQ(Set(kNtp, "", 1), 0);
    EXPECT_EQ(ReadFile(kExitHooks), kHooksText);
}

// ---- name servers

class NameServersByte : public DhcpCommandsTest, public testing::WithParamInterface<int> {};

TEST_P(NameServersByte, AnyByteButOneSwitchesBothFilesOff) {
    WriteFile(kDhcpConfigFile, "request subnet-mask, domain-name-servers;\n");
    WriteFile(kExitHooks, kHooksText);
    WriteFile(kClientScript, kScriptText);
    EXPECT_EQ(Set(kDns, "eth0", GetParam()), 0);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), "request subnet-mask;\n");
    EXPECT_EQ(ReadFile(kClientScript),
              "if [ \"$interface\" = \"eth0\" ]; then\n"
              "#  make_resolv_conf\n"
              "else\n"
              "  make_resolv_conf\n"
              "fi\n");
    EXPECT_EQ(ReadFile(kExitHooks), kHooksText);
    EXPECT_EQ(Set(kDns, "eth0", 1), 0);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), "request subnet-mask,domain-name-servers;\n");
    EXPECT_EQ(ReadFile(kClientScript), kScriptText);
}

INSTANTIATE_TEST_SUITE_P(Off, NameServersByte, testing::Values(0, 2, 3, int{'1'}, 255));

TEST_F(DhcpCommandsTest, NameServersAreSetInTheGlobalScopeAndTheInterfacesOwn) {
    WriteFile(kDhcpConfigFile,
              "request subnet-mask, domain-name-servers;\n"
              "interface \"eth0\" {\n"
              "  request routers, domain-name-servers;\n"
              "}\n"
              "interface \"eth1\" {\n"
              "  request routers, domain-name-servers;\n"
              "}\n");
    WriteFile(kClientScript, kScriptText);
    EXPECT_EQ(Set(kDns, "eth1", 2), 0);
    EXPECT_EQ(ReadFile(kDhcpConfigFile),
              "request subnet-mask;\n"
              "interface \"eth0\" {\n"
              "  request routers, domain-name-servers;\n"
              "}\n"
              "interface \"eth1\" {\n"
              "  request routers;\n"
              "}\n");
    EXPECT_EQ(ReadFile(kClientScript),
              "if [ \"$interface\" = \"eth0\" ]; then\n"
              "  make_resolv_conf\n"
              "else\n"
              "#  make_resolv_conf\n"
              "fi\n");
}

TEST_F(DhcpCommandsTest, NameServersOfASwitchedOffStatementStay) {
    WriteFile(kClientScript, "");
    const std::string config = "interface \"eth0\" {\n#request domain-name-servers;\n}\n";
    WriteFile(kDhcpConfigFile, config);
    EXPECT_EQ(Set(kDns, "eth0", 2), 0);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), config);
}

TEST_F(DhcpCommandsTest, TheConfigurationComesFirstAndThenTheScript) {
    WriteFile(kDhcpConfigFile, "");
    WriteFile(kClientScript, "");
    EXPECT_EQ(SetDhcpDns(MakeRequest(VELK_SET, kDns, "eth1", "\x02"), nullptr), 0);
    EXPECT_THAT(libc().Story(),
                ElementsAre("system cat /var/tmp/dhclient.conf > /etc/dhclient.conf",
                            "system rm /var/tmp/dhclient.conf",
                            "system cat /var/tmp/dhclient-script > /sbin/dhclient-script",
                            "system rm /var/tmp/dhclient-script"));
}

TEST_F(DhcpCommandsTest, WithoutAConfigurationTheScriptIsLeftAlone) {
    WriteFile(kClientScript, kScriptText);
    EXPECT_EQ(Set(kDns, "eth0", 2), -1);
    EXPECT_EQ(ReadFile(kClientScript), kScriptText);
    EXPECT_THAT(libc().Texts(Call::kOpen), ElementsAre(kDhcpConfigFile, "/var/tmp/dhclient.conf"));
    EXPECT_THAT(libc().Story(), IsEmpty());
}

TEST_F(DhcpCommandsTest, WithoutAScriptTheConfigurationIsChangedAllTheSame) {
    WriteFile(kDhcpConfigFile, "request subnet-mask, domain-name-servers;\n");
    EXPECT_EQ(Set(kDns, "eth0", 2), -1);
    EXPECT_EQ(ReadFile(kDhcpConfigFile), "request subnet-mask;\n");
    EXPECT_FALSE(Exists(kClientScript));
    EXPECT_THAT(libc().Commands(), ElementsAre("cat /var/tmp/dhclient.conf > /etc/dhclient.conf",
                                               "rm /var/tmp/dhclient.conf"));
}

TEST_F(DhcpCommandsTest, AScriptThatCannotBeWrittenIsAFailureAfterTheFirstFile) {
    WriteFile(kDhcpConfigFile, "request domain-name-servers, subnet-mask;\n");
    WriteFile(kClientScript, kScriptText);
    libc().Script(Call::kWrite, {Pass(), Fail(ENOSPC)});
    EXPECT_EQ(Set(kDns, "eth0", 2), -1);
    EXPECT_EQ(Got(kDns, "eth0"), "\x02");
    EXPECT_EQ(ReadFile(kClientScript), kScriptText);
}

TEST_F(DhcpCommandsTest, ASetValueIsReadBack) {
    WriteFile(kDhcpConfigFile,
              "interface \"eth0\" {\nrequest a;\n}\ninterface \"eth1\" {\nrequest a;\n}\n");
    WriteFile(kExitHooks, kHooksText);
    WriteFile(kClientScript, kScriptText);
    EXPECT_EQ(Execute(VELK_SET, kDns, "eth1", "\x01"), 0);
    EXPECT_EQ(Execute(VELK_GET, kDns, "eth1"), 0);
    EXPECT_EQ(testkit::Data(response), "\x01" + std::string(511, '\0'));
    EXPECT_EQ(Execute(VELK_GET, kDns, "eth0"), 0);
    EXPECT_EQ(testkit::Data(response), "\x02" + std::string(511, '\0'));
    EXPECT_EQ(Execute(VELK_SET, kNtp, "", "\x01"), 0);
    EXPECT_EQ(Execute(VELK_GET, kNtp, ""), 0);
    EXPECT_EQ(testkit::Data(response), "\x01" + std::string(511, '\0'));
}

}  // namespace
