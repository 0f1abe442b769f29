// patience.h - runs a command that may take long or find the device busy.
#ifndef VELKCTL_PATIENCE_H_
#define VELKCTL_PATIENCE_H_

#include <optional>
#include <string>

#include "velkctl/device.h"
#include "velkctl/report.h"
#include "velkctl/verbs.h"

namespace velkctl {

struct Patience {
    int wait_seconds = 0;     // how long to try again while another program holds the lock
    int timeout_seconds = 0;  // when to give a command up altogether; 0: never
};

// What --wait and --timeout ask for; nothing, after refusing them, when they are no numbers.
std::optional<Patience> PatienceOf(const Invocation& invocation, Report& report);

// Runs the command with these data bytes. `what` is done meanwhile, in words for a person at a
// terminal: "eth1.signal".
//
// SIGINT, SIGTERM and SIGHUP do not end velkctl in the middle of what would leave something behind.
// What takes no time is finished first; what takes long is run in a process of its own, which is
// ended and tidied up after. Then velkctl ends by the signal: this does not return.
Answer ExecutePatiently(const Command& command, const Data& data, const Patience& patience,
                        const std::string& what, Report& report);

// How velkctl ends on an answer.
ExitStatus StatusOf(const Answer& answer);

// Why there is no value: "refused while the cable is in the wired port".
std::string WhyNot(const Answer& answer);

// Why something was not done: DescribeFailure(), or that it took too long, and what there is to
// remark.
std::string DescribeFailure(std::string_view what, const Answer& answer);

}  // namespace velkctl

#endif  // VELKCTL_PATIENCE_H_
