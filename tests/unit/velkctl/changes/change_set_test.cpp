// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Changes that are checked and made together.
#include "velkctl/changes/change_set.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "support/device_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testkit::WriteFile;
using velkctl::ChangeSet;
using velkctl::ExitStatus;
using velkctl::FindSetting;
using velkctl::MadeChange;

constexpr char kInterfaces[] = "/etc/network/interfaces";

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

class ChangeSetTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        testkit::DeviceTest::SetUp();
        WriteFile(kInterfaces,
                  "iface eth0 inet static\naddress 192.168.0.10\nnetmask 255.255.255.0\n"
                  "gateway 192.168.0.1\n");
    }
    std::vector<std::string> Conflicts(const ChangeSet& changes,
                                       const std::vector<velkctl::Problem>& known = {}) {
        std::vector<std::string> messages;
        for (const velkctl::Problem& problem : FindConflicts(changes, known, device)) {
            messages.push_back(problem.message);
        }
        return messages;
    }
    std::vector<MadeChange> Make(const ChangeSet& changes) {
        testing::internal::CaptureStderr();
        std::vector<MadeChange> made = MakeChanges(changes, {}, device, report);
        error = testing::internal::GetCapturedStderr();
        return made;
    }

    velkctl::Report report{velkctl::Report::Form::kText};
    const velkctl::Device device{{}, report};
    std::string error;
};

TEST_F(ChangeSetTest, IsSortedByInterfaceAndThenAsTheCatalogue) {
    ChangeSet changes = ChangesOf({{"eth1.wep-default-key", "1"},
                                   {"eth1.wep-key-2", "none"},
                                   {"eth1.wep-key-1", "abcde"},
                                   {"eth0.gateway", "10.0.0.1"},
                                   {"eth1.method", "static"},
                                   {"eth0.address", "10.0.0.2"},
                                   {"ntp", "on"}});
    SortChanges(changes);
    std::vector<std::string> names;
    for (const velkctl::SettingChange& change : changes) {
        names.push_back(change.setting.name());
    }
    EXPECT_THAT(names, ElementsAre("ntp", "eth0.address", "eth0.gateway", "eth1.method",
                                   "eth1.wep-key-1", "eth1.wep-default-key", "eth1.wep-key-2"));
}

TEST_F(ChangeSetTest, IsCheckedAgainstItsOwnValues) {
    EXPECT_THAT(Conflicts(ChangesOf({{"eth0.gateway", "10.0.0.1"}})),
                ElementsAre("eth0.gateway: 10.0.0.1 is outside the network of the interface"));
    EXPECT_THAT(Conflicts(ChangesOf({{"eth0.gateway", "10.0.0.1"}, {"eth0.address", "10.0.0.5"}})),
                IsEmpty());
}

TEST_F(ChangeSetTest, IsNotCheckedWhereAProblemIsKnown) {
    EXPECT_THAT(Conflicts(ChangesOf({{"eth0.gateway", "10.0.0.1"}}),
                          {velkctl::Problem{.message = "", .setting = "eth0.gateway"}}),
                IsEmpty());
    EXPECT_THAT(Conflicts({{*FindSetting("eth0.address"), {}},
                           ChangesOf({{"eth0.gateway", "10.0.0.1"}}).front()}),
                IsEmpty())
        << "an address that is refused is unknown";
}

TEST_F(ChangeSetTest, StopsAtTheFirstFailure) {
    const std::vector<MadeChange> made = Make(ChangesOf(
        {{"ntp-server", "a.example"}, {"eth0.address", "10.0.0.5"}, {"eth0.dns", "1.1.1.1"}}));
    ASSERT_EQ(made.size(), 1U);
    EXPECT_FALSE(made[0].is_set);
    EXPECT_EQ(made[0].status, ExitStatus::kFailed);
    EXPECT_NE(error.find("velkctl: note: set: stopped at ntp-server\n"
                         "  set: none; not set: ntp-server, eth0.address, eth0.dns\n"),
              std::string::npos)
        << error;
}

TEST_F(ChangeSetTest, OfOneChangeHasNoMoreToSayAfterAFailure) {
    EXPECT_EQ(Make(ChangesOf({{"ntp-server", "a.example"}})).size(), 1U);
    EXPECT_EQ(error.find("stopped"), std::string::npos) << error;
}

}  // namespace
