// tools_checks.cpp - whether the tools that the library runs are there and may be run.
#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

#include "lib/base/words.h"
#include "velk.h"
#include "velkctl/call/environment.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/file_facts.h"
#include "velkctl/files/tool_run.h"

namespace velkctl {
namespace {

struct Tool {
    std::string name;
    bool by_sudo;
    std::string consequence;  // of its absence
    Severity severity = Severity::kProblem;
    Concerns concerns{};
    Hinders hinders = Hinders::kNothing;
    bool restarts = false;  // an interface cannot be restarted without it
};

// A tool that is run both ways stands here twice.
std::vector<Tool> Tools() {
    const Concerns link_speed{{.id = VELK_CMD_LINK_SPEED}};
    const Concerns lease{{.id = VELK_CMD_IP_ADDRESS}, {.id = VELK_CMD_NETMASK}};
    return {
        {.name = "sudo",
         .by_sudo = false,
         .consequence = "no interface can be restarted, link-speed can be neither read nor set",
         .concerns = link_speed,
         .hinders = Hinders::kSetting,
         .restarts = true},
        {.name = "cat",
         .by_sudo = false,
         .consequence = "no setting in a file can be set",
         .concerns = EditedSettings(),
         .hinders = Hinders::kSetting},
        {.name = "rm",
         .by_sudo = false,
         .consequence = "edit copies and results stay behind in /var/tmp"},
        {.name = "grep",
         .by_sudo = false,
         .consequence = "the link cannot be told from the log when ethtool does not tell it",
         .severity = Severity::kWarning},
        {.name = "ifconfig",
         .by_sudo = false,
         .consequence = "address and netmask of a DHCP interface cannot be read",
         .concerns = lease,
         .hinders = Hinders::kReading},
        {.name = "ifconfig",
         .by_sudo = true,
         .consequence = "eth1 cannot be brought up while the cable is in"},
        {.name = "route",
         .by_sudo = true,
         .consequence = "the running default gateway cannot be changed, only the one in the file",
         .severity = Severity::kWarning},
        {.name = "ethtool",
         .by_sudo = true,
         .consequence = "eth0.link-speed can be neither read nor set",
         .concerns = link_speed,
         .hinders = Hinders::kSetting},
        {.name = "/usr/sbin/ethtool",
         .by_sudo = true,
         .consequence = "it takes a minute to tell whether the cable is in"},
        {.name = "ifup",
         .by_sudo = true,
         .consequence = "no interface can be brought up again by a restart",
         .restarts = true},
        {.name = "ifdown",
         .by_sudo = true,
         .consequence = "no interface can be brought down by a restart",
         .restarts = true},
        {.name = "sed",
         .by_sudo = true,
         .consequence = "administrator and location do not reach the SNMP agent"},
        {.name = "/etc/init.d/snmpd",
         .by_sudo = true,
         .consequence = "administrator and location do not reach the running SNMP agent"},
    };
}

// Asks sudo for the right to run tools, unless this is root, who has it. Once it does not answer it
// is not asked again.
class SudoRights {
  public:
    SudoRights() : asks_(geteuid() != 0 && FindTool("sudo").has_value()) {}

    // Nothing when that cannot be told.
    std::optional<bool> MayRun(const std::string& tool) {
        if (!asks_) {
            return std::nullopt;
        }
        const ToolRun run = RunTool({"sudo", "-n", "-l", tool});
        asks_ = run.ended;
        return run.ended ? std::optional(run.status == 0) : std::nullopt;
    }

  private:
    bool asks_;
};

// What every finding on a tool has in common.
Finding About(const Tool& tool) {
    return {.severity = tool.severity,
            .subject = tool.name,
            .what = tool.consequence,
            .concerns = tool.concerns,
            .hinders = tool.hinders};
}

// Characters that no shell changes.
bool IsPlainWord(std::string_view path) {
    return std::ranges::all_of(path, [](char c) {
        return velk::IsLetterOrDigit(c) || std::string_view("/._+-").find(c) != std::string::npos;
    });
}

// The line is pasted by root: a tool that another user can change must not get into it.
bool MayBeLinked(const std::optional<std::string>& path) {
    return path && IsPlainWord(*path) && IsRootsAlone(*path);
}

Finding MissingTool(const Tool& tool) {
    Finding finding = About(tool);
    const std::optional<std::string> elsewhere = FindTool(tool.name, CallersPath());
    const std::string who = tool.by_sudo ? "sudo" : "velkctl";
    finding.effect = elsewhere ? "is not in a folder where " + who + " looks" : "is not installed";
    if (tool.name.starts_with('/')) {
        finding.remedy = "install it, or a link to it, as " + tool.name;
    } else if (MayBeLinked(elsewhere)) {
        finding.remedy = "ln -s " + *elsewhere + " /usr/local/sbin/" + tool.name;
    } else {
        finding.remedy = "install it in a folder where " + who + " looks, as " +
                         (tool.by_sudo ? "/usr/sbin" : "/usr/bin");
    }
    return finding;
}

Finding ForbiddenTool(const Tool& tool) {
    Finding finding = About(tool);
    finding.effect = "may not be run through sudo by this user without a password";
    finding.remedy = "add a line to /etc/sudoers: USER ALL=(root) NOPASSWD: " +
                     FindTool(tool.name, kToolFolders).value_or(tool.name);
    return finding;
}

bool IsThere(const Tool& tool) {
    return tool.by_sudo ? FindTool(tool.name, kToolFolders).has_value()
                        : FindTool(tool.name).has_value();
}

Findings CheckTheseTools(const std::vector<Tool>& tools) {
    Findings findings;
    SudoRights rights;
    std::string missing;
    for (const Tool& tool : tools) {
        if (tool.name == missing) {
            continue;  // told already
        }
        if (!IsThere(tool)) {
            findings.push_back(MissingTool(tool));
            missing = tool.name;
        } else if (tool.by_sudo && !rights.MayRun(tool.name).value_or(true)) {
            findings.push_back(ForbiddenTool(tool));
        }
    }
    return findings;
}

}  // namespace

Findings CheckTools() {
    return CheckTheseTools(Tools());
}

Findings CheckToolsFor(const Setting& setting) {
    std::vector<Tool> tools = Tools();
    std::erase_if(tools, [&](const Tool& tool) { return !Includes(tool.concerns, setting); });
    return CheckTheseTools(tools);
}

Findings RestartObstacles() {
    std::vector<Tool> tools = Tools();
    std::erase_if(tools, [](const Tool& tool) { return !tool.restarts; });
    return CheckTheseTools(tools);
}

}  // namespace velkctl
