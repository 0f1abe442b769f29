// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// changes.cpp - changes made with velkctl on a device of real tools, and the states they leave.
#include "fault/kit/changes.h"

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <net/if.h>
#include <sys/stat.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"
#include "support/device_test.h"
#include "support/fake_interfaces.h"
#include "support/libc_recorder.h"
#include "support/paths.h"
#include "velkctl/call/device.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/changes/apply.h"
#include "velkctl/changes/apply_plan.h"
#include "velkctl/changes/change_set.h"
#include "velkctl/changes/journal_record.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/journal/set_record.h"

namespace fault {
namespace {

using testkit::FakeDaemon;
using velkctl::ExitStatus;
using velkctl::Report;
using velkctl::Setting;
using velkctl::SettingChange;

constexpr char kFolder[] = "/run/change-tools";
constexpr char kPort[] = "/run/change-tools/port";
constexpr char kBootId[] = "/run/change-tools/boot_id";

constexpr char kSudo[] = R"(#!/bin/sh
case $1 in
    sed) exec "$@" ;;
    ethtool) shift; exec /run/change-tools/ethtool "$@" ;;
esac
)";

// The port has its new mode with the rename, as at once.
constexpr char kEthtool[] = R"(#!/bin/sh
port=/run/change-tools/port
if [ "$1" = -s ]; then
    shift 2
    echo "$*" >$port.new && exec mv $port.new $port
fi
read -r options <$port
case $options in *'autoneg on'*) auto=on ;; *) auto=off ;; esac
case $options in *'speed 10 '*) speed=10 ;; *) speed=100 ;; esac
case $options in *'duplex half'*) duplex=Half ;; *) duplex=Full ;; esac
printf '\tSpeed: %sMb/s\n\tDuplex: %s\n\tAuto-negotiation: %s\n' $speed $duplex $auto
)";

void WriteTool(const std::string& name, const char* text) {
    const std::string path = std::string(kFolder) + "/" + name;
    testkit::WriteFile(path, text);
    if (chmod(path.c_str(), 0755) != 0 || access(path.c_str(), X_OK) != 0) {
        throw std::runtime_error("no harmless " + name);
    }
}

void MakeTools() {
    (void)mkdir(kFolder, 0755);
    WriteTool("sudo", kSudo);
    WriteTool("ethtool", kEthtool);
    for (const char* name : {"ifconfig", "ifdown", "ifup", "dhclient", "route"}) {
        WriteTool(name, "#!/bin/sh\n");  // a restart needs them
    }
    testkit::WriteFile(kPort, "speed 100 duplex full autoneg off\n");
    testkit::WriteFile(kBootId, "0\n");
    (void)unlink((std::string(kPort) + ".new").c_str());
}

// The output of the verbs is no test output.
void SendOutput(const std::string& path) {
    constexpr int kFlags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC;
    const velk::UniqueFd file(open(path.c_str(), kFlags, 0600));
    (void)dup2(file.get(), STDOUT_FILENO);
    (void)dup2(file.get(), STDERR_FILENO);
}

// The child process has a recorder of its own.
void UseRealTools(const std::string& output = "/dev/null") {
    SendOutput(output);
    testkit::LibcRecorder& libc = testkit::LibcRecorder::Get();
    libc.Reset();
    libc.ScriptAlways(testkit::Call::kIoctl, testkit::Return(0));  // nobody has an eth0 here
    libc.Redirect("/proc/sys/kernel/random/boot_id", kBootId);
    (void)setenv("PATH", (std::string(kFolder) + ":/usr/bin:/bin").c_str(), 1);
}

// Makes eth0 up with the address of every scene's file. The ifup of these tests does nothing, and a
// restart is compared with the file.
void AddSceneAddress(testkit::FakeInterfaces& interfaces) {
    interfaces.AddAddress("eth0", IFF_UP | IFF_RUNNING, "192.168.0.10", "255.255.255.0");
}

int MakeSet(const Changes& changes) {
    UseRealTools();
    Report report(Report::Form::kText);
    velkctl::Device device({}, report);
    velkctl::SetRecord record(changes, 0, device, report);
    if (record.is_refused()) {
        return static_cast<int>(ExitStatus::kLocked);
    }
    const std::vector<velkctl::MadeChange> made = MakeChanges(changes, {}, device, report);
    record.Finish();
    return static_cast<int>(made.back().status);
}

