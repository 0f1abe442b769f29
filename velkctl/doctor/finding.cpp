// finding.cpp - something about the device that the library cannot work with.
#include "velkctl/doctor/finding.h"

#include <algorithm>
#include <iterator>

#include "velkctl/text/escaping.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

std::string_view NameOf(Severity severity) {
    return severity == Severity::kProblem ? "problem" : "warning";
}

std::string Counted(size_t number, std::string_view noun) {
    return std::to_string(number).append(" ").append(noun).append(number == 1 ? "" : "s");
}

std::string InWords(const Finding& finding) {
    const std::string place = PlaceOf(finding);
    const std::string found = finding.subject + " " + finding.effect + ": " + place +
                              (place.empty() ? "" : ": ") + finding.what;
    return std::string(NameOf(finding.severity))
        .append(": ")
        .append(Printable(found))
        .append("\n  mend: ")
        .append(Printable(finding.remedy))
        .append("\n");
}

}  // namespace

void Append(Findings& all, Findings more) {
    all.insert(all.end(), std::make_move_iterator(more.begin()),
               std::make_move_iterator(more.end()));
}

std::string PlaceOf(const Finding& finding) {
    return finding.line == 0 ? finding.file : finding.file + ":" + std::to_string(finding.line);
}

std::string FindingsInWords(const Findings& findings) {
    std::string words;
    for (const Finding& finding : findings) {
        words.append(InWords(finding));
    }
    return words;
}

Json FindingInJson(const Finding& finding) {
    Json json;
    json["severity"] = NameOf(finding.severity);
    json["subject"] = Printable(finding.subject);
    json["effect"] = Printable(finding.effect);
    json["what"] = Printable(finding.what);
    json["file"] = finding.file.empty() ? Json(nullptr) : Json(Printable(finding.file));
    json["line"] = finding.line == 0 ? Json(nullptr) : Json(finding.line);
    json["remedy"] = Printable(finding.remedy);
    json["settings"] = SettingNames(finding.concerns);
    return json;
}

std::string Summary(const Findings& findings) {
    if (findings.empty()) {
        return "all is well";
    }
    return Counted(CountOf(findings, Severity::kProblem), "problem") + ", " +
           Counted(CountOf(findings, Severity::kWarning), "warning");
}

size_t CountOf(const Findings& findings, Severity severity) {
    return static_cast<size_t>(std::ranges::count(findings, severity, &Finding::severity));
}

}  // namespace velkctl
