// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// wireless_daemon.cpp - starts and stops the wireless daemon.
#include "sandbox/hardware/wireless_daemon.h"

#include <utility>
#include <vector>

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
    std::vector<std::string> words = {program_, "--background", "--pid-file", kDaemonPidFile};
    words.insert(words.end(), arguments_.begin(), arguments_.end());
    if (RunProgram(std::move(words)) != 0) {
        throw Failure("the wireless daemon did not start");
    }
}

void WirelessDaemon::Stop() const {
    StopDaemon(kDaemonPidFile);
}

}  // namespace sandbox
