// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// time_options.cpp - reads the values of --wait and --timeout.
#include "velkctl/cli/time_options.h"

#include <string>

#include "velkctl/journal/journal_entry.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/numbers.h"

namespace velkctl {
namespace {

constexpr int kLongestTime = 24 * 60 * 60;

// Sets `seconds` to the value of an option, if it was given. Refuses a value that is not valid and
// returns false.
bool ReadSeconds(const char* option, const std::optional<std::string>& word,
                 const Invocation& invocation, Report& report, int& seconds) {
    if (!word) {
        return true;
    }
    if (const std::optional<int> number = ParseNumber(*word, 1, kLongestTime)) {
        seconds = *number;
        return true;
    }
    report.Refuse(std::string(option) + ": " + invocation.Shown(*word) +
                  " is not a time; give whole seconds, 1 to 86400");
    return false;
}

}  // namespace

std::optional<int> ReadWindow(std::string_view name, const std::string& word, Report& report) {
    const std::optional<int> seconds = ParseNumber(word, kShortestWindow, kLongestWindow);
    if (!seconds) {
        report.Refuse(std::string(name) + ": " + Quoted(word) +
                      " is not a time; give whole seconds, " + std::to_string(kShortestWindow) +
                      " to " + std::to_string(kLongestWindow));
    }
    return seconds;
}

std::optional<TimeLimits> ReadTimeOptions(const Invocation& invocation, Report& report) {
    TimeLimits limits;
    const bool has_wait =
        ReadSeconds("--wait", invocation.wait, invocation, report, limits.wait_seconds);
    const bool has_timeout =
        ReadSeconds("--timeout", invocation.timeout, invocation, report, limits.timeout_seconds);
    return has_wait && has_timeout ? std::optional(limits) : std::nullopt;
}

}  // namespace velkctl
