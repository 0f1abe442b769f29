// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// guardian.cpp - the process that takes a change back if it is not confirmed in time.
#include "velkctl/guardian/guardian.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string_view>
#include <utility>

#include <poll.h>
#include <sys/inotify.h>
#include <sys/prctl.h>
#include <sys/timerfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include "lib/base/file_io.h"
#include "lib/base/unique_fd.h"
#include "velkctl/call/device.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/changes/revert.h"
#include "velkctl/files/boot_clock.h"
#include "velkctl/files/lock_holder.h"
#include "velkctl/files/process_list.h"
#include "velkctl/guardian/control_group.h"
#include "velkctl/guardian/guardian_process.h"
#include "velkctl/guardian/news.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/open_change.h"
#include "velkctl/journal/waiting_change.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/text/numbers.h"

namespace velkctl {
namespace {

constexpr int64_t kSecond = 1000;
constexpr int64_t kFirstPause = kSecond;
// An interface may not come up at once; one without a cable or a DHCP server does not come up.
constexpr int kMostRestarts = 5;
constexpr int64_t kLongestPause = 30 * kSecond;
// Something that could not be put back rarely heals by itself.
constexpr int64_t kLongestStuckPause = 3600 * kSecond;
constexpr int64_t kHolderPause = 60 * kSecond;
// A run that is still at work at its latest end has this time to stop.
constexpr int64_t kStopTime = 10 * kSecond;
// A run that takes its change back by itself has this time after its latest end.
constexpr int64_t kTakeBackTime = 1800 * kSecond;
constexpr int64_t kMilliseconds = 1000;
constexpr int64_t kNanosecondsOfOne = 1'000'000;

// ---- The change ---------------------------------------------------------------------------------

std::optional<StoredEntry> FindEntry(const std::string& id) {
    for (StoredEntry& stored : ReadJournal().entries) {
        if (stored.decoded.entry.id == id) {
            return std::move(stored);
        }
    }
    return std::nullopt;
}

// The run that makes the change.
struct Caller {
    pid_t process = 0;
    int64_t start = 0;
};

Caller CallerOf(std::string_view word) {
    const auto number = ParseNumber<pid_t>(word);
    const std::optional<Process> process = number ? FindProcess(*number) : std::nullopt;
    return process ? Caller{process->id, process->start} : Caller{};
}

class Guardian {
  public:
    Guardian(StoredEntry stored, Caller caller);

    // Returns when nothing is left to do for the change.
    void Watch();

  private:
    bool IsOver() const;
    bool HasCaller() const { return is_caller_there_; }
    bool MustRevert() const;
    std::string_view CauseOfRevert() const;
    void LookForCaller();
    int64_t LatestEnd() const;  // a run that is still there then hangs
    void StopLateCaller();
    void TryToRevert();
    bool TryUnderLock();
    void PauseBeforeNextTry(bool is_stuck);
    void NameHolder();
    int64_t NextTime() const;
    void Sleep();

