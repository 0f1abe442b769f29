// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// enter.h - runs a command on a device that is already running.
#ifndef SANDBOX_SESSION_ENTER_H_
#define SANDBOX_SESSION_ENTER_H_

#include <functional>
#include <string>

#include "sandbox/session/exec_command.h"

namespace sandbox {

struct EnterRequest {
    std::string device;  // name; empty: the only running device
    Command command;
    std::string program_folder;
};

// Runs the command on the device and returns its exit status. The command ends with the device, and
// with this process. Throws Failure.
int RunEnter(const EnterRequest& request);

// Runs a function in a process on the device and returns its result, an exit status.
int RunOnDevice(const std::string& device, const std::function<int()>& function);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_ENTER_H_
