// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// session.cpp - makes a device and runs a command on it.
//
// There are four processes. This one stays outside. Its child is the first process of a PID
// namespace: when the child ends, the kernel ends all other processes in it. The children of the
// child are the hardware process and the command.
#include "sandbox/session/session.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <filesystem>
#include <iterator>
#include <utility>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "lib/base/unique_fd.h"
#include "sandbox/control/control_socket.h"
#include "sandbox/device/device_image.h"
#include "sandbox/device/namespaces.h"
#include "sandbox/device/sample_files.h"
#include "sandbox/hardware/hardware.h"
#include "sandbox/hardware/hardware_process.h"
#include "sandbox/process/bound_child.h"
#include "sandbox/process/exit_status.h"
#include "sandbox/process/failure.h"
#include "sandbox/process/messages.h"
#include "sandbox/process/run_paths.h"
#include "sandbox/session/captured_device.h"
#include "sandbox/session/real_tools.h"
#include "sandbox/session/shell.h"
#include "sandbox/session/stand_ins.h"
#include "sandbox/session/terminal.h"
#include "sandbox/session/web_page.h"

namespace sandbox {
namespace {

// A command gets no greeting: its user does not type on the device.
void PrintGreeting(const Session& session) {
    if (session.command.words.empty()) {
        PrintMessage("simulated device " + session.name + "; \"exit\" ends it");
        PrintDetail("try: velkctl list, velkctl doctor, velk-sandbox cable out");
    }
}

bool HasAgent(const Session& session, const DeviceImage& image) {
    const std::string& rootfs = session.device.rootfs;
    const bool is_in_folder =
        !rootfs.empty() && std::filesystem::exists(rootfs + velk::kSnmpScript);
    return session.real || is_in_folder ||
           std::ranges::find(image.files, velk::kSnmpScript, &SampleFile::path) !=
               image.files.end();
}

// Without the name of the machine in it, sudo(8) waits for a name server.
void AddHosts(Session& session) {
    if (!session.image_file.empty()) {
        session.device.files.push_back(MakeSample("/etc/hosts", ReadText(session.hosts_file)));
    }
}

void AddFiles(const DeviceImage& image, Session& session) {
    AddCapturedFiles(image, ChooseStandIns(session.stand_in_folder, HasAgent(session, image)),
                     session.device);
    AddHosts(session);
    std::vector<SampleFile>& files = session.device.files;
    std::ranges::move(ShellFiles(session.completion_folder), std::back_inserter(files));
    files.push_back(MakeSample(kNameFile, session.name));
}

// Waits for the command. Reaps orphans of the device, which the kernel passes to its first process.
int ReapUntil(pid_t command) {
    for (;;) {
        int status;
        const pid_t ended = waitpid(-1, &status, 0);
        if (ended == command) {
            return ExitStatusOf(status);
        }
        if (ended == -1 && errno != EINTR) {
            Fail("cannot wait for the command", errno);
        }
    }
}

HardwareOptions HardwareOf(const Session& session, const DeviceImage& image) {
    HardwareOptions options;
    options.state = image.state;
    options.has_wireless_record = !image.wireless_record.empty();
    options.program_folder = session.program_folder;
    if (session.real) {
        options.router_folder = session.router_folder;
        options.router_in = session.router_in;
        options.sets_address = false;
    }
    return options;
}

// Only a shell gets the terminal. A command may be part of a pipeline that shares it.
int RunCommand(const Session& session, const Terminal& terminal) {
    const pid_t command = fork();
    if (command == -1) {
        Fail("cannot start a process", errno);
    }
    if (command == 0) {
        if (session.command.words.empty()) {
            terminal.HandOver();
        }
        _exit(ExecCommand(session.command, session.program_folder));
    }
    return ReapUntil(command);
}

int RunDevice(Session& session, const DeviceImage& image, const Terminal& terminal,
              velk::UniqueFd control_socket) {
    AddFiles(image, session);
    if (session.real) {
        AddRealToolFiles(session.real_rootfs, session.device);
    }
    EnterDevice(session.device);
    const std::string problem =
        StartHardware(HardwareOf(session, image), std::move(control_socket));
    if (session.real) {
        RunBootScript();
    }
    if (!session.quiet) {
        PrintGreeting(session);
        if (!problem.empty()) {
            PrintMessage(problem);
        }
    }
    if (session.web_port) {
        StartWebPage(std::move(session.web_page));
    }
    return RunCommand(session, terminal);
}

[[noreturn]] void RunFirstProcess(Session& session, const DeviceImage& image,
                                  const Terminal& terminal, velk::UniqueFd control_socket) {
    int status = kSandboxFailed;
    try {
        status = RunDevice(session, image, terminal, std::move(control_socket));
    } catch (const std::exception& error) {
        PrintFailure(error);
    }
    _exit(status);
}

}  // namespace

int RunSession(Session session) {
    session.device.own_processes = true;
    session.device.copy_machine = session.real;
    if (session.real) {
        CheckRealTools();
    }
    const DeviceImage image =
        session.image_file.empty() ? DeviceImage() : ReadDeviceImage(session.image_file);
    const Terminal terminal;
    IgnoreTerminalSignals();
    if (session.web_port) {
        OpenWebPort(session.web_page, *session.web_port);
    }
    velk::UniqueFd control_socket = OpenControlSocket(session.name);
    GiveUpPrivileges();
    const pid_t first = ForkBoundChild(ForkFirstProcess);
    if (first == 0) {
        RunFirstProcess(session, image, terminal, std::move(control_socket));
    }
    (void)control_socket.Reset();  // only the hardware process keeps it open
    (void)session.web_page.listener.Reset();
    const int status = WaitForChild(first);
    terminal.TakeBack();
    return status;
}

}  // namespace sandbox
