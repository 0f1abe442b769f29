// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// time_limits.h - how long a user wants to wait.
//
// cli/time_options.cpp parses the options. device.cpp applies the limits: the deadline of a command
// ends its process in watched_call.cpp.
#ifndef VELKCTL_CALL_TIME_LIMITS_H_
#define VELKCTL_CALL_TIME_LIMITS_H_

namespace velkctl {

struct TimeLimits {
    int wait_seconds = 0;     // for the lock, while another program holds it
    int timeout_seconds = 0;  // for one command; 0: no limit
};

}  // namespace velkctl

#endif  // VELKCTL_CALL_TIME_LIMITS_H_
