// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// watched_call.cpp - runs a command that a deadline or a signal can end.
#include "velkctl/call/watched_call.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "lib/base/unique_fd.h"
#include "velkctl/call/child_call.h"
#include "velkctl/call/cleanup.h"
#include "velkctl/call/longest_wait.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/files/text_file.h"
#include "velkctl/files/tool_output.h"
#include "velkctl/report/output.h"
#include "velkctl/report/progress.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

constexpr std::string_view kAnyWait = "the device to answer";
constexpr std::string_view kIncomplete = "may be incomplete";
constexpr std::string_view kRunAgain = "; run it again";

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;
using Seconds = std::chrono::seconds;

// A signal ends a short change only after this time: the change is usually finished by then.
constexpr Milliseconds kGrace{1000};
// A tool that may be writing a file of the device has this time to finish.
constexpr Milliseconds kWriteTime{1000};
// The pause between two looks at the tools in the background.
constexpr Milliseconds kBackgroundPause{100};

constexpr std::array<std::string_view, 3> kStarters{"sh -c ", "/bin/sh -c ", "sudo "};

enum class Outcome { kAnswered, kInterrupted, kTimedOut };

// Returns the state of the device after a change; empty if nothing was changed.
std::string StateAfter(const PendingCall& call, const Answer& answer) {
    if (call.command.type == VELK_GET || !answer.ok()) {
        return "";
    }
    return call.subject +
           (call.command.type == VELK_SET ? " is already changed" : " is already done");
}

// True if a command that is ended early can leave the device between two states.
bool CanBeIncomplete(const Command& command) {
    return command.type != VELK_GET;
}

std::string StateIfInterrupted(const PendingCall& call) {
    return CanBeIncomplete(call.command) ? call.subject + " " + std::string(kIncomplete) : "";
}

std::string StateToShow(const PendingCall& call) {
    const std::string state = StateIfInterrupted(call);
    return state.empty() ? "" : state + std::string(kRunAgain);
}

std::string_view AwaitedBy(const Command& command) {
    const std::string_view awaited = LongestWaitOf(command).awaited;
    return awaited.empty() ? kAnyWait : awaited;
}

Clock::duration TimeLeft(const PendingCall& call) {
    return std::max(*call.deadline - Clock::now(), Clock::duration::zero());
}

// True if the command has its answer and no tool to wait for. poll(2) ignores a descriptor of -1.
bool IsFinished(const ChildCall& child, const PendingCall& call, pollfd& answer) {
    if (answer.revents != 0) {
        answer.fd = -1;
    }
    return answer.fd == -1 && (!call.awaits_tools || child.Tools().empty());
}

// Returns the time-out for poll(2), which ends at the deadline or, if the time is shown, at the
// next full second. -1: no limit.
int PollTime(const PendingCall& call, Clock::duration elapsed, bool is_shown) {
    std::optional<Clock::duration> left;
    if (call.deadline) {
        left = TimeLeft(call);
    }
    if (is_shown) {
        const Clock::duration to_second = Seconds(1) - elapsed % Seconds(1);
        left = std::min(left.value_or(to_second), to_second);
    }
    return left ? static_cast<int>(std::chrono::ceil<Milliseconds>(*left).count()) : -1;
}

// Returns the longest time that a person has to wait; 0 if unknown.
long SecondsToShow(const PendingCall& call, const LongestWait& longest) {
    if (!call.deadline) {
        return longest.seconds;
    }
    const auto left = static_cast<long>(std::chrono::ceil<Seconds>(TimeLeft(call)).count());
    return longest.seconds == 0 ? left : std::min<long>(left, longest.seconds);
}

// Returns the time-out for poll(2). It does not notice the end of a tool in the background.
int PollTimeAfter(int poll_time, bool is_answered) {
    const int pause = static_cast<int>(kBackgroundPause.count());
    return is_answered && (poll_time == -1 || poll_time > pause) ? pause : poll_time;
}

// Waits for the answer, a signal or the deadline. If several have come, the answer counts.
Outcome WaitForOutcome(const ChildCall& child, const StopSignals& signals,
                       const PendingCall& call) {
    const std::string_view awaited = AwaitedBy(call.command);
    const long seconds_to_show = SecondsToShow(call, LongestWaitOf(call.command));
    const velk::UniqueFd signal_fd(signalfd(-1, &signals.signals(), SFD_CLOEXEC));
    ProgressDisplay progress(call.report.shows_progress() && IsTerminal(STDERR_FILENO));
    const bool can_end = call.on_signal != OnSignal::kFinishCommand;
    const int awaited_signal = can_end ? signal_fd.get() : -1;
    std::array<pollfd, 2> awaited_fds{{{child.fd(), POLLIN, 0}, {awaited_signal, POLLIN, 0}}};
    for (const auto start = Clock::now();;) {
        const int poll_time = PollTime(call, Clock::now() - start, progress.is_shown());
        (void)poll(awaited_fds.data(), awaited_fds.size(),
                   PollTimeAfter(poll_time, awaited_fds[0].fd == -1));
        if (IsFinished(child, call, awaited_fds[0])) {
            return Outcome::kAnswered;
        }
        if (can_end && signals.Pending() != 0) {
            return Outcome::kInterrupted;
        }
        if (call.is_late()) {
            return Outcome::kTimedOut;
        }
        const auto elapsed =
            static_cast<long>(std::chrono::floor<Seconds>(Clock::now() - start).count());
        if (elapsed > 0) {
            progress.Show(ProgressLine(call.subject, awaited, elapsed, seconds_to_show));
        }
    }
}

bool HasAnswer(const ChildCall& child, Milliseconds limit) {
    pollfd answer{child.fd(), POLLIN, 0};
    return poll(&answer, 1, static_cast<int>(limit.count())) == 1;
}

