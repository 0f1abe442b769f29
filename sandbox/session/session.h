// session.h - one device, from its first process to its last.
#ifndef SANDBOX_SESSION_SESSION_H_
#define SANDBOX_SESSION_SESSION_H_

#include <string>
#include <vector>

#include "sandbox/device/device.h"

namespace sandbox {

struct Session {
    DeviceOptions device;
    std::vector<std::string> command;  // empty: the user's shell
    std::string program_folder;        // where velkctl is found
    std::string stand_in_folder;       // scripts in place of tools that do not work on a device
    std::string name;                  // that other terminals reach it by; empty: a number
    bool quiet = false;
    bool real = false;          // the system's own tools, and a router around the device
    std::string real_rootfs;    // more of such a device's files
    std::string router_folder;  // the configuration of its router
    bool router_in = true;
};

// Runs the command on a device and returns the exit status to end with. Every process of the device
// ends with the command, and with this process, whatever way that ends.
int RunSession(Session session);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_SESSION_H_
