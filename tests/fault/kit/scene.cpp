// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// scene.cpp - the device that a request meets.
#include "fault/kit/scene.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include <sys/stat.h>
#include <unistd.h>

#include "sandbox/device/sample_files.h"
#include "support/device_test.h"
#include "support/paths.h"

namespace fault {
namespace {

using testkit::kClientScript;
using testkit::kCrontab;
using testkit::kDhcpConfigFile;
using testkit::kEditFolder;
using testkit::kExitHooks;
using testkit::kIdentityFile;
using testkit::kInterfacesFile;
using testkit::kNtpLog;
using testkit::kOldAddressFile;
using testkit::kRequestSocket;
using testkit::kResolverFile;
using testkit::kResultFile;
using testkit::kSemaphoreFolder;
using testkit::kSnmpFile;
using testkit::kSocketFolder;
using testkit::kSupportList;
using testkit::kUsbDevices;

namespace fs = std::filesystem;

constexpr std::array kTargets{
    kExitHooks,      kDhcpConfigFile, kInterfacesFile, kResolverFile, kClientScript,
    kOldAddressFile, kSnmpFile,       kCrontab,        kIdentityFile, kNtpLog,
};

// Files that the simulated device has no samples of.
const std::map<std::string, std::string> kOwnTexts{
    {kOldAddressFile, "10.0.0.5\n"},
    {kNtpLog, "21 Nov 05:31:07 ntpdate[145]: adjust time server 10.0.0.1\n"},
};

// The sample's wireless stanza has no values, and a set adds none to the last stanza of a file.
constexpr char kWirelessValues[] =
    "\taddress 192.168.1.10\n"
    "\tnetmask 255.255.255.0\n"
    "\tgateway 192.168.1.1\n";

constexpr char kAddresses[] =
    "eth0      Link encap:Ethernet  HWaddr 02:00:00:00:00:10\n"
    "          inet addr:10.0.0.5  Bcast:10.0.0.255  Mask:255.255.255.0\n"
    "\n"
    "eth1      Link encap:Ethernet  HWaddr 02:00:00:00:00:11\n"
    "          inet addr:10.0.1.5  Bcast:10.0.1.255  Mask:255.255.255.0\n";

// Differs from the output of the tools in any scene without a cable.
constexpr char kOldResult[] =
    "eth0      Link encap:Ethernet  HWaddr 02:00:00:00:00:10\n"
    "          inet addr:10.99.0.5  Bcast:10.99.255.255  Mask:255.255.0.0\n"
    "\n"
    "\tSpeed: 10Mb/s\n\tDuplex: Half\n\tAuto-negotiation: off\n"
    "\tLink detected: yes\n";

// Returns the samples of the sandbox's device at the library's own paths, which are private.
const std::map<std::string, std::string>& Samples() {
    static const std::map<std::string, std::string> samples = [] {
        std::map<std::string, std::string> found;
        for (const sandbox::SampleFile& file :
             sandbox::ReadSamples(VELK_SOURCE_DIR "/sandbox/data/rootfs")) {
            found[file.path.string()] = file.text;
        }
        return found;
    }();
    return samples;
}

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at)) {
        text.replace(at, from.size(), to);
        at += to.size();
    }
    return text;
}

// Puts more than one block of comments in front of the sample's text; every reader skips them. They
// are few lines: some edits copy each line, and every copy is a separate fault.
std::string Lengthened(const std::string& text) {
    const std::string comment = "#" + std::string(20 * 1024, '-') + "\n";
    return comment + comment + comment + comment + text;
}

void WriteTarget(const std::string& path, const Scene& scene) {
    if (kOwnTexts.contains(path)) {
        testkit::WriteFile(path, kOwnTexts.at(path));
        return;
    }
    std::string text = Samples().at(path);
    if (path == kInterfacesFile) {
        text = scene.uses_dhcp ? Replaced(text, "inet static", "inet dhcp")
                               : Replaced(text, "inet dhcp", "inet static");
        text += kWirelessValues;
    }
    testkit::WriteFile(path, scene.has_long_files ? Lengthened(text) : text);
}

SMsgState WirelessState() {
    SMsgState state{};
    strcpy(state.product, "P:  Vendor=2c51 ProdID=0a12 Rev= 1.04");
    strcpy(state.software_version, "2.1");
    return state;
}

}  // namespace

