// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// time_entry.h - the crontab's lines that run the time client, and the server in them.
#ifndef VELKCTL_SETTINGS_TIME_ENTRY_H_
#define VELKCTL_SETTINGS_TIME_ENTRY_H_

#include <string>
#include <string_view>

namespace velkctl {

// The library takes every line that holds this text for an entry.
inline constexpr std::string_view kTimeClient = "ntpdate";

// True if the server's text also occurs before the server, as "ntp" does in ".../ntpdate -u ntp".
// A set replaces the first occurrence, and with it a part of the command that cron runs as root.
bool IsServerFoundTooEarly(const std::string& line);

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_TIME_ENTRY_H_
