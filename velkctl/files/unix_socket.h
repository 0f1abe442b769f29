// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// unix_socket.h - whether a program listens at a socket of the file system.
#ifndef VELKCTL_FILES_UNIX_SOCKET_H_
#define VELKCTL_FILES_UNIX_SOCKET_H_

#include <string>

namespace velkctl {

// True if a process has bound the socket at this path. The process does not notice.
bool IsBound(const std::string& path);

}  // namespace velkctl

#endif  // VELKCTL_FILES_UNIX_SOCKET_H_