SMsgConf WirelessConfiguration() {
    SMsgConf conf{};
    conf.ssid_length = 4;
    memcpy(conf.ssid, "home", 4);
    conf.service_set = 1;
    conf.dot11_phy_conf = 1;
    conf.channel = 6;
    conf.encryption = 1;
    conf.wep_default = 1;
    for (SWepKey& key : conf.wep_key) {
        key.length = 5;
        memcpy(key.key, "abcde", 5);
    }
    conf.psk_length = 8;
    memcpy(conf.psk, "password", 8);
    return conf;
}

std::vector<Scene> AllScenes() {
    std::vector<Scene> scenes;
    for (const bool uses_dhcp : {false, true}) {
        for (const bool has_cable : {false, true}) {
            for (const bool has_adapter : {true, false}) {
                scenes.push_back({has_adapter, has_cable, uses_dhcp, /*has_long_files=*/false});
            }
        }
    }
    scenes.push_back({.has_long_files = true});
    return scenes;
}

std::string NameOf(const Scene& scene) {
    return std::string(scene.has_adapter ? "adapter in" : "adapter out")
        .append(scene.has_cable ? ", cable in" : ", cable out")
        .append(scene.uses_dhcp ? ", DHCP" : ", static")
        .append(scene.has_long_files ? ", long files" : "");
}

Files ReadTargets() {
    Files files;
    for (const char* path : kTargets) {
        files[path] = testkit::Exists(path) ? std::optional(testkit::ReadFile(path)) : std::nullopt;
    }
    return files;
}

std::vector<std::string> RemainingFiles() {
    std::vector<std::string> paths;
    for (const char* folder : {kSocketFolder, kEditFolder, kSemaphoreFolder}) {
        for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
            const bool is_lock = entry.path().string().ends_with("_lock");
            if (!entry.is_directory() && !is_lock) {
                paths.push_back(entry.path());
            }
        }
    }
    std::erase(paths, kRequestSocket);   // the daemon's
    std::erase(paths, kOldAddressFile);  // a target
    std::ranges::sort(paths);
    return paths;
}

std::string PathWithHarmlessSudo() {
    const std::string folder = "/run/fault-tools";
    const std::string sudo = folder + "/sudo";
    (void)mkdir(folder.c_str(), 0755);
    testkit::WriteFile(sudo, "#!/bin/sh\n[ \"$1\" = sed ] || exit 0\nexec \"$@\"\n");
    if (chmod(sudo.c_str(), 0755) != 0 || access(sudo.c_str(), X_OK) != 0) {
        throw std::runtime_error("no harmless sudo");
    }
    return folder + ":/usr/bin:/bin";
}

void WriteFiles(const Scene& scene) {
    for (const char* path : kTargets) {
        WriteTarget(path, scene);
    }
    testkit::WriteFile(kSupportList, Samples().at(kSupportList));
    testkit::WriteFile(kUsbDevices, scene.has_adapter ? Samples().at(kUsbDevices) : "");
    if (scene.has_old_result) {
        testkit::WriteFile(kResultFile, kOldResult);
    }
}

Device::Device(const Scene& scene, const Files& files, testkit::FakeDaemon::Turn turn) {
    testkit::LibcRecorder& libc = testkit::LibcRecorder::Get();
    libc.Reset();
    testkit::EmptyDevice();
    WriteFiles(scene);
    for (const auto& [path, text] : files) {
        if (text) {
            testkit::WriteFile(path, *text);
        } else {
            (void)unlink(path.c_str());
        }
    }
    libc.NeverWait();
    libc.ScriptAlways(testkit::Call::kNanosleep, testkit::Return(0));
    libc.ScriptAlways(testkit::Call::kIoctl, testkit::Return(0));  // nobody has an eth0 here
    shell_.emplace();
    shell_->RunsForReal("sudo sed", PathWithHarmlessSudo());
    shell_->Prints("ifconfig", {kAddresses});
    shell_->Prints("sudo /usr/sbin/ethtool",
                   {scene.has_cable ? "\tLink detected: yes\n" : "\tLink detected: no\n"});
    shell_->Prints("sudo ethtool", {"\tSpeed: 100Mb/s\n\tDuplex: Full\n\tAuto-negotiation: off\n"});
    StartDaemon(turn, WirelessConfiguration());
    libc.ForgetEvents();
}

void Device::StartDaemon(testkit::FakeDaemon::Turn turn, const SMsgConf& conf) {
    daemon_.reset();
    daemon_.emplace(turn);
    daemon_->SetConf(conf);
    daemon_->SetState(WirelessState());
}

SMsgConf Device::RestartDaemon() {
    daemon_->Stop();
    const SMsgConf stored = daemon_->conf();
    StartDaemon(testkit::FakeDaemon::Turn::kOwnThread, stored);
    return stored;
}

}  // namespace fault
