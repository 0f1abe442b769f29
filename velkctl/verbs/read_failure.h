// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// read_failure.h - the reason why a setting cannot be read, in a few words for a table.
#ifndef VELKCTL_VERBS_READ_FAILURE_H_
#define VELKCTL_VERBS_READ_FAILURE_H_

#include <string>

#include "velkctl/call/answer.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

struct ReadFailure {
    std::string of_one;      // "needs the cable out"
    std::string of_several;  // "need the cable out", after "8 settings"
};

// Returns the reason why the setting could not be read.
ReadFailure ReadFailureOf(const Setting& setting, const Answer& answer);

// Returns the reason why the setting was not read after another one got no answer.
ReadFailure SkippedAsDaemonIsSilent();

}  // namespace velkctl

#endif  // VELKCTL_VERBS_READ_FAILURE_H_
