// control_socket.h - how the machine's other processes reach a running device.
//
// A door is a socket whose name lives in the machine's network, not in its file system: it goes
// with the device, whatever way that ends.
#ifndef SANDBOX_CONTROL_CONTROL_SOCKET_H_
#define SANDBOX_CONTROL_CONTROL_SOCKET_H_

#include <string>
#include <vector>

#include "lib/base/unique_fd.h"

namespace sandbox {

// Opens the door of a new device. Without a name it gets the first free number, and `name` is set
// to that. Throws Failure, also when the name is taken, by a device of this user or by another
// user.
velk::UniqueFd OpenDoor(std::string& name);

// A connection to this user's device of that name. Without a name: to the only one that is running.
// Throws Failure, also when another user listens there: then nothing has been sent.
velk::UniqueFd KnockAtDoor(const std::string& name);

// The names of this user's running devices, in order. Those that others have taken are left out.
std::vector<std::string> RunningDevices();

}  // namespace sandbox

#endif  // SANDBOX_CONTROL_CONTROL_SOCKET_H_
