// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// time_server.h - the SNTP server of the router.
#ifndef SANDBOX_HARDWARE_TIME_SERVER_H_
#define SANDBOX_HARDWARE_TIME_SERVER_H_

namespace sandbox {

// Answers SNTP queries (RFC 4330) with the machine's time, at every address of this network
// namespace. Does not return, but throws Failure. An installed time server is not used: it would
// set the clock, or replace the machine's own server.
[[noreturn]] void ServeTime();

}  // namespace sandbox

#endif  // SANDBOX_HARDWARE_TIME_SERVER_H_
