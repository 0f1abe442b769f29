// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// apply_time.cpp - the longest time that the steps of an apply take.
#include "velkctl/changes/apply_time.h"

#include "velkctl/call/longest_wait.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_change.h"

namespace velkctl {
namespace {

// For files and quick tools.
constexpr int kCallSeconds = 30;
// Ends the DHCP client, waits for the adapter and for a DHCP server, for each interface.
constexpr int kRestartSeconds = 600;

// A set, and its value read back at once and at the end.
int SecondsOf(const SettingChange& change, int wait_seconds) {
    const Setting& setting = change.setting;
    const int set = LongestWaitOf({VELK_SET, setting.row->id, setting.interface}).seconds;
    return set + wait_seconds + 2 * LongestWaitOf(setting).seconds + 3 * kCallSeconds;
}

}  // namespace

int LongestTimeOf(const ApplyPlan& plan, const TimeLimits& limits) {
    int seconds = limits.wait_seconds;
    for (const PlannedChange& planned : plan.changes) {
        seconds += SecondsOf(planned.change, limits.wait_seconds);
    }
    for (const SettingChange& beside : plan.beside) {
        seconds += SecondsOf(beside, limits.wait_seconds);
    }
    const int restarts = static_cast<int>(plan.restarts.size());
    return seconds + restarts * (kRestartSeconds + limits.wait_seconds);
}

}  // namespace velkctl
