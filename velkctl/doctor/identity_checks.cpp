// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// identity_checks.cpp - whether administrator and location reach the SNMP agent.
#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

// `text` is in small letters.
bool ContainsInAnyCase(std::string_view line, std::string_view text) {
    const auto is_same = [](unsigned char letter, char small) { return tolower(letter) == small; };
    return std::search(line.begin(), line.end(), text.begin(), text.end(), is_same) != line.end();
}

Findings CheckDirective(const TextFile& file, const SettingLine& directive) {
    constexpr std::string_view kEffect = "does not reach the SNMP agent";
    const std::string name(directive.key);
    const Finding about = About({directive.setting}, velk::kSnmpFile, Impact::kNothing);
    const std::vector<size_t> indexes = IndexesOf(file.lines, [&](std::string_view line) {
        return !IsComment(line) && ContainsInAnyCase(line, name);
    });
    if (std::ranges::any_of(indexes,
                            [&](size_t i) { return velk::Contains(file.lines[i], name); })) {
        return {};
    }
    if (indexes.empty()) {
        return {about.Problem(kEffect, "no line has the directive " + name,
                              "add a line \"" + name + " unknown\"")};
    }
    const std::string line = Excerpt(file.lines[indexes.back()]);
    return {about.At(indexes.back())
                .Problem(kEffect, line + " is not written in small letters", "write " + name)};
}

// Returns the text after the key, as the library reads it: the first line counts, cut to the data
// area. A get would log a missing file, and wait while nobody reads the system log.
std::string_view TextOf(const TextFile& file, std::string_view key) {
    for (const std::string& line : file.lines) {
        if (line.starts_with(key)) {
            return std::string_view(line).substr(key.size()).substr(0, VELK_DATA_SIZE - 1);
        }
    }
    return {};
}

// A set of one text replaces every line of the agent's file from the directive's name on, also the
// line of the other text.
Findings CheckTexts() {
    const TextFile file = ReadTextFile(velk::kIdentityFile);
    Findings findings;
    for (const auto& [setting, key] : LinesOfSettings(velk::kIdentityFile)) {
        for (const auto& [other, directive] : LinesOfSettings(velk::kSnmpFile)) {
            if (setting.row == other.row || !velk::Contains(TextOf(file, key), directive)) {
                continue;
            }
            findings.push_back(
                {.subject = setting.name(),
                 .effect = "is cut for the SNMP agent when " + other.name() + " is set",
                 .description = "the text contains '" + std::string(directive) + "'; a set of " +
                                other.name() + " replaces the line from there on",
                 .file = velk::kIdentityFile,
                 .remedy = "velkctl set " + setting.name() +
                           " TEXT, where TEXT does not contain '" + std::string(directive) + "'",
                 .affected = {setting, other}});
        }
    }
    return findings;
}

}  // namespace

Findings CheckIdentity() {
    const TextFile agent = ReadTextFile(velk::kSnmpFile);
    Findings findings;
    if (agent.state == FileState::kText) {
        findings = FindingsOfEach(
            LinesOfSettings(velk::kSnmpFile),
            [&](const SettingLine& directive) { return CheckDirective(agent, directive); });
    }
    Append(findings, CheckTexts());
    return findings;
}

}  // namespace velkctl
