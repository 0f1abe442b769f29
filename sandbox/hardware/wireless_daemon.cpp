// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wireless_daemon.cpp - starts and stops the wireless daemon.
#include "sandbox/hardware/wireless_daemon.h"

#include <unistd.h>

#include "sandbox/process/failure.h"
#include "sandbox/process/pid_file.h"
#include "sandbox/process/programs.h"
#include "sandbox/process/run_paths.h"

namespace sandbox {
void WirelessDaemon::Start() const {
    if (access(program_.c_str(), X_OK) == -1) {
        return;
    }
    if (RunProgram({program_, "--background", "--pid-file", kDaemonPidFile}) != 0) {
        throw Failure("the wireless daemon did not start");
    }
}

void WirelessDaemon::Stop() const {
    StopDaemon(kDaemonPidFile);
}

}  // namespace sandbox
