// ifconfig_checks.cpp - whether the library can read the output of ifconfig.
#include "lib/base/words.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/text_file.h"
#include "velkctl/files/tool_run.h"

namespace velkctl {
namespace {

constexpr std::string_view kAnyAddress = "inet ";

Finding AboutTool() {
    return {.subject = std::string(kInterfaceTool),
            .affected = SettingsReadWith(kInterfaceTool),
            .impact = Impact::kReading};
}

}  // namespace

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
            ", and 'inet addr:' and 'Mask:' are looked for; address and netmask of a DHCP "
            "interface read as none",
        "install an ifconfig that prints 'inet addr:192.168.0.10', as busybox's does")};
}

Findings CheckIfconfig() {
    if (!FindTool(kInterfaceTool)) {
        return {};  // CheckTools() finds it
    }
    for (const std::string interface : {"lo", VELK_WIRED_INTERFACE}) {
        const ToolRun run = RunTool({std::string(kInterfaceTool), interface});
        if (!run.ended) {
            return {AboutTool().Problem("does not end",
                                        "'ifconfig " + interface + "' ran for more than 5 seconds",
                                        "find out what it waits for")};
        }
        if (velk::Contains(run.output, kAnyAddress)) {
            return CheckIfconfigOutput(run.output);
        }
    }
    return {};  // neither interface has an address
}

}  // namespace velkctl
