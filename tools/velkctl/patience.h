// patience.h - how long a user wants to wait.
#ifndef VELKCTL_PATIENCE_H_
#define VELKCTL_PATIENCE_H_

#include <optional>

#include "velkctl/report.h"
#include "velkctl/verbs.h"

namespace velkctl {

struct Patience {
    int wait_seconds = 0;     // how long to try again while another program holds the lock
    int timeout_seconds = 0;  // when to give a command up altogether; 0: never
};

// What --wait and --timeout ask for; nothing, after refusing them, when they are no numbers.
std::optional<Patience> PatienceOf(const Invocation& invocation, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_PATIENCE_H_
