// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// DHCP clients that run for an interface with another method.
#include <gmock/gmock.h>

#include "support/device_test.h"
#include "support/left_client.h"
#include "support/paths.h"
#include "velkctl/doctor/checks.h"

namespace {

using testing::EndsWith;
using testing::StartsWith;
using testkit::kInterfacesFile;
using testkit::LeftClient;
using testkit::WriteFile;
using velkctl::CheckDhcpClients;
using velkctl::Findings;

// The test also sees clients of the machine around it.
class ClientChecks : public testkit::DeviceTest {
  protected:
    const LeftClient client;
};

TEST_F(ClientChecks, FindAClientOfAnInterfaceWithAStaticAddress) {
    WriteFile(kInterfacesFile, "auto eth0\niface eth0 inet static\n");
    const Findings findings = CheckDhcpClients();
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].subject, "eth0.address");
    EXPECT_EQ(findings[0].effect, "may be replaced by that of a lease");
    EXPECT_THAT(findings[0].description, StartsWith("a DHCP client, process "));
    EXPECT_THAT(findings[0].remedy, StartsWith("run 'sudo kill "));
    EXPECT_THAT(findings[0].remedy, EndsWith("', then 'velkctl restart eth0'"));
    EXPECT_EQ(findings[0].severity, velkctl::Severity::kWarning);
}

TEST_F(ClientChecks, TakeAClientOfAnInterfaceOnDhcp) {
    WriteFile(kInterfacesFile, "iface eth0 inet dhcp\n");
    EXPECT_TRUE(CheckDhcpClients().empty());
    WriteFile(kInterfacesFile, "");
    EXPECT_TRUE(CheckDhcpClients().empty()) << "no stanza";
}

}  // namespace
