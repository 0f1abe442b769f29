// client_script_checks.cpp - whether the calls that install a lease's name servers can be switched
// in the DHCP client's script.
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/script_blocks.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

Findings CheckCalls(const Script& script, const SettingLine& switched) {
    const std::string interface(switched.setting.interface);
    // The setting is read from the DHCP client's configuration.
    const Finding about = About(switched.setting, velk::kClientScript, Impact::kNothing);
    Findings findings;
    bool found = false;
    for (const size_t index : LinesThatRun(script, interface)) {
        const std::string& line = script.lines[index];
        size_t position = 0;
        if (!velk::FindWord(line, switched.key, /*comment_aware=*/false, position)) {
            continue;
        }
        const std::string_view rest =
            Trimmed(std::string_view(line).substr(position + switched.key.size()));
        if (rest.starts_with('(')) {
            findings.push_back(
                about.At(index).Problem("would break the script",
                                        "the definition of the function is taken for a call of it",
                                        "leave no blank between make_resolv_conf and ()"));
            continue;
        }
        found = true;
        Append(findings, CheckMarks(about.At(index), line, position, "call"));
    }
    if (!found) {
        findings.push_back(
            about.Problem("does not switch the name servers of a lease",
                          "no line that runs for " + interface + " calls make_resolv_conf",
                          "add a line with make_resolv_conf alone, with a '#' before it for off"));
    }
    return findings;
}

}  // namespace

Findings CheckClientScript() {
    TextFile file = ReadTextFile(velk::kClientScript);
    if (!HasPlainLines(file)) {
        return {};
    }
    const Script script{.variable = "interface",
                        .about = {.subject = "dhcp-dns",
                                  .file = velk::kClientScript,
                                  .affected = SettingsChanging(velk::kClientScript)},
                        .lines = std::move(file.lines)};
    Findings findings = CheckBlocks(script);
    for (const SettingLine& switched : LinesOfSettings(velk::kClientScript)) {
        Append(findings, CheckCalls(script, switched));
    }
    return findings;
}

}  // namespace velkctl
