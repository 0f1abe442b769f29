// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The steps that give the device a set of values.
#include "velkctl/changes/apply_plan.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/device_test.h"
#include "velkctl/settings/affected_settings.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::WriteFile;
using velkctl::ApplyPlan;
using velkctl::ChangeSet;
using velkctl::ExitStatus;
using velkctl::FindSetting;
using Names = std::vector<std::string>;

constexpr char kInterfaces[] = "/etc/network/interfaces";
constexpr char kClientConfig[] = "/etc/dhclient.conf";
constexpr char kResolver[] = "/etc/resolv.dnsmasq.conf";

struct Assignment {
    std::string name;
    std::string value;
};

ChangeSet ChangesOf(const std::vector<Assignment>& assignments) {
    ChangeSet changes;
    for (const auto& [name, value] : assignments) {
        const velkctl::Setting setting = *FindSetting(name);
        changes.push_back({setting, setting.row->kind->Parse({&value, 1}).data});
    }
    return changes;
}

class ApplyPlanTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        testkit::DeviceTest::SetUp();
        WriteFile(kInterfaces,
                  "iface eth0 inet static\naddress 192.168.0.10\nnetmask 255.255.255.0\n"
                  "gateway 192.168.0.1\niface eth1 inet dhcp\n");
        WriteFile(kClientConfig, "request subnet-mask;\n");
        WriteFile(kResolver, "nameserver 1.1.1.1\n");
        WriteFile("/proc/bus/usb/devices", "S:  Product=Keyboard\n");
    }
    ApplyPlan Plan(const std::vector<Assignment>& wanted,
                   const velkctl::RestartChoice& choice = {}) {
        return MakePlan(ChangesOf(wanted), choice, device);
    }

    velkctl::Report report{velkctl::Report::Form::kText};
    const velkctl::Device device{{}, report};
};

// "eth0.address 192.168.0.10 -> 10.0.0.1"
Names Changes(const ApplyPlan& plan) {
    Names changes;
    for (const auto& [change, old_value] : plan.changes) {
        const auto& kind = *change.setting.row->kind;
        changes.push_back(change.setting.name() + " " +
                          (old_value ? kind.Print(*old_value) : "(unknown)") + " -> " +
                          kind.Print(change.value));
    }
    return changes;
}

Names Messages(const std::vector<velkctl::Problem>& problems) {
    Names messages;
    for (const velkctl::Problem& problem : problems) {
        messages.push_back(OneLine(problem));
    }
    return messages;
}

TEST_F(ApplyPlanTest, HasOnlyTheDifferences) {
    const ApplyPlan plan = Plan({{"eth0.gateway", "192.168.0.2"},
                                 {"eth0.address", "192.168.0.10"},
                                 {"eth0.dns", "1.1.1.1"}});
    EXPECT_THAT(Changes(plan), ElementsAre("eth0.gateway 192.168.0.1 -> 192.168.0.2"));
    EXPECT_EQ(plan.status, ExitStatus::kDone);
    EXPECT_THAT(Changes(Plan({{"eth0.dns", "1.1.1.1"}})), IsEmpty());
}

TEST_F(ApplyPlanTest, HasTheMethodFirstAndThenTheAddresses) {
    const ApplyPlan plan = Plan({{"eth0.dns", "2.2.2.2"},
                                 {"eth1.gateway", "10.0.0.1"},
                                 {"eth1.netmask", "255.0.0.0"},
                                 {"eth1.address", "10.0.0.2"},
                                 {"eth1.method", "static"},
                                 {"eth1.dhcp-dns", "off"}});
    EXPECT_THAT(Changes(plan),
                ElementsAre("eth1.method dhcp -> static", "eth1.address (unknown) -> 10.0.0.2",
                            "eth1.netmask (unknown) -> 255.0.0.0",
                            "eth1.gateway (unknown) -> 10.0.0.1", "eth0.dns 1.1.1.1 -> 2.2.2.2"));
    EXPECT_THAT(velkctl::NamesOf({plan.beside.front().setting}), ElementsAre("eth1.dhcp-dns"))
        << "the method may switch it";
}

TEST_F(ApplyPlanTest, SkipsAddressesThatALeaseGives) {
    const ApplyPlan plan =
        Plan({{"eth1.address", "10.0.0.2"}, {"eth0.method", "dhcp"}, {"eth0.gateway", "10.0.0.1"}});
    EXPECT_THAT(Changes(plan), ElementsAre("eth0.method static -> dhcp"));
    EXPECT_THAT(velkctl::NamesOf(plan.skipped), ElementsAre("eth1.address", "eth0.gateway"));
}

TEST_F(ApplyPlanTest, RefusesValuesThatDoNotFitEachOther) {
    const ApplyPlan plan =
        Plan({{"eth0.gateway", "10.0.0.1"}, {"eth0.dns", "1.1.1.1"}, {"eth1.dns", "2.2.2.2"}});
    EXPECT_THAT(Messages(plan.problems),
                ElementsAre("eth0.gateway: 10.0.0.1 is outside the network of the interface; the "
                            "network of the interface is 192.168.0.0/24; fix: give another "
                            "value, or give the address and netmask too",
                            "eth1.dns: another value than eth0.dns; eth0 and eth1 have one list "
                            "of DNS servers; fix: give both the same servers, or one of them "
                            "alone"));
    EXPECT_EQ(plan.status, ExitStatus::kInvalid);
}

