// tools_checks.cpp - whether the tools that the library runs are there and may be run.
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <unistd.h>

#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/tool_run.h"

namespace velkctl {
namespace {

struct Tool {
    std::string_view name;
    bool by_sudo;
    std::string_view consequence;  // of its absence
    Severity severity = Severity::kProblem;
};

// A tool that is run both ways stands here twice.
constexpr std::array<Tool, 13> kTools{{
    {"sudo", false, "no interface can be restarted, link-speed can be neither read nor set"},
    {"cat", false, "no setting in a file can be set"},
    {"rm", false, "edit copies and results stay behind in /var/tmp"},
    {"grep", false, "the link cannot be told from the log when ethtool does not tell it",
     Severity::kWarning},
    {"ifconfig", false, "address and netmask of a DHCP interface cannot be read"},
    {"ifconfig", true, "eth1 cannot be brought up while the cable is in"},
    {"route", true, "the running default gateway cannot be changed, only the one in the file",
     Severity::kWarning},
    {"ethtool", true, "eth0.link-speed can be neither read nor set"},
    {"/usr/sbin/ethtool", true, "it takes a minute to tell whether the cable is in"},
    {"ifup", true, "no interface can be brought up again by a restart"},
    {"ifdown", true, "no interface can be brought down by a restart"},
    {"sed", true, "administrator and location do not reach the SNMP agent"},
    {"/etc/init.d/snmpd", true, "administrator and location do not reach the running SNMP agent"},
}};

// Where sudo looks, whatever the caller's PATH.
constexpr std::string_view kSudoFolders =
    "/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin";

// Asks sudo for the right to run tools, unless this is root, who has it. Once it does not answer it
// is not asked again.
class SudoRights {
  public:
    SudoRights() : asks_(geteuid() != 0 && FindTool("sudo").has_value()) {}

    // Nothing when that cannot be told.
    std::optional<bool> MayRun(std::string_view tool) {
        if (!asks_) {
            return std::nullopt;
        }
        const ToolRun run = RunTool({"sudo", "-n", "-l", std::string(tool)});
        asks_ = run.ended;
        return run.ended ? std::optional(run.status == 0) : std::nullopt;
    }

  private:
    bool asks_;
};

Finding MissingTool(const Tool& tool) {
    const std::string name(tool.name);
    const bool has_place = name.starts_with('/');
    return {
        tool.severity,
        name,
        "is not installed",
        std::string(tool.consequence),
        "",
        0,
        has_place ? "install it, or a link to it, as " + name : "install it in a folder of PATH"};
}

Finding ForbiddenTool(const Tool& tool) {
    const std::string name(tool.name);
    return {tool.severity,
            name,
            "may not be run through sudo by this user without a password",
            std::string(tool.consequence),
            "",
            0,
            "add a line to /etc/sudoers: USER ALL=(root) NOPASSWD: " + name + ", its full path"};
}

}  // namespace

Findings CheckTools() {
    Findings findings;
    SudoRights rights;
    std::string_view missing;
    for (const Tool& tool : kTools) {
        if (tool.name == missing) {
            continue;  // told already
        }
        if (!FindTool(tool.name, tool.by_sudo ? kSudoFolders : "")) {
            findings.push_back(MissingTool(tool));
            missing = tool.name;
        } else if (tool.by_sudo && !rights.MayRun(tool.name).value_or(true)) {
            findings.push_back(ForbiddenTool(tool));
        }
    }
    return findings;
}

}  // namespace velkctl
