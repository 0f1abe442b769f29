// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// timers.cpp - the time since the start of the device, which passes only when a test lets it.
#include "schedules/kit/timers.h"

#include <atomic>
#include <ctime>
#include <filesystem>
#include <new>
#include <string>

#include <poll.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/timerfd.h>
#include <sys/uio.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"

namespace schedules {
namespace {

// Shared by the test and its callers. The time since the start is frozen at the first use: the time
// of a run does not change its course.
struct BootTime {
    timespec start{};
    std::atomic<int> passed = 0;
    std::atomic<long> slept = 0;  // in milliseconds
};

BootTime& SharedBootTime() {
    static BootTime* const time = [] {
        void* const memory = mmap(nullptr, sizeof(BootTime), PROT_READ | PROT_WRITE,
                                  MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        auto* const made = new (memory) BootTime{};
        (void)syscall(SYS_clock_gettime, CLOCK_BOOTTIME, &made->start);
        return made;
    }();
    return *time;
}

// The children must share the memory, so it is made before the first of them.
[[maybe_unused]] const BootTime& kMadeAtStart = SharedBootTime();

constexpr itimerspec kAtOnce{.it_interval = {}, .it_value = {.tv_sec = 0, .tv_nsec = 1}};
constexpr int kExpiryMilliseconds = 1000;

void Expire(const velk::UniqueFd& timer) {
    itimerspec armed{};
    if (timerfd_gettime(timer.get(), &armed) == -1 ||
        (armed.it_value.tv_sec == 0 && armed.it_value.tv_nsec == 0)) {
        return;
    }
    (void)timerfd_settime(timer.get(), 0, &kAtOnce, nullptr);
    pollfd expired{timer.get(), POLLIN, 0};
    while (poll(&expired, 1, kExpiryMilliseconds) == -1) {  // a signal
    }
}

}  // namespace

void PassSeconds(int seconds) {
    SharedBootTime().passed += seconds;
}

void PassSleep(pid_t process, const Entry& sleep) {
    const bool is_plain = sleep.number == SYS_nanosleep;
    if (!is_plain && sleep.arguments[1] != 0) {
        return;  // up to a moment
    }
    timespec pause{};
    iovec local{&pause, sizeof(pause)};
    iovec remote{reinterpret_cast<void*>(sleep.arguments[is_plain ? 0 : 2]), sizeof(pause)};
    (void)process_vm_readv(process, &local, 1, &remote, 1, 0);
    SharedBootTime().slept += pause.tv_sec * 1000 + pause.tv_nsec / 1'000'000;
}

void ExpireTimers(pid_t process) {
    namespace fs = std::filesystem;
    const velk::UniqueFd self(static_cast<int>(syscall(SYS_pidfd_open, process, 0U)));
    std::error_code ignored;
    for (const fs::directory_entry& entry :
         fs::directory_iterator("/proc/" + std::to_string(process) + "/fd", ignored)) {
        if (fs::read_symlink(entry.path(), ignored) != "anon_inode:[timerfd]") {
            continue;
        }
        const int number = std::stoi(entry.path().filename());
        Expire(velk::UniqueFd(static_cast<int>(syscall(SYS_pidfd_getfd, self.get(), number, 0U))));
    }
}

}  // namespace schedules

// In the place of libc's, for this program and all that it forks.
extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    const schedules::BootTime& boot = schedules::SharedBootTime();
    if (clock == CLOCK_BOOTTIME) {
        *time = boot.start;
        time->tv_sec += boot.passed;
        return 0;
    }
    const auto result = static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    if (clock == CLOCK_MONOTONIC) {
        time->tv_sec += boot.slept / 1000;  // whole seconds, so that none of the fields overflows
    }
    return result;
}
