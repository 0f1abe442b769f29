// session.cpp - one device, from its first process to its last.
//
// Four processes: this one stays outside; its child is the first process of a PID namespace, so
// that the kernel ends everything in it when the child ends; the child's children are the hardware
// and the command.
#include "sandbox/session/session.h"

#include <cerrno>
#include <exception>
#include <filesystem>
#include <utility>

#include <sys/wait.h>
#include <unistd.h>

#include "lib/base/paths.h"
#include "lib/base/unique_fd.h"
#include "sandbox/control/control_socket.h"
#include "sandbox/device/namespaces.h"
#include "sandbox/hardware/hardware_process.h"
#include "sandbox/process/bound_child.h"
#include "sandbox/process/exit_status.h"
#include "sandbox/session/exec_command.h"
#include "sandbox/session/real_tools.h"
#include "sandbox/session/stand_ins.h"
#include "sandbox/session/terminal.h"

namespace sandbox {
namespace {

std::string Listed(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) {
        const char* separator = &name == &names.back() ? " and " : ", ";
        list.append(list.empty() ? "" : separator).append(name);
    }
    return list;
}

void Greet(const Session& session, const std::vector<std::string>& stand_ins) {
    PrintMessage(
        "a device of its own. Its settings, network, processes, /tmp, /var/tmp, /dev/shm and /run "
        "are private and end with it;");
    const std::vector<std::string>& writable = session.device.writable;
    std::string rest =
        session.real ? "so is all else that is changed" : "the rest of the machine is read-only";
    for (const std::string& folder : writable) {
        rest.append(folder == writable.front() ? ", except " : ", ").append(folder);
    }
    PrintMessage(rest + ". Leave with \"exit\".");
    PrintMessage("from other terminals it is reached by the name of " + session.name + ".");
    if (!stand_ins.empty()) {
        PrintMessage("stand-ins take the place of " + Listed(stand_ins) + ".");
    }
}

// Collects the orphans of the device until the command has ended.
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

HardwareOptions HardwareOf(const Session& session) {
    HardwareOptions options;
    options.program_folder = session.program_folder;
    if (session.real) {
        options.router_folder = session.router_folder;
        options.router_in = session.router_in;
        options.sets_address = false;
    }
    return options;
}

int RunFirstProcess(Session& session, const Terminal& terminal, velk::UniqueFd door) {
    const bool has_agent =
        session.real || std::filesystem::exists(session.device.rootfs + velk::kSnmpScript);
    const StandIns stand_ins = ChooseStandIns(session.stand_in_folder, has_agent);
    session.device.files = stand_ins.files;
    if (session.real) {
        AddRealFiles(session.real_rootfs, session.device);
    }
    EnterDevice(session.device);
    const std::string trouble = StartHardware(HardwareOf(session), std::move(door));
    if (session.real) {
        Boot();
    }
    if (!session.quiet) {
        Greet(session, stand_ins.names);
        if (!trouble.empty()) {
            PrintMessage(trouble);
        }
    }
    const pid_t command = fork();
    if (command == -1) {
        Fail("cannot start a process", errno);
    }
    if (command == 0) {
        // A shell gets the terminal to itself; a command may share it with a pipeline.
        if (session.command.empty()) {
            terminal.HandOver();
        }
        _exit(ExecCommand(session.command, session.program_folder));
    }
    return ReapUntil(command);
}

[[noreturn]] void BeFirstProcess(Session& session, const Terminal& terminal, velk::UniqueFd door) {
    int status = kSandboxFailed;
    try {
        status = RunFirstProcess(session, terminal, std::move(door));
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
        RefuseUnlessReal();
    }
    const Terminal terminal;
    LeaveSignalsToCommand();
    velk::UniqueFd door = OpenDoor(session.name);
    GiveUpPrivileges();
    const pid_t first = ForkBoundChild(ForkFirstProcess);
    if (first == 0) {
        BeFirstProcess(session, terminal, std::move(door));
    }
    (void)door.Reset();  // it is to be gone when the device's hardware is
    const int status = WaitForChild(first);
    terminal.TakeBack();
    return status;
}

}  // namespace sandbox
