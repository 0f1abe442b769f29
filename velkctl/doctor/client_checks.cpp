// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// client_checks.cpp - DHCP clients that run for an interface with another method.
#include "lib/base/paths.h"
#include "lib/ipconf/interfaces_file.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/files/dhcp_client.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {
namespace {

// True if the first stanza of the interface has the method static.
bool IsStatic(const Lines& lines, std::string_view interface) {
    for (const std::string& line : lines) {
        if (const size_t length = velk::HeaderLength(line, interface); length != 0) {
            return Trimmed(std::string_view(line).substr(length)) == velk::kStaticMethod;
        }
    }
    return false;
}

Findings CheckClientOf(const Lines& lines, const std::string& interface) {
    if (!IsStatic(lines, interface)) {
        return {};
    }
    const DhcpClient client = ReadDhcpClient(interface);
    if (!client.is_running) {
        return {};
    }
    const std::string process = std::to_string(client.process_id);
    const Finding about = About(SettingsOf(VELK_CMD_IP_ADDRESS, interface), "", Impact::kNothing);
    return {about.Warning(
        "may be replaced by that of a lease",
        "a DHCP client, process " + process + ", still runs for it, and its method is static",
        "run 'sudo kill " + process + "', then 'velkctl restart " + interface + "'")};
}

}  // namespace

Findings CheckDhcpClients() {
    const TextFile file = ReadTextFile(velk::kInterfacesFile);
    return FindingsOfEach(kInterfaces, [&](const std::string& interface) {
        return CheckClientOf(file.lines, interface);
    });
}

}  // namespace velkctl
