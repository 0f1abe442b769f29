// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// recorded_state.cpp - the state of a captured device: links, addresses, processes, tools.
#include "sandbox/device/recorded_state.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <utility>

#include <arpa/inet.h>

#include "lib/base/find_row.h"
#include "lib/base/paths.h"
#include "sandbox/process/failure.h"
#include "velk/request.h"

namespace sandbox {
namespace {

using Words = std::vector<std::string>;

constexpr std::string_view kMissing = "missing";
constexpr std::string_view kNameCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-";
constexpr size_t kLongestLabel = 15;

bool IsInterface(std::string_view word) {
    return word == VELK_WIRED_INTERFACE || word == VELK_WIRELESS_INTERFACE;
}

bool IsName(std::string_view word) {
    return !word.empty() && word.find_first_not_of(kNameCharacters) == std::string_view::npos;
}

// "eth0" or "eth0:avahi"
bool IsLabel(const std::string& word) {
    const size_t colon = std::min(word.find(':'), word.size());
    return word.size() <= kLongestLabel && IsInterface(word.substr(0, colon)) &&
           (colon == word.size() || IsName(word.substr(colon + 1)));
}

// True for a path in which the library or a shell looks for this tool.
bool IsToolPath(const std::string& name, const std::string& path) {
    const std::filesystem::path found = path;
    const std::string folder = found.parent_path();
    constexpr std::array<std::string_view, 6> kFolders{
        "/usr/local/sbin", "/usr/local/bin", "/usr/sbin", "/usr/bin", "/sbin", "/bin"};
    return path == velk::kSnmpScript ||
           (std::ranges::find(kFolders, folder) != kFolders.end() &&
            found.filename() == std::filesystem::path(name).filename());
}

bool IsTool(const std::string& name) {
    return IsName(name) || IsToolPath(name, name);
}

std::optional<in_addr> AddressIn(const std::string& word) {
    in_addr address{};
    return inet_pton(AF_INET, word.c_str(), &address) == 1 ? std::optional(address) : std::nullopt;
}

// Returns nothing for an address that no interface can have.
std::optional<HardwareAddress> HardwareAddressIn(const std::string& word) {
    std::istringstream parts(word);
    HardwareAddress address{};
    for (unsigned char& byte : address) {
        std::string part;
        std::getline(parts, part, ':');
        char* end = nullptr;
        byte = static_cast<unsigned char>(strtoul(part.c_str(), &end, 16));
        if (part.size() != 2 || *end != '\0') {
            return std::nullopt;
        }
    }
    const bool is_group = (address.front() & 1U) != 0;
    return is_group || address == HardwareAddress{} ? std::nullopt : std::optional(address);
}

template <typename Value>
std::optional<Value> ValueOf(const std::string& word,
                             const std::vector<std::pair<std::string_view, Value>>& values) {
    for (const auto& [name, value] : values) {
        if (name == word) {
            return value;
        }
    }
    return std::nullopt;
}

RecordedInterface& InterfaceOf(RecordedState& state, const std::string& name) {
    for (RecordedInterface& interface : state.interfaces) {
        if (interface.name == name) {
            return interface;
        }
    }
    return state.interfaces.emplace_back(RecordedInterface{.name = name});
}

// Each takes the words after the first one, and returns false if they are not valid.

bool TakeInterface(const Words& words, RecordedState& state) {
    const auto link = ValueOf<Link>(words[1], {{kMissing, Link::kMissing},
                                               {"down", Link::kDown},
                                               {"no-link", Link::kNoLink},
                                               {"link", Link::kLink}});
    if (!IsInterface(words[0]) || !link) {
        return false;
    }
    InterfaceOf(state, words[0]).link = *link;
    return true;
}

bool TakeHardwareAddress(const Words& words, RecordedState& state) {
    const auto address = HardwareAddressIn(words[1]);
    if (!IsInterface(words[0]) || !address) {
        return false;
    }
    InterfaceOf(state, words[0]).hardware_address = address;
    return true;
}

bool TakeGateway(const Words& words, RecordedState& state) {
    const auto gateway = AddressIn(words[1]);
    if (!IsInterface(words[0]) || !gateway) {
        return false;
    }
    InterfaceOf(state, words[0]).gateway = gateway;
    return true;
}

bool TakeAddress(const Words& words, RecordedState& state) {
    const auto address = AddressIn(words[1]);
    const auto mask = AddressIn(words[2]);
    if (!IsLabel(words[0]) || !address || !mask) {
        return false;
    }
    state.addresses.push_back({words[0], {.address = *address, .mask = *mask}});
    return true;
}

bool TakeLinkMode(const Words& words, RecordedState& state) {
    const auto negotiates = ValueOf<bool>(words[1], {{"on", true}, {"off", false}});
    const auto is_full = ValueOf<bool>(words[3], {{"full", true}, {"half", false}});
    const unsigned long speed = strtoul(words[2].c_str(), nullptr, 10);
    constexpr unsigned long kFastest = 100'000;
    if (words[0] != VELK_WIRED_INTERFACE || !negotiates || !is_full || speed == 0 ||
        speed > kFastest) {
        return false;
    }
    state.link_mode = LinkMode{*negotiates, static_cast<unsigned>(speed), *is_full};
    return true;
}

bool TakeSocket(const Words& words, RecordedState& state) {
    if (words[0] != velk::kRequestSocket && words[0] != velk::kReplySocket) {
        return false;
    }
    const auto mode = static_cast<mode_t>(strtoul(words[1].c_str(), nullptr, 8)) & 0777U;
    state.sockets.push_back({words[0], mode});
    return true;
}

bool TakeClient(const Words& words, RecordedState& state) {
    state.clients.push_back({words[0], words[1]});
    return IsInterface(words[0]) && words[1].starts_with('/');
}

bool TakeTool(const Words& words, RecordedState& state) {
    const bool is_missing = words[1] == kMissing;
    state.tools.push_back({words[0], is_missing ? "" : words[1]});
    return IsTool(words[0]) && (is_missing || IsToolPath(words[0], words[1]));
}

bool TakeMissingFolder(const Words& words, RecordedState& state) {
    state.missing_folders.push_back(words[0]);
    return words[0].starts_with('/');
}

bool TakeDaemon(const Words& words, RecordedState& state) {
    const auto daemon = ValueOf<RecordedDaemon>(words[0], {{kMissing, RecordedDaemon::kMissing},
                                                           {"silent", RecordedDaemon::kSilent},
                                                           {"answers", RecordedDaemon::kAnswers}});
    state.daemon = daemon.value_or(RecordedDaemon::kMissing);
    return daemon.has_value();
}

struct LineRule {
    std::string_view key;
    size_t count;  // number of words after the key
    bool (*take)(const Words& words, RecordedState& state);
};

constexpr std::array<LineRule, 10> kRules{{
    {"interface", 2, TakeInterface},
    {"hardware-address", 2, TakeHardwareAddress},
    {"gateway", 2, TakeGateway},
    {"address", 3, TakeAddress},
    {"link-mode", 4, TakeLinkMode},
    {"socket", 2, TakeSocket},
    {"dhcp-client", 2, TakeClient},
    {"tool", 2, TakeTool},
    {"no-folder", 1, TakeMissingFolder},
    {"daemon", 1, TakeDaemon},
}};

bool TakeLine(const std::string& line, RecordedState& state) {
    std::istringstream text(line);
    std::string key;
    text >> key;
    Words words;
    for (std::string word; text >> word;) {
        words.push_back(word);
    }
    const LineRule* rule = velk::FindRow(kRules, key, &LineRule::key);
    return rule == nullptr || (words.size() == rule->count && rule->take(words, state));
}

}  // namespace

const RecordedInterface* RecordedState::Find(const std::string& interface) const {
    return velk::FindRow(interfaces, interface, &RecordedInterface::name);
}

RecordedState ParseState(const std::string& text) {
    RecordedState state;
    std::istringstream lines(text);
    size_t number = 0;
    for (std::string line; std::getline(lines, line);) {
        ++number;
        if (!TakeLine(line, state)) {
            throw Failure("line " + std::to_string(number) +
                          " of recordings/device.txt is not valid");
        }
    }
    return state;
}

}  // namespace sandbox
