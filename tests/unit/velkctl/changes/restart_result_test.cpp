// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Whether a restarted interface is up with its address.
#include "velkctl/changes/restart_result.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

using velkctl::AddressSource;
using velkctl::HasNoDhcpAnswer;
using velkctl::JudgeRestart;
using velkctl::MayGetLease;
using velkctl::RestartFacts;
using velkctl::RestartResult;
using velkctl::StateInJson;

constexpr char kNoOffers[] = "No DHCPOFFERS received.";
constexpr char kOnEth0[] = "Listening on LPF/eth0/02:00:00:00:00:01";
constexpr char kOnEth1[] = "Listening on LPF/eth1/02:00:00:00:00:02";
constexpr char kRequest[] = "DHCPREQUEST for 192.168.0.109 on eth0 to 255.255.255.255 port 67";
constexpr char kRequestOnEth1[] = "DHCPREQUEST for 192.168.0.109 on eth1 to 255.255.255.255";
constexpr char kBound[] = "bound to 192.168.0.109 -- renewal in 48 seconds.";

RestartFacts Up(AddressSource source, const std::vector<std::string>& addresses) {
    RestartFacts facts{.interface = "eth0", .source = source};
    facts.state = {.exists = true, .is_up = true, .has_link = true};
    for (const std::string& address : addresses) {
        facts.state.addresses.push_back({address, "255.255.255.0"});
    }
    return facts;
}

std::string Judged(const RestartFacts& facts) {
    const RestartResult result = JudgeRestart(facts);
    return result.is_as_configured ? result.line : OneLine(result.problem);
}

TEST(RestartResultTest, AnAddressFromDhcp) {
    RestartFacts facts = Up(AddressSource::kDhcp, {"192.168.0.109"});
    EXPECT_TRUE(JudgeRestart(facts).is_as_configured);
    EXPECT_EQ(Judged(facts), "eth0: 192.168.0.109 from DHCP");
    facts.tool_output = {kOnEth0, kNoOffers, kBound};
    EXPECT_EQ(Judged(facts), "eth0: 192.168.0.109 from DHCP");
}

TEST(RestartResultTest, ADhcpClientThatIsLeftWithMethodStatic) {
    RestartFacts facts = Up(AddressSource::kStatic, {"192.168.0.10"});
    facts.configured = "192.168.0.10";
    facts.left_client = 77;
    EXPECT_EQ(
        Judged(facts),
        "eth0: up, but a DHCP client still runs for it; process 77 may replace the configured "
        "address later; fix: 'sudo kill 77', then run 'velkctl restart eth0' again");
    facts.left_client = 0;
    EXPECT_EQ(Judged(facts), "eth0: 192.168.0.10 (static)");
}

TEST(RestartResultTest, NoAddressFromDhcp) {
    const RestartFacts facts = Up(AddressSource::kDhcp, {});
    EXPECT_FALSE(JudgeRestart(facts).is_as_configured);
    EXPECT_EQ(Judged(facts),
              "eth0: up, but it has no address; no DHCP server answered; fix: start one, then run "
              "'velkctl restart eth0' again");
}

TEST(RestartResultTest, AnEarlierAddressIsNotFromDhcp) {
    RestartFacts facts = Up(AddressSource::kDhcp, {"192.168.0.10"});
    facts.tool_output = {"DHCPDISCOVER on eth0", kNoOffers, "sleeping."};
    EXPECT_FALSE(JudgeRestart(facts).is_as_configured);
    EXPECT_EQ(Judged(facts),
              "eth0: up, but its address 192.168.0.10 is not from DHCP; no DHCP server answered; "
              "fix: start one, then run 'velkctl restart eth0' again");
    facts.repeat = "apply the change again";
    EXPECT_EQ(Judged(facts),
              "eth0: up, but its address 192.168.0.10 is not from DHCP; no DHCP server answered; "
              "fix: start one, then apply the change again");
}

TEST(RestartResultTest, AnAddressThatApipaChose) {
    RestartFacts facts = Up(AddressSource::kDhcp, {"169.254.7.1"});
    facts.tool_output = {kOnEth0, kNoOffers};
    EXPECT_TRUE(JudgeRestart(facts).is_as_configured);
    EXPECT_EQ(Judged(facts), "eth0: 169.254.7.1, link-local: no DHCP server answered");
}

TEST(RestartResultTest, NoAddressWithoutALink) {
    RestartFacts facts = Up(AddressSource::kDhcp, {});
    facts.state.has_link = false;
    EXPECT_EQ(Judged(facts),
              "eth0: up, but it has no address; no link: the cable is out; fix: plug the cable in, "
              "then run 'velkctl restart eth0' again");
    facts.interface = "eth1";
    EXPECT_EQ(Judged(facts),
              "eth1: up, but it has no address; no link to an access point; fix: check 'velkctl "
              "show eth1', then run 'velkctl restart eth1' again");
}

