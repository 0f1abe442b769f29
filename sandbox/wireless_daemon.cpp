// wireless_daemon.cpp - the wireless daemon, which runs while the adapter is in.
#include "sandbox/wireless_daemon.h"

#include <csignal>
#include <cstdio>
#include <fstream>

#include <unistd.h>

#include "sandbox/failure.h"
#include "sandbox/programs.h"

namespace sandbox {
namespace {

constexpr char kPidFile[] = "/run/velk-sandbox/wland.pid";
constexpr int kEndSteps = 200;
constexpr useconds_t kEndStep = 10'000;

// Zero when it is not running.
pid_t RunningDaemon() {
    pid_t daemon = 0;
    std::ifstream(kPidFile) >> daemon;
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

void WirelessDaemon::Start() const {
    if (access(program_.c_str(), X_OK) == -1) {
        return;
    }
    if (RunProgram({program_, "--background", "--pid-file", kPidFile}) != 0) {
        throw Failure("the wireless daemon does not start");
    }
}

void WirelessDaemon::Stop() const {
    const pid_t daemon = RunningDaemon();
    if (daemon == 0) {
        return;
    }
    (void)kill(daemon, SIGTERM);
    if (!HasEnded(daemon)) {
        (void)kill(daemon, SIGKILL);
    }
    (void)remove(kPidFile);
}

}  // namespace sandbox
