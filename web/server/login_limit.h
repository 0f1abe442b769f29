// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// login_limit.h - slows the guessing of passwords down.
#ifndef WEB_SERVER_LOGIN_LIMIT_H_
#define WEB_SERVER_LOGIN_LIMIT_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velkweb {

// The failed logins from one address, or from all of them.
struct Failures {
    std::string address;  // empty: all addresses
    int count = 0;
    int64_t last = 0;  // seconds since the start of the device
};

// Returns the seconds to wait after so many failures in sequence. An address may try five times,
// then it waits 2, 4, 8 ... 900 seconds. All addresses together may try 30 times, then they wait
// 1, 2, 4 ... 15 seconds: a user who knows the password is kept out no longer.
int64_t WaitAfter(int count, bool is_all);

// Returns the seconds that are left to wait.
int64_t WaitLeft(const Failures& failures, int64_t now);

// The text of the file, and its rows. Damaged lines are left out.
std::string FailuresText(const std::vector<Failures>& rows);
std::vector<Failures> ParseFailures(std::string_view text);

// Returns the part of an address that counts as one: of an IPv6 address, its network, since a
// host may take any address in it. busybox httpd puts IPv6 addresses in brackets.
std::string AddressGroup(const std::string& address);

// Adds a try from the address to the rows, or returns the seconds to wait before it.
int64_t CountTry(std::vector<Failures>& rows, const std::string& address, int64_t now);

// Counts a login that is about to be tried as a failure, so that several at once count, too.
// Returns 0, or the seconds to wait before it may be tried.
int64_t BeginLogin(const std::string& address);

// Forgets the failures of an address after a login with the right password.
void ForgetFailures(const std::string& address);

}  // namespace velkweb

#endif  // WEB_SERVER_LOGIN_LIMIT_H_
