// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// kernel_features.cpp - asks an emulated kernel for its features.
#include "support/kernel_features.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>

#include <sched.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/device_test.h"

namespace testkit {
namespace {

bool IgnoresChildren() {
    struct sigaction before {};
    struct sigaction ignore {};
    ignore.sa_flags = SA_NOCLDWAIT;
    (void)sigaction(SIGCHLD, &ignore, &before);
    const pid_t child = fork();
    if (child == 0) {
        _exit(0);
    }
    const bool is_unseen = waitpid(child, nullptr, 0) == -1 && errno == ECHILD;
    (void)sigaction(SIGCHLD, &before, nullptr);
    return is_unseen;
}

bool Adopts() {
    int adopts = 0;
    return prctl(PR_GET_CHILD_SUBREAPER, &adopts) == 0;
}

// The emulation shows a program its own command line, and the machine's kernel those of others.
bool ShowsCommandLines() {
    const pid_t child = fork();
    if (child == 0) {
        (void)pause();
        _exit(0);
    }
    const std::string of_child = ReadFile("/proc/" + std::to_string(child) + "/cmdline");
    (void)kill(child, SIGKILL);
    (void)waitpid(child, nullptr, 0);
    return of_child == ReadFile("/proc/self/cmdline");
}

// In a child of its own, because its later children would be in the new namespace, too.
[[noreturn]] void EndFirstProcess() {
    constexpr int kTries = 20;
    constexpr useconds_t kPause = 100'000;
    const pid_t first = unshare(CLONE_NEWPID) == 0 ? fork() : -1;
    if (first == 0) {
        abort();
    }
    for (int tries = 0; tries < kTries; ++tries) {
        if (waitpid(first, nullptr, WNOHANG) == first) {
            _exit(0);
        }
        (void)usleep(kPause);
    }
    if (first > 0) {
        (void)kill(first, SIGKILL);
    }
    _exit(1);
}

bool EndsFirstProcess() {
    const pid_t child = fork();
    if (child == 0) {
        EndFirstProcess();
    }
    int status = -1;
    return waitpid(child, &status, 0) == child && status == 0;
}

}  // namespace

// Every reason for a skipped test under emulation is here.
const KernelFeature kIgnoredChildren{"the emulation shows a program the children that it ignores",
                                     IgnoresChildren};
const KernelFeature kAdoption{"the emulation lets no program adopt orphans", Adopts};
const KernelFeature kCommandLines{"the command lines of emulated programs begin with the emulator",
                                  ShowsCommandLines};
const KernelFeature kEndOfFirstProcess{
    "the emulation lets no signal end the first process of a PID namespace", EndsFirstProcess};

bool Has([[maybe_unused]] const KernelFeature& feature) {
#if defined(VELK_EMULATED)
    return feature.is_there();
#else
    return true;
#endif
}

}  // namespace testkit
