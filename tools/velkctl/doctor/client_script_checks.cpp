// client_script_checks.cpp - whether the calls of the DHCP client's script can be switched that
// install a lease's name servers.
#include <string>
#include <string_view>

#include "frame/words.h"
#include "velk.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/script_blocks.h"
#include "velkctl/doctor/text_file.h"

namespace velkctl {
namespace {

constexpr std::string_view kClientScript = "/sbin/dhclient-script";
constexpr std::string_view kResolverUpdate = "make_resolv_conf";

bool IsDefinition(std::string_view line, size_t position) {
    return Trimmed(line.substr(position + kResolverUpdate.size())).starts_with('(');
}

Findings CheckCall(const Script& script, size_t index, size_t position,
                   const std::string& setting) {
    const std::string& line = script.lines[index];
    if (IsDefinition(line, position)) {
        return {{Severity::kProblem, setting, "would break the script",
                 "the definition of the function is taken for a call of it", script.path, index + 1,
                 "leave no blank between make_resolv_conf and ()"}};
    }
    if (HasSecondMark(line, position)) {
        return {{Severity::kProblem, setting, "cannot be switched on",
                 "two '#' stand before the call, and switching on takes one away", script.path,
                 index + 1, "leave one '#', in the first column"}};
    }
    return {};
}

Findings CheckCalls(const Script& script, const std::string& interface) {
    const std::string setting = interface + ".dhcp-dns";
    Findings findings;
    bool found = false;
    for (const size_t index : LinesThatRun(script, interface)) {
        size_t position = 0;
        if (velk::FindWord(script.lines[index], kResolverUpdate, /*comment_aware=*/false,
                           position)) {
            found = found || !IsDefinition(script.lines[index], position);
            Append(findings, CheckCall(script, index, position, setting));
        }
    }
    if (!found) {
        findings.push_back(
            {Severity::kProblem, setting,
             "does not switch the name servers of a "
             "lease",
             "no line that runs for " + interface + " calls make_resolv_conf", script.path, 0,
             "add a line with make_resolv_conf alone, with a '#' before it for off"});
    }
    return findings;
}

}  // namespace

Findings CheckClientScript() {
    const std::string path(kClientScript);
    TextFile file = ReadTextFile(path);
    if (file.state != FileState::kText) {
        return {};
    }
    const Script script{path, "interface", "dhcp-dns", std::move(file.lines)};
    Findings findings = CheckBlocks(script);
    Append(findings, CheckCalls(script, VELK_WIRED_INTERFACE));
    Append(findings, CheckCalls(script, VELK_WIRELESS_INTERFACE));
    return findings;
}

}  // namespace velkctl
