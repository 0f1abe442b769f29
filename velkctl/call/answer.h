// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// answer.h - the answer to a command, also of one that --timeout ended, and its messages.
#ifndef VELKCTL_CALL_ANSWER_H_
#define VELKCTL_CALL_ANSWER_H_

#include <optional>
#include <string>
#include <vector>

#include "velk/request.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

struct Answer {
    int result;
    Data data{};
    bool timed_out = false;                  // --timeout ended the command; `result` has no meaning
    bool interrupted = false;                // a signal ended the command; `result` likewise
    int timeout_seconds = 0;                 // the limit, if timed out; 0: unknown
    std::string awaited{};                   // "ifup eth0", if timed out; empty: unknown
    std::string note{};                      // more about a failure
    std::vector<std::string> tool_output{};  // the output of the tools that the library ran

    bool ok() const { return known_result() == LIB_VELK_SUCCESS; }
    // True if another program is changing settings: the command has done nothing.
    bool is_locked() const { return known_result() == LIB_VELK_LOCKED; }
    std::optional<int> known_result() const {
        return timed_out || interrupted ? std::nullopt : std::optional(result);
    }
};

// Returns the exit status of velkctl after this answer.
ExitStatus StatusOf(const Answer& answer);

// Returns the reason of a failure: "refused while the cable is in the wired port".
std::string FailureReason(const Answer& answer);

// Returns the problem to report for a failed answer. `message` is its first line: "eth0.dns: could
// not be read". `setting` may be empty.
Problem ProblemOf(std::string message, std::string setting, const Answer& answer);

}  // namespace velkctl

#endif  // VELKCTL_CALL_ANSWER_H_
