// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// session.h - makes a device and runs a command on it.
#ifndef SANDBOX_SESSION_SESSION_H_
#define SANDBOX_SESSION_SESSION_H_

#include <cstdint>
#include <optional>
#include <string>

#include "sandbox/device/device.h"
#include "sandbox/session/exec_command.h"
#include "sandbox/session/web_page.h"

namespace sandbox {

struct Session {
    DeviceOptions device;
    Command command;
    std::string program_folder;     // holds velkctl
    std::string stand_in_folder;    // scripts that replace tools which do not work on a device
    std::string completion_folder;  // completions for bash
    std::string name;               // the name of the device; if empty, the first free number
    bool quiet = false;
    bool real = false;          // use the system's own tools and simulate a router
    std::string real_rootfs;    // more files of such a device
    std::string router_folder;  // configuration of its router
    bool router_in = true;
    std::string image_file;              // a capture or a tar archive with the device's files
    std::string hosts_file;              // the /etc/hosts of such a device
    std::optional<uint16_t> web_port{};  // serve the settings page; 0: on a free port
    WebPage web_page{};
};

// Runs the command on a new device and returns its exit status. When the command or this process
// ends, even by SIGKILL, all processes of the device end.
int RunSession(Session session);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_SESSION_H_
