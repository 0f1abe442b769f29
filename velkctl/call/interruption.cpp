// interruption.cpp - ends velkctl by a signal, after its last messages.
#include "velkctl/call/interruption.h"

#include "velkctl/call/stop_signals.h"
#include "velkctl/report/output.h"

namespace velkctl {

void EndInterrupted(int signal, const std::string& state, Report& report) {
    if (!state.empty()) {
        report.Complain("interrupted; " + state);
    } else if (report.is_json()) {
        report.Complain("interrupted");
    }
    report.Finish(StatusOfSignal(signal));
    (void)FinishPrinting();
    EndBySignal(signal);
}

}  // namespace velkctl