TEST(RestartResultTest, AStaticAddress) {
    RestartFacts facts = Up(AddressSource::kStatic, {"192.168.0.10"});
    facts.configured = "192.168.0.10";
    EXPECT_TRUE(JudgeRestart(facts).is_as_configured);
    EXPECT_EQ(Judged(facts), "eth0: 192.168.0.10 (static)");
    facts.state.addresses = {{"10.0.0.1", ""}, {"192.168.0.10", ""}, {"10.0.0.2", ""}};
    EXPECT_EQ(Judged(facts), "eth0: 192.168.0.10 (static), also 10.0.0.1 10.0.0.2");
}

TEST(RestartResultTest, AnotherAddressThanTheStaticOne) {
    RestartFacts facts = Up(AddressSource::kStatic, {"192.168.0.10"});
    facts.configured = "192.168.0.99";
    EXPECT_FALSE(JudgeRestart(facts).is_as_configured);
    EXPECT_EQ(Judged(facts),
              "eth0: up, but its address is 192.168.0.10; its configured address is 192.168.0.99; "
              "fix: 'velkctl doctor' looks for the cause");
    facts.configured = "";
    EXPECT_EQ(Judged(facts),
              "eth0: up, but its address is 192.168.0.10; its configured address cannot be read; "
              "fix: 'velkctl doctor' looks for the cause");
    facts.state.addresses.clear();
    facts.configured = "192.168.0.99";
    EXPECT_EQ(Judged(facts),
              "eth0: up, but it has no address; its configured address is 192.168.0.99; fix: "
              "'velkctl doctor' looks for the cause");
}

TEST(RestartResultTest, AnInterfaceWithoutAMethod) {
    EXPECT_EQ(Judged(Up(AddressSource::kUnknown, {"10.0.0.1"})), "eth0: 10.0.0.1");
    EXPECT_EQ(Judged(Up(AddressSource::kUnknown, {})),
              "eth0: up, without an address: neither static nor DHCP");
}

TEST(RestartResultTest, TheCableKeepsAWirelessInterfaceFromAnAddress) {
    RestartFacts facts = Up(AddressSource::kDhcp, {});
    facts.is_cable_in = true;
    EXPECT_FALSE(JudgeRestart(facts).is_as_configured) << "the wired one";
    facts.interface = "eth1";
    EXPECT_EQ(Judged(facts), "eth1: up, without an address while the cable is in");
}

TEST(RestartResultTest, AnInterfaceThatIsNotUp) {
    RestartFacts facts = Up(AddressSource::kDhcp, {});
    facts.state.is_up = false;
    EXPECT_EQ(Judged(facts),
              "eth0: not up after the restart; fix: 'velkctl doctor' looks for the cause");
    facts.state.exists = false;
    EXPECT_EQ(Judged(facts),
              "eth0: not up after the restart; the kernel has no such interface; fix: 'velkctl "
              "doctor' looks for the cause");
}

TEST(RestartResultTest, AFailureOfIfupIsShownWithTheState) {
    RestartFacts facts = Up(AddressSource::kStatic, {"192.168.0.10"});
    facts.configured = "192.168.0.10";
    facts.tool_output = {"ifup: failed to bring up eth1"};
    EXPECT_TRUE(JudgeRestart(facts).is_as_configured) << "another interface";
    facts.tool_output = {"ifup: failed to bring up eth0"};
    EXPECT_EQ(Judged(facts), "eth0: ifup failed; the interface is up with 192.168.0.10");
    facts.state.addresses.clear();
    facts.tool_output = {"ifup: unknown interface eth0"};
    EXPECT_EQ(Judged(facts), "eth0: ifup failed; the interface is up without an address");
    facts.state.is_up = false;
    EXPECT_EQ(Judged(facts), "eth0: ifup failed; the interface is down");
}

TEST(RestartResultTest, ALeaseMayComeLater) {
    RestartFacts facts = Up(AddressSource::kDhcp, {});
    EXPECT_TRUE(MayGetLease(facts));
    facts.state.has_link = false;
    EXPECT_FALSE(MayGetLease(facts)) << "without a link";
    facts = Up(AddressSource::kDhcp, {});
    facts.tool_output = {kOnEth0, kNoOffers};
    EXPECT_FALSE(MayGetLease(facts)) << "the client has given up";
    facts = Up(AddressSource::kDhcp, {});
    facts.interface = "eth1";
    facts.is_cable_in = true;
    EXPECT_FALSE(MayGetLease(facts)) << "not requested while the cable is in";
    EXPECT_FALSE(MayGetLease(Up(AddressSource::kDhcp, {"10.0.0.1"})));
    EXPECT_FALSE(MayGetLease(Up(AddressSource::kStatic, {})));
}

bool HasNoAnswerFor(const std::string& interface, const std::vector<std::string>& tool_output) {
    return HasNoDhcpAnswer({.interface = interface, .tool_output = tool_output});
}

