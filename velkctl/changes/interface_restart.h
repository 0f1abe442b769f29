// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// interface_restart.h - restarts an interface and checks that it is up with its address.
#ifndef VELKCTL_CHANGES_INTERFACE_RESTART_H_
#define VELKCTL_CHANGES_INTERFACE_RESTART_H_

#include <optional>
#include <string>

#include "velkctl/call/device.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include <nlohmann/json.hpp>

namespace velkctl {

struct RestartOutcome {
    ExitStatus status = ExitStatus::kDone;
    std::string line{};                // "eth0: 192.168.0.109 from DHCP", if as configured
    std::optional<Problem> problem{};  // otherwise
    Json state{};                      // as StateInJson(); null if the library refused the restart
};

// Restarts the interface and waits a short time for its lease. `repeat` is the last step of a fix;
// empty: another restart.
RestartOutcome RestartInterface(const std::string& interface, const TimeLimits& limits,
                                const Device& device, const std::string& repeat = "");

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_INTERFACE_RESTART_H_
