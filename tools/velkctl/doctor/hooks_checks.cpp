// hooks_checks.cpp - whether the commands of the DHCP client's exit hooks can be switched.
#include <array>
#include <string>
#include <string_view>

#include "frame/comment_switch.h"
#include "frame/words.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/script_blocks.h"
#include "velkctl/doctor/text_file.h"

namespace velkctl {
namespace {

constexpr std::string_view kExitHooks = "/etc/dhclient-exit-hooks";
constexpr std::string_view kLinkLocalDaemon = "/usr/sbin/avahi-autoipd";

struct Switched {
    std::string_view setting;
    std::string_view command;
    std::string_view interface;  // empty: switched for all at once
};

constexpr std::array<Switched, 5> kSwitched{{
    {"eth0.apipa", kLinkLocalDaemon, "eth0"},
    {"eth1.apipa", kLinkLocalDaemon, "eth1"},
    {"dhcp-ntp", "/usr/bin/ntpdate", ""},
    {"eth0.dhcp-notice", "/sbin/printdhcpnotice.pl", "eth0"},
    {"eth0.dhcp-notice", "/sbin/printdhcpstart.pl", "eth0"},
}};

Findings CheckLine(const Script& script, size_t index, const Switched& switched) {
    const std::string& line = script.lines[index];
    const size_t position = line.find(switched.command);
    const std::string setting(switched.setting);
    if (HasSecondMark(line, position)) {
        return {{Severity::kProblem, setting, "cannot be switched on",
                 "two '#' stand before the command, and switching on takes one away", script.path,
                 index + 1, "leave one '#', in the first column"}};
    }
    const bool is_on = !velk::IsCommentedOut(line, position);
    const bool is_read = switched.command == kLinkLocalDaemon;
    if (is_on && is_read && !velk::HasWord(line, switched.command, /*comment_aware=*/true)) {
        return {{Severity::kProblem, setting, "is shown as off although it is on",
                 "no blank stands before or behind the command's name", script.path, index + 1,
                 "write " + std::string(switched.command) + " between blanks"}};
    }
    return {};
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
    if (!found) {
        const std::string command(switched.command);
        const std::string reach =
            switched.interface.empty() ? "" : " that runs for " + std::string(switched.interface);
        findings.push_back(
            {Severity::kProblem, std::string(switched.setting), "cannot be switched",
             "no line" + reach + " has " + command, script.path, 0,
             "add the line that runs " + command + ", with a '#' before it for off"});
    }
    return findings;
}

}  // namespace

Findings CheckExitHooks() {
    const std::string path(kExitHooks);
    TextFile file = ReadTextFile(path);
    if (file.state != FileState::kText) {
        return {};
    }
    const Script script{path, "$interface", "apipa, dhcp-notice and dhcp-ntp",
                        std::move(file.lines)};
    Findings findings = CheckBlocks(script);
    for (const Switched& switched : kSwitched) {
        Append(findings, CheckSwitched(script, switched));
    }
    return findings;
}

}  // namespace velkctl
