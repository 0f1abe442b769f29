// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dhcp_end.cpp - ends the DHCP client of an interface before it gets another method.
#include "velkctl/changes/dhcp_end.h"

#include <chrono>

#include "velkctl/files/dhcp_client.h"
#include "velkctl/files/tool_run.h"
#include "velkctl/settings/affected_settings.h"

namespace velkctl {
namespace {

// The client releases its address with a message to the server, and does not wait for an answer.
constexpr std::chrono::seconds kLongest{60};

}  // namespace

bool HasDhcpClient(const std::string& interface, const Device& device) {
    const Answer method = device.Get(SettingsOf(VELK_CMD_IP_METHOD, interface).front());
    return method.ok() && method.data[0] == VELK_METHOD_DHCP &&
           ReadDhcpClient(interface).is_running;
}

std::optional<Problem> EndDhcpClient(const std::string& interface) {
    (void)RunTool({"sudo", "ifdown", interface}, kLongest);
    const DhcpClient client = ReadDhcpClient(interface);
    if (!client.is_running) {
        return std::nullopt;
    }
    const std::string process = std::to_string(client.process_id);
    Problem problem{interface + ": its DHCP client could not be ended"};
    problem.detail = "'sudo ifdown " + interface + "' has left process " + process;
    problem.remedy = "sudo kill " + process;
    return problem;
}

}  // namespace velkctl
