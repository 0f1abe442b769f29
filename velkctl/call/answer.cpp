// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// answer.cpp - the answer to a command, also of one that --timeout ended, and its messages.
#include "velkctl/call/answer.h"

#include <string_view>
#include <utility>

#include "velkctl/report/result_codes.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

constexpr std::string_view kTimedOutRemedy = "run it again with a longer --timeout";

}  // namespace

ExitStatus StatusOf(const Answer& answer) {
    if (answer.interrupted) {
        return ExitStatus::kFailed;
    }
    return answer.timed_out ? ExitStatus::kTimedOut : FindResultCode(answer.result).status;
}

std::string FailureReason(const Answer& answer) {
    if (answer.interrupted) {
        return "a signal has ended it";
    }
    if (!answer.timed_out) {
        return std::string(FindResultCode(answer.result).description);
    }
    return answer.timeout_seconds == 0
               ? "no answer in time"
               : "no answer after " + std::to_string(answer.timeout_seconds) + " s";
}

Problem ProblemOf(std::string message, std::string setting, const Answer& answer) {
    Problem problem{std::move(message), std::move(setting), answer.known_result()};
    // The description of LIB_VELK_FAILURE adds nothing to the message.
    if (answer.known_result() != LIB_VELK_FAILURE) {
        problem.detail = FailureReason(answer);
    }
    if (!answer.awaited.empty()) {
        problem.detail.append("; waited for ").append(Printable(answer.awaited));
    }
    if (!answer.note.empty()) {
        problem.detail.append(problem.detail.empty() ? "" : "; ").append(answer.note);
    }
    if (answer.interrupted) {
        return problem;
    }
    problem.remedy = answer.timed_out ? kTimedOutRemedy : FindResultCode(answer.result).remedy;
    constexpr std::string_view kPlaceholder = "NAME";
    const size_t place = problem.remedy.find(kPlaceholder);
    if (place != std::string::npos && !problem.setting.empty()) {
        problem.remedy.replace(place, kPlaceholder.size(), problem.setting);
    }
    return problem;
}

}  // namespace velkctl
