// device.cpp - the device, as the verbs see it: settings to read and to change.
#include "velkctl/call/device.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <optional>

#include "velkctl/call/cleanup.h"
#include "velkctl/call/interruption.h"
#include "velkctl/call/library_call.h"
#include "velkctl/call/longest_wait.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/call/watched_call.h"
#include "velkctl/files/lock_holder.h"

namespace velkctl {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;
using Seconds = std::chrono::seconds;

constexpr Milliseconds kFirstPause{50};
constexpr Milliseconds kLongestPause{250};  // a signal waits so long to be heeded

// An address that is configured stands in a file; that of a lease is asked of a tool.
bool IsOfLease(const Command& command) {
    if (!IsAddressCommand(command.id)) {
        return false;
    }
    const Answer method = CallLibrary({VELK_GET, VELK_CMD_IP_METHOD, command.interface});
    return !method.ok() || method.data[0] != VELK_METHOD_STATIC;
}

// Only what is read from files is spared a process: wherever a signal ends it, nothing is left.
// One that fails may wait to log. Here a signal ends it as any program; with a deadline it is given
// a process all the same.
bool IsPlainRead(const Command& command) {
    return command.type == VELK_GET && LongestCall(command).awaited.empty() && !IsOfLease(command);
}

Answer ExecuteOnce(const Call& call) {
    TellOfUnfinishedEdits(call.command, call.what, call.report);
    const bool is_here = !call.deadline && IsPlainRead(call.command);
    return is_here ? CallLibrary(call.command, call.data) : ExecuteWatched(call);
}

std::optional<Clock::time_point> DeadlineOf(const Patience& patience) {
    if (patience.timeout_seconds == 0) {
        return std::nullopt;
    }
    return Clock::now() + Seconds(patience.timeout_seconds);
}

int LongestWaitForLock(const Patience& patience) {
    return patience.timeout_seconds == 0
               ? patience.wait_seconds
               : std::min(patience.wait_seconds, patience.timeout_seconds);
}

bool IsLocked(const Answer& answer) {
    return !answer.timed_out && answer.result == LIB_VELK_LOCKED;
}

void TellWhoIsWaitedFor(int seconds, Report& report) {
    const std::optional<LockHolder> holder = FindLockHolder();
    report.Note("waiting at most " + std::to_string(seconds) + " s for the lock" +
                (holder ? ", held by " + DescribeHolder(*holder) : ""));
}

// Empty when that cannot be told.
std::string WhoHoldsTheLock(int waited) {
    const std::optional<LockHolder> holder = FindLockHolder();
    if (!holder) {
        return "";
    }
    return DescribeHolder(*holder) +
           (waited == 0 ? " holds the lock"
                        : " still holds the lock after " + std::to_string(waited) + " s");
}

void Pause(Milliseconds time) {
    const auto seconds = std::chrono::floor<Seconds>(time);
    const auto nanoseconds = std::chrono::nanoseconds(time - seconds);
    const timespec pause{static_cast<time_t>(seconds.count()),
                         static_cast<long>(nanoseconds.count())};
    (void)nanosleep(&pause, nullptr);
}

// Tries again until the lock is free or the time is over. Nothing has been done yet, so the answer
// at the deadline is that of the lock.
Answer TryAgain(const Call& call, int seconds, Answer answer) {
    TellWhoIsWaitedFor(seconds, call.report);
    const StopSignals signals;
    Milliseconds left = Seconds(seconds);
    for (Milliseconds pause = kFirstPause; IsLocked(answer) && left > Milliseconds::zero();
         pause = std::min(pause * 2, kLongestPause)) {
        const Milliseconds now = std::min(pause, left);
        Pause(now);
        left -= now;
        if (const int signal = signals.Pending(); signal != 0) {
            EndInterrupted(signal, "", call.report);
        }
        if (call.is_late()) {
            break;
        }
        answer = ExecuteOnce(call);
    }
    return answer;
}

}  // namespace

Answer Device::Get(const Setting& setting) const {
    return Execute({VELK_GET, setting.row->id, setting.interface}, {}, setting.name());
}

Answer Device::Set(const Setting& setting, const Data& value) const {
    return Execute({VELK_SET, setting.row->id, setting.interface}, value, setting.name());
}

Answer Device::Execute(const Command& command, const Data& data, const std::string& what) const {
    const Call call{command, data, what, DeadlineOf(patience_), report_};
    Answer answer = ExecuteOnce(call);
    const int wait = LongestWaitForLock(patience_);
    if (IsLocked(answer) && wait > 0) {
        answer = TryAgain(call, wait, answer);
    }
    if (IsLocked(answer)) {
        answer.remark = WhoHoldsTheLock(wait);
    }
    return answer;
}

}  // namespace velkctl
