// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ownership.h - distinguishes this user's devices from those of other users.
//
// Any user of the machine can listen at the name of a device.
#ifndef SANDBOX_CONTROL_OWNERSHIP_H_
#define SANDBOX_CONTROL_OWNERSHIP_H_

#include <string>

#include <sys/types.h>

#include "lib/base/unique_fd.h"

namespace sandbox {

// Returns the user at the other end of a connection. The kernel recorded it at connect(2). Throws
// Failure.
uid_t PeerUser(const velk::UniqueFd& connection);

// True if the user at the other end is the user of this process.
bool IsOwnPeer(const velk::UniqueFd& connection);

// Returns a text for messages, such as "user nobody (65534)".
std::string DescribeUser(uid_t user);

// Throws Failure unless this user may enter the process, given as a pidfd: it runs as this user,
// and no other user has rights over its namespaces.
void RefuseForeignProcess(const velk::UniqueFd& process);

}  // namespace sandbox

#endif  // SANDBOX_CONTROL_OWNERSHIP_H_
