// The DHCP client of an interface before it gets another method.
#include "velkctl/changes/dhcp_end.h"

#include <string>

#include <gtest/gtest.h>

#include "support/device_test.h"

namespace {

using testkit::WriteFile;

constexpr char kInterfaces[] = "/etc/network/interfaces";

class DhcpEnd : public testkit::DeviceTest {
  protected:
    velkctl::Report report{velkctl::Report::Form::kText};
    const velkctl::Device device{{}, report};
};

TEST_F(DhcpEnd, NeedsAClientThatRunsAndTheMethodDhcp) {
    WriteFile(kInterfaces, "iface eth0 inet static\niface eth1 inet dhcp\n");
    EXPECT_FALSE(velkctl::HasDhcpClient("eth0", device));
    EXPECT_FALSE(velkctl::HasDhcpClient("eth1", device)) << "no client runs";
}

TEST_F(DhcpEnd, IsDoneIfNoClientRuns) {
    EXPECT_FALSE(velkctl::EndDhcpClient("eth7"));
}

}  // namespace
