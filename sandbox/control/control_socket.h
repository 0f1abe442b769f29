// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// control_socket.h - the socket of a running device, for processes outside of it.
//
// Its name is abstract: it belongs to the network namespace, not to the file system. The kernel
// removes it with the last process that has it open.
#ifndef SANDBOX_CONTROL_CONTROL_SOCKET_H_
#define SANDBOX_CONTROL_CONTROL_SOCKET_H_

#include <string>
#include <vector>

#include "lib/base/unique_fd.h"

namespace sandbox {

// Opens the control socket of a new device. If `name` is empty, sets it to the first free number.
// Throws Failure, also if the name is taken.
velk::UniqueFd OpenControlSocket(std::string& name);

// Connects to this user's device of that name, or to the only running one if `name` is empty.
// Throws Failure, also if another user listens at that name. In that case nothing was sent.
velk::UniqueFd ConnectToDevice(const std::string& name);

// Returns the sorted names of this user's running devices, without names that other users took.
std::vector<std::string> RunningDevices();

}  // namespace sandbox

#endif  // SANDBOX_CONTROL_CONTROL_SOCKET_H_
