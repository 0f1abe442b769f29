// patience.cpp - runs a command that may take long or find the device busy.
#include "velkctl/patience.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cstring>
#include <ctime>

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include "frame/unique_fd.h"
#include "velkctl/blocking.h"
#include "velkctl/child_call.h"
#include "velkctl/leftovers.h"
#include "velkctl/lock_holder.h"
#include "velkctl/progress.h"
#include "velkctl/result_codes.h"
#include "velkctl/stop_signals.h"
#include "velkctl/terminal.h"

namespace velkctl {
namespace {

constexpr std::string_view kTooLong = "given up, it took too long";
constexpr std::string_view kAnyWait = "the device to answer";
constexpr int kLongest = 24 * 60 * 60;

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;
using Seconds = std::chrono::seconds;

// A change that takes milliseconds is let finish for so long before a signal ends it half done.
constexpr Milliseconds kGrace{1000};
constexpr Milliseconds kFirstPause{50};
constexpr Milliseconds kLongestPause{1000};

// A command on its way, and what it takes to tell about it.
struct Call {
    const Command& command;
    const Data& data;
    const std::string& what;
    std::optional<Clock::time_point> deadline;
    Report& report;
};

// Takes as long as files and the tools that copy them.
bool IsShort(const Command& command) {
    return LongestCall(command).awaited.empty();
}

enum class Outcome { kAnswered, kInterrupted, kTimedOut };

// Sets `seconds` to what an option asks for; false, after refusing it, when that is no number.
bool TakeSeconds(const char* option, const std::optional<std::string>& word, Report& report,
                 int& seconds) {
    if (!word) {
        return true;
    }
    const char* end = word->data() + word->size();
    const auto [stop, error] = std::from_chars(word->data(), end, seconds);
    if (error == std::errc() && stop == end && seconds >= 1 && seconds <= kLongest) {
        return true;
    }
    report.Refuse(std::string(option) + ": " + Quoted(*word) +
                  " is not a time; give whole seconds, 1 to 86400");
    return false;
}

// Ends velkctl by the signal, with the output so far and, unless it is empty, this message.
[[noreturn]] void EndInterrupted(int signal, const std::string& message, Report& report) {
    if (!message.empty()) {
        report.Complain(message);
    }
    report.Finish(ExitStatus::kFailed);
    (void)FinishPrinting();
    EndBy(signal);
}

// Lets a signal through that came while the command was run, which is done now.
void LetThrough(const StopSignals& signals, const Call& call, const Answer& answer) {
    const int signal = signals.Pending();
    if (signal == 0) {
        return;
    }
    const bool changed = call.command.type != VELK_GET && answer.result == LIB_VELK_SUCCESS;
    if (changed) {
        const std::string done = call.command.type == VELK_SET ? " is changed" : " is done";
        EndInterrupted(signal, "interrupted; " + call.what + done + " already", call.report);
    }
    EndInterrupted(signal, call.report.is_json() ? "interrupted" : "", call.report);
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

[[noreturn]] void EndInTheMiddle(int signal, const Call& call) {
    const std::string half_done = HalfDone(call.command);
    if (!half_done.empty()) {
        EndInterrupted(signal, "interrupted; " + call.what + " " + half_done, call.report);
    }
    EndInterrupted(signal, call.report.is_json() ? "interrupted" : "", call.report);
}

// How long poll(2) may wait: until the deadline, and no longer than until the next full second
// when the time is shown. -1: for ever.
int PollTime(const Call& call, Clock::duration elapsed, bool is_shown) {
    std::optional<Clock::duration> left;
    if (call.deadline) {
        left = std::max(*call.deadline - Clock::now(), Clock::duration::zero());
    }
    if (is_shown) {
        const Clock::duration to_second = Seconds(1) - elapsed % Seconds(1);
        left = std::min(left.value_or(to_second), to_second);
    }
    return left ? static_cast<int>(std::chrono::ceil<Milliseconds>(*left).count()) : -1;
}

// The longest a person has to wait; 0 when there is no telling.
int LongestWait(const Blocking& blocking, int timeout_seconds) {
    if (blocking.seconds == 0 || timeout_seconds == 0) {
        return std::max(blocking.seconds, timeout_seconds);
    }
    return std::min(blocking.seconds, timeout_seconds);
}

// Waits for the answer, a signal or the deadline; an answer that is there counts first.
Outcome Await(const ChildCall& child, const StopSignals& signals, const Call& call,
              int timeout_seconds) {
    const Blocking blocking = LongestCall(call.command);
    const std::string_view awaited = blocking.awaited.empty() ? kAnyWait : blocking.awaited;
    const int longest = LongestWait(blocking, timeout_seconds);
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
        if (call.deadline && Clock::now() >= *call.deadline) {
            return Outcome::kTimedOut;
        }
        const long elapsed = std::chrono::floor<Seconds>(Clock::now() - start).count();
        if (elapsed > 0) {
            progress.Show(ProgressLine(call.what, awaited, elapsed, longest));
        }
    }
}

bool HasAnswer(const ChildCall& child, Milliseconds limit) {
    pollfd answer{child.fd(), POLLIN, 0};
    return poll(&answer, 1, static_cast<int>(limit.count())) == 1;
}

Answer AnswerOf(ChildCall& child, const Call& call) {
    const std::optional<Answer> answer = child.TakeAnswer();
    if (answer) {
        return *answer;
    }
    RemoveLeftovers(call.command, false);
    std::string note = call.what + ": the library ended without an answer";
    if (child.end_signal() != 0) {
        note.append(", by signal ").append(std::to_string(child.end_signal()));
        note.append(" (").append(strsignal(child.end_signal())).append(")");
    }
    call.report.Note(note);
    return {LIB_VELK_FAILURE, {}};
}

Answer GivenUp(const Command& command) {
    Answer answer{LIB_VELK_FAILURE, {}};
    answer.timed_out = true;
    const std::string half_done = HalfDone(command);
    if (!half_done.empty()) {
        answer.remark = "it " + half_done;
    }
    return answer;
}

// Runs a command in a process that can be given up.
Answer ExecuteWatched(const Call& call, int timeout_seconds) {
    const StopSignals signals;
    ChildCall child(call.command, call.data, signals);
    if (child.start_error() != 0) {
        call.report.Note(call.what + ": no process to run it in: " + strerror(child.start_error()));
        return {LIB_VELK_FAILURE, {}};
    }
    Outcome outcome = Await(child, signals, call, timeout_seconds);
    if (outcome == Outcome::kInterrupted && IsShort(call.command) && HasAnswer(child, kGrace)) {
        outcome = Outcome::kAnswered;
    }
    if (outcome == Outcome::kAnswered) {
        Answer answer = AnswerOf(child, call);
        LetThrough(signals, call, answer);
        return answer;
    }
    const bool tools_ended = child.GiveUp();
    RemoveLeftovers(call.command, tools_ended);
    if (outcome == Outcome::kInterrupted) {
        EndInTheMiddle(signals.Pending(), call);
    }
    return GivenUp(call.command);
}

// Runs a command that is done before anybody would give it up.
Answer ExecuteHere(const Call& call) {
    const StopSignals signals;
    Answer answer = Execute(call.command, call.data);
    LetThrough(signals, call, answer);
    return answer;
}

// Only what is read in no time is spared a process. A change is not: it runs tools with system(3),
// which forgets a Ctrl-C that is pending.
Answer ExecuteOnce(const Call& call, const Patience& patience) {
    const bool is_quick = call.command.type == VELK_GET && IsShort(call.command);
    return is_quick && patience.timeout_seconds == 0
               ? ExecuteHere(call)
               : ExecuteWatched(call, patience.timeout_seconds);
}

bool IsLocked(const Answer& answer) {
    return !answer.timed_out && answer.result == LIB_VELK_LOCKED;
}

void TellWhoIsWaitedFor(Report& report) {
    const std::optional<LockHolder> holder = FindLockHolder();
    std::string note = "waiting for the lock";
    if (holder) {
        note.append(", held by ").append(Words(*holder));
        note.append(" since ").append(std::to_string(holder->seconds)).append(" s");
    }
    report.Note(note);
}

void Pause(Milliseconds time) {
    const auto seconds = std::chrono::floor<Seconds>(time);
    const timespec pause{seconds.count(), std::chrono::nanoseconds(time - seconds).count()};
    (void)nanosleep(&pause, nullptr);
}

// Tries again until the lock is free or the time is over.
Answer TryAgain(const Call& call, const Patience& patience, Answer answer) {
    TellWhoIsWaitedFor(call.report);
    Milliseconds left = Seconds(patience.timeout_seconds == 0
                                    ? patience.wait_seconds
                                    : std::min(patience.wait_seconds, patience.timeout_seconds));
    for (Milliseconds pause = kFirstPause; IsLocked(answer) && left > Milliseconds::zero();
         pause = std::min(pause * 2, kLongestPause)) {
        const Milliseconds now = std::min(pause, left);
        Pause(now);
        left -= now;
        if (call.deadline && Clock::now() >= *call.deadline) {
            break;  // nothing has been done yet, and nothing is to be given up half done
        }
        answer = ExecuteOnce(call, patience);
    }
    return answer;
}

}  // namespace

std::optional<Patience> PatienceOf(const Invocation& invocation, Report& report) {
    Patience patience;
    if (!TakeSeconds("--wait", invocation.wait, report, patience.wait_seconds) ||
        !TakeSeconds("--timeout", invocation.timeout, report, patience.timeout_seconds)) {
        return std::nullopt;
    }
    return patience;
}

Answer ExecutePatiently(const Command& command, const Data& data, const Patience& patience,
                        const std::string& what, Report& report) {
    std::optional<Clock::time_point> deadline;
    if (patience.timeout_seconds > 0) {
        deadline = Clock::now() + Seconds(patience.timeout_seconds);
    }
    const Call call{command, data, what, deadline, report};
    Answer answer = ExecuteOnce(call, patience);
    if (IsLocked(answer) && patience.wait_seconds > 0) {
        answer = TryAgain(call, patience, answer);
    }
    if (IsLocked(answer)) {
        if (const std::optional<LockHolder> holder = FindLockHolder()) {
            answer.remark = Words(*holder) + " holds the lock";
        }
    }
    return answer;
}

ExitStatus StatusOf(const Answer& answer) {
    return answer.timed_out ? ExitStatus::kTimedOut : FindResultCode(answer.result).status;
}

std::string WhyNot(const Answer& answer) {
    return answer.timed_out ? std::string(kTooLong)
                            : std::string(FindResultCode(answer.result).words);
}

std::string DescribeFailure(std::string_view what, const Answer& answer) {
    std::string text = answer.timed_out ? std::string(what).append(": ").append(kTooLong)
                                        : DescribeFailure(what, answer.result);
    if (!answer.remark.empty()) {
        text.append("; ").append(answer.remark);
    }
    return text;
}

}  // namespace velkctl
