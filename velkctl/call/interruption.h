// interruption.h - ends velkctl by a signal, after its last messages.
#ifndef VELKCTL_CALL_INTERRUPTION_H_
#define VELKCTL_CALL_INTERRUPTION_H_

#include <string>

#include "velkctl/report/report.h"

namespace velkctl {

// Prints the output so far and ends velkctl by the signal. `state` is the state of the change:
// "eth0.dns is already changed"; empty if nothing was changed, which needs no message.
[[noreturn]] void EndInterrupted(int signal, const std::string& state, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CALL_INTERRUPTION_H_
