// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// masked_line.cpp - lines of the device's files and of the shell, without their secrets.
#include "velkctl/preview/masked_line.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "velkctl/text/escaping.h"
#include "velkctl/text/masking.h"

namespace velkctl {
namespace {

constexpr std::string_view kBeforeName = " \t#";
constexpr std::string_view kAfterName = " \t=:";

// Parts of the names of secrets in the files of networks, the SNMP agent and others.
constexpr std::array<std::string_view, 14> kSecretNames{
    "psk",    "passw",     "passphrase", "secret",     "wireless-key", "wep-key",   "wep_key",
    "wepkey", "community", "com2sec",    "createuser", "trapsink",     "trap2sink", "informsink"};

bool IsSecretName(std::string_view name) {
    std::string lower(name);
    std::ranges::transform(lower, lower.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return std::ranges::any_of(
        kSecretNames, [&](std::string_view part) { return lower.find(part) != std::string::npos; });
}

// A tab is usual in these files, and harmless.
std::string WithTabs(std::string_view line) {
    std::string text;
    for (;;) {
        const size_t tab = line.find('\t');
        text.append(PrintableValue(line.substr(0, tab)));
        if (tab == std::string_view::npos) {
            return text;
        }
        text.push_back('\t');
        line.remove_prefix(tab + 1);
    }
}

}  // namespace

size_t SecretIn(std::string_view line) {
    const size_t begin = std::min(line.find_first_not_of(kBeforeName), line.size());
    const size_t end = std::min(line.find_first_of(kAfterName, begin), line.size());
    if (!IsSecretName(line.substr(begin, end - begin))) {
        return line.size();
    }
    return std::min(line.find_first_not_of(kAfterName, end), line.size());
}

std::string MaskedLine(std::string_view line, size_t mark) {
    const size_t begin = std::min(mark, line.size());
    const size_t secret = begin + SecretIn(line.substr(begin));
    std::string text = WithTabs(line.substr(0, secret));
    if (secret < line.size()) {
        text.append(kMask);
    }
    return text;
}

}  // namespace velkctl
