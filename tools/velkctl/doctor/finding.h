// finding.h - something about the device that the library cannot work with.
#ifndef VELKCTL_DOCTOR_FINDING_H_
#define VELKCTL_DOCTOR_FINDING_H_

#include <string>
#include <string_view>
#include <vector>

#include "velkctl/report.h"

namespace velkctl {

enum class Severity {
    kProblem,  // the library will not do what it is told, or do something else
    kWarning,  // it works, or will again; somebody should know
};

// "eth1.gateway cannot be set: /etc/network/interfaces:12: the stanza is the last one and ..."
struct Finding {
    Severity severity;
    std::string subject;  // a setting, a file or a tool
    std::string effect;   // "cannot be set"
    std::string what;     // is wrong there
    std::string file{};
    size_t line = 0;  // 0: none
    std::string remedy;
};

using Findings = std::vector<Finding>;

// Adds the findings of one more check.
void Append(Findings& all, Findings more);

// Two lines of text for each. What a file has in them cannot control the terminal.
std::string FindingsInWords(const Findings& findings);

// {"severity": "problem", "subject": ..., "effect": ..., "what": ..., "file": ..., "line": ...,
// "remedy": ...}; file and line are null where there is none.
Json FindingInJson(const Finding& finding);

// "1 problem, 2 warnings", or "all is well".
std::string Summary(const Findings& findings);

size_t CountOf(const Findings& findings, Severity severity);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_FINDING_H_
