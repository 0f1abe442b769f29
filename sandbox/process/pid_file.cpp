// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// pid_file.cpp - stops a daemon of the device by its PID file.
#include "sandbox/process/pid_file.h"

#include <csignal>
#include <cstdio>
#include <fstream>

#include <unistd.h>

namespace sandbox {
namespace {

constexpr int kEndSteps = 200;
constexpr useconds_t kEndStep = 10'000;

// Returns 0 if it is not running.
pid_t RunningDaemon(const char* pid_file) {
    pid_t daemon = 0;
    std::ifstream(pid_file) >> daemon;
    return daemon > 1 && kill(daemon, 0) == 0 ? daemon : 0;
}

bool HasEnded(pid_t daemon) {
    for (int step = 0; step < kEndSteps; ++step) {
        if (kill(daemon, 0) == -1) {
            return true;
        }
        (void)usleep(kEndStep);
    }
    return false;
}

}  // namespace

void StopDaemon(const char* pid_file) {
    const pid_t daemon = RunningDaemon(pid_file);
    if (daemon == 0) {
        return;
    }
    (void)kill(daemon, SIGTERM);
    if (!HasEnded(daemon)) {
        (void)kill(daemon, SIGKILL);
    }
    (void)remove(pid_file);
}

}  // namespace sandbox
