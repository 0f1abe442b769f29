// client_script_checks.cpp - whether the calls of the DHCP client's script can be switched that
// install a lease's name servers.
#include <string>
#include <string_view>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velk.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/script_blocks.h"
#include "velkctl/files/text_file.h"

namespace velkctl {
namespace {

constexpr std::string_view kResolverUpdate = "make_resolv_conf";

bool IsDefinition(std::string_view line, size_t position) {
    return Trimmed(line.substr(position + kResolverUpdate.size())).starts_with('(');
}

// Whose call it is, or should be. The setting is read from the DHCP client's configuration.
Finding Of(const std::string& interface, Finding finding) {
    finding.subject = interface + ".dhcp-dns";
    finding.concerns = {{.id = VELK_CMD_DHCP_DNS, .interface = interface}};
    finding.hinders = Hinders::kNothing;
    return finding;
}

Findings CheckCall(const Script& script, size_t index, size_t position,
                   const std::string& interface) {
    const std::string& line = script.lines[index];
    if (IsDefinition(line, position)) {
        return {Of(interface, {.effect = "would break the script",
                               .what = "the definition of the function is taken for a call of it",
                               .file = script.path,
                               .line = index + 1,
                               .remedy = "leave no blank between make_resolv_conf and ()"})};
    }
    if (HasSecondMark(line, position)) {
        return {Of(interface, SecondMark("call", script.path, index))};
    }
    return {};
}

Findings CheckCalls(const Script& script, const std::string& interface) {
    Findings findings;
    bool found = false;
    for (const size_t index : LinesThatRun(script, interface)) {
        size_t position = 0;
        if (velk::FindWord(script.lines[index], kResolverUpdate, /*comment_aware=*/false,
                           position)) {
            found = found || !IsDefinition(script.lines[index], position);
            Append(findings, CheckCall(script, index, position, interface));
        }
    }
    if (!found) {
        findings.push_back(
            Of(interface,
               {.effect = "does not switch the name servers of a lease",
                .what = "no line that runs for " + interface + " calls make_resolv_conf",
                .file = script.path,
                .remedy = "add a line with make_resolv_conf alone, with a '#' before it for off"}));
    }
    return findings;
}

}  // namespace

Findings CheckClientScript() {
    TextFile file = ReadTextFile(velk::kClientScript);
    if (!HasPlainLines(file)) {
        return {};
    }
    const Script script{.path = velk::kClientScript,
                        .variable = "interface",
                        .subject = "dhcp-dns",
                        .concerns = {{.id = VELK_CMD_DHCP_DNS}},
                        .hinders = Hinders::kNothing,
                        .lines = std::move(file.lines)};
    Findings findings = CheckBlocks(script);
    Append(findings, CheckCalls(script, VELK_WIRED_INTERFACE));
    Append(findings, CheckCalls(script, VELK_WIRELESS_INTERFACE));
    return findings;
}

}  // namespace velkctl
