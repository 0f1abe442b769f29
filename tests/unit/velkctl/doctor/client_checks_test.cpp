// DHCP clients that run for an interface with another method.
#include <csignal>
#include <string>

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/device_test.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/dhcp_client.h"

namespace {

using testkit::WriteFile;
using velkctl::CheckDhcpClients;
using velkctl::Findings;

constexpr char kInterfaces[] = "/etc/network/interfaces";

// A process with the command line of a client of eth0.
class LeftClient {
  public:
    LeftClient() : id_(fork()) {
        if (id_ == 0) {
            execl("/bin/sh", "dhclient", "-c", "kill -STOP $$; :", "eth0", nullptr);
            _exit(127);
        }
        while (!velkctl::ReadDhcpClient("eth0").is_running) {
            (void)usleep(1000);
        }
    }
    ~LeftClient() {
        (void)kill(id_, SIGKILL);
        (void)waitpid(id_, nullptr, 0);
    }
    pid_t id() const { return id_; }

  private:
    const pid_t id_;
};

class ClientChecks : public testkit::DeviceTest {};

TEST_F(ClientChecks, FindAClientOfAnInterfaceWithAStaticAddress) {
    const LeftClient client;
    WriteFile(kInterfaces, "auto eth0\niface eth0 inet static\n");
    const Findings findings = CheckDhcpClients();
    ASSERT_EQ(findings.size(), 1U);
    const std::string process = std::to_string(client.id());
    EXPECT_EQ(findings[0].subject, "eth0.address");
    EXPECT_EQ(findings[0].description, "a DHCP client, process " + process +
                                           ", still runs for it, and its method is static");
    EXPECT_EQ(findings[0].remedy, "run 'sudo kill " + process + "', then 'velkctl restart eth0'");
    EXPECT_EQ(findings[0].severity, velkctl::Severity::kWarning);
}

TEST_F(ClientChecks, TakeAClientOfAnInterfaceOnDhcp) {
    const LeftClient client;
    WriteFile(kInterfaces, "iface eth0 inet dhcp\niface eth1 inet static\n");
    EXPECT_TRUE(CheckDhcpClients().empty());
    WriteFile(kInterfaces, "");
    EXPECT_TRUE(CheckDhcpClients().empty()) << "no stanza";
}

}  // namespace
