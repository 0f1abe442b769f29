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
#include "velkctl/report/output.h"
#include "velkctl/report/progress.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

constexpr std::string_view kAnyWait = "the device to answer";
constexpr std::string_view kIncomplete = "may be incomplete; run it again";

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;
using Seconds = std::chrono::seconds;

// A signal ends a short change only after this time: the change is usually finished by then.
constexpr Milliseconds kGrace{1000};

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

Clock::duration TimeLeft(const PendingCall& call) {
    return std::max(*call.deadline - Clock::now(), Clock::duration::zero());
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

// Waits for the answer, a signal or the deadline. If several have come, the answer counts.
Outcome WaitForOutcome(const ChildCall& child, const StopSignals& signals,
                       const PendingCall& call) {
    const LongestWait longest = LongestWaitOf(call.command);
    const std::string_view awaited = longest.awaited.empty() ? kAnyWait : longest.awaited;
    const long seconds_to_show = SecondsToShow(call, longest);
    const velk::UniqueFd signal_fd(signalfd(-1, &signals.signals(), SFD_CLOEXEC));
    ProgressDisplay progress(!call.report.is_json() && IsTerminal(STDERR_FILENO));
    std::array<pollfd, 2> awaited_fds{{{child.fd(), POLLIN, 0}, {signal_fd.get(), POLLIN, 0}}};
    for (const auto start = Clock::now();;) {
        const int poll_time = PollTime(call, Clock::now() - start, progress.is_shown());
        (void)poll(awaited_fds.data(), awaited_fds.size(), poll_time);
        if (awaited_fds[0].revents != 0) {
            return Outcome::kAnswered;
        }
        if (signals.Pending() != 0) {
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

std::vector<std::string> PassOnToolOutput(const ChildCall& child, const PendingCall& call) {
    std::vector<std::string> output = child.tool_output();
    for (const std::string& line : output) {
        call.report.Note(call.subject + ": " + Printable(line));
    }
    return output;
}

Answer AnswerOf(ChildCall& child, const PendingCall& call) {
    std::optional<Answer> answer = child.TakeAnswer();
    std::vector<std::string> output = PassOnToolOutput(child, call);
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

Answer TimedOut(const PendingCall& call) {
    return {.result = LIB_VELK_FAILURE, .timed_out = true, .remark = StateIfInterrupted(call)};
}

}  // namespace

Answer ExecuteWatched(const PendingCall& call) {
    const StopSignals signals;
    ChildCall child(call.command, call.data, signals);
    if (child.start_error() != 0) {
        call.report.Note(call.subject +
                         ": cannot start a process: " + strerror(child.start_error()));
        return {LIB_VELK_FAILURE};
    }
    Outcome outcome = WaitForOutcome(child, signals, call);
    if (outcome == Outcome::kInterrupted && WaitsForFilesOnly(call.command) &&
        HasAnswer(child, kGrace)) {
        outcome = Outcome::kAnswered;
    }
    if (outcome == Outcome::kAnswered) {
        Answer answer = AnswerOf(child, call);
        if (const int signal = signals.Pending(); signal != 0) {
            EndInterrupted(signal, StateAfter(call, answer), call.report);
        }
        return answer;
    }
    const bool tools_ended = child.Stop();
    (void)PassOnToolOutput(child, call);
    CleanUp(call.command, tools_ended);
    if (outcome == Outcome::kInterrupted) {
        EndInterrupted(signals.Pending(), StateIfInterrupted(call), call.report);
    }
    return TimedOut(call);
}

}  // namespace velkctl
