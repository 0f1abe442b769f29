// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// velkctl_runs.cpp - compares whole runs of velkctl with those of other programs.
#include <functional>
#include <memory>
#include <string>

#include <sys/stat.h>

#include "bench/comparison.h"
#include "bench/floor.h"
#include "bench/groups.h"
#include "bench/run_program.h"
#include "lib/base/paths.h"

namespace bench {
namespace {

constexpr int kSamples = 60;

constexpr char kVelkctl[] = "velkctl";
constexpr char kUciFolder[] = "/tmp/uci";

constexpr char kAwkProgram[] =
    "/^iface eth0 inet / { inside = 1; next } /^iface/ { inside = 0 }"
    "inside && sub(/.*address /, \"\") { print; exit }";

constexpr char kPythonProgram[] =
    "import re; print(re.search(r'iface eth0 inet [^\\n]*\\n(?:[ \\t][^\\n]*\\n)*?[ \\t]*address "
    "(\\S+)', "
    "open('/etc/network/interfaces').read())[1])";

void Add(const char* name, const Arguments& ours, const Arguments& other) {
    Compare({.name = name,
             .ours = Timed(Process(ours)),
             .other = Timed(Process(other)),
             .samples = kSamples});
}

// Compares with a program that a machine may lack.
void AddIfInstalled(const char* name, const std::string& program, const Arguments& ours,
                    const Arguments& other) {
    if (IsInstalled(program)) {
        Add(name, ours, other);
    } else {
        LeaveOut(name, program + " is not installed");
    }
}

// The tools of other systems for the same setting, which users would choose instead.
void AddOtherTools(const Arguments& get, const Arguments& set) {
    (void)mkdir(kUciFolder, 0755);
    WriteByHand("/tmp/uci/network", "config interface 'eth0'\n\toption ipaddr '192.168.0.10'\n");
    AddIfInstalled(
        "process/get_and_augtool", "augtool", get,
        {"augtool", "--noautoload", "--transform", "Interfaces.lns incl /etc/network/interfaces",
         "get", "/files/etc/network/interfaces/iface[. = 'eth0']/address"});
    AddIfInstalled("process/get_and_uci", "uci", get,
                   {"uci", "-c", kUciFolder, "get", "network.eth0.ipaddr"});
    AddIfInstalled("process/set_and_uci", "uci", set,
                   {"sh", "-c",
                    "uci -c /tmp/uci set network.eth0.ipaddr=192.168.0.10 && "
                    "uci -c /tmp/uci commit network"});
    AddIfInstalled(
        "process/set_and_nmcli", "nmcli", set,
        {"nmcli", "--offline", "connection", "add", "type", "ethernet", "con-name", "eth0",
         "ifname", "eth0", "ipv4.method", "manual", "ipv4.addresses", "192.168.0.10/24"});
}

// Each run sets another address than the one before it, so that the file changes.
std::function<void()> SetNextAddress(const std::shared_ptr<int>& number, const Arguments& options) {
    return [=] {
        const std::string address = "192.168.0." + std::to_string(10 + (*number)++ % 100);
        Arguments words = {Built(kVelkctl), "set", "--force", "eth0.address", address};
        words.insert(words.end(), options.begin(), options.end());
        Process(words)();
    };
}

// Two settings in one run, against a run for each.
void AddSeveral() {
    const Arguments set = {Built(kVelkctl), "set", "--force"};
    const auto with = [set](const Arguments& values) {
        Arguments words = set;
        words.insert(words.end(), values.begin(), values.end());
        return Process(words);
    };
    Compare({.name = "process/set_of_two_and_two_sets",
             .ours = Timed(with({"eth0.address=192.168.0.10", "eth0.netmask=255.255.255.0"})),
             .other = Timed([address = with({"eth0.address", "192.168.0.10"}),
                             netmask = with({"eth0.netmask", "255.255.255.0"})] {
                 address();
                 netmask();
             }),
             .samples = kSamples / 3});
}

// The files lie in memory: the time of flushing is not in it.
void AddJournal() {
    const auto number = std::make_shared<int>(0);
    Compare({.name = "process/set_and_set_without_journal",
             .ours = Timed(SetNextAddress(number, {})),
             .other = Timed(SetNextAddress(number, {"--no-journal"})),
             .samples = kSamples});
}

}  // namespace

void AddProcesses() {
    const Arguments get = {Built(kVelkctl), "get", "eth0.address"};
    Add("process/get_and_bare_program", get, {Built("velk_bench_get")});
    Add("process/get_and_empty_program", get, {Built("velk_bench_empty")});
    Add("process/version_and_empty_program", {Built(kVelkctl), "--version"},
        {Built("velk_bench_empty")});
    Add("process/get_and_augeas", get, {Built("velk_bench_augeas")});
    Add("process/get_and_ifquery", get, {"ifquery", "eth0"});
    Add("process/static_get_and_ifquery", {Built("forms/static/velkctl"), "get", "eth0.address"},
        {"ifquery", "eth0"});
    Add("process/pie_get_and_empty_c_program", {Built("forms/pie/velkctl"), "get", "eth0.address"},
        {Built("velk_bench_c_empty")});
    Add("process/show_and_bare_program", {Built(kVelkctl), "show"}, {Built("velk_bench_get")});
    Add("process/get_and_python", get, {"/usr/bin/python3", "-S", "-E", "-c", kPythonProgram});
    Add("process/get_and_awk", get, {"awk", kAwkProgram, velk::kInterfacesFile});
    Add("process/set_and_bare_program",
        {Built(kVelkctl), "set", "--force", "eth0.address", "192.168.0.10"},
        {Built("velk_bench_peak"), "set"});
    AddOtherTools(get, {Built(kVelkctl), "set", "--force", "eth0.address", "192.168.0.10"});
    AddSeveral();
    AddJournal();
}

}  // namespace bench
