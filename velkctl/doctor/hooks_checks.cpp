// hooks_checks.cpp - whether the commands of the DHCP client's exit hooks can be switched.
#include <array>
#include <string>
#include <string_view>

#include "lib/base/comment_switch.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velk.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/script_blocks.h"
#include "velkctl/files/text_file.h"

namespace velkctl {
namespace {

// Switched for one interface.
constexpr std::array<uint32_t, 2> kInBlocks{VELK_CMD_APIPA, VELK_CMD_DHCP_NOTICE};

struct Switched {
    uint32_t id;
    std::string name;  // of the setting
    std::string command;
    std::string interface {};  // empty: switched for all at once
};

std::array<Switched, 5> SwitchedCommands() {
    return {{
        {VELK_CMD_APIPA, "eth0.apipa", velk::kLinkLocalDaemon, VELK_WIRED_INTERFACE},
        {VELK_CMD_APIPA, "eth1.apipa", velk::kLinkLocalDaemon, VELK_WIRELESS_INTERFACE},
        {VELK_CMD_DHCP_NTP, "dhcp-ntp", velk::kClockSetter},
        {VELK_CMD_DHCP_NOTICE, "eth0.dhcp-notice", velk::kFinishNotice, VELK_WIRED_INTERFACE},
        {VELK_CMD_DHCP_NOTICE, "eth0.dhcp-notice", velk::kStartNotice, VELK_WIRED_INTERFACE},
    }};
}

// Whose line it is, or should be.
Finding Of(const Switched& switched, Finding finding) {
    finding.subject = switched.name;
    finding.concerns = {{.id = switched.id, .interface = switched.interface}};
    if (switched.id == VELK_CMD_DHCP_NTP) {
        finding.hinders = Hinders::kNothing;  // it is read from the DHCP client's configuration
    }
    return finding;
}

Findings CheckLine(const Script& script, size_t index, const Switched& switched) {
    const std::string& line = script.lines[index];
    const size_t position = line.find(switched.command);
    if (HasSecondMark(line, position)) {
        return {Of(switched, SecondMark("command", script.path, index))};
    }
    const bool is_on = !velk::IsCommentedOut(line, position);
    const bool is_read = switched.id == VELK_CMD_APIPA;
    if (is_on && is_read && !velk::HasWord(line, switched.command, /*comment_aware=*/true)) {
        return {Of(switched, {.effect = "is shown as off although it is on",
                              .what = "no blank stands before or behind the command's name",
                              .file = script.path,
                              .line = index + 1,
                              .remedy = "write " + switched.command + " between blanks",
                              .hinders = Hinders::kReading})};
    }
    return {};
}

Finding NoLine(const Script& script, const Switched& switched) {
    const std::string reach =
        switched.interface.empty() ? "" : " that runs for " + switched.interface;
    return Of(switched, {.effect = "cannot be switched",
                         .what = "no line" + reach + " has " + switched.command,
                         .file = script.path,
                         .remedy = "add the line that runs " + switched.command +
                                   ", with a '#' before it for off",
                         .hinders = Hinders::kSetting});
}

Findings CheckSwitched(const Script& script, const Switched& switched) {
    Findings findings;
    bool found = false;
    for (const size_t index : LinesThatRun(script, switched.interface)) {
        if (velk::Contains(script.lines[index], switched.command)) {
            found = true;
            Append(findings, CheckLine(script, index, switched));
        }
    }
    return found ? findings : Findings{NoLine(script, switched)};
}

}  // namespace

Findings CheckExitHooks() {
    TextFile file = ReadTextFile(velk::kExitHooks);
    if (!HasPlainLines(file)) {
        return {};
    }
    const Script script{.path = velk::kExitHooks,
                        .variable = "$interface",
                        .subject = "apipa and dhcp-notice",
                        .concerns = ConcernsOf(kInBlocks),
                        .hinders = Hinders::kSetting,
                        .lines = std::move(file.lines)};
    Findings findings = CheckBlocks(script);
    for (const Switched& switched : SwitchedCommands()) {
        Append(findings, CheckSwitched(script, switched));
    }
    return findings;
}

}  // namespace velkctl
