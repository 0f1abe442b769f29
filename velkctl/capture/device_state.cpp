// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_state.cpp - the state of a device that is in no file: links, addresses, processes, tools.
#include "velkctl/capture/device_state.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>
#include <sys/stat.h>

#include "lib/base/paths.h"
#include "velkctl/capture/captured_paths.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/dhcp_client.h"
#include "velkctl/files/interface_state.h"
#include "velkctl/files/running_gateway.h"
#include "velkctl/files/text_file.h"
#include "velkctl/files/tool_run.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {
namespace {

// Lines of ifconfig that count bytes, or show addresses that the kernel makes itself.
constexpr std::array<std::string_view, 4> kCounters{"RX ", "TX ", "collisions", "inet6"};

void AddLine(std::string& text, const std::vector<std::string>& words) {
    for (const std::string& word : words) {
        text.append(&word == &words.front() ? "" : " ").append(word);
    }
    text.push_back('\n');
}

std::string Dotted(const sockaddr* address) {
    std::array<char, INET_ADDRSTRLEN> text{};
    const auto* internet = reinterpret_cast<const sockaddr_in*>(address);
    (void)inet_ntop(AF_INET, &internet->sin_addr, text.data(), text.size());
    return text.data();
}

// "address eth0:avahi 169.254.7.8 255.255.0.0"
void AddAddresses(std::string& text) {
    ifaddrs* list = nullptr;
    if (getifaddrs(&list) == -1) {
        return;
    }
    const std::unique_ptr<ifaddrs, void (*)(ifaddrs*)> owned(list, freeifaddrs);
    for (const ifaddrs* entry = list; entry != nullptr; entry = entry->ifa_next) {
        const bool is_wanted = entry->ifa_addr != nullptr && entry->ifa_netmask != nullptr &&
                               entry->ifa_addr->sa_family == AF_INET;
        const std::string label = entry->ifa_name;
        const bool is_own = std::ranges::any_of(kInterfaces, [&label](const char* interface) {
            return label.substr(0, label.find(':')) == interface;
        });
        if (is_wanted && is_own) {
            AddLine(text, {"address", label, Dotted(entry->ifa_addr), Dotted(entry->ifa_netmask)});
        }
    }
}

std::string LinkWord(const InterfaceState& state) {
    if (!state.exists) {
        return "missing";
    }
    return !state.is_up ? "down" : state.has_link ? "link" : "no-link";
}

void AddInterface(std::string& text, const std::string& interface) {
    AddLine(text, {"interface", interface, LinkWord(ReadInterfaceState(interface))});
    const TextFile address = ReadTextFile("/sys/class/net/" + interface + "/address");
    if (!address.lines.empty()) {
        AddLine(text, {"hardware-address", interface, std::string(Trimmed(address.lines.front()))});
    }
    if (const std::string gateway = RunningGateway(interface); !gateway.empty()) {
        AddLine(text, {"gateway", interface, gateway});
    }
}

// Returns the word after a label of the output of ethtool, in small letters.
std::string WordAfter(std::string_view output, std::string_view label) {
    const size_t at = output.find(label);
    const std::vector<std::string> words = at == std::string_view::npos
                                               ? std::vector<std::string>()
                                               : WordsOf(output.substr(at + label.size(), 32));
    std::string word = words.empty() ? "" : words.front();
    std::ranges::transform(word, word.begin(), [](unsigned char c) { return tolower(c); });
    return word;
}

// "link-mode eth0 on 100 full", with the words that ethtool -s takes
void AddLinkMode(std::string& text, const std::string& output) {
    const std::string speed = WordAfter(output, "Speed:");
    const std::string duplex = WordAfter(output, "Duplex:");
    const std::string negotiation = WordAfter(output, "Auto-negotiation:");
    const size_t digits = std::min(speed.find_first_not_of("0123456789"), speed.size());
    if (digits > 0 && !duplex.empty() && !negotiation.empty()) {
        AddLine(text,
                {"link-mode", VELK_WIRED_INTERFACE, negotiation, speed.substr(0, digits), duplex});
    }
}

void AddClient(std::string& text, const std::string& interface) {
    if (const std::string file = ReadDhcpClient(interface).lease_file; !file.empty()) {
        AddLine(text, {"dhcp-client", interface, file});
    }
}

void AddTool(std::string& text, std::string_view name) {
    AddLine(text, {"tool", std::string(name), FindTool(name).value_or("missing")});
}

// Sockets have no place in a tar archive.
void AddSocket(std::string& text, const std::string& path) {
    struct stat facts {};
    if (lstat(path.c_str(), &facts) == 0 && S_ISSOCK(facts.st_mode)) {
        std::array<char, 8> mode{};
        (void)snprintf(mode.data(), mode.size(), "%04o", facts.st_mode & 07777U);
        AddLine(text, {"socket", path, mode.data()});
    }
}

void AddMissingFolder(std::string& text, const std::string& path) {
    struct stat facts {};
    if (lstat(path.c_str(), &facts) == -1) {
        AddLine(text, {"no-folder", path});
    }
}

// Returns the output of a tool, and notes one that does not end.
std::string RunAndAdd(Capture& capture, std::vector<std::string> words, const std::string& name) {
    std::string command = words.front() + " " + words.back();
    if (!FindTool(words.front())) {
        capture.AddItem({std::move(command), "", true});
        return {};
    }
    const ToolRun run = RunTool(words);
    if (!run.ended) {
        capture.AddItem({std::move(command), "", false, "it did not end"});
        return {};
    }
    capture.AddRecording(name, WithoutCounters(run.output), std::move(command));
    return run.output;
}

void AddText(Capture& capture, const std::string& name, const std::string& path) {
    capture.AddRecording(name, ReadTextFile(path).bytes, path);
}

}  // namespace

std::string WithoutCounters(std::string_view output) {
    std::string text;
    while (!output.empty()) {
        const size_t size = std::min(output.find('\n'), output.size() - 1) + 1;
        const std::string_view line = output.substr(0, size);
        const bool is_counter = std::ranges::any_of(
            kCounters, [line](std::string_view word) { return Trimmed(line).starts_with(word); });
        text.append(is_counter ? "" : line);
        output.remove_prefix(size);
    }
    return text;
}

std::string AddDeviceState(Capture& capture) {
    std::string text;
    for (const std::string interface : kInterfaces) {
        AddInterface(text, interface);
        AddClient(text, interface);
        (void)RunAndAdd(capture, {std::string(kInterfaceTool), interface}, "ifconfig-" + interface);
    }
    AddAddresses(text);
    const std::string wired = VELK_WIRED_INTERFACE;
    AddLinkMode(text, RunAndAdd(capture, {std::string(kLinkTool), wired}, "ethtool-" + wired));
    AddText(capture, "routes", velk::kRoutingTable);
    for (const std::string_view tool : ToolNames()) {
        AddTool(text, tool);
    }
    AddSocket(text, velk::kRequestSocket);
    AddSocket(text, velk::kReplySocket);
    for (const std::string& folder : CapturedFolders()) {
        AddMissingFolder(text, folder);
    }
    return text;
}

}  // namespace velkctl
