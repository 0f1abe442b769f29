// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// finding.cpp - a problem of the device that affects the library, found by the doctor.
#include "velkctl/doctor/finding.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include <unistd.h>

#include "velkctl/report/output.h"
#include "velkctl/settings/device_files.h"
#include "velkctl/text/escaping.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

std::string_view NameOf(Severity severity) {
    switch (severity) {
        case Severity::kProblem:
            return "problem";
        case Severity::kWarning:
            return "warning";
        default:
            return "note";
    }
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
    return NameInColour(finding.severity) + ": " +
           Printable(finding.subject + " " + finding.effect) + "\n  " +
           InLinesOf80(Printable(reason), 2) + "\n" +
           (finding.remedy.empty() ? "" : "  fix: " + Printable(finding.remedy) + "\n");
}

Json CauseInJson(const Finding& finding) {
    if (finding.file.empty()) {
        return nullptr;
    }
    Json cause;
    cause["file"] = Printable(finding.file);
    cause["line"] = finding.line == 0 ? Json(nullptr) : Json(finding.line);
    return cause;
}

}  // namespace

Finding Finding::Problem(std::string_view new_effect, std::string_view new_description,
                         std::string_view new_remedy) const {
    return Because(new_description, new_remedy).Of(Severity::kProblem, new_effect);
}

Finding Finding::Warning(std::string_view new_effect, std::string_view new_description,
                         std::string_view new_remedy) const {
    return Because(new_description, new_remedy).Of(Severity::kWarning, new_effect);
}

Finding Finding::Note(std::string_view new_effect, std::string_view new_description,
                      std::string_view new_remedy) const {
    return Because(new_description, new_remedy).Of(Severity::kNote, new_effect);
}

Finding Finding::Because(std::string_view new_description, std::string_view new_remedy) const {
    Finding finding = *this;
    finding.description = new_description;
    finding.remedy = new_remedy.empty() ? remedy : new_remedy;
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
    return {.subject = SubjectOf(settings),
            .file = std::string(file),
            .affected = settings,
            .impact = impact};
}

Finding About(const Setting& setting, std::string_view file, Impact impact) {
    return About(AffectedSettings{setting}, file, impact);
}

Finding AboutWireless(std::string_view file) {
    return {.subject = "wireless settings",
            .effect = "can be neither read nor set",
            .file = std::string(file),
            .affected = WirelessSettings(),
            .impact = Impact::kBoth};
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
    json["cause"] = CauseInJson(finding);
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
