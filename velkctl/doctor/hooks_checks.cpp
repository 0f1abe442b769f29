// hooks_checks.cpp - whether the commands of the DHCP client's exit hooks can be switched.
#include "lib/base/comment_switch.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/script_blocks.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

Findings CheckLine(const Finding& about, const std::string& line, const SettingLine& switched) {
    const size_t position = line.find(switched.key);
    if (Findings marks = CheckMarks(about, line, position, "command"); !marks.empty()) {
        return marks;
    }
    const bool is_on = !velk::IsCommentedOut(line, position);
    const bool is_read = switched.setting.row->id == VELK_CMD_APIPA;
    if (is_on && is_read && !velk::HasWord(line, switched.key, /*comment_aware=*/true)) {
        return {about.With(Impact::kReading)
                    .Problem("is shown as off although it is on",
                             "there is no blank before or after the command's name",
                             "write " + std::string(switched.key) + " between blanks")};
    }
    return {};
}

Findings CheckSwitched(const Script& script, const SettingLine& switched) {
    const std::string command(switched.key);
    const std::string interface(switched.setting.interface);
    // A setting of the device is switched here and read from another file.
    const Finding about = About(switched.setting, velk::kExitHooks,
                                interface.empty() ? Impact::kNothing : Impact::kSetting);
    Findings findings;
    bool found = false;
    for (const size_t index : LinesThatRun(script, interface)) {
        if (velk::Contains(script.lines[index], command)) {
            found = true;
            Append(findings, CheckLine(about.At(index), script.lines[index], switched));
        }
    }
    if (found) {
        return findings;
    }
    return {about.Problem(
        "cannot be switched",
        "no line" + (interface.empty() ? "" : " that runs for " + interface) + " has " + command,
        "add the line that runs " + command + ", with a '#' before it for off")};
}

}  // namespace

Findings CheckExitHooks() {
    TextFile file = ReadTextFile(velk::kExitHooks);
    if (!HasPlainLines(file)) {
        return {};
    }
    const Script script{.variable = "$interface",
                        .about = {.subject = "apipa and dhcp-notice",
                                  .file = velk::kExitHooks,
                                  .affected = SettingsHeldIn(velk::kExitHooks),
                                  .impact = Impact::kSetting},
                        .lines = std::move(file.lines)};
    Findings findings = CheckBlocks(script);
    for (const SettingLine& switched : LinesOfSettings(velk::kExitHooks)) {
        Append(findings, CheckSwitched(script, switched));
    }
    return findings;
}

}  // namespace velkctl
