// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dhcp_end.cpp - ends the DHCP client of an interface before it gets another method.
#include "velkctl/changes/dhcp_end.h"

#include <algorithm>
#include <chrono>

#include "velkctl/call/answer.h"
#include "velkctl/files/dhcp_client.h"
#include "velkctl/files/tool_run.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {
namespace {

// The client releases its address with a message to the server, and does not wait for an answer.
constexpr std::chrono::seconds kLongestEnd{60};

bool GetsStaticBack(const std::string& interface, const JournalEntry& entry) {
    return std::ranges::any_of(entry.steps, [&](const Step& step) {
        return step.setting.row->id == VELK_CMD_IP_METHOD && step.setting.interface == interface &&
               step.old_value && IsStaticMethod(*step.old_value);
    });
}

}  // namespace

bool HasDhcpClient(const std::string& interface, const Device& device) {
    const Answer method = device.Get(SettingOf(VELK_CMD_IP_METHOD, interface));
    return method.ok() && method.data[0] == VELK_METHOD_DHCP &&
           ReadDhcpClient(interface).is_running;
}

std::optional<Problem> EndDhcpClient(const std::string& interface) {
    (void)RunTool({"sudo", "ifdown", interface}, kLongestEnd);
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

std::vector<std::string> EndClientsOf(const JournalEntry& entry, const Device& device,
                                      Report& report) {
    std::vector<std::string> taken_down;
    for (const std::string& interface : entry.restarts) {
        if (GetsStaticBack(interface, entry) && HasDhcpClient(interface, device)) {
            taken_down.push_back(interface);
            if (const std::optional<Problem> problem = EndDhcpClient(interface)) {
                report.Complain(*problem);
            }
        }
    }
    return taken_down;
}

}  // namespace velkctl
