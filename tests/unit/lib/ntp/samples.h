// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// samples.h - a time entry of the crontab, and the result of its run.
#ifndef TESTS_UNIT_LIB_NTP_SAMPLES_H_
#define TESTS_UNIT_LIB_NTP_SAMPLES_H_

namespace testkit {

inline constexpr char kEntry[] =
    "0 * * * * /usr/bin/ntpdate -u 192.168.1.10 > /var/libvelk/ntp.log\n";
inline constexpr char kReached[] =
    "21 Nov 10:00:00 ntpdate[123]: adjust time server 192.168.1.10 offset 0.000123 sec\n";

}  // namespace testkit

#endif  // TESTS_UNIT_LIB_NTP_SAMPLES_H_
