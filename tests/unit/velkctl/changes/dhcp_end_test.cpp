// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// The DHCP client of an interface before it gets another method.
#include "velkctl/changes/dhcp_end.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/device_test.h"
#include "support/left_client.h"

namespace {

using testkit::WriteFile;
using velkctl::EndClientsOf;

constexpr char kInterfaces[] = "/etc/network/interfaces";

class DhcpEnd : public testkit::DeviceTest {
  protected:
    velkctl::Report report{velkctl::Report::Form::kText};
    const velkctl::Device device{{}, report};
};

TEST_F(DhcpEnd, IsNeededWhileAClientRuns) {
    const testkit::LeftClient client;
    WriteFile(kInterfaces, "iface eth0 inet dhcp\n");
    EXPECT_TRUE(velkctl::HasDhcpClient("eth0", device));
    WriteFile(kInterfaces, "iface eth0 inet static\n");
    EXPECT_FALSE(velkctl::HasDhcpClient("eth0", device));
}

TEST_F(DhcpEnd, ReportsAClientThatDoesNotEnd) {
    const testkit::LeftClient client;
    const auto problem = velkctl::EndDhcpClient("eth0");
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->message, "eth0: its DHCP client could not be ended");
    EXPECT_TRUE(problem->detail.starts_with("'sudo ifdown eth0' has left process "));
    EXPECT_TRUE(problem->remedy.starts_with("sudo kill "));
}

TEST_F(DhcpEnd, IsDoneIfNoClientRuns) {
    EXPECT_FALSE(velkctl::EndDhcpClient("eth7"));
}

// An entry that has restarted eth0, after a change of its method from this one.
velkctl::JournalEntry EntryFrom(char method) {
    velkctl::JournalEntry entry;
    entry.steps.push_back({*velkctl::FindSetting("eth0.method"), {}, velkctl::Data{method}});
    entry.restarts = {"eth0"};
    return entry;
}

TEST_F(DhcpEnd, ComesBeforeTheMethodStaticIsPutBack) {
    const testkit::LeftClient client;
    WriteFile(kInterfaces, "iface eth0 inet dhcp\n");
    testing::internal::CaptureStderr();
    EXPECT_TRUE(EndClientsOf(EntryFrom(VELK_METHOD_DHCP), device, report).empty());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    testing::internal::CaptureStderr();
    EXPECT_EQ(EndClientsOf(EntryFrom(VELK_METHOD_STATIC), device, report),
              std::vector<std::string>{"eth0"});
    const std::string error = testing::internal::GetCapturedStderr();
    EXPECT_EQ(error.substr(0, error.find('\n')),
              "velkctl: eth0: its DHCP client could not be ended");
}

}  // namespace
