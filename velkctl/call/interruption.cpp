// interruption.cpp - ends velkctl by a signal, with the last things said.
#include "velkctl/call/interruption.h"

#include "velkctl/call/stop_signals.h"
#include "velkctl/text/escaping.h"

namespace velkctl {

void EndInterrupted(int signal, const std::string& state, Report& report) {
    if (!state.empty()) {
        report.Complain("interrupted; " + state);
    } else if (report.is_json()) {
        report.Complain("interrupted");
    }
    report.Finish(StatusAfter(signal));
    (void)FinishPrinting();
    EndBy(signal);
}

}  // namespace velkctl
