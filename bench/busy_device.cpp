// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// busy_device.cpp - compares gets with reading the file by hand while other processes get and set.
#include <atomic>
#include <csignal>
#include <new>
#include <vector>

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "bench/comparison.h"
#include "bench/floor.h"
#include "bench/groups.h"
#include "bench/request.h"
#include "lib/base/paths.h"

namespace bench {
namespace {

constexpr int kGetters = 2;
constexpr int kSetters = 2;
constexpr int kCallsPerSample = 50;

// In memory that this program shares with the other processes. A set must not be killed, because it
// would leave its edit copy.
std::atomic<bool>& Stop() {
    static auto* const stop = [] {
        void* memory = mmap(nullptr, sizeof(std::atomic<bool>), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) {
            GiveUp("shared memory");
        }
        return new (memory) std::atomic<bool>(false);
    }();
    return *stop;
}

// Two sets at once: one of them is refused, because the other has the lock.
[[noreturn]] void SetUntilStopped() {
    _velk_request request{"eth0", VELK_SET, VELK_CMD_IP_ADDRESS, "192.168.0.10"};
    while (!Stop()) {
        _velk_request response;
        (void)execute_velk_command(&request, &response);
    }
    _exit(0);
}

[[noreturn]] void GetUntilStopped() {
    const auto get = Get(VELK_CMD_IP_METHOD, "eth0");
    while (!Stop()) {
        get();
    }
    _exit(0);
}

std::vector<pid_t>& Others() {
    static std::vector<pid_t> processes;
    return processes;
}

void StartOthers() {
    Stop() = false;
    for (int i = 0; i < kGetters + kSetters; ++i) {
        const pid_t process = fork();
        if (process == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            i < kGetters ? GetUntilStopped() : SetUntilStopped();
        }
        Others().push_back(process);
    }
}

void StopOthers() {
    Stop() = true;
    for (const pid_t process : Others()) {
        int status = 0;
        if (waitpid(process, &status, 0) != process || status != 0) {
            GiveUp("another process");
        }
    }
    Others().clear();
}

}  // namespace

void AddBusyDevice() {
    const auto by_hand = [] {
        char value[VELK_DATA_SIZE];
        FindByHand(velk::kInterfacesFile, "iface eth0 ", "inet ", value);
    };
    Compare({.name = "busy/get_method",
             .ours = Timed(Get(VELK_CMD_IP_METHOD, "eth0"), kCallsPerSample),
             .other = Timed(by_hand, kCallsPerSample),
             .prepare = StartOthers,
             .restore = StopOthers});
}

}  // namespace bench