TEST_F(ApplyPlanTest, ChecksTheValuesThatStayTogetherWithThoseThatChange) {
    const std::vector<Assignment> wanted{{"eth0.address", "10.0.0.2"},
                                         {"eth0.netmask", "255.255.255.0"},
                                         {"eth0.gateway", "192.168.0.1"}};
    EXPECT_THAT(Messages(Plan(wanted).problems),
                ElementsAre("eth0.gateway: 192.168.0.1 is outside the network of the interface; "
                            "the network of the interface is 10.0.0.0/24; fix: give another value, "
                            "or give the address and netmask too"));
    EXPECT_EQ(Plan(wanted).status, ExitStatus::kInvalid);
}

TEST_F(ApplyPlanTest, LeavesAloneValuesThatDoNotFitAndStay) {
    WriteFile(kInterfaces,
              "iface eth0 inet static\naddress 192.168.0.10\nnetmask 255.255.255.0\n"
              "gateway 10.0.0.1\niface eth1 inet dhcp\n");
    const ApplyPlan plan = Plan(
        {{"eth0.address", "192.168.0.10"}, {"eth0.gateway", "10.0.0.1"}, {"eth0.dns", "2.2.2.2"}});
    EXPECT_THAT(Messages(plan.problems), IsEmpty());
    EXPECT_THAT(Changes(plan), ElementsAre("eth0.dns 1.1.1.1 -> 2.2.2.2"));
}

TEST_F(ApplyPlanTest, FailsWithTheDaemonAndAsksItOnce) {
    const ApplyPlan plan = Plan({{"eth1.ssid", "a"}, {"eth1.channel", "3"}});
    EXPECT_EQ(plan.problems.size(), 1U);
    EXPECT_EQ(plan.status, ExitStatus::kNoAdapter);
    EXPECT_TRUE(plan.problems[0].message.starts_with("eth1.ssid: could not be compared"));
}

TEST_F(ApplyPlanTest, AlwaysSetsAValueThatCannotBeRead) {
    EXPECT_THAT(Changes(Plan({{"eth0.dhcp-notice", "on"}})),
                ElementsAre("eth0.dhcp-notice (unknown) -> on"));
}

TEST_F(ApplyPlanTest, RestartsTheInterfacesThatNeedIt) {
    EXPECT_THAT(Plan({{"eth0.gateway", "192.168.0.2"}}).restarts, ElementsAre("eth0"));
    EXPECT_THAT(Plan({{"eth0.dns", "2.2.2.2"}}).restarts, IsEmpty());
    EXPECT_THAT(Plan({{"eth0.gateway", "192.168.0.1"}}).restarts, IsEmpty());
    EXPECT_THAT(Plan({{"dhcp-ntp", "on"}, {"eth0.method", "dhcp"}}).restarts, ElementsAre("eth0"));
    const ApplyPlan wireless = Plan({{"eth1.method", "static"}});
    EXPECT_THAT(wireless.restarts, IsEmpty());
    EXPECT_THAT(Messages(wireless.notes),
                ElementsAre("eth1: not restarted; no adapter is attached; its settings take "
                            "effect at its next restart"));
}

TEST_F(ApplyPlanTest, RestartsTheInterfacesThatTheCallerNames) {
    WriteFile("/proc/bus/usb/devices", "S:  Product=QT4408RKM\n");
    const velkctl::RestartChoice both{.is_automatic = false, .interfaces = {"eth0", "eth1"}};
    EXPECT_THAT(Plan({{"eth0.dns", "2.2.2.2"}}, both).restarts, ElementsAre("eth0", "eth1"));
    EXPECT_THAT(Plan({{"eth0.dns", "1.1.1.1"}}, both).restarts, IsEmpty());
    const velkctl::RestartChoice never{.is_automatic = false};
    EXPECT_THAT(Plan({{"eth0.gateway", "192.168.0.2"}}, never).restarts, IsEmpty());
}

TEST_F(ApplyPlanTest, RefusesARestartOfEth1WithoutAnAdapter) {
    const velkctl::RestartChoice both{.is_automatic = false, .interfaces = {"eth0", "eth1"}};
    const ApplyPlan plan = Plan({{"eth0.dns", "2.2.2.2"}}, both);
    EXPECT_EQ(plan.status, ExitStatus::kNoAdapter);
    EXPECT_THAT(Messages(plan.problems),
                ElementsAre("--restart: eth1 cannot be restarted; no adapter is attached; fix: "
                            "plug in an adapter, or leave eth1 out of --restart"));
    EXPECT_THAT(Messages(Plan({{"eth0.dns", "1.1.1.1"}}, both).problems), IsEmpty());
    EXPECT_EQ(Plan({{"eth0.gateway", "10.0.0.1"}}, both).status, ExitStatus::kInvalid);
}

}  // namespace