    StoredEntry stored_;
    const int64_t boot_time_;  // the one of the change
    const Caller caller_;
    const velk::UniqueFd timer_;
    const velk::UniqueFd notify_;
    bool is_caller_there_ = true;
    bool has_begun_ = false;  // to take the change back
    bool has_restarted_ = false;
    bool has_announced_ = false;
    bool is_settled_ = false;  // the rest needs a decision: velkctl recover
    int tries_ = 0;
    int stop_signal_ = SIGTERM;  // the next one for a late caller
    int64_t pause_ = kFirstPause;
    int64_t next_try_ = 0;     // milliseconds since boot
    int64_t next_holder_ = 0;  // when the holder of the lock is named again
};

Guardian::Guardian(StoredEntry stored, Caller caller)
    : stored_(std::move(stored)),
      boot_time_(stored_.decoded.entry.boot_time),
      caller_(caller),
      timer_(timerfd_create(CLOCK_BOOTTIME, TFD_CLOEXEC | TFD_NONBLOCK)),
      notify_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    (void)inotify_add_watch(notify_.get(), stored_.path.c_str(), IN_MODIFY | IN_ATTRIB);
}

void Guardian::Watch() {
    for (;;) {
        LookForCaller();
        stored_ = ReadAgain(stored_);
        if (IsOver()) {
            return;
        }
        if (MustRevert()) {
            TryToRevert();
        } else {
            StopLateCaller();
            Sleep();
        }
    }
}

// An entry that cannot be read cannot be put back, either. In an emptied journal, a later change
// has the same name.
bool Guardian::IsOver() const {
    const JournalEntry& entry = stored_.decoded.entry;
    return is_settled_ || !stored_.is_whole() || entry.is_closed() || entry.boot_time != boot_time_;
}

// While the run is there, it takes its change back itself. It may also be there to ask a person.
bool Guardian::MustRevert() const {
    if (MillisecondsSinceBoot() < next_try_) {
        return false;
    }
    switch (stored_.decoded.entry.state) {
        case EntryState::kPrepared:
        case EntryState::kApplying:
            return !HasCaller();
        case EntryState::kWaiting:
            return IsOverdue(stored_.decoded.entry);
        default:
            return has_begun_ || !HasCaller();
    }
}

std::string_view Guardian::CauseOfRevert() const {
    return stored_.decoded.entry.state == EntryState::kWaiting ? kCauseDeadline : kCauseInterrupted;
}

void Guardian::LookForCaller() {
    pollfd lifeline{kLifelineFd, POLLIN, 0};
    if (is_caller_there_ && poll(&lifeline, 1, 0) == 1) {
        is_caller_there_ = false;
        next_try_ = 0;
        (void)close(kLifelineFd);
    }
}

int64_t Guardian::LatestEnd() const {
    const JournalEntry& entry = stored_.decoded.entry;
    const bool is_taken_back =
        entry.state == EntryState::kReverting || entry.state == EntryState::kStuck;
    return entry.window.deadline + (is_taken_back ? kTakeBackTime : 0);
}

// SIGCONT, because Ctrl-Z at a terminal may have stopped it.
void Guardian::StopLateCaller() {
    const bool is_awaited = HasCaller() && !has_begun_;
    if (!is_awaited || MillisecondsSinceBoot() < std::max(LatestEnd(), next_try_)) {
        return;
    }
    const std::optional<Process> process = FindProcess(caller_.process);
    if (process && process->start == caller_.start) {
        (void)kill(caller_.process, stop_signal_);
        (void)kill(caller_.process, SIGCONT);
    }
    stop_signal_ = SIGKILL;
    next_try_ = MillisecondsSinceBoot() + kStopTime;
}

void Guardian::TryToRevert() {
    if (!TryUnderLock()) {
        NameHolder();
        PauseBeforeNextTry(false);
    }
}

// Returns false while another program changes settings.
bool Guardian::TryUnderLock() {
    const JournalLock lock(JournalLock::Use::kAlone, 1);
    if (lock.error() == EWOULDBLOCK) {
        return false;
    }
    // Another run may have decided until now.
    stored_ = ReadAgain(stored_);
    if (IsOver() || !MustRevert()) {
        return true;
    }
    Report report(Report::Form::kText);
    const Device device({}, report);
    OpenChange change(stored_);
    const RevertOptions options{.restarts = !has_restarted_,
                                .closes_if_down = ++tries_ >= kMostRestarts,
                                .cause = std::string(CauseOfRevert()),
                                .is_untold = true};
    has_begun_ = true;
    const RevertResult result = Revert(change, options, 0, device, report);
    if (result.is_locked()) {
        return false;
    }
    has_restarted_ = result.restarts.status == ExitStatus::kDone;
    is_settled_ = result.put_back.needs_decision() && has_restarted_;
    if (!has_restarted_) {
        LogWarning("change " + stored_.decoded.entry.id +
                   " has been put back, but not every interface has come up");
    }
    if (!has_announced_) {
        Announce(change.entry(), result.put_back.left);
        has_announced_ = true;
    }
    PauseBeforeNextTry(!result.put_back.left.empty());
    return true;
}

void Guardian::PauseBeforeNextTry(bool is_stuck) {
    next_try_ = MillisecondsSinceBoot() + pause_;
    pause_ = std::min(2 * pause_, is_stuck ? kLongestStuckPause : kLongestPause);
}

void Guardian::NameHolder() {
    if (MillisecondsSinceBoot() < next_holder_) {
        return;
    }
    next_holder_ = MillisecondsSinceBoot() + kHolderPause;
    const std::string holder = DescribeLockHolder();
    LogWarning("change " + stored_.decoded.entry.id + " cannot be put back while the lock is held" +
               (holder.empty() ? "" : ": " + holder));
}

int64_t Guardian::NextTime() const {
    const bool is_pause = next_try_ > MillisecondsSinceBoot();
    return is_pause ? next_try_ : LatestEnd();
}

// Without a wake-up until something happens. A moment of the past ends the sleep at once.
void Guardian::Sleep() {
    const int64_t left = std::max<int64_t>(NextTime() - MillisecondsSinceBoot(), 0);
    itimerspec time{};
    time.it_value.tv_sec = static_cast<time_t>(left / kMilliseconds);
    time.it_value.tv_nsec = static_cast<long>(left % kMilliseconds * kNanosecondsOfOne + 1);
    (void)timerfd_settime(timer_.get(), 0, &time, nullptr);
    std::array<pollfd, 3> events{{{timer_.get(), POLLIN, 0},
                                  {notify_.get(), POLLIN, 0},
                                  {is_caller_there_ ? kLifelineFd : -1, POLLIN, 0}}};
    (void)poll(events.data(), events.size(), -1);
    std::array<char, 4096> ignored{};
    (void)velk::ReadSome(notify_.get(), ignored.data(), ignored.size());
    (void)velk::ReadSome(timer_.get(), ignored.data(), sizeof(uint64_t));
}

// ---- The processes ------------------------------------------------------------------------------

void SayReady() {
    (void)velk::WriteAll(kReadyFd, std::to_string(getpid()));
    (void)close(kReadyFd);
}

int WatchChange(const std::string& id, const Caller& caller, bool is_first) {
    std::optional<StoredEntry> stored = FindEntry(id);
    if (!stored) {
        return 0;
    }
    Guardian guardian(std::move(*stored), caller);
    if (is_first) {
        SayReady();
    }
    guardian.Watch();
    return 0;
}

void AwaitEnd(pid_t guardian, int& status) {
    while (waitpid(guardian, &status, 0) == -1 && errno == EINTR) {
    }
}

}  // namespace

bool IsGuardianCommand(const char* name) {
    return name != nullptr && name == kGuardianName;
}

int RunGuardian(const std::vector<std::string>& words) {
    if (words.size() != 2) {
        return 2;
    }
    IgnoreStopSignals();
    (void)signal(SIGPIPE, SIG_DFL);  // also for the tools that it starts
    (void)prctl(PR_SET_NAME, "velk-guardian");
    LeaveSession(words.front());
    const Caller caller = CallerOf(words.back());
    for (bool is_first = true;; is_first = false) {
        const pid_t guardian = fork();
        if (guardian == 0) {
            return WatchChange(words.front(), caller, is_first);
        }
        if (is_first) {
            (void)close(kReadyFd);
        }
        int status = 0;
        if (guardian > 0) {
            AwaitEnd(guardian, status);
        }
        if (guardian > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0) {
            return 0;
        }
        (void)sleep(1);  // a guardian that fails at once must not keep the device busy
    }
}

}  // namespace velkctl
