// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// duration.h - durations in words.
#ifndef VELKCTL_TEXT_DURATION_H_
#define VELKCTL_TEXT_DURATION_H_

#include <string>

namespace velkctl {

// Returns "5 seconds", "3 minutes", "2 days".
std::string FormatDuration(long long seconds);

}  // namespace velkctl

#endif  // VELKCTL_TEXT_DURATION_H_
