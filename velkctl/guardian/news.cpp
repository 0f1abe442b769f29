// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// news.cpp - informs people that a change was taken back.
#include "velkctl/guardian/news.h"

#include <cerrno>
#include <optional>

#include <fcntl.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"
#include "velkctl/files/process_list.h"
#include "velkctl/journal/waiting_change.h"

namespace velkctl {
namespace {

constexpr unsigned kLogSeconds = 3;

bool IsSameTerminal(const GuardianFacts& facts) {
    const std::optional<Process> leader = FindProcess(facts.session);
    return !facts.terminal.empty() && leader && leader->start == facts.session_start;
}

void WriteToTerminal(const GuardianFacts& facts, const std::string& line) {
    if (!IsSameTerminal(facts)) {
        return;
    }
    const velk::UniqueFd fd(
        open(facts.terminal.c_str(), O_WRONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (fd.get() != -1 && isatty(fd.get()) == 1) {
        (void)velk::WriteAll(fd.get(), "\r\nvelkctl: " + line + "\r\n");
    }
}

}  // namespace

std::string NewsOf(const JournalEntry& entry) {
    std::string text = "change " + entry.id + " of " + ClockTime(entry.time);
    text.append(entry.cause == kCauseInterrupted ? " was interrupted" : " was not confirmed");
    return text.append(entry.is_closed() ? " and has been put back"
                                         : " and has been put back in part");
}

void LogWarning(const std::string& line) {
    const pid_t writer = fork();
    if (writer == 0) {
        (void)alarm(kLogSeconds);
        syslog(LOG_DAEMON | LOG_WARNING, "velkctl: %s", line.c_str());
        _exit(0);
    }
    while (writer > 0 && waitpid(writer, nullptr, 0) == -1 && errno == EINTR) {
    }
}

void Announce(const JournalEntry& entry, const std::vector<Problem>& left) {
    const std::string news = NewsOf(entry);
    LogWarning(news);
    for (const Problem& problem : left) {
        LogWarning(OneLine(problem));
    }
    WriteToTerminal(entry.guardian, news);
}

}  // namespace velkctl