TEST(RestartResultTest, TheLastMessageOfTheClientCounts) {
    EXPECT_FALSE(HasNoAnswerFor("eth0", {}));
    EXPECT_TRUE(HasNoAnswerFor("eth0", {kOnEth0, kRequest, kBound, kNoOffers, "x"}));
    EXPECT_FALSE(HasNoAnswerFor("eth0", {kOnEth0, kNoOffers, kRequest, kBound}));
}

TEST(RestartResultTest, AMessageAboutAnotherInterfaceDoesNotCount) {
    EXPECT_FALSE(HasNoAnswerFor("eth0", {kOnEth0, kRequest, kBound, kOnEth1, kNoOffers}));
    EXPECT_TRUE(HasNoAnswerFor("eth1", {kOnEth0, kRequest, kBound, kOnEth1, kNoOffers}));
    EXPECT_TRUE(HasNoAnswerFor("eth0", {kOnEth0, kNoOffers, kOnEth1, kRequestOnEth1, kBound}));
    EXPECT_FALSE(HasNoAnswerFor("eth1", {kOnEth0, kNoOffers, kOnEth1, kRequestOnEth1, kBound}));
    EXPECT_FALSE(HasNoAnswerFor("eth1", {kOnEth0, kNoOffers}));
    EXPECT_FALSE(HasNoAnswerFor("eth0", {kNoOffers})) << "of no interface";
}

// Its messages as they come from a client of both interfaces.
TEST(RestartResultTest, ALeaseBelongsToTheInterfaceOfTheRequest) {
    const std::vector<std::string> output{
        kOnEth1,
        kOnEth0,
        "DHCPDISCOVER on eth0 to 255.255.255.255 port 67 interval 3",
        kNoOffers,
        kRequest,
        "DHCPREQUEST for 192.168.1.110 on eth1 to 255.255.255.255 port 67",
        "DHCPACK of 192.168.0.109 from 192.168.0.1",
        kBound};
    EXPECT_FALSE(HasNoAnswerFor("eth0", output));
    EXPECT_FALSE(HasNoAnswerFor("eth1", output));
    EXPECT_TRUE(HasNoAnswerFor("eth1", {kOnEth1, kNoOffers, kRequest, kOnEth1, kBound}));
}

TEST(RestartResultTest, OneClientNamesTheInterfaceInEachPacket) {
    const std::vector<std::string> output{
        kOnEth1,
        kOnEth0,
        "DHCPDISCOVER on eth0 to 255.255.255.255 port 67 interval 3",
        "DHCPREQUEST for 192.168.0.109 on eth0 to 255.255.255.255 port 67",
        "DHCPACK of 192.168.0.109 from 192.168.0.1",
        kBound,
        "DHCPDISCOVER on eth1 to 255.255.255.255 port 67 interval 3",
        kNoOffers};
    EXPECT_FALSE(HasNoAnswerFor("eth0", output));
    EXPECT_TRUE(HasNoAnswerFor("eth1", output));
}

TEST(RestartResultTest, ALeaseIsFromDhcpWithoutAnAnswerOnTheOtherInterface) {
    RestartFacts facts = Up(AddressSource::kDhcp, {"192.168.0.109"});
    facts.tool_output = {kOnEth0, kBound, kOnEth1, kNoOffers, kOnEth1, kNoOffers};
    EXPECT_EQ(Judged(facts), "eth0: 192.168.0.109 from DHCP");
    facts.tool_output = {kOnEth0,
                         "DHCPREQUEST for 192.168.0.109 on eth0 to 255.255.255.255",
                         "DHCPDISCOVER on eth1 to 255.255.255.255",
                         kBound,
                         "DHCPDISCOVER on eth0 to 255.255.255.255",
                         kNoOffers};
    EXPECT_EQ(Judged(facts), "eth0: 192.168.0.109 from DHCP") << "the address that it is bound to";
}

TEST(RestartResultTest, ALeaseOfTheOtherInterfaceIsNotThatOfThisOne) {
    RestartFacts facts = Up(AddressSource::kDhcp, {"192.168.0.10"});
    facts.tool_output = {kOnEth0, kNoOffers, kOnEth1, "bound to 192.168.1.109 -- renewal in 5 s."};
    EXPECT_FALSE(JudgeRestart(facts).is_as_configured);
}

TEST(RestartResultTest, TheStateInJson) {
    EXPECT_EQ(StateInJson(Up(AddressSource::kDhcp, {"10.0.0.1"})).dump(),
              R"({"up":true,"address":"10.0.0.1","source":"dhcp"})");
    EXPECT_EQ(StateInJson(Up(AddressSource::kStatic, {})).dump(),
              R"({"up":true,"address":null,"source":"static"})");
    EXPECT_EQ(StateInJson({.interface = "eth0"}).dump(),
              R"({"up":false,"address":null,"source":null})");
}

}  // namespace
