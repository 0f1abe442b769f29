// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device.cpp - the device for the verbs: settings to read and to change.
#include "velkctl/call/device.h"

#include <algorithm>
#include <chrono>
#include <optional>

#include "velkctl/call/library_call.h"
#include "velkctl/call/longest_wait.h"
#include "velkctl/call/pause.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/call/unfinished_edits.h"
#include "velkctl/files/lock_holder.h"

namespace velkctl {
namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;
using Seconds = std::chrono::seconds;

constexpr Milliseconds kFirstPause{50};
constexpr Milliseconds kLongestPause{250};  // the longest delay before a signal is handled

// A configured address is in a file; the address of a lease needs a tool.
bool IsLeaseAddress(const Command& command) {
    if (!IsAddressCommand(command.id)) {
        return false;
    }
    const Answer method = CallLibrary({VELK_GET, VELK_CMD_IP_METHOD, command.interface});
    return !method.ok() || !IsStaticMethod(method.data);
}

// True for a get that only reads files. It needs no process of its own: a signal can end it at any
// point without leaving files. With a deadline it gets a process, because a failing get may block
// while it writes to the system log.
bool IsPlainRead(const Command& command) {
    return command.type == VELK_GET && LongestWaitOf(command).awaited.empty() &&
           !IsLeaseAddress(command);
}

Answer Call(const PendingCall& call) {
    const bool is_here = !call.deadline && IsPlainRead(call.command);
    return is_here ? CallLibrary(call.command, call.data) : ExecuteWatched(call);
}

std::optional<Clock::time_point> DeadlineOf(const TimeLimits& limits) {
    if (limits.timeout_seconds == 0) {
        return std::nullopt;
    }
    return Clock::now() + Seconds(limits.timeout_seconds);
}

int SecondsForLock(const TimeLimits& limits) {
    return limits.timeout_seconds == 0 ? limits.wait_seconds
                                       : std::min(limits.wait_seconds, limits.timeout_seconds);
}

void NoteLockHolder(int seconds, Report& report) {
    const std::optional<LockHolder> holder = FindLockHolder();
    report.Note("waiting at most " + std::to_string(seconds) + " s for the lock" +
                (holder ? ", held by " + DescribeHolder(*holder) : ""));
}

// Returns who holds the lock; empty if unknown.
std::string LockHolderNote(int waited) {
    const std::optional<LockHolder> holder = FindLockHolder();
    if (!holder) {
        return "";
    }
    return DescribeHolder(*holder) +
           (waited == 0 ? " holds the lock"
                        : " still holds the lock after " + std::to_string(waited) + " s");
}

}  // namespace

Answer Device::Get(const Setting& setting) const {
    return Execute({VELK_GET, setting.row->id, setting.interface}, {}, setting.name());
}

Answer Device::GetWithin(const Setting& setting, int seconds) const {
    const int own = limits_.timeout_seconds;
    if (own == 0 && IsPlainRead({VELK_GET, setting.row->id, setting.interface})) {
        return Get(setting);
    }
    const TimeLimits limits{.timeout_seconds = own == 0 ? seconds : std::min(own, seconds)};
    return Device(limits, report_, on_signal_).Get(setting);
}

std::string Device::PrintedValue(const Setting& setting) const {
    const Answer answer = Get(setting);
    return answer.ok() ? setting.row->kind->Print(answer.data) : "";
}

bool Device::HasStaticMethod(std::string_view interface) const {
    const Answer method = Get(SettingOf(VELK_CMD_IP_METHOD, interface));
    return method.ok() && IsStaticMethod(method.data);
}

Answer Device::Set(const Setting& setting, const Data& value) const {
    return Execute({VELK_SET, setting.row->id, setting.interface}, value, setting.name());
}

Answer Device::Execute(const Command& command, const Data& data, const std::string& subject) const {
    PendingCall call{command, data, subject, DeadlineOf(limits_), report_};
    call.on_signal = on_signal_;
    call.watcher = command.type == VELK_SET ? watcher_ : nullptr;
    return Run(call);
}

Answer Device::Restart(const std::string& interface, const Data& data) const {
    const Command command{VELK_RESTART, VELK_CMD_RESTART, interface};
    const std::string subject = "restart of " + interface;
    PendingCall call{command, data, subject, DeadlineOf(limits_), report_, true};
    call.on_signal = on_signal_;
    return Run(call);
}

Answer Device::ExecuteOnce(const PendingCall& call) const {
    if (call.command.type != VELK_SET) {
        return Call(call);
    }
    NoteUnfinishedEdits(call.command, call.subject, call.report);
    const bool is_refused = call.watcher != nullptr && !call.watcher->BeforeAttempt();
    return is_refused ? Answer{LIB_VELK_LOCKED} : Call(call);
}

// Tries again until the lock is free or the time is over. At the deadline the answer is that of the
// lock: the command has done nothing.
Answer Device::TryAgain(const PendingCall& call, int seconds, Answer answer) const {
    NoteLockHolder(seconds, call.report);
    const StopSignals signals;
    Milliseconds left = Seconds(seconds);
    for (Milliseconds pause = kFirstPause; answer.is_locked() && left > Milliseconds::zero();
         pause = std::min(pause * 2, kLongestPause)) {
        const Milliseconds now = std::min(pause, left);
        Pause(now);
        left -= now;
        const int signal = signals.Pending();
        if (signal != 0 && on_signal_ == OnSignal::kEndVelkctl) {
            EndInterrupted(signal, "", call.report);
        }
        if (call.is_late() || (signal != 0 && on_signal_ == OnSignal::kEndCommand)) {
            break;
        }
        answer = ExecuteOnce(call);
    }
    return answer;
}

Answer Device::Run(const PendingCall& call) const {
    Answer answer = ExecuteOnce(call);
    const int wait = SecondsForLock(limits_);
    if (answer.is_locked() && wait > 0) {
        answer = TryAgain(call, wait, answer);
    }
    if (answer.is_locked()) {
        answer.note = LockHolderNote(wait);
    }
    if (answer.timed_out) {
        answer.timeout_seconds = limits_.timeout_seconds;
    }
    return answer;
}

}  // namespace velkctl
