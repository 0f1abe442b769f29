// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wireless_meetings.h - programs that talk to the wireless daemon at the same time.
#ifndef TESTS_SCHEDULES_WIRELESS_MEETINGS_H_
#define TESTS_SCHEDULES_WIRELESS_MEETINGS_H_

#include <memory>

#include "schedules/kit/explorer.h"

namespace schedules {

// Two sets of different fields of the daemon's configuration. The lock keeps them apart.
std::unique_ptr<Meeting> WirelessSetMeetsSet();
// A get beside a set of the configuration. Each may take the other's reply, and fails then.
std::unique_ptr<Meeting> WirelessGetMeetsSet();

}  // namespace schedules

#endif  // TESTS_SCHEDULES_WIRELESS_MEETINGS_H_
