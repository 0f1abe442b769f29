#include "velkctl/causes.h"

#include <algorithm>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

using velkctl::Answer;
using velkctl::Catalogue;
using velkctl::FindSetting;
using velkctl::LikelyCause;
using velkctl::Setting;
using velkctl::SettingsOf;

constexpr std::string_view kNoStanza =
    "/etc/network/interfaces has no stanza \"inet static\" or \"inet dhcp\" of the interface";
constexpr std::string_view kLastStanza =
    "its stanza in /etc/network/interfaces is the last one and has no such line to replace, or the "
    "file cannot be written";
constexpr std::string_view kSecondGateway =
    "another line of its stanza in /etc/network/interfaces holds \"gateway \" too, or the file "
    "cannot "
    "be written";
constexpr std::string_view kNoHook =
    "no line of /etc/dhclient-exit-hooks that runs for the interface has /usr/sbin/avahi-autoipd "
    "to switch";
constexpr std::string_view kNoRequest =
    "no \"request\" statement of /etc/dhclient.conf counts for it, as when the interface's block "
    "is switched off, or the first one ends without it";
constexpr std::string_view kNoEntry =
    "the crontab has no line with ntpdate to switch, or one with two number signs";
constexpr std::string_view kNoServer =
    "the crontab has no line with ntpdate, or one without a server, where a new one sticks to the "
    "word in front of it";
constexpr std::string_view kNotWritten = "the file that holds it cannot be written";

Answer Holding(std::string_view bytes) {
    Answer answer{LIB_VELK_SUCCESS, {}};
    std::copy(bytes.begin(), bytes.end(), answer.data.begin());
    return answer;
}

Answer Failing(int result) {
    return {result, {}};
}

std::string Cause(const std::string& name, const Answer& answer) {
    return std::string(LikelyCause(FindSetting(Catalogue(), name).value(), answer));
}

TEST(LikelyCause, AMethodThatCannotBeReadHasNoStanza) {
    EXPECT_EQ(Cause("eth0.method", Failing(-1)), kNoStanza);
    EXPECT_EQ(Cause("eth1.method", Failing(-4)), kNoStanza);
    EXPECT_EQ(Cause("eth0.method", Holding("\x01")), kNotWritten);
    EXPECT_EQ(Cause("eth0.method", Holding("\x02")), kNotWritten);
    EXPECT_EQ(Cause("eth0.method", Holding("")), kNotWritten);
}

TEST(LikelyCause, AnAddressHasItsStanza) {
    for (const char* name : {"eth0.address", "eth1.address", "eth0.netmask", "eth1.netmask",
                             "eth0.gateway", "eth1.gateway"}) {
        EXPECT_EQ(Cause(name, Failing(-1)), kNoStanza) << name;
        EXPECT_EQ(Cause(name, Holding("")), kLastStanza) << name;
        EXPECT_EQ(Cause(name, Holding("10.0.0.1")),
                  name == std::string("eth0.gateway") || name == std::string("eth1.gateway")
                      ? kSecondGateway
                      : kNotWritten)
            << name;
    }
}

TEST(LikelyCause, ALinkLocalAddressThatStaysOffHasNoHook) {
    EXPECT_EQ(Cause("eth0.apipa", Holding("\x02")), kNoHook);
    EXPECT_EQ(Cause("eth1.apipa", Holding("\x02")), kNoHook);
    EXPECT_EQ(Cause("eth0.apipa", Holding("\x01")), kNotWritten);
    EXPECT_EQ(Cause("eth0.apipa", Failing(-1)), "");
}

TEST(LikelyCause, AnOptionThatIsNotRequestedHasNoStatement) {
    for (const char* name : {"dhcp-ntp", "eth0.dhcp-dns", "eth1.dhcp-dns"}) {
        EXPECT_EQ(Cause(name, Holding("\x02")), kNoRequest) << name;
        EXPECT_EQ(Cause(name, Holding("\x01")), kNotWritten) << name;
        EXPECT_EQ(Cause(name, Failing(-1)), "") << name;
    }
}

TEST(LikelyCause, AClockThatStaysUnsetHasNoEntry) {
    EXPECT_EQ(Cause("ntp", Holding("\x02")), kNoEntry);
    EXPECT_EQ(Cause("ntp", Holding("\x01")), kNotWritten);
    EXPECT_EQ(Cause("ntp", Failing(-1)), "");
}

TEST(LikelyCause, ATimeServerThatStaysEmptyHasNoEntry) {
    EXPECT_EQ(Cause("ntp-server", Holding("")), kNoServer);
    EXPECT_EQ(Cause("ntp-server", Holding("9.9.9.95")),
              "the first line with ntpdate ends with its server, or has the server's text in front "
              "of it too, or the crontab cannot be written");
    EXPECT_EQ(Cause("ntp-server", Failing(-1)), "");
}

TEST(LikelyCause, OtherSettingsOfFilesHaveAFileThatCannotBeWritten) {
    for (const char* name : {"administrator", "location", "web-update", "eth0.dns", "eth1.dns"}) {
        EXPECT_EQ(Cause(name, Holding("")), kNotWritten) << name;
        EXPECT_EQ(Cause(name, Holding("x")), kNotWritten) << name;
        EXPECT_EQ(Cause(name, Holding("\x01")), kNotWritten) << name;
        EXPECT_EQ(Cause(name, Holding("\x02")), kNotWritten) << name;
    }
}

TEST(LikelyCause, WhatTheKernelOrTheDaemonHoldsHasNoneToName) {
    for (const char* name : {"eth0.link-speed", "eth1.ssid", "eth1.channel", "eth1.encryption",
                             "eth1.wep-key-1", "eth1.psk", "eth1.standards-enabled"}) {
        EXPECT_EQ(Cause(name, Holding("")), "") << name;
        EXPECT_EQ(Cause(name, Holding("\x01")), "") << name;
        EXPECT_EQ(Cause(name, Holding("\x02")), "") << name;
        EXPECT_EQ(Cause(name, Failing(-1)), "") << name;
    }
}

TEST(LikelyCause, WhatCannotBeReadBackHasNoneToNameButItsStanza) {
    for (const Setting& setting : SettingsOf(Catalogue())) {
        const uint32_t id = setting.row->id;
        const bool has_stanza = id == VELK_CMD_IP_METHOD || id == VELK_CMD_IP_ADDRESS ||
                                id == VELK_CMD_NETMASK || id == VELK_CMD_GATEWAY;
        for (const int result : {-1, -3, -4, -5, -6}) {
            EXPECT_EQ(LikelyCause(setting, Failing(result)), has_stanza ? kNoStanza : "")
                << setting.name();
        }
    }
}

TEST(LikelyCause, TheFirstByteTellsHowTheAnswerDiffers) {
    EXPECT_EQ(Cause("ntp", Holding(std::string_view("\x02xyz", 4))), kNoEntry);
    EXPECT_EQ(Cause("ntp-server", Holding(std::string_view("\0xyz", 4))), kNoServer);
    Answer failing = Holding("\x02");
    failing.result = LIB_VELK_FAILURE;
    EXPECT_EQ(Cause("ntp", failing), "") << "data of a failure tells nothing";
}

}  // namespace
