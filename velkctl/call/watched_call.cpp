// watched_call.cpp - runs a command that a time or a signal may end.
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
#include "velkctl/call/interruption.h"
#include "velkctl/call/longest_wait.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/report/progress.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

constexpr std::string_view kAnyWait = "the device to answer";

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;
using Seconds = std::chrono::seconds;

// A change that takes milliseconds is let finish for so long before a signal ends it half done.
constexpr Milliseconds kGrace{1000};

enum class Outcome { kAnswered, kInterrupted, kTimedOut };

// How far a change came that is done; empty when nothing was changed.
std::string StateAfter(const Call& call, const Answer& answer) {
    if (call.command.type == VELK_GET || !answer.ok()) {
        return "";
    }
    return call.what + (call.command.type == VELK_SET ? " is changed" : " is done") + " already";
}

// Why a command that was given up may have left the device between two states.
std::string HalfDone(const Command& command) {
    switch (command.type) {
        case VELK_SET:
            return "may be half changed";
        case VELK_RESTART:
            return "may be half done";
        default:
            return "";
    }
}

std::string StateInTheMiddle(const Call& call) {
    const std::string half_done = HalfDone(call.command);
    return half_done.empty() ? "" : call.what + " " + half_done;
}

Clock::duration TimeLeft(const Call& call) {
    return std::max(*call.deadline - Clock::now(), Clock::duration::zero());
}

// How long poll(2) may wait: until the deadline, and no longer than until the next full second
// when the time is shown. -1: for ever.
int PollTime(const Call& call, Clock::duration elapsed, bool is_shown) {
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

// The longest a person has to wait; 0 when there is no telling.
long LongestWait(const Call& call, const Blocking& blocking) {
    if (!call.deadline) {
        return blocking.seconds;
    }
    const auto left = static_cast<long>(std::chrono::ceil<Seconds>(TimeLeft(call)).count());
    return blocking.seconds == 0 ? left : std::min<long>(left, blocking.seconds);
}

// Waits for the answer, a signal or the deadline; an answer that is there counts first.
Outcome Await(const ChildCall& child, const StopSignals& signals, const Call& call) {
    const Blocking blocking = LongestCall(call.command);
    const std::string_view awaited = blocking.awaited.empty() ? kAnyWait : blocking.awaited;
    const long longest = LongestWait(call, blocking);
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
            progress.Show(ProgressLine(call.what, awaited, elapsed, longest));
        }
    }
}

bool HasAnswer(const ChildCall& child, Milliseconds limit) {
    pollfd answer{child.fd(), POLLIN, 0};
    return poll(&answer, 1, static_cast<int>(limit.count())) == 1;
}

// Takes as long as files and the tools that copy them.
bool IsShort(const Command& command) {
    return LongestCall(command).awaited.empty();
}

std::vector<std::string> PassOnWhatToolsSaid(const ChildCall& child, const Call& call) {
    std::vector<std::string> said = child.said();
    for (const std::string& line : said) {
        call.report.Note(call.what + ": " + Printable(line));
    }
    return said;
}

Answer AnswerOf(ChildCall& child, const Call& call) {
    std::optional<Answer> answer = child.TakeAnswer();
    std::vector<std::string> said = PassOnWhatToolsSaid(child, call);
    if (answer) {
        answer->said = std::move(said);
        return *answer;
    }
    RemoveLeftovers(call.command, false);
    std::string note = call.what + ": the library ended without an answer";
    if (child.end_signal() != 0) {
        note.append(", by signal ").append(std::to_string(child.end_signal()));
        note.append(" (").append(strsignal(child.end_signal())).append(")");
    }
    call.report.Note(note);
    return {LIB_VELK_FAILURE};
}

Answer GivenUp(const Command& command) {
    const std::string half_done = HalfDone(command);
    return {.result = LIB_VELK_FAILURE,
            .timed_out = true,
            .remark = half_done.empty() ? "" : "it " + half_done};
}

}  // namespace

Answer ExecuteWatched(const Call& call) {
    const StopSignals signals;
    ChildCall child(call.command, call.data, signals);
    if (child.start_error() != 0) {
        call.report.Note(call.what + ": no process to run it in: " + strerror(child.start_error()));
        return {LIB_VELK_FAILURE};
    }
    Outcome outcome = Await(child, signals, call);
    if (outcome == Outcome::kInterrupted && IsShort(call.command) && HasAnswer(child, kGrace)) {
        outcome = Outcome::kAnswered;
    }
    if (outcome == Outcome::kAnswered) {
        Answer answer = AnswerOf(child, call);
        if (const int signal = signals.Pending(); signal != 0) {
            EndInterrupted(signal, StateAfter(call, answer), call.report);
        }
        return answer;
    }
    const bool tools_ended = child.GiveUp();
    (void)PassOnWhatToolsSaid(child, call);
    RemoveLeftovers(call.command, tools_ended);
    if (outcome == Outcome::kInterrupted) {
        EndInterrupted(signals.Pending(), StateInTheMiddle(call), call.report);
    }
    return GivenUp(call.command);
}

}  // namespace velkctl
