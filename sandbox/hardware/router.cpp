// router.cpp - what the device's cables lead to: a network of its own with DHCP, DNS and time.
#include "sandbox/hardware/router.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>

#include <arpa/inet.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include "sandbox/hardware/netns_scope.h"
#include "sandbox/hardware/time_server.h"
#include "sandbox/process/daemon_process.h"
#include "sandbox/process/exit_status.h"
#include "sandbox/process/failure.h"
#include "sandbox/process/programs.h"
#include "sandbox/process/run_paths.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr char kNameFolder[] = "/run/netns";
constexpr char kName[] = "/run/netns/router";

void PutUp(TapPorts& ports, const NetworkControl& network, const Port& port, const char* address) {
    ports.Make(port);
    StaticAddress full;
    (void)inet_pton(AF_INET, address, &full.address);
    (void)inet_pton(AF_INET, "255.255.255.0", &full.mask);
    network.SetAddress(port.name, full);
}

// Where ip-netns(8) looks for it.
void NameNetwork() {
    fs::create_directories(kNameFolder);
    const std::ofstream mount_point(kName);
    if (mount("/proc/self/ns/net", kName, nullptr, MS_BIND, nullptr) == -1) {
        Fail("cannot name the router's network", errno);
    }
}

void ForgetName() {
    (void)umount2(kName, MNT_DETACH);
    (void)unlink(kName);
}

pid_t StartTimeServer() {
    const pid_t server = fork();
    if (server == -1) {
        Fail("cannot start the time server", errno);
    }
    if (server == 0) {
        // The ports among them would live as long as this process.
        (void)close_range(STDERR_FILENO + 1, ~0U, 0);
        try {
            ServeTime();
        } catch (const std::exception& error) {
            PrintFailure(error);
        }
        _exit(EXIT_FAILURE);
    }
    return server;
}

}  // namespace

Router::Router(const std::string& folder) : network_(MakeNetwork()) {
    try {
        Build(folder);
    } catch (const Failure&) {
        EndTimeServer();
        ForgetName();
        throw;
    }
}

void Router::Build(const std::string& folder) {
    const NetworkVisit visit(network_);
    const NetworkControl network;
    network.BringUp("lo");
    ports_.emplace();
    PutUp(*ports_, network, kRouterWiredPort, "192.168.0.1");
    PutUp(*ports_, network, kRouterWirelessPort, "192.168.1.1");
    NameNetwork();
    time_server_ = StartTimeServer();
    // In the background, it returns when the servers answer.
    if (RunProgram({FindProgram("dnsmasq"), std::string("--pid-file=") + kRouterPidFile,
                    "--conf-file=" + folder + "/dnsmasq.conf"}) != 0) {
        throw Failure("the router's DHCP and DNS server does not start");
    }
}

void Router::EndTimeServer() const {
    if (time_server_ > 0) {
        (void)kill(time_server_, SIGKILL);
        (void)waitpid(time_server_, nullptr, 0);
    }
}

Router::~Router() {
    StopDaemon(kRouterPidFile);
    EndTimeServer();
    ForgetName();
}

}  // namespace sandbox
