// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// users.h - the real and the effective user of the host.
#ifndef VELK_BASE_USERS_H_
#define VELK_BASE_USERS_H_

#include <unistd.h>

namespace velk {

// Returns true in a host with different real and effective users. Shells give up the effective
// user, so the real one must be able to read the files that the library makes for them.
inline bool HasTwoUsers() {
    return getuid() != geteuid();
}

}  // namespace velk

#endif  // VELK_BASE_USERS_H_
