// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ask_to_keep.cpp - asks a person at the terminal if a change is to be kept.
#include "velkctl/verbs/ask_to_keep.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

#include <poll.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/waiting_change.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr int64_t kSecond = 1000;

bool IsNo(char key) {
    return key == 'n' || key == 'N';
}

bool IsYes(char key) {
    return key == 'y' || key == 'Y';
}

void ShowQuestion(const JournalEntry& entry) {
    const std::string question = "\rkeep the change? y or n, then Enter (" +
                                 std::to_string(SecondsLeft(entry)) + " s left)  ";
    (void)velk::WriteAll(STDERR_FILENO, question);
}

// Returns the first letter of an answer, 0 if none has come, the time is over, or somebody else has
// decided. Reads the entry again each second: it may get more time, too.
char ReadAnswer(StoredEntry& stored) {
    const JournalEntry& entry = stored.decoded.entry;
    while (entry.state == EntryState::kWaiting && SecondsLeft(entry) > 0) {
        ShowQuestion(entry);
        pollfd input{STDIN_FILENO, POLLIN, 0};
        const int64_t left = std::min(entry.window.deadline - MillisecondsSinceBoot(), kSecond);
        const bool is_answered = poll(&input, 1, static_cast<int>(std::max<int64_t>(left, 0))) == 1;
        stored = ReadAgain(stored);
        if (!is_answered) {
            continue;
        }
        char line[80];
        const ssize_t count = velk::ReadSome(STDIN_FILENO, line, sizeof(line));
        if (count <= 0 || IsYes(line[0]) || IsNo(line[0])) {
            return count <= 0 ? '\0' : line[0];
        }
    }
    return '\0';
}

}  // namespace

bool CanAskForKey() {
    return isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1;
}

ExitStatus AskToKeep(const TimeLimits& limits, Report& report) {
    std::optional<StoredEntry> stored = ReadLastEntry();
    if (!stored) {
        report.Complain("apply: the entry of the change cannot be read");
        return ExitStatus::kFailed;
    }
    const char answer = ReadAnswer(*stored);
    const JournalEntry& entry = stored->decoded.entry;
    Invocation invocation{.words = {entry.id}};
    invocation.limits = limits;
    if (IsYes(answer)) {
        report.Member("seconds_left", nullptr);
        return RunConfirm(invocation, report);
    }
    if (IsNo(answer)) {
        report.Member("seconds_left", nullptr);
        report.Member("taken_back", true);
        const ExitStatus status = RunRevert(invocation, report);
        return status == ExitStatus::kDone ? ExitStatus::kFailed : status;
    }
    (void)velk::WriteAll(STDERR_FILENO, "\n");
    if (entry.state == EntryState::kConfirmed) {
        report.Inform("the change is confirmed\n");
        return ExitStatus::kDone;
    }
    if (entry.state != EntryState::kWaiting) {
        report.Complain("apply: the change is put back: " + entry.cause);
        return ExitStatus::kFailed;
    }
    if (SecondsLeft(entry) == 0) {
        report.Complain("apply: the change is put back; nobody has confirmed it");
        return ExitStatus::kFailed;
    }
    return ExitStatus::kDone;
}

}  // namespace velkctl
