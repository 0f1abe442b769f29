// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// ask_to_keep.cpp - asks a person at the terminal if a change is to be kept.
#include "velkctl/verbs/ask_to_keep.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include <poll.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/journal/waiting_change.h"

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

// Returns the first letter of an answer, 0 if none has come, or the time is over.
char ReadAnswer(const JournalEntry& entry) {
    while (SecondsLeft(entry) > 0) {
        ShowQuestion(entry);
        pollfd input{STDIN_FILENO, POLLIN, 0};
        const int64_t left = std::min(entry.window.deadline - MillisecondsSinceBoot(), kSecond);
        if (poll(&input, 1, static_cast<int>(std::max<int64_t>(left, 0))) != 1) {
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

ExitStatus AskToKeep(const JournalEntry& entry, const TimeLimits& limits, Report& report) {
    const char answer = ReadAnswer(entry);
    Invocation invocation{.words = {entry.id}};
    invocation.limits = limits;
    if (IsYes(answer)) {
        return RunConfirm(invocation, report);
    }
    if (IsNo(answer)) {
        const ExitStatus status = RunRevert(invocation, report);
        return status == ExitStatus::kDone ? ExitStatus::kFailed : status;
    }
    (void)velk::WriteAll(STDERR_FILENO, "\n");
    if (SecondsLeft(entry) == 0) {
        report.Complain("apply: the change is put back; nobody has confirmed it");
        return ExitStatus::kFailed;
    }
    return ExitStatus::kDone;
}

}  // namespace velkctl
