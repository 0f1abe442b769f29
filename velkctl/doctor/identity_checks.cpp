// identity_checks.cpp - whether administrator and location reach the SNMP agent.
#include <algorithm>
#include <cctype>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

std::string Lower(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(),
                           [](unsigned char c) { return static_cast<char>(tolower(c)); });
    return lower;
}

Findings CheckDirective(const TextFile& file, const SettingLine& directive) {
    constexpr std::string_view kEffect = "does not reach the SNMP agent";
    const std::string name(directive.key);
    const Finding about = About(directive.setting, velk::kSnmpFile, Impact::kNothing);
    Finding found = about.Problem(kEffect, "no line has the directive " + name,
                                  "add a line \"" + name + " unknown\"");
    for (size_t i = 0; i < file.lines.size(); ++i) {
        const std::string_view line = Trimmed(file.lines[i]);
        if (line.starts_with('#') || !velk::Contains(Lower(line), name)) {
            continue;
        }
        if (velk::Contains(line, name)) {
            return {};
        }
        found = about.At(i).Problem(kEffect, Excerpt(line) + " is not written in small letters",
                                    "write " + name);
    }
    return {found};
}

Findings CheckDirectives() {
    const TextFile file = ReadTextFile(velk::kSnmpFile);
    Findings findings;
    for (const SettingLine& directive : LinesOfSettings(velk::kSnmpFile)) {
        if (file.state == FileState::kText) {
            Append(findings, CheckDirective(file, directive));
        }
    }
    return findings;
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
            const Finding about{.subject = setting.name(),
                                .file = velk::kIdentityFile,
                                .affected = {setting, other}};
            findings.push_back(
                about.Problem("is cut for the SNMP agent when " + other.name() + " is set",
                              "the text holds '" + std::string(directive) +
                                  "', from which on that set replaces a line",
                              "velkctl set " + setting.name() + " TEXT, without that word"));
        }
    }
    return findings;
}

}  // namespace

Findings CheckIdentity() {
    Findings findings = CheckDirectives();
    Append(findings, CheckTexts());
    return findings;
}

}  // namespace velkctl
