// interruption.h - ends velkctl by a signal, with the last things said.
#ifndef VELKCTL_CALL_INTERRUPTION_H_
#define VELKCTL_CALL_INTERRUPTION_H_

#include <string>

#include "velkctl/report/report.h"

namespace velkctl {

// Ends velkctl by the signal, with the output so far. `state` is how far it came: "eth0.dns is
// changed already"; empty when nothing was changed, which a person need not be told.
[[noreturn]] void EndInterrupted(int signal, const std::string& state, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CALL_INTERRUPTION_H_
