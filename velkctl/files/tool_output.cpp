// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tool_output.cpp - the output of the device's tools.
#include "velkctl/files/tool_output.h"

#include <algorithm>
#include <array>

#include "lib/base/paths.h"

namespace velkctl {
namespace {

// The beginning of a harmless line, and a text after it.
struct HarmlessLine {
    std::string_view beginning;
    std::string_view part;
};

constexpr std::array<HarmlessLine, 5> kHarmlessLines{{
    // The log of a time server that has not been asked yet. GNU rm, then that of busybox.
    {"rm: cannot remove ", velk::kNtpLog},
    {"rm: can't remove ", velk::kNtpLog},
    // The interface was not up before its restart, or has another address since.
    {"ifdown: interface ", " not configured"},
    {"Error: ipv4: Address not found", ""},
    // The name of the device is not in its list of hosts.
    {"sudo: unable to resolve host ", ""},
}};

}  // namespace

std::vector<std::string> OutputLines(std::string_view output) {
    std::vector<std::string> lines;
    while (!output.empty()) {
        const std::string_view line = output.substr(0, output.find('\n'));
        if (!line.empty()) {
            lines.emplace_back(line);
        }
        output.remove_prefix(std::min(output.size(), line.size() + 1));
    }
    return lines;
}

bool IsHarmless(std::string_view line) {
    return std::ranges::any_of(kHarmlessLines, [line](const HarmlessLine& known) {
        return line.starts_with(known.beginning) &&
               line.find(known.part, known.beginning.size()) != std::string_view::npos;
    });
}

std::vector<std::string> WithoutHarmless(std::vector<std::string> lines) {
    std::erase_if(lines, IsHarmless);
    return lines;
}

}  // namespace velkctl
