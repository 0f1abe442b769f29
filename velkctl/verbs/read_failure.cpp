// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// read_failure.cpp - the reason why a setting cannot be read, in a few words for a table.
#include "velkctl/verbs/read_failure.h"

#include <optional>
#include <string_view>

#include "lib/base/paths.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

constexpr std::string_view kTheFile = "the file ";

// Returns "/var/cron/tabs/root is missing", "/etc/network/interfaces:12: the line has no value",
// "the wireless daemon does not run".
std::string CauseText(const Finding& cause) {
    if (cause.file == velk::kRequestSocket) {
        return cause.subject + " " + cause.effect;
    }
    const std::string_view description = cause.description;
    if (description.starts_with(kTheFile)) {
        return cause.file + " " + std::string(description.substr(kTheFile.size()));
    }
    const std::string location = LocationOf(cause);
    return location + (location.empty() ? "" : ": ") + cause.description;
}

ReadFailure FailedReading(const std::string& reason) {
    return {reason, "cannot be read: " + reason};
}

}  // namespace

ReadFailure ReadFailureOf(const Setting& setting, const Answer& answer) {
    switch (StatusWithCause(setting, answer)) {
        case ExitStatus::kWiredLinked:
            return {"needs the cable out", "need the cable out"};
        case ExitStatus::kNoAdapter:
            return {"needs a wireless adapter", "need a wireless adapter"};
        case ExitStatus::kTimedOut:
            return FailedReading(FailureReason(answer));
        default:
            break;
    }
    if (const std::optional<Finding> cause = LikelyCauseOfGet(setting, answer)) {
        return FailedReading(Printable(CauseText(*cause)));
    }
    return {"unreadable: run 'velkctl doctor'", "cannot be read: run 'velkctl doctor'"};
}

ReadFailure SkippedAsDaemonIsSilent() {
    return {"skipped: the wireless daemon does not answer",
            "were skipped: the wireless daemon does not answer"};
}

}  // namespace velkctl
