// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// exit_status.h - the exit statuses of velkctl and their meanings.
#ifndef VELKCTL_REPORT_EXIT_STATUS_H_
#define VELKCTL_REPORT_EXIT_STATUS_H_

#include <array>
#include <string_view>

#include "lib/base/join_text.h"
#include "lib/base/paths.h"

namespace velkctl {

// The numbers are the statuses the process ends with: scripts depend on them.
enum class ExitStatus : int {
    kDone = 0,
    kFailed = 1,
    kInvalid = 2,
    kLocked = 3,
    kNoAdapter = 4,
    kWiredLinked = 5,
    kNotHeld = 6,
    kTimedOut = 7,
    kWaits = 8,
    kPartlyBack = 9,
};

// The remedies of the results that have an exit status of their own.
inline constexpr std::string_view kLockedRemedy = "try again, or let --wait=SECONDS try again";
inline constexpr auto kNoAdapterRemedy =
    velk::JoinText("attach an adapter of ", velk::kSupportList);
inline constexpr std::string_view kWiredLinkedRemedy =
    "pull the cable; wireless works only without it";

struct ExitMeaning {
    ExitStatus status;
    std::string_view description;
    std::string_view remedy;
};

inline constexpr std::array<ExitMeaning, 10> kExitMeanings{{
    {ExitStatus::kDone, "done", "none needed"},
    {ExitStatus::kFailed, "failed, or a problem or difference was found",
     "read the message; 'velkctl doctor' looks for the cause"},
    {ExitStatus::kInvalid, "wrong usage, or a name or value that is not valid",
     "read the message, 'velkctl VERB --help' and 'velkctl describe NAME'"},
    {ExitStatus::kLocked, "another program is changing settings", kLockedRemedy},
    {ExitStatus::kNoAdapter, "no supported wireless adapter is attached", kNoAdapterRemedy},
    {ExitStatus::kWiredLinked, "refused while the cable is in the wired port", kWiredLinkedRemedy},
    {ExitStatus::kNotHeld, "done, but the device lacks the value or address",
     "read the likely cause in the message; 'velkctl doctor' looks for more"},
    {ExitStatus::kTimedOut, "no answer before the timeout",
     "give a longer --timeout; 'velkctl doctor' checks if the daemon answers"},
    {ExitStatus::kWaits, "another change waits for its confirmation",
     "'velkctl confirm' keeps it, 'velkctl revert' puts it back"},
    {ExitStatus::kPartlyBack, "a change was taken back only in part",
     "read the message; it names each setting and file that is left"},
}};

}  // namespace velkctl

#endif  // VELKCTL_REPORT_EXIT_STATUS_H_
