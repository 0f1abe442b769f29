// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// finding.cpp - a problem of the device that affects the library, found by the doctor.
#include "velkctl/doctor/finding.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <utility>

#include <unistd.h>

#include "velkctl/report/output.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/device_files.h"
#include "velkctl/text/escaping.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// In the order of the severities.
constexpr std::array<std::string_view, 3> kSeverities{"problem", "warning", "note"};

constexpr std::string_view kFix = "  fix: ";

std::string_view NameOf(Severity severity) {
    return kSeverities.at(static_cast<size_t>(severity));
}

// Settings with a name for all of them.
struct Group {
    std::string_view name;
    AffectedSettings (*settings)();
};

constexpr std::array<Group, 2> kGroups{{
    {"all settings in files", EditedSettings},
    {"wireless settings", WirelessSettings},
}};

// All groups have more settings. To build a group takes longer than to read a setting.
constexpr size_t kBelowGroups = 8;

std::string NameOf(const AffectedSettings& settings) {
    if (settings.size() <= kBelowGroups) {
        return SubjectOf(settings);
    }
    for (const Group& group : kGroups) {
        if (std::ranges::equal(settings, group.settings(), IsSameSetting)) {
            return std::string(group.name);
        }
    }
    return SubjectOf(settings);
}

std::string NameInColour(Severity severity) {
    const Colour colour = severity == Severity::kProblem ? Colour::kRed : Colour::kYellow;
    return Coloured(NameOf(severity), colour, STDOUT_FILENO);
}

std::string Counted(size_t number, std::string_view noun) {
    return std::to_string(number).append(" ").append(noun).append(number == 1 ? "" : "s");
}

std::string Format(const Finding& finding) {
    const std::string location = LocationOf(finding);
    const std::string reason = location + (location.empty() ? "" : ": ") + finding.description;
    const std::string fix = WrappedAt80(Printable(finding.remedy), kFix.size());
    return NameInColour(finding.severity) + ": " +
           Printable(finding.subject + " " + finding.effect) + "\n  " +
           WrappedAt80(Printable(reason), 2) + "\n" +
           (finding.remedy.empty() ? "" : std::string(kFix) + fix + "\n");
}

}  // namespace

Finding Finding::Because(std::string_view reason, std::string_view fix) const {
    Finding finding = FixedBy(fix.empty() ? remedy : fix);
    finding.description = reason;
    return finding;
}

Finding Finding::FixedBy(std::string_view fix) const {
    Finding finding = *this;
    finding.remedy = fix;
    return finding;
}

Finding Finding::Of(Severity new_severity, std::string_view new_effect) const {
    Finding finding = *this;
    finding.severity = new_severity;
    finding.effect = new_effect;
    return finding;
}

Finding Finding::At(size_t index) const {
    Finding finding = *this;
    finding.line = index + 1;
    return finding;
}

Finding Finding::With(Impact new_impact) const {
    Finding finding = *this;
    finding.impact = new_impact;
    return finding;
}

Finding About(const AffectedSettings& settings, std::string_view file, Impact impact) {
    return {.subject = NameOf(settings),
            .file = std::string(file),
            .affected = settings,
            .impact = impact};
}

std::string PlaceholderOf(const Setting& setting) {
    std::string placeholder(setting.row->name);
    std::ranges::transform(placeholder, placeholder.begin(), ::toupper);
    return placeholder;
}

void Append(Findings& all, Findings more) {
    all.insert(all.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
}

std::string LocationOf(const Finding& finding) {
    return finding.line == 0 ? finding.file : finding.file + ":" + std::to_string(finding.line);
}

std::string FormatFindings(const Findings& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text.append(Format(finding));
    }
    return text;
}

Json FindingInJson(const Finding& finding) {
    Json json;
    json["severity"] = NameOf(finding.severity);
    json["subject"] = Printable(finding.subject);
    json["effect"] = Printable(finding.effect);
    json["description"] = Printable(finding.description);
    json["cause"] = CauseInJson(Printable(finding.file), finding.line);
    json["remedy"] = Printable(finding.remedy);
    json["settings"] = NamesOf(finding.affected);
    return json;
}

std::string Summary(const Findings& findings) {
    return findings.empty() ? "no problems found"
                            : Counted(CountOf(findings, Severity::kProblem), "problem") + ", " +
                                  Counted(CountOf(findings, Severity::kWarning), "warning");
}

size_t CountOf(const Findings& findings, Severity severity) {
    return static_cast<size_t>(std::ranges::count(findings, severity, &Finding::severity));
}

}  // namespace velkctl
