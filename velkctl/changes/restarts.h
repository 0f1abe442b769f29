// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// restarts.h - the restarts of a change's interfaces, one after the other.
#ifndef VELKCTL_CHANGES_RESTARTS_H_
#define VELKCTL_CHANGES_RESTARTS_H_

#include <string>
#include <vector>

#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include <nlohmann/json.hpp>

namespace velkctl {

struct DoneRestart {
    std::string interface;
    int seconds;
    Json state;
    bool has_failed = false;
};

struct RestartsResult {
    ExitStatus status = ExitStatus::kDone;  // the last failure, if any
    bool is_locked = false;                 // another program was changing settings
    std::vector<DoneRestart> restarts{};    // also those that failed
};

// Restarts the interfaces, so that they take the settings that were put back, and checks that they
// are up with their addresses. Reports failures. Waits for the lock. A restart has the time that it
// needs, also if a signal comes: its interface is down meanwhile.
RestartsResult RestartAll(const std::vector<std::string>& interfaces, int wait_seconds,
                          Report& report);

// Returns ", restarted eth0 (12 s)" for each that has not failed.
std::string RestartedText(const std::vector<DoneRestart>& restarts);

// [{"interface": "eth0", "seconds": 12, "state": {...}}]
Json RestartsInJson(const std::vector<DoneRestart>& restarts);

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_RESTARTS_H_
