// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// time_options.h - reads the values of --wait and --timeout.
#ifndef VELKCTL_CLI_TIME_OPTIONS_H_
#define VELKCTL_CLI_TIME_OPTIONS_H_

#include <optional>
#include <string>
#include <string_view>

#include "velkctl/call/time_limits.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/report/report.h"

namespace velkctl {

// Returns the limits that --wait and --timeout ask for. Refuses a value that is not valid and
// returns nothing.
std::optional<TimeLimits> ReadTimeOptions(const Invocation& invocation, Report& report);

// Returns the seconds to confirm a change that the word of this option or verb asks for. Refuses a
// value that is not valid and returns nothing.
std::optional<int> ReadWindow(std::string_view name, const std::string& word, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_CLI_TIME_OPTIONS_H_
