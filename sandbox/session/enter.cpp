// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// enter.cpp - runs a command on a device that is already running.
#include "sandbox/session/enter.h"

#include <cerrno>
#include <csignal>
#include <exception>
#include <filesystem>

#include <sched.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"
#include "sandbox/control/orders.h"
#include "sandbox/device/capabilities.h"
#include "sandbox/process/bound_child.h"
#include "sandbox/process/exit_status.h"
#include "sandbox/process/failure.h"
#include "sandbox/process/messages.h"
#include "sandbox/session/terminal.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr int kNamespaces = CLONE_NEWNS | CLONE_NEWNET | CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWPID;

// Devices of root have no user namespace. Only children of this process enter the PID namespace.
void EnterNamespaces(const velk::UniqueFd& first_process) {
    const bool privileged = IsPrivileged();
    if (privileged) {
        DropMachineCapabilities();
    }
    if (setns(first_process.get(), kNamespaces | (privileged ? 0 : CLONE_NEWUSER)) == -1) {
        Fail("cannot enter the device", errno);
    }
}

void ChangeFolder(const fs::path& folder) {
    std::error_code error;
    fs::current_path(folder, error);
    if (error) {
        fs::current_path("/");
    }
}

// Runs a function in a child and returns its exit status. The child ends with this process.
int RunInChild(const std::function<int()>& function) {
    const pid_t child = ForkBoundChild(fork);
    if (child != 0) {
        return WaitForChild(child);
    }
    int status = kSandboxFailed;
    try {
        status = function();
    } catch (const std::exception& error) {
        PrintFailure(error);
    }
    _exit(status);
}

}  // namespace

int RunOnDevice(const std::string& device, const std::function<int()>& function) {
    std::error_code no_folder;
    const fs::path here = fs::current_path(no_folder);
    const velk::UniqueFd first_process = RequestFirstProcess(device);
    // A child enters the namespaces: once a PID namespace has ended, a process that entered it
    // cannot fork. Tools that fork at exit, such as a leak checker, would fail in this process.
    return RunInChild([&] {
        EnterNamespaces(first_process);
        ChangeFolder(here);
        return RunInChild([&function] {
            DropMachineCapabilities();
            return function();
        });
    });
}

int RunEnter(const EnterRequest& request) {
    const Terminal terminal;
    IgnoreTerminalSignals();
    const int status = RunOnDevice(request.device, [&] {
        if (request.command.words.empty()) {
            terminal.HandOver();
        }
        return ExecCommand(request.command, request.program_folder);
    });
    terminal.TakeBack();
    return status;
}

}  // namespace sandbox
