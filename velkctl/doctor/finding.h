// finding.h - something about the device that the library cannot work with.
#ifndef VELKCTL_DOCTOR_FINDING_H_
#define VELKCTL_DOCTOR_FINDING_H_

#include <string>
#include <string_view>
#include <vector>

#include "velkctl/doctor/affected_settings.h"
#include "velkctl/report/report.h"

namespace velkctl {

enum class Severity {
    kProblem,  // the library will not do what it is told, or do something else
    kWarning,  // it works, or will again; somebody should know
};

// What a finding keeps the library from doing with the settings it concerns.
enum class Hinders {
    kNothing,  // a value is set and read back; what is wrong lies elsewhere
    kReading,  // a value that was set is not what is read
    kSetting,  // a value that is set does not take effect
};

// "eth1.gateway cannot be set: /etc/network/interfaces:12: the stanza is the last one and ..."
struct Finding {
    Severity severity = Severity::kProblem;
    std::string subject{};  // a setting, a file or a tool, as people are told
    std::string effect{};   // "cannot be set"
    std::string what{};     // is wrong there
    std::string file{};     // empty: none
    size_t line = 0;        // 0: none
    std::string remedy{};
    Concerns concerns{};  // none: it keeps no particular setting from anything
    Hinders hinders = Hinders::kNothing;
};

using Findings = std::vector<Finding>;

// Adds the findings of one more check.
void Append(Findings& all, Findings more);

// "/etc/network/interfaces:12", as compilers point at a line; empty without a file.
std::string PlaceOf(const Finding& finding);

// Two lines of text for each. What a file has in them cannot control the terminal.
std::string FindingsInWords(const Findings& findings);

// {"severity": "problem", "subject": ..., "effect": ..., "what": ..., "file": ..., "line": ...,
// "remedy": ..., "settings": ["eth0.method", ...]}; file and line are null where there is none, and
// settings is empty when the finding concerns none in particular.
Json FindingInJson(const Finding& finding);

// "1 problem, 2 warnings", or "all is well".
std::string Summary(const Findings& findings);

size_t CountOf(const Findings& findings, Severity severity);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_FINDING_H_
