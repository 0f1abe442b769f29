// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The values of the device as they will be after the changes of one call.
#include "velkctl/call/planned_values.h"

#include <string>
#include <vector>

#include "support/device_test.h"
#include "support/paths.h"

namespace {

using testkit::kInterfacesFile;
using testkit::WriteFile;
using velkctl::FindSetting;
using velkctl::SettingChange;

class PlannedValuesTest : public testkit::DeviceTest {
  protected:
    void SetUp() override {
        testkit::DeviceTest::SetUp();
        WriteFile(kInterfacesFile,
                  "iface eth0 inet static\naddress 192.168.0.10\nnetmask 255.255.255.0\n");
    }
    void Plan(const std::string& name, const std::string& word) {
        const velkctl::Setting setting = *FindSetting(name);
        changes.push_back({setting, setting.row->kind->Parse({&word, 1}).data});
    }
    std::string Get(const std::string& name) const {
        velkctl::Report report(velkctl::Report::Form::kText);
        const velkctl::Device device({}, report);
        const auto data = velkctl::PlannedValues(device, changes).Get(*FindSetting(name));
        return data ? FindSetting(name)->row->kind->Print(*data) : "unknown";
    }

    std::vector<SettingChange> changes;
};

TEST_F(PlannedValuesTest, ANewValueReplacesThePresentOne) {
    Plan("eth0.address", "10.0.0.5");
    EXPECT_EQ(Get("eth0.address"), "10.0.0.5");
    EXPECT_EQ(Get("eth0.netmask"), "255.255.255.0");
}

TEST_F(PlannedValuesTest, TheValueOfTheOtherInterfaceIsNotTaken) {
    Plan("eth1.address", "10.0.0.5");
    EXPECT_EQ(Get("eth0.address"), "192.168.0.10");
}

TEST_F(PlannedValuesTest, AValueThatCannotBeReadIsUnknown) {
    EXPECT_EQ(Get("eth0.dns"), "unknown");
}

TEST_F(PlannedValuesTest, TheAddressesOfAnotherMethodAreUnknown) {
    Plan("eth0.method", "dhcp");
    Plan("eth0.netmask", "255.0.0.0");
    EXPECT_EQ(Get("eth0.address"), "unknown");
    EXPECT_EQ(Get("eth0.netmask"), "255.0.0.0");
}

TEST_F(PlannedValuesTest, TheAddressesOfAMethodThatStaysAreKnown) {
    Plan("eth0.method", "static");
    EXPECT_EQ(Get("eth0.address"), "192.168.0.10");
}

TEST_F(PlannedValuesTest, FindsAValueByItsCommand) {
    velkctl::Report report(velkctl::Report::Form::kText);
    const velkctl::Device device({}, report);
    const velkctl::PlannedValues planned(device, changes);
    EXPECT_TRUE(planned.Get(VELK_CMD_IP_ADDRESS, "eth0").has_value());
    EXPECT_FALSE(planned.Get(VELK_CMD_LINK_SPEED, "eth1").has_value()) << "no such setting";
}

}  // namespace
