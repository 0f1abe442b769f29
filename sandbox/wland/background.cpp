// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// background.cpp - moves the daemon to the background.
#include "sandbox/wland/background.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "sandbox/process/failure.h"
#include "sandbox/wland/log.h"

namespace wland {
namespace {

constexpr mode_t kPidFileMode = 0644;

// Ends the parent once the child reports success by one byte. A child that fails prints the reason.
// Destructors must not run: the sockets now belong to the child.
[[noreturn]] void EndCaller(const velk::UniqueFd& report, pid_t child) {
    char byte;
    if (read(report.get(), &byte, 1) == 1) {
        _exit(0);
    }
    (void)waitpid(child, nullptr, 0);
    _exit(1);
}

}  // namespace

velk::UniqueFd Detach() {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) == -1) {
        sandbox::Fail("cannot make a pipe", errno);
    }
    const velk::UniqueFd report(ends[0]);
    velk::UniqueFd caller(ends[1]);
    const pid_t child = fork();
    if (child == -1) {
        sandbox::Fail("cannot start a process", errno);
    }
    if (child != 0) {
        (void)caller.Reset();
        EndCaller(report, child);
    }
    (void)setsid();
    return caller;
}

void FinishDetaching(velk::UniqueFd caller) {
    const velk::UniqueFd null_device(open("/dev/null", O_RDWR | O_CLOEXEC));
    if (null_device.get() == -1 || chdir("/") == -1) {
        sandbox::Fail("cannot leave the terminal", errno);
    }
    LogToSyslog();
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        (void)dup2(null_device.get(), standard);
    }
    (void)!write(caller.get(), "", 1);  // fails if the caller has ended
}

PidFile::PidFile(const std::string& path) {
    if (path.empty()) {
        return;
    }
    const velk::UniqueFd file(
        open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kPidFileMode));
    const std::string text = std::to_string(getpid()) + "\n";
    const auto size = static_cast<ssize_t>(text.size());
    if (file.get() == -1 || write(file.get(), text.data(), text.size()) != size) {
        sandbox::Fail("cannot make " + path, errno);
    }
    path_ = std::filesystem::absolute(path);
}

PidFile::~PidFile() {
    if (!path_.empty()) {
        (void)unlink(path_.c_str());
    }
}

}  // namespace wland