// True if the command waits only for files and the tools that copy them.
bool WaitsForFilesOnly(const Command& command) {
    return LongestWaitOf(command).awaited.empty();
}

// Waits like WaitForOutcome(). After a signal, a short change may still answer.
Outcome WaitWithGrace(const ChildCall& child, const StopSignals& signals, const PendingCall& call) {
    const Outcome outcome = WaitForOutcome(child, signals, call);
    const bool has_grace = outcome == Outcome::kInterrupted && WaitsForFilesOnly(call.command);
    return has_grace && HasAnswer(child, kGrace) ? Outcome::kAnswered : outcome;
}

// A command that only reads and succeeds needs no explanation by its tools.
bool NeedsToolOutput(const PendingCall& call, bool is_done) {
    return CanBeIncomplete(call.command) || !is_done || call.report.is_verbose();
}

// Gives the report the output of the tools, to be shown if the command fails.
std::vector<std::string> KeepToolOutput(const ChildCall& child, const PendingCall& call,
                                        bool is_done) {
    std::vector<std::string> output = child.tool_output();
    if (!NeedsToolOutput(call, is_done)) {
        return output;
    }
    std::vector<std::string> lines;
    for (const std::string& line : call.report.is_verbose() ? output : WithoutHarmless(output)) {
        lines.push_back(call.subject + ": " + Printable(line));
    }
    call.report.KeepToolOutput(std::move(lines));
    return output;
}

Answer AnswerOf(ChildCall& child, const PendingCall& call) {
    std::optional<Answer> answer = child.TakeAnswer();
    std::vector<std::string> output = KeepToolOutput(child, call, answer && answer->ok());
    if (answer) {
        answer->tool_output = std::move(output);
        return *answer;
    }
    CleanUp(call.command, false);
    std::string note = call.subject + ": the library ended without an answer";
    if (child.end_signal() != 0) {
        note.append(", by signal ").append(std::to_string(child.end_signal()));
        note.append(" (").append(strsignal(child.end_signal())).append(")");
    }
    call.report.Note(note);
    return {LIB_VELK_FAILURE};
}

// True if the tool only runs another one.
bool IsStarter(const RunningTool& tool) {
    return std::ranges::any_of(
        kStarters, [&](std::string_view beginning) { return tool.command.starts_with(beginning); });
}

// Returns the first tool at work; without one, the usual wait of the command. Empty if neither.
std::string AtWork(const ChildCall& child, const PendingCall& call) {
    const std::vector<RunningTool> tools = child.Tools();
    const auto tool = std::ranges::find_if_not(tools, IsStarter);
    return tool == tools.end() ? std::string(LongestWaitOf(call.command).awaited) : tool->command;
}

void ReportRunningTools(const std::vector<RunningTool>& tools, const PendingCall& call) {
    if (tools.empty()) {
        return;
    }
    Problem problem{call.subject + ": some programs could not be ended and are still running"};
    problem.remedy = "wait for their end, or end them: sudo kill";
    for (const RunningTool& tool : tools) {
        const std::string number = std::to_string(tool.process);
        problem.detail.append(problem.detail.empty() ? "" : "; ");
        problem.detail.append("process ").append(number).append(" ").append(Excerpt(tool.command));
        problem.remedy.append(" ").append(number);
    }
    call.report.Complain(problem);
}

// Ends the command early, and all that was started for it.
void StopEarly(ChildCall& child, const PendingCall& call) {
    const Milliseconds grace = call.command.type == VELK_SET ? kWriteTime : Milliseconds::zero();
    const std::vector<RunningTool> left = child.Stop(grace);
    (void)KeepToolOutput(child, call, false);
    CleanUp(call.command, left.empty());
    ReportRunningTools(left, call);
}

Answer StopAtDeadline(ChildCall& child, const PendingCall& call) {
    std::string awaited = AtWork(child, call);
    StopEarly(child, call);
    return {.result = LIB_VELK_FAILURE,
            .timed_out = true,
            .awaited = std::move(awaited),
            .note = StateIfInterrupted(call)};
}

Answer StopAtSignal(ChildCall& child, const StopSignals& signals, const PendingCall& call) {
    StopEarly(child, call);
    if (call.on_signal == OnSignal::kEndVelkctl) {
        EndInterrupted(signals.Pending(), StateToShow(call), call.report);
    }
    return {.result = LIB_VELK_FAILURE, .interrupted = true};
}

Answer AnswerBeforeDeadline(const PendingCall& call, const StopSignals& signals) {
    ChildCall child(call.command, call.data, signals);
    if (child.start_error() != 0) {
        call.report.Note(call.subject +
                         ": cannot start a process: " + strerror(child.start_error()));
        return {LIB_VELK_FAILURE};
    }
    switch (WaitWithGrace(child, signals, call)) {
        case Outcome::kAnswered:
            break;
        case Outcome::kInterrupted:
            return StopAtSignal(child, signals, call);
        case Outcome::kTimedOut:
            return StopAtDeadline(child, call);
    }
    return AnswerOf(child, call);
}

}  // namespace

Answer ExecuteWatched(const PendingCall& call) {
    const StopSignals signals;
    Answer answer = AnswerBeforeDeadline(call, signals);
    if (call.watcher != nullptr) {
        call.watcher->AfterAttempt(answer);
    }
    const int signal = call.on_signal == OnSignal::kEndVelkctl ? signals.Pending() : 0;
    if (signal != 0 && !answer.timed_out) {
        EndInterrupted(signal, StateAfter(call, answer), call.report);
    }
    return answer;
}

}  // namespace velkctl
