// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// trial_line.cpp - which shell lines of the library run in a private copy of the device's files.
#include "velkctl/preview/trial_line.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "lib/base/join_text.h"
#include "lib/base/paths.h"

namespace velkctl {
namespace {

constexpr std::string_view kSudo = "sudo ";
constexpr std::string_view kStreamEditor = "sed -i ";
// Tools that only work on the files that they name.
constexpr std::array<std::string_view, 3> kFileTools{"cat ", "rm ", "grep "};
// Both only show a state with these words. With others they change it.
constexpr std::string_view kShowInterfaces = "ifconfig > ";
constexpr auto kShowLinkByPath = velk::JoinText(velk::kEthtool, " ");
constexpr std::array<std::string_view, 2> kShowLink{"ethtool ", kShowLinkByPath};

// Characters without a meaning of their own to the shell, and the redirection of an output.
bool IsPlain(std::string_view line) {
    constexpr std::string_view kOthers = " ./_:\"-+>";
    return std::ranges::all_of(line, [&](char c) {
        return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
               kOthers.find(c) != std::string_view::npos;
    });
}

// True for a tool with this line that changes nothing but files.
bool WorksOnFiles(std::string_view line) {
    return std::ranges::any_of(kFileTools,
                               [&](std::string_view tool) { return line.starts_with(tool); });
}

bool OnlyShows(std::string_view line) {
    return line.starts_with(kShowInterfaces) ||
           std::ranges::any_of(kShowLink, [&](std::string_view tool) {
               return line.starts_with(tool) && !line.substr(tool.size()).starts_with('-');
           });
}

}  // namespace

std::string TrialLine(std::string_view line) {
    if (line.starts_with(kSudo)) {
        line.remove_prefix(kSudo.size());
    }
    // The folder of this file is the real one, for the sockets of the wireless daemon.
    if (line.ends_with(velk::kOldAddressFile)) {
        return {};
    }
    if (line.starts_with(kStreamEditor) && line.ends_with(velk::kSnmpFile)) {
        return std::string(line);
    }
    return IsPlain(line) && (WorksOnFiles(line) || OnlyShows(line)) ? std::string(line) : "";
}

}  // namespace velkctl
