// unix_socket.h - whether a program listens at a socket of the file system.
#ifndef VELKCTL_FILES_UNIX_SOCKET_H_
#define VELKCTL_FILES_UNIX_SOCKET_H_

#include <string>

namespace velkctl {

// Says whether a process has the socket at this path bound. It is told nothing of being asked.
bool IsBound(const std::string& path);

}  // namespace velkctl

#endif  // VELKCTL_FILES_UNIX_SOCKET_H_
