// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// apply_time.h - the longest time that the steps of an apply take.
#ifndef VELKCTL_CHANGES_APPLY_TIME_H_
#define VELKCTL_CHANGES_APPLY_TIME_H_

#include "velkctl/call/time_limits.h"
#include "velkctl/changes/apply_plan.h"

namespace velkctl {

// Returns the seconds after which an apply that is still at work hangs. The time of a DHCP client
// is in its configuration; this is a generous one.
int LongestTimeOf(const ApplyPlan& plan, const TimeLimits& limits);

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_APPLY_TIME_H_
