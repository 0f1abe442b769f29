// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// restarts.cpp - the restarts of a change's interfaces, one after the other.
#include "velkctl/changes/restarts.h"

#include <chrono>
#include <utility>

#include "velkctl/call/device.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/call/watched_call.h"
#include "velkctl/changes/interface_restart.h"

namespace velkctl {
namespace {

using Clock = std::chrono::steady_clock;

int SecondsSince(Clock::time_point start) {
    const auto time = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start);
    return static_cast<int>(time.count());
}

}  // namespace

RestartsResult RestartAll(const std::vector<std::string>& interfaces, int wait_seconds,
                          Report& report) {
    const TimeLimits limits{.wait_seconds = wait_seconds};
    const Device device(limits, report, OnSignal::kFinishCommand);
    RestartsResult result;
    for (const std::string& interface : interfaces) {
        const Clock::time_point start = Clock::now();
        const RestartOutcome outcome = RestartInterface(interface, limits, device);
        const bool is_done = !outcome.problem || outcome.status == ExitStatus::kNotHeld;
        result.restarts.push_back({interface, SecondsSince(start), outcome.state, !is_done});
        if (outcome.problem) {
            report.Complain(*outcome.problem);
            result.status = outcome.status;
            result.is_locked = result.is_locked || outcome.status == ExitStatus::kLocked;
        }
    }
    return result;
}

std::string RestartedText(const std::vector<DoneRestart>& restarts) {
    std::string text;
    for (const DoneRestart& restart : restarts) {
        if (restart.has_failed) {
            continue;
        }
        text.append(", restarted ").append(restart.interface).append(" (");
        text.append(std::to_string(restart.seconds)).append(" s)");
    }
    return text;
}

Json RestartsInJson(const std::vector<DoneRestart>& restarts) {
    Json list = Json::array();
    for (const DoneRestart& restart : restarts) {
        Json object;
        object["interface"] = restart.interface;
        object["seconds"] = restart.seconds;
        object["state"] = restart.state;
        list.push_back(std::move(object));
    }
    return list;
}

}  // namespace velkctl
