// time_limits.h - how long a user wants to wait.
#ifndef VELKCTL_CALL_TIME_LIMITS_H_
#define VELKCTL_CALL_TIME_LIMITS_H_

#include <optional>

#include "velkctl/cli/verbs.h"
#include "velkctl/report/report.h"

namespace velkctl {

struct Patience {
    int wait_seconds = 0;     // how long to try again while another program holds the lock
    int timeout_seconds = 0;  // when to give a command up altogether; 0: never
};

// What --wait and --timeout ask for; nothing, after refusing them, when they are no numbers.
std::optional<Patience> PatienceOf(const Invocation& invocation, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CALL_TIME_LIMITS_H_
