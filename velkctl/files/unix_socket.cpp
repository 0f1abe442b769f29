// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// unix_socket.cpp - whether a program listens at a socket of the file system.
#include "velkctl/files/unix_socket.h"

#include <algorithm>
#include <cerrno>

#include <sys/socket.h>
#include <sys/un.h>

#include "lib/base/unique_fd.h"
#include "velkctl/files/text_file.h"

namespace velkctl {
namespace {

// True if the kernel's table of sockets has the path, for a user who may not connect. The file
// there may be another one since.
bool IsListed(const std::string& path) {
    const TextFile sockets = ReadTextFile("/proc/net/unix");
    const std::string end = " " + path + "\n";
    return std::ranges::any_of(sockets.lines,
                               [&](const std::string& line) { return line.ends_with(end); });
}

}  // namespace

bool IsBound(const std::string& path) {
    const velk::UniqueFd probe(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    if (connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0) {
        return true;
    }
    if (errno == EACCES) {
        return IsListed(path);
    }
    // Any other error means that a process has bound the path, with another socket type or a
    // connected one.
    return errno != ECONNREFUSED && errno != ENOENT;
}

}  // namespace velkctl
