// session.cpp - one device, from its first process to its last.
//
// Four processes: this one stays outside; its child is the first process of a PID namespace, so
// that the kernel ends everything in it when the child ends; the child's children are the hardware
// and the command.
#include "sandbox/session.h"

#include <cerrno>
#include <csignal>
#include <exception>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "frame/unique_fd.h"
#include "sandbox/command.h"
#include "sandbox/hardware_process.h"
#include "sandbox/namespaces.h"
#include "sandbox/real_level.h"
#include "sandbox/stand_ins.h"

namespace sandbox {
namespace {

// The terminal this program was started at, if it has it to itself.
class Terminal {
  public:
    Terminal() : fd_(open("/dev/tty", O_RDWR | O_CLOEXEC)), group_(getpgrp()) {
        is_ours_ = tcgetpgrp(fd_.get()) == group_ && isatty(STDIN_FILENO) == 1;
    }

    // Makes the calling process the leader of a foreground group. The group it comes from has no
    // number on the device, and not every shell copes with that.
    void HandOver() const {
        if (is_ours_) {
            (void)setpgid(0, 0);
            SetForeground(getpid());
        }
    }

    // A shell that was killed does not give the terminal back.
    void TakeBack() const {
        if (is_ours_) {
            SetForeground(group_);
        }
    }

  private:
    void SetForeground(pid_t group) const {
        (void)signal(SIGTTOU, SIG_IGN);
        (void)tcsetpgrp(fd_.get(), group);
        (void)signal(SIGTTOU, SIG_DFL);
    }

    velk::UniqueFd fd_;
    pid_t group_;
    bool is_ours_;
};

// The keys that interrupt and quit reach every process at the terminal and are meant for the
// command. A caller that ignores SIGCHLD would have us learn no exit status.
void LeaveSignalsToCommand() {
    (void)signal(SIGINT, SIG_IGN);
    (void)signal(SIGQUIT, SIG_IGN);
    (void)signal(SIGCHLD, SIG_DFL);
}

int WaitFor(pid_t child) {
    int status;
    while (waitpid(child, &status, 0) == -1) {
        if (errno != EINTR) {
            Fail("cannot wait for the device", errno);
        }
    }
    return ExitStatusOf(status);
}

// Ends with the process outside. That may have died before the kernel was asked for this; its end
// of the pipe is closed then.
void EndWithOutside(const velk::UniqueFd& outside) {
    (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
    pollfd end = {outside.get(), POLLIN, 0};
    if (poll(&end, 1, 0) != 0) {
        _exit(kSandboxFailed);
    }
}

std::string Listed(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) {
        const char* separator = &name == &names.back() ? " and " : ", ";
        list.append(list.empty() ? "" : separator).append(name);
    }
    return list;
}

void Greet(const DeviceOptions& device, const std::vector<std::string>& stand_ins) {
    Say("a device of its own. Its settings, network, processes, /tmp, /var/tmp, /dev/shm and /run "
        "are private and end with it;");
    std::string rest = "the rest of the machine is read-only";
    for (const std::string& folder : device.writable) {
        rest.append(folder == device.writable.front() ? ", except " : ", ").append(folder);
    }
    Say(rest + ". Leave with \"exit\".");
    if (!stand_ins.empty()) {
        Say("stand-ins take the place of " + Listed(stand_ins) + ".");
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

int RunFirstProcess(Session& session, const Terminal& terminal) {
    const StandIns stand_ins = ChooseStandIns(session.stand_in_folder);
    session.device.files = stand_ins.files;
    if (session.real) {
        AddRealFiles(session.real_rootfs, session.device);
    }
    EnterDevice(session.device);
    const std::string trouble = StartHardware(HardwareOf(session));
    if (session.real) {
        Boot();
    }
    if (!session.quiet) {
        Greet(session.device, stand_ins.names);
        if (!trouble.empty()) {
            Say(trouble);
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
        _exit(BecomeCommand(session.command, session.program_folder));
    }
    return ReapUntil(command);
}

[[noreturn]] void BeFirstProcess(Session& session, const Terminal& terminal) {
    int status = kSandboxFailed;
    try {
        status = RunFirstProcess(session, terminal);
    } catch (const std::exception& error) {
        Say(error.what());
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
    GiveUpPrivileges();
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) == -1) {
        Fail("cannot make a pipe", errno);
    }
    const velk::UniqueFd read_end(ends[0]);
    velk::UniqueFd write_end(ends[1]);
    const pid_t first = ForkFirstProcess();
    if (first == 0) {
        (void)write_end.Reset();
        EndWithOutside(read_end);
        BeFirstProcess(session, terminal);
    }
    const int status = WaitFor(first);
    terminal.TakeBack();
    return status;
}

}  // namespace sandbox
