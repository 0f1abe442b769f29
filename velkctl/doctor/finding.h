// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// finding.h - a problem of the device that affects the library, found by the doctor.
#ifndef VELKCTL_DOCTOR_FINDING_H_
#define VELKCTL_DOCTOR_FINDING_H_

#include <string>
#include <string_view>
#include <vector>

#include "velkctl/report/report.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

enum class Severity {
    kProblem,  // the library does not do, or does not do right, the command it is given
    kWarning,  // it works, or will again
    kNote,     // nothing is wrong, but a set made now has no effect; the doctor does not show it
};

// The effect of a finding on the settings that it affects.
enum class Impact {
    kNothing,  // a value is set and read back
    kReading,  // a value cannot be read, or another one is read than was set
    kSetting,  // a value that is set has no effect
    kBoth,     // a value can be neither read nor set
};

// Return true if the impact keeps a value from being read, or from being set.
constexpr bool HindersReading(Impact impact) {
    return impact == Impact::kReading || impact == Impact::kBoth;
}
constexpr bool HindersSetting(Impact impact) {
    return impact == Impact::kSetting || impact == Impact::kBoth;
}

// "eth1.gateway cannot be set", "/etc/network/interfaces:12: the stanza is the last one and ..."
//
// A check says subject, file, affected settings and impact once, in a finding without a text, and
// makes each of its findings from that one: about.At(index).Problem(...).
struct Finding {
    Severity severity = Severity::kProblem;
    std::string subject{};  // a setting, a file or a tool
    std::string effect{};   // "cannot be set"
    std::string description{};
    std::string file{};  // empty if none
    size_t line = 0;     // 0 if none
    std::string remedy{};
    AffectedSettings affected{};
    Impact impact = Impact::kNothing;

    // Return a copy with these texts. An empty remedy leaves the one it has.
    Finding Problem(std::string_view new_effect, std::string_view reason,
                    std::string_view fix = "") const {
        return Of(Severity::kProblem, new_effect).Because(reason, fix);
    }
    Finding Warning(std::string_view new_effect, std::string_view reason,
                    std::string_view fix = "") const {
        return Of(Severity::kWarning, new_effect).Because(reason, fix);
    }
    // The same with the severity and the effect that it has.
    Finding Because(std::string_view reason, std::string_view fix = "") const;

    // Return a copy with these members changed. `index` counts lines from 0.
    Finding At(size_t index) const;
    Finding With(Impact new_impact) const;
    Finding Of(Severity new_severity, std::string_view new_effect) const;
    Finding FixedBy(std::string_view fix) const;
};

// Returns a finding without a text. Its subject names the settings, or the group that they are.
Finding About(const AffectedSettings& settings, std::string_view file, Impact impact);

// Returns the setting's name in capitals, for a value in a fix: "ADDRESS".
std::string PlaceholderOf(const Setting& setting);

using Findings = std::vector<Finding>;

void Append(Findings& all, Findings more);

// Returns the findings of the check about each of the items.
template <typename Items, typename Check>
Findings FindingsOfEach(const Items& items, Check check) {
    Findings findings;
    for (const auto& item : items) {
        Append(findings, check(item));
    }
    return findings;
}

// Returns "/etc/network/interfaces:12", as compilers point at a line; empty without a file.
std::string LocationOf(const Finding& finding);

// Returns the text of each: subject and effect, indented location and description, then the remedy
// if there is one, each in lines of 80 columns. A remedy is broken at its semicolons, so a line for
// the shell must have none.
// Control characters are escaped. At a terminal, the severity has a colour.
std::string FormatFindings(const Findings& findings);

// Returns {"severity": "problem", "subject": ..., "effect": ..., "description": ..., "cause":
// {"file": ..., "line": ...}, "remedy": ..., "settings": ["eth0.method", ...]}. `cause` is null
// without a file, its `line` without a line.
Json FindingInJson(const Finding& finding);

// Returns "1 problem, 2 warnings", or "no problems found".
std::string Summary(const Findings& findings);

size_t CountOf(const Findings& findings, Severity severity);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_FINDING_H_
