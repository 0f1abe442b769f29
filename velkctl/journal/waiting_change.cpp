// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// waiting_change.cpp - the change that must be confirmed; while it waits, no other is made.
#include "velkctl/journal/waiting_change.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <memory>
#include <utility>

#include <pwd.h>

#include "velkctl/files/boot_clock.h"
#include "velkctl/files/process_list.h"

namespace velkctl {
namespace {

constexpr int64_t kMilliseconds = 1000;

bool IsUnconfirmed(const StoredEntry& stored) {
    const JournalEntry& entry = stored.decoded.entry;
    return stored.is_whole() && entry.needs_confirmation() &&
           (entry.state == EntryState::kApplying || entry.state == EntryState::kWaiting ||
            entry.state == EntryState::kReverting);
}

bool IsGuardian(pid_t process, const std::string& id) {
    std::string beginning(kGuardianName);
    beginning.append(1, '\0').append(id).append(1, '\0');
    return process > 0 && CommandLineOf(process).starts_with(beginning);
}

// "change k7f2 of root waits for its confirmation since 14:02; 240 s left"
std::string DetailOf(const StoredEntry& stored) {
    const JournalEntry& entry = stored.decoded.entry;
    std::string text = "change " + entry.id + " of " + UserName(entry.user);
    if (entry.state == EntryState::kReverting || IsOverdue(entry)) {
        return text.append(" is being put back");
    }
    if (entry.state == EntryState::kApplying) {
        return text.append(stored.is_in_use ? " is being made" : " was interrupted");
    }
    text.append(" waits for its confirmation since ").append(ClockTime(entry.time)).append("; ");
    return text.append(std::to_string(SecondsLeft(entry))).append(" s left");
}

std::string RemedyOf(const StoredEntry& stored) {
    const JournalEntry& entry = stored.decoded.entry;
    if (stored.is_waiting) {
        return "'velkctl confirm " + entry.id + "' keeps it, 'velkctl revert " + entry.id +
               "' puts it back";
    }
    return stored.is_in_use || HasGuardian(entry) ? "try again later"
                                                  : "'velkctl recover' takes it back";
}

}  // namespace

std::optional<StoredEntry> FindUnconfirmed() {
    std::optional<StoredEntry> last = ReadLastEntry();
    return last && IsUnconfirmed(*last) ? std::move(last) : std::nullopt;
}

bool IsOverdue(const JournalEntry& entry) {
    return entry.boot_id != RunningBootId() || MillisecondsSinceBoot() >= entry.window.deadline;
}

bool HasGuardian(const JournalEntry& entry) {
    return IsGuardian(entry.guardian.keeper, entry.id) ||
           IsGuardian(entry.guardian.guardian, entry.id);
}

int64_t SecondsLeft(const JournalEntry& entry) {
    const int64_t left = entry.window.deadline - MillisecondsSinceBoot();
    return std::max<int64_t>(0, (left + kMilliseconds - 1) / kMilliseconds);
}

Problem ProblemOfUnconfirmed(const StoredEntry& stored, std::string message) {
    return {.message = std::move(message), .detail = DetailOf(stored), .remedy = RemedyOf(stored)};
}

std::optional<Problem> FindWaitingProblem(std::string message) {
    const std::optional<StoredEntry> stored = FindUnconfirmed();
    return stored ? std::optional(ProblemOfUnconfirmed(*stored, std::move(message))) : std::nullopt;
}

// getpwuid(3) may load modules of the device's libc. A velkctl with libc inside would then have
// two, and crash.
std::string UserName(uid_t user) {
    const std::unique_ptr<FILE, int (*)(FILE*)> users(fopen("/etc/passwd", "re"), fclose);
    while (const passwd* row = users ? fgetpwent(users.get()) : nullptr) {
        if (row->pw_uid == user) {
            return row->pw_name;
        }
    }
    return "user " + std::to_string(user);
}

std::string ClockTime(int64_t seconds) {
    const auto time = static_cast<time_t>(seconds);
    tm parts{};
    std::array<char, 8> text{};
    (void)strftime(text.data(), text.size(), "%H:%M", localtime_r(&time, &parts));
    return text.data();
}

}  // namespace velkctl
