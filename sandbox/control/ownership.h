// ownership.h - tells this user's own devices from those of others.
//
// Any user of the machine may take the name of a device and wait there for whoever asks for it.
#ifndef SANDBOX_CONTROL_OWNERSHIP_H_
#define SANDBOX_CONTROL_OWNERSHIP_H_

#include <string>

#include <sys/types.h>

#include "lib/base/unique_fd.h"

namespace sandbox {

// The user at the other end of a connection, as the kernel noted it when the connection was made.
// The one who connects learns who listens. Throws Failure.
uid_t PeerUser(const velk::UniqueFd& connection);

// True if that is the user of this process.
bool IsOwnPeer(const velk::UniqueFd& connection);

// For a message: "user nobody (65534)".
std::string DescribeUser(uid_t user);

// Throws Failure unless the process, given as a pidfd, is one that this user may enter: it runs as
// this user, and no other user has rights over its namespaces.
void RefuseForeignProcess(const velk::UniqueFd& process);

}  // namespace sandbox

#endif  // SANDBOX_CONTROL_OWNERSHIP_H_