ExitStatus CarryOutPlan(const velkctl::ApplyPlan& plan, Report& report) {
    velkctl::JournalRecord record({}, report);
    const velkctl::StopSignals signals;
    return velkctl::Apply(plan, record, {}, signals, report).status;
}

int MakeApply(const Changes& changes, const std::vector<std::string>& restarts,
              const std::string& address, const ChangeDevice::CarryOut& carry_out) {
    UseRealTools();
    testkit::FakeInterfaces interfaces;
    interfaces.AddAddress("eth0", IFF_UP | IFF_RUNNING, address.c_str(), "255.255.255.0");
    Report report(Report::Form::kText);
    const velkctl::Device device({}, report);
    const velkctl::ApplyPlan plan =
        MakePlan(changes, {.is_automatic = false, .interfaces = restarts}, device);
    if (!plan.problems.empty()) {
        report.Complain(plan.problems.front());
        return static_cast<int>(plan.status);
    }
    return static_cast<int>(carry_out(plan, report));
}

}  // namespace

std::optional<SettingChange> ChangeOf(const _velk_request& request) {
    const std::string interface(request.interface, strnlen(request.interface, VELK_INTERFACE_SIZE));
    const std::optional<Setting> setting = velkctl::FindSetting(request.command_id, interface);
    if (!setting) {
        return std::nullopt;
    }
    SettingChange change{*setting, {}};
    memcpy(change.value.data(), request.data, change.value.size());
    return change;
}

SettingChange ChangeTo(const char* name, std::string_view value) {
    const Setting setting = velkctl::FindSetting(name).value();
    return {setting, setting.row->kind->Parse(std::vector<std::string>{std::string(value)}).data};
}

std::string Differences(const DeviceState& state, const DeviceState& before) {
    std::string text;
    for (const auto& [path, bytes] : state.files) {
        if (bytes != before.files.at(path)) {
            text.append(path).append(":\n").append(bytes.value_or("(missing)\n"));
        }
    }
    text.append(state.wireless == before.wireless ? "" : "the wireless daemon's values\n");
    return text.append(state.port == before.port ? "" : "the port: " + state.port);
}

ChangeDevice::ChangeDevice(const Scene& scene) : device_(scene, {}, FakeDaemon::Turn::kOwnThread) {
    MakeTools();
}

DeviceState ChangeDevice::State() {
    DeviceState state{.files = ReadTargets(), .port = testkit::ReadFile(kPort)};
    state.files.erase(testkit::kOldAddressFile);
    const SMsgConf conf = device_.RestartDaemon();
    state.wireless.assign(reinterpret_cast<const char*>(&conf), sizeof(conf));
    return state;
}

void ChangeDevice::Reboot() {
    (void)device_.RestartDaemon();
    StartNextBoot();
}

void ChangeDevice::StartNextBoot() {
    const int boot = std::stoi(testkit::ReadFile(kBootId));
    testkit::WriteFile(kBootId, std::to_string(boot + 1) + "\n");
}

Work ChangeDevice::Set(Changes changes) {
    return [changes = std::move(changes)] { return MakeSet(changes); };
}

Work ChangeDevice::Apply(Changes changes, std::vector<std::string> restarts, std::string address) {
    return [changes = std::move(changes), restarts = std::move(restarts),
            address = std::move(address)] {
        return MakeApply(changes, restarts, address, CarryOutPlan);
    };
}

Work ChangeDevice::ApplyWith(Changes changes, CarryOut carry_out) {
    return [changes = std::move(changes), carry_out = std::move(carry_out)] {
        return MakeApply(changes, {}, "", carry_out);
    };
}

Work ChangeDevice::Undo() {
    return [] {
        UseRealTools();
        testkit::FakeInterfaces interfaces;
        AddSceneAddress(interfaces);
        Report report(Report::Form::kText);
        return static_cast<int>(RunUndo({}, report));
    };
}

Work ChangeDevice::Recover(bool at_boot, std::string output) {
    return [at_boot, output = std::move(output)] {
        UseRealTools(output);
        testkit::FakeInterfaces interfaces;
        AddSceneAddress(interfaces);
        Report report(Report::Form::kText);
        return static_cast<int>(RunRecover({.boot = at_boot}, report));
    };
}

}  // namespace fault
