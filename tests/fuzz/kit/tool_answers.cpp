// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tool_answers.cpp - the expected answers of gets that ask tools and the kernel.
#include "fuzz/kit/tool_answers.h"

#include <regex>
#include <string_view>
#include <vector>

#include "fuzz/kit/file_answers.h"

namespace fuzz {
namespace {

// The last value in the interface's block, which ends at a line that is neither empty nor indented.
std::string LiveValue(const std::string& interface, const std::string& text, std::string_view key) {
    std::string value;
    bool is_inside = false;
    for (const std::string& line : Lines(text)) {
        const bool goes_on = is_inside && (line.empty() || line[0] == ' ');
        is_inside = goes_on || line.starts_with(interface);
        if (is_inside && Has(line, key)) {
            const std::string rest = line.substr(line.find(key) + key.size());
            value = TextIn(rest.substr(0, rest.find(' ')));
        }
    }
    return value;
}

// A static interface has its value in the file. With DHCP the tool shows it.
Answer AddressFrom(const std::string& interface, const Texts& texts, std::string_view key,
                   std::string_view live_key) {
    const Answer method = *IpMethodFrom(interface, texts);
    if (!method.succeeds) {
        return {false, ""};
    }
    const bool is_static = method.bytes == "\1";
    return {true, is_static ? StaticValue(interface, texts[0], key)
                            : LiveValue(interface, texts[1], live_key)};
}

// The kernel writes an address as a number; its lowest byte comes first in the address.
std::string AddressOf(const std::string& digits) {
    std::string address;
    for (size_t at = digits.size(); at > 0; at -= 2) {
        const int byte = std::stoi(digits.substr(at - 2, 2), nullptr, 16);
        address += (address.empty() ? "" : ".") + std::to_string(byte);
    }
    return address;
}

// Returns 1 for each line with `yes` and 0 for each with `no`, in their order.
std::vector<int> YesOrNoIn(const std::string& text, std::string_view yes, std::string_view no) {
    std::vector<int> answers;
    for (const std::string& line : Lines(text)) {
        if (Has(line, yes)) {
            answers.push_back(1);
        } else if (Has(line, no)) {
            answers.push_back(0);
        }
    }
    return answers;
}

}  // namespace

std::optional<Answer> IpAddressFrom(const std::string& interface, const Texts& texts) {
    return AddressFrom(interface, texts, "address ", "inet addr:");
}

std::optional<Answer> NetmaskFrom(const std::string& interface, const Texts& texts) {
    return AddressFrom(interface, texts, "netmask ", "Mask:");
}

int LinkIn(const std::string& tool, const Texts& logs) {
    const std::vector<int> shown = YesOrNoIn(tool, "Link detected: yes", "Link detected: no");
    if (!shown.empty()) {
        return shown.front();
    }
    for (const std::string& log : logs) {
        const std::vector<int> logged = YesOrNoIn(log, "link up", "link down");
        if (!logged.empty()) {
            return logged.back();
        }
    }
    return 0;
}

// The wired port's alone. The last word on each counts; the tool has each on a line of its own.
std::optional<Answer> LinkSpeedFrom(const std::string& interface, const Texts& texts) {
    if (interface != "eth0") {
        return Answer{false, ""};
    }
    for (const std::string& line : Lines(texts[0])) {
        if (Has(line, "Speed: ") + Has(line, "Duplex: ") + Has(line, "Auto-negotiation: ") > 1) {
            return std::nullopt;
        }
    }
    const auto negotiated = YesOrNoIn(texts[0], "Auto-negotiation: on", "Auto-negotiation: off");
    const auto fast = YesOrNoIn(texts[0], "Speed: 100M", "Speed: 10M");
    const auto full = YesOrNoIn(texts[0], "Duplex: Full", "Duplex: Half");
    if (!negotiated.empty() && negotiated.back() == 1) {
        return Answer{true, "\1"};
    }
    if (fast.empty()) {
        return Answer{false, ""};
    }
    const bool is_full = !full.empty() && full.back() == 1;
    if (fast.back() == 1) {
        return Answer{true, is_full ? "\2" : "\3"};
    }
    return Answer{true, is_full ? "\4" : "\5"};
}

// The interface's first route to everywhere.
std::optional<Answer> GatewayFrom(const std::string& interface, const Texts& routes) {
    static const std::regex kUsual("(eth[01])\t([0-9A-F]{8})\t([0-9A-F]{8})\t");
    for (const std::string& line : Lines(routes[0])) {
        if (!line.starts_with(interface)) {
            continue;
        }
        std::smatch parts;
        if (!std::regex_search(line, parts, kUsual, std::regex_constants::match_continuous)) {
            return std::nullopt;
        }
        if (parts[2] == "00000000") {
            return Answer{true, AddressOf(parts[3])};
        }
    }
    return Answer{true, ""};
}

}  // namespace fuzz
