// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tools_checks.cpp - checks that the tools of the library exist and may be run, and that it can
// read the output of ifconfig.
#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

#include "lib/base/join_text.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velkctl/call/environment.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/files/file_facts.h"
#include "velkctl/files/text_file.h"
#include "velkctl/files/tool_run.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {
namespace {

constexpr bool kBySudo = true;
constexpr bool kDirectly = false;
constexpr bool kForRestart = true;
constexpr Severity kProblem = Severity::kProblem;
constexpr Severity kWarning = Severity::kWarning;

AffectedSettings NoSettings() {
    return {};
}

AffectedSettings LinkSettings() {
    return SettingsReadWith(kLinkTool);
}

AffectedSettings InterfaceSettings() {
    return SettingsReadWith(kInterfaceTool);
}

struct Tool {
    std::string_view name;
    bool by_sudo;
    std::string_view consequence;  // the consequence if it is missing
    Severity severity = kProblem;
    AffectedSettings (*affected)() = NoSettings;
    Impact impact = Impact::kNothing;
    bool for_restart = false;  // an interface cannot be restarted without it
};

constexpr auto kRmConsequence =
    velk::JoinText("edit copies and results stay in ", velk::kEditFolder);

// A tool that is run both ways has two rows.
constexpr std::array<Tool, 13> kTools{{
    {"sudo", kDirectly, "no interface can be restarted, link-speed can be neither read nor set",
     kProblem, LinkSettings, Impact::kBoth, kForRestart},
    {"cat", kDirectly, "no setting in a file can be set", kProblem, EditedSettings,
     Impact::kSetting},
    {"rm", kDirectly, kRmConsequence.c_str()},
    {"grep", kDirectly, "the link cannot be read from the log when ethtool does not report it",
     kWarning},
    {kInterfaceTool, kDirectly, "address and netmask of a DHCP interface cannot be read", kProblem,
     InterfaceSettings, Impact::kReading},
    {kInterfaceTool, kBySudo, "eth1 cannot be brought up while the cable is in"},
    {"route", kBySudo, "the running default gateway cannot be changed, only the one in the file",
     kWarning},
    {kLinkTool, kBySudo, "eth0.link-speed can be neither read nor set", kProblem, LinkSettings,
     Impact::kBoth},
    {velk::kEthtool, kBySudo, "it takes a minute to find out whether the cable is in"},
    {"ifup", kBySudo, "no interface can be brought up again by a restart", kProblem, NoSettings,
     Impact::kNothing, kForRestart},
    {"ifdown", kBySudo, "no interface can be brought down by a restart", kProblem, NoSettings,
     Impact::kNothing, kForRestart},
    {"sed", kBySudo, "administrator and location do not reach the SNMP agent"},
    {velk::kSnmpScript, kBySudo, "administrator and location do not reach the running SNMP agent"},
}};

using Words = std::vector<std::string>;

// Returns the commands that the library runs through sudo. Its rules may allow nothing else.
std::vector<Words> SudoCommands() {
    const std::string wired = VELK_WIRED_INTERFACE;
    const std::string wireless = VELK_WIRELESS_INTERFACE;
    return {{"ifconfig", wireless, "up"},
            {"route", "add", "default", "gw", "192.168.0.1"},
            {"route", "del", "default", "gw", "192.168.0.1"},
            {"ethtool", wired},
            {"ethtool", "-s", wired, "autoneg", "on"},
            {"ethtool", "-s", wired, "speed", "100", "duplex", "full", "autoneg", "off"},
            {velk::kEthtool, wired},
            {"ifup", wired},
            {"ifup", wireless},
            {"ifdown", wired},
            {"ifdown", wireless},
            {"sed", "-i", "s/syscontact.*/syscontact name/", velk::kSnmpFile},
            {"sed", "-i", "s/syslocation.*/syslocation name/", velk::kSnmpFile},
            {velk::kSnmpScript, "restart"}};
}

// Asks sudo for the right to run the commands of a tool. Root needs none. A sudo that does not
// answer in time is not asked again.
class SudoRights {
  public:
    SudoRights() : asks_(geteuid() != 0 && FindTool("sudo").has_value()) {}

    bool Forbid(const std::string& tool) {
        return std::ranges::any_of(SudoCommands(), [&](const Words& command) {
            return command.front() == tool && Refuse(command);
        });
    }

  private:
    bool Refuse(const Words& command) {
        if (!asks_) {
            return false;
        }
        Words question = {"sudo", "-n", "-l"};
        question.insert(question.end(), command.begin(), command.end());
        const ToolRun run = RunTool(question);
        asks_ = run.ended;
        return run.ended && run.status != 0;
    }

