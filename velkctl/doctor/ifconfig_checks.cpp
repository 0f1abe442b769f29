// ifconfig_checks.cpp - whether the library can read what ifconfig prints.
#include <string>
#include <string_view>

#include "lib/base/words.h"
#include "velk.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/text_file.h"
#include "velkctl/files/tool_run.h"

namespace velkctl {
namespace {

constexpr std::string_view kAddress = "inet addr:";
constexpr std::string_view kNetmask = "Mask:";
constexpr std::string_view kAnyAddress = "inet ";

bool IsReadable(std::string_view output) {
    return velk::Contains(output, kAddress) && velk::Contains(output, kNetmask);
}

// The line with an address on it.
std::string_view AddressLine(std::string_view output) {
    const size_t position = output.find(kAnyAddress);
    const std::string_view rest = output.substr(position);
    return rest.substr(0, rest.find('\n'));
}

}  // namespace

Findings JudgeIfconfigOutput(std::string_view output) {
    if (IsReadable(output) || !velk::Contains(output, kAnyAddress)) {
        return {};
    }
    return {
        {.subject = "ifconfig",
         .effect = "prints addresses in a form that the library does not read",
         .what = "it prints " + Excerpt(AddressLine(output)) +
                 ", and 'inet addr:' and 'Mask:' are looked for; address and netmask of a DHCP "
                 "interface read as none",
         .remedy = "install an ifconfig that prints 'inet addr:192.168.0.10', as busybox's does",
         .concerns = {{.id = VELK_CMD_IP_ADDRESS}, {.id = VELK_CMD_NETMASK}},
         .hinders = Hinders::kReading}};
}

Findings CheckIfconfig() {
    if (!FindTool("ifconfig")) {
        return {};  // told as a tool that is missing
    }
    for (const char* interface : {"lo", "eth0"}) {
        const ToolRun run = RunTool({"ifconfig", interface});
        if (!run.ended) {
            return {
                {.subject = "ifconfig",
                 .effect = "does not end",
                 .what = "'ifconfig " + std::string(interface) + "' ran for more than 5 seconds",
                 .remedy = "find out what it waits for",
                 .concerns = {{.id = VELK_CMD_IP_ADDRESS}, {.id = VELK_CMD_NETMASK}},
                 .hinders = Hinders::kReading}};
        }
        if (velk::Contains(run.output, kAnyAddress)) {
            return JudgeIfconfigOutput(run.output);
        }
    }
    return {};  // no address to be seen in any form
}

}  // namespace velkctl
