// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// main.cpp - measures the library on a simulated device.
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include <benchmark/benchmark.h>

#include "bench/floor.h"
#include "bench/groups.h"
#include "sandbox/device/device.h"
#include "sandbox/device/mounts.h"

namespace {

constexpr unsigned kMegabytes = 512;  // for files of 100 MB; a device's folders have less

void EnterPrivateDevice() {
    sandbox::DeviceOptions options;
    options.rootfs = VELK_SOURCE_DIR "/sandbox/data/rootfs";
    options.bind_folders = {VELK_SOURCE_DIR, VELK_BINARY_DIR};
    options.writable = {VELK_BINARY_DIR};  // for the results
    sandbox::EnterDevice(options);
    bench::RunLine("cp /etc/network/interfaces /run/");
    (void)sandbox::MountTmpfs("/etc/network", 0755, kMegabytes);
    (void)sandbox::MountTmpfs("/var/tmp", 01777, kMegabytes);
    bench::RunLine("mv /run/interfaces /etc/network/");
    // The stand-ins of velk-sandbox.
    const std::string path = VELK_BINARY_DIR "/stand-ins:" + std::string(getenv("PATH"));
    setenv("PATH", path.c_str(), 1);
    bench::RunLine("ip link add eth0 type bridge");  // the wired port
    bench::RunLine("ifconfig eth0 192.168.0.10");
    bench::RunLine("mkdir -p /run/velk-sandbox");  // for the stand-in of ethtool(8)
}

}  // namespace

int main(int argc, char** argv) {
    try {
        EnterPrivateDevice();
    } catch (const std::exception& error) {
        fprintf(stderr, "velk_bench: no private device: %s\n", error.what());
        return 1;
    }
    bench::AddGets();
    bench::AddSets();
    bench::AddBusyDevice();
    bench::AddLock();
    bench::AddWireless();
    bench::AddGrowth();
    bench::AddPeers();
    bench::AddProcesses();
    bench::AddLoading();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