    bool asks_;
};

// True if no shell changes the characters of the path.
bool IsPlainWord(std::string_view path) {
    return std::ranges::all_of(path, [](char c) {
        return velk::IsLetterOrDigit(c) || std::string_view("/._+-").find(c) != std::string::npos;
    });
}

std::string SearcherFor(const Tool& tool) {
    return tool.by_sudo ? "sudo searches" : "velkctl searches";
}

std::string RemedyOf(const Tool& tool, const std::optional<std::string>& elsewhere) {
    const std::string name(tool.name);
    if (name.starts_with('/')) {
        return "install it, or a link to it, as " + name;
    }
    // Root pastes the line: a tool that another user can change must not get into it.
    if (elsewhere && IsPlainWord(*elsewhere) && OnlyRootCanChange(*elsewhere)) {
        return "ln -s " + *elsewhere + " /usr/local/sbin/" + name;
    }
    return "install it in a folder that " + SearcherFor(tool) + ", such as " +
           (tool.by_sudo ? "/usr/sbin" : "/usr/bin");
}

Finding ToolFinding(const Tool& tool, std::string effect, std::string remedy) {
    return {.severity = tool.severity,
            .subject = std::string(tool.name),
            .effect = std::move(effect),
            .description = std::string(tool.consequence),
            .remedy = std::move(remedy),
            .affected = tool.affected(),
            .impact = tool.impact};
}

Finding Missing(const Tool& tool) {
    const std::optional<std::string> elsewhere = FindTool(tool.name, CallersPath());
    return ToolFinding(
        tool,
        elsewhere ? "is in none of the folders that " + SearcherFor(tool) : "is not installed",
        RemedyOf(tool, elsewhere));
}

template <typename Condition>
Findings CheckToolsWhere(Condition is_wanted) {
    Findings findings;
    SudoRights rights;
    std::string_view missing;
    for (const Tool& tool : kTools) {
        if (!is_wanted(tool) || tool.name == missing) {
            continue;
        }
        const auto path = tool.by_sudo ? FindTool(tool.name, kToolFolders) : FindTool(tool.name);
        if (!path) {
            findings.push_back(Missing(tool));
            missing = tool.name;
        } else if (tool.by_sudo && rights.Forbid(std::string(tool.name))) {
            findings.push_back(
                ToolFinding(tool, "may not be run through sudo by this user without a password",
                            "add a line to /etc/sudoers: USER ALL=(root) NOPASSWD: " + *path));
        }
    }
    return findings;
}

constexpr std::string_view kAnyAddress = "inet ";

Finding AboutTool() {
    return {.subject = std::string(kInterfaceTool),
            .affected = InterfaceSettings(),
            .impact = Impact::kReading};
}

}  // namespace

Findings CheckTools() {
    return CheckToolsWhere([](const Tool&) { return true; });
}

std::vector<std::string> ToolNames() {
    std::vector<std::string> names;
    for (const Tool& tool : kTools) {
        if (names.empty() || names.back() != tool.name) {
            names.emplace_back(tool.name);
        }
    }
    return names;
}

Findings CheckToolsFor(const Setting& setting) {
    return CheckToolsWhere([&](const Tool& tool) { return Includes(tool.affected(), setting); });
}

Findings CheckRestartTools() {
    return CheckToolsWhere([](const Tool& tool) { return tool.for_restart; });
}

Findings CheckIfconfigOutput(std::string_view output) {
    const bool is_readable =
        velk::Contains(output, "inet addr:") && velk::Contains(output, "Mask:");
    const size_t position = output.find(kAnyAddress);
    if (is_readable || position == std::string_view::npos) {
        return {};
    }
    const std::string_view rest = output.substr(position);
    return {AboutTool().Problem(
        "prints addresses in a form that the library does not read",
        "it prints " + Excerpt(rest.substr(0, rest.find('\n'))) +
            ", but the library looks for 'inet addr:' and 'Mask:'; address and netmask of a DHCP "
            "interface are read as empty",
        "install an ifconfig that prints 'inet addr:ADDRESS', as busybox's does")};
}

Findings CheckIfconfig() {
    if (!FindTool(kInterfaceTool)) {
        return {};  // CheckTools() finds it
    }
    for (const std::string interface : {"lo", VELK_WIRED_INTERFACE}) {
        const ToolRun run = RunTool({std::string(kInterfaceTool), interface});
        if (!run.ended) {
            return {AboutTool().Problem("does not end",
                                        "'ifconfig " + interface + "' ran for more than " +
                                            std::to_string(kLongestRun.count()) + " seconds",
                                        "find out why it does not end")};
        }
        if (velk::Contains(run.output, kAnyAddress)) {
            return CheckIfconfigOutput(run.output);
        }
    }
    return {};  // neither interface has an address
}

}  // namespace velkctl
