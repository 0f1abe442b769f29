// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// router.cpp - a simulated router: a network namespace with DHCP, DNS and time servers.
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

#include "sandbox/device/network_control.h"
#include "sandbox/hardware/netns_scope.h"
#include "sandbox/hardware/ports.h"
#include "sandbox/hardware/time_server.h"
#include "sandbox/process/failure.h"
#include "sandbox/process/messages.h"
#include "sandbox/process/pid_file.h"
#include "sandbox/process/programs.h"
#include "sandbox/process/run_paths.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr char kNetnsFolder[] = "/run/netns";
constexpr char kNetnsName[] = "/run/netns/router";

void SetUpPort(TapPorts& ports, const NetworkControl& network, const Port& port,
               const char* address) {
    ports.Make(port);
    StaticAddress full;
    (void)inet_pton(AF_INET, address, &full.address);
    (void)inet_pton(AF_INET, "255.255.255.0", &full.mask);
    network.SetAddress(port.name, full);
}

// ip-netns(8) finds named namespaces in this folder.
void MakeNetnsName() {
    fs::create_directories(kNetnsFolder);
    const std::ofstream mount_point(kNetnsName);
    if (mount("/proc/self/ns/net", kNetnsName, nullptr, MS_BIND, nullptr) == -1) {
        Fail("cannot name the router's network namespace", errno);
    }
}

void RemoveNetnsName() {
    (void)umount2(kNetnsName, MNT_DETACH);
    (void)unlink(kNetnsName);
}

pid_t StartTimeServer() {
    const pid_t server = fork();
    if (server == -1) {
        Fail("cannot start the time server", errno);
    }
    if (server == 0) {
        // Otherwise the descriptors of the ports would stay open as long as this process.
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
        RemoveNetnsName();
        throw;
    }
}

void Router::Build(const std::string& folder) {
    const NetnsScope scope(network_);
    const NetworkControl network;
    network.BringUp("lo");
    ports_.emplace();
    SetUpPort(*ports_, network, kRouterWiredPort, "192.168.0.1");
    SetUpPort(*ports_, network, kRouterWirelessPort, "192.168.1.1");
    MakeNetnsName();
    time_server_ = StartTimeServer();
    // The program returns once its servers are ready.
    if (RunProgram({FindProgram("dnsmasq"), std::string("--pid-file=") + kRouterPidFile,
                    "--conf-file=" + folder + "/dnsmasq.conf"}) != 0) {
        throw Failure("the router's DHCP and DNS server did not start");
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
    RemoveNetnsName();
}

}  // namespace sandbox
