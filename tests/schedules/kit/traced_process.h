// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// traced_process.h - a process or thread that stops before the calls the scheduler has to see.
#ifndef TESTS_SCHEDULES_KIT_TRACED_PROCESS_H_
#define TESTS_SCHEDULES_KIT_TRACED_PROCESS_H_

#include <functional>
#include <optional>

#include <sched.h>
#include <sys/types.h>

#include "lib/base/unique_fd.h"
#include "schedules/kit/shared_call.h"

namespace schedules {

// waitpid(2), also if a signal interrupts it.
pid_t Await(pid_t process, int& status);

// Starts a process that stops before its first call. Throws std::system_error if processes cannot
// be traced.
pid_t StartTraced(const std::function<int()>& work);

// As long as this exists, waits for a process are interrupted now and then to see whether the
// process waits itself. This process and those that it starts share one processor: they take turns.
class Ticks {
  public:
    Ticks();
    ~Ticks();
    Ticks(const Ticks&) = delete;
    Ticks& operator=(const Ticks&) = delete;

  private:
    cpu_set_t processors_{};
};

class TracedProcess {
  public:
    enum class State {
        kReady,    // stopped between two calls
        kAtCall,   // stopped before a call, see entry()
        kWaiting,  // in a call that waits for something
        kEnded
    };

    TracedProcess(pid_t id, State state);

    pid_t id() const { return id_; }
    State state() const { return state_; }
    bool CanGoOn() const { return state_ == State::kReady || state_ == State::kAtCall; }
    const Entry& entry() const { return entry_; }
    // The status of waitpid(2) after the end.
    int status() const { return status_; }
    // Returns the process or thread that this one has just started.
    std::optional<pid_t> TakeNewProcess();
    // True once after a successful setsid(2).
    bool TakeLeftSession();

    // Lets it go on until it stops, waits or ends.
    void Step();
    // The same, but does not stop after the call before which it is stopped.
    void StepToNextCall();
    // The same as Step(), but the call before which it is stopped does nothing and returns 0.
    void StepOverCall();
    // Finds out whether one that waits still does.
    void Look();
    // Lets the call of one that waits return this.
    void Interrupt(long result);

  private:
    void Resume(int request);
    void AwaitStop(bool may_wait);
    bool TakeStatus(int flags);
    bool IsRunning() const;
    bool IsAsleep() const;
    char StateLetter() const;
    void HandleStatus(int status);
    void HandleEvent(int event);
    void HandleReturn();

    const pid_t id_;
    State state_;
    Entry entry_;
    velk::UniqueFd call_file_;  // "running", or the call that it is in
    velk::UniqueFd stat_file_;
    int signal_ = 0;
    int status_ = 0;
    bool awaits_new_program_ = false;  // since a vfork(2)
    std::optional<long> result_;       // replaces the one of the call
    std::optional<pid_t> new_process_;
    bool has_left_session_ = false;
};

}  // namespace schedules

#endif  // TESTS_SCHEDULES_KIT_TRACED_PROCESS_H_
