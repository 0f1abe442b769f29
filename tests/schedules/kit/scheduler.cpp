// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// scheduler.cpp - lets callers run one at a time.
#include "schedules/kit/scheduler.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <iterator>
#include <memory>
#include <sstream>
#include <utility>

#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "schedules/kit/shared_call.h"
#include "schedules/kit/timers.h"
#include "schedules/kit/traced_process.h"

namespace schedules {
namespace {

using State = TracedProcess::State;

constexpr char kGuardian[] = "guardian";
// A run has some thousand steps. One with more never ends.
constexpr size_t kMostSteps = 300'000;
constexpr int kLooksBeforeDeadlock = 50;
constexpr int kPauseOfAll = 60;  // in seconds, if all wait for their timers
constexpr useconds_t kPauseBeforeLook = 2'000;

// A caller and its processes, in the order in which they were started.
struct Actor {
    std::string name;
    Role role = Role::kCaller;
    std::function<int()> event{};
    pid_t first = 0;
    std::vector<std::unique_ptr<TracedProcess>> processes{};
    TracedProcess* running = nullptr;  // the one that made the last step
    bool has_happened = false;         // an event happens once
    bool is_asleep = false;
};

class Scheduler {
  public:
    Scheduler(const std::vector<Caller>& callers, const Schedule& schedule) : schedule_(schedule) {
        for (const Caller& caller : callers) {
            Add(caller);
        }
    }

    Course Run() {
        do {
            while (!IsOver() && course_.problem.empty()) {
                Advance();
            }
        } while (course_.problem.empty() && EndOneTimeout(0));  // a service may wait for nobody
        End();
        return std::move(course_);
    }

  private:
    void Add(const Caller& caller) {
        auto& actor = *actors_.emplace_back(std::make_unique<Actor>());
        actor.name = caller.name;
        actor.role = caller.role;
        if (caller.role == Role::kEvent) {
            actor.event = caller.work;
            return;
        }
        actor.first = StartTraced(caller.work);
        actor.processes.push_back(std::make_unique<TracedProcess>(actor.first, State::kReady));
    }

    // ---- Who can go on ----

    static bool HasEnded(const Actor& actor) {
        return actor.event ? actor.has_happened : actor.processes.empty();
    }

    static TracedProcess* NextOf(const Actor& actor) {
        if (actor.running != nullptr && actor.running->CanGoOn()) {
            return actor.running;
        }
        const auto next = std::ranges::find_if(
            actor.processes, [](const auto& process) { return process->CanGoOn(); });
        return next == actor.processes.end() ? nullptr : next->get();
    }

    static bool CanGoOn(const Actor& actor) {
        return actor.event ? !actor.has_happened : !actor.is_asleep && NextOf(actor) != nullptr;
    }

    // A service that still works for the others ends its work.
    bool IsOver() const {
        return std::ranges::all_of(actors_, [](const auto& actor) {
            const bool counts = actor->role == Role::kCaller;
            return counts ? HasEnded(*actor) : actor->role == Role::kEvent || !CanGoOn(*actor);
        });
    }

    std::vector<Actor*> Enabled(const Actor* without) const {
        std::vector<Actor*> enabled;
        for (const auto& actor : actors_) {
            if (actor.get() != without && CanGoOn(*actor)) {
                enabled.push_back(actor.get());
            }
        }
        return enabled;
    }

    // ---- The steps ----

    void Advance() {
        if (++steps_ > kMostSteps) {
            course_.problem = "the callers do not end";
            return;
        }
        if (current_ == nullptr || !CanGoOn(*current_)) {
            ChangeBecauseOfWait();
            return;
        }
        if (current_->event) {
            Happen(*current_);
            return;
        }
        TracedProcess& process = *NextOf(*current_);
        current_->running = &process;
        if (process.state() != State::kAtCall) {
            StepOf(process);
            return;
        }
        if (IsSleep(process.entry().number)) {
            Sleep(process);
            return;
        }
        MeetCall(process);
    }

    void MeetCall(TracedProcess& process) {
        const SharedCall call = ReadSharedCall(process.id(), process.entry());
        if (call.name.empty()) {
            MakePrivateCall(process);
            return;
        }
        if (!std::exchange(is_decided_, false)) {
            Decide(call);
            return;
        }
        course_.calls.push_back(current_->name + ": " + call.name);
        for (const auto& actor : actors_) {
            actor->is_asleep = false;
        }
        StepOf(process);
    }

    // A stop takes longer than most calls: it is left out where nothing can be seen.
    void MakePrivateCall(TracedProcess& process) {
        if (!ConcernsNobody(process.id(), process.entry())) {
            StepOf(process);
            return;
        }
        process.StepToNextCall();
        if (process.state() != State::kAtCall) {
            Settle(process);
        }
    }

    void Sleep(TracedProcess& process) {
        if (sleepers_.insert(process.id()).second) {
            current_->is_asleep = true;
            return;
        }
        sleepers_.erase(process.id());
        PassSleep(process.id(), process.entry());
        process.StepOverCall();
        Settle(process);
    }

    void StepOf(TracedProcess& process) {
        const bool is_call = process.state() == State::kAtCall;
        const bool may_wake = is_call && MayWake(process.entry());
        process.Step();
        const State usual = is_call ? State::kReady : State::kAtCall;
        if (may_wake || process.state() != usual) {
            Settle(process);
        }
    }

    void Happen(Actor& event) {
        event.has_happened = true;
        course_.calls.push_back(event.name);
        (void)event.event();
        ExpireAllTimers();
    }

    // ---- Decisions ----

    void Decide(const SharedCall& call) {
        const std::vector<Actor*> others = Enabled(current_);
        Actor* const chosen = Choose(*current_, others);
        Record(*chosen, *current_, others, call);
        if (chosen == current_) {
            is_decided_ = true;
        } else {
            ChangeTo(*chosen);
        }
    }

    void ChangeBecauseOfWait() {
        std::vector<Actor*> enabled = Enabled(nullptr);
        if (enabled.empty()) {
            enabled = Awoken();
        }
        if (enabled.empty()) {
            return;
        }
        Actor* const first = enabled.front();
        Actor* chosen = first;
        if (enabled.size() > 1) {
            enabled.erase(enabled.begin());
            chosen = Choose(*first, enabled);
            Record(*chosen, *first, enabled, {});
        }
        ChangeTo(*chosen);
    }

    Actor* Choose(Actor& usual, const std::vector<Actor*>& others) {
        const size_t number = course_.decisions.size();
        const auto choice = std::ranges::find(schedule_, number, &Choice::decision);
        if (choice == schedule_.end() || choice->caller == usual.name) {
            return &usual;
        }
        const auto found = std::ranges::find(others, choice->caller, &Actor::name);
        if (found == others.end()) {
            course_.problem = "at decision " + std::to_string(number) + " " + choice->caller +
                              " cannot go on: the run differs from the one before";
            return &usual;
        }
        return *found;
    }

    void Record(const Actor& chosen, const Actor& usual, const std::vector<Actor*>& others,
                const SharedCall& call) {
        Decision decision{.caller = chosen.name, .call = call, .turn = turn_};
        if (&usual != &chosen) {
            decision.others.push_back(usual.name);
        }
        for (const Actor* other : others) {
            if (other != &chosen) {
                decision.others.push_back(other->name);
            }
        }
        decision.is_free = call.name.empty() && (current_ == nullptr || HasEnded(*current_));
        decision.makes_call = !call.name.empty() && &usual == &chosen;
        course_.decisions.push_back(std::move(decision));
    }

    void ChangeTo(Actor& actor) {
        current_ = &actor;
        ++turn_;
    }

    // ---- Nobody can go on ----

    std::vector<Actor*> Awoken() {
        for (const auto& actor : actors_) {
            actor->is_asleep = false;
        }
        std::vector<Actor*> awake = Enabled(nullptr);
        if (awake.empty() && LetTimePass()) {
            awake = Enabled(nullptr);
        }
        if (awake.empty() && course_.problem.empty()) {
            course_.problem = "the callers wait for each other";
        }
        return awake;
    }

    // Returns true if somebody may go on now.
    bool LetTimePass() {
        if (EndOneTimeout(SYS_futex) || EndOneTimeout(0)) {
            return true;
        }
        PassSeconds(kPauseOfAll);
        ExpireAllTimers();
        return FindLateWakeUp();
    }

    void ExpireAllTimers() {
        for (const auto& actor : actors_) {
            for (const auto& process : actor->processes) {
                ExpireTimers(process->id());
            }
        }
        LookAtWaiting();
    }

    // Ends a call with this number, or any call.
    bool EndOneTimeout(long number) {
        for (const auto& actor : actors_) {
            for (const auto& process : actor->processes) {
                const bool waits = process->state() == State::kWaiting &&
                                   (number == 0 || process->entry().number == number);
                const long result = waits ? ResultOfTimeout(process->entry()) : 1;
                if (result != 1) {
                    process->Interrupt(result);
                    course_.calls.push_back(actor->name + ": its time is over");
                    return true;
                }
            }
        }
        return false;
    }

    // The kernel may still be at work for a process.
    bool FindLateWakeUp() {
        for (int looks = 0; looks < kLooksBeforeDeadlock; ++looks) {
            if (!Enabled(nullptr).empty()) {
                return true;
            }
            (void)usleep(kPauseBeforeLook);
            LookAtWaiting();
        }
        return false;
    }

    // ---- After a step ----

    // A call of this process may let others go on, which have returned from theirs before the next
    // step.
    void Settle(TracedProcess& process) {
        Adopt(*current_, process);
        if (process.TakeLeftSession()) {
            LeaveActor(process);
            return;
        }
        LookAtWaiting();
    }

    static void Adopt(Actor& actor, TracedProcess& parent) {
        if (const std::optional<pid_t> child = parent.TakeNewProcess()) {
            int status = 0;
            (void)Await(*child, status);  // it begins with a stop
            actor.processes.push_back(std::make_unique<TracedProcess>(*child, State::kReady));
        }
    }

    void LookAtWaiting() {
        for (bool has_changed = true; has_changed;) {
            has_changed = false;
            for (const auto& actor : actors_) {
                has_changed = LookAt(*actor) || has_changed;
            }
        }
    }

    // Returns true if a process has ended: its parent may wait for that.
    bool LookAt(Actor& actor) {
        for (size_t i = 0; i < actor.processes.size(); ++i) {
            TracedProcess& process = *actor.processes[i];
            if (process.state() == State::kWaiting) {
                process.Look();
                Adopt(actor, process);
            }
        }
        const auto ended = [](const auto& process) { return process->state() == State::kEnded; };
        for (const auto& process : actor.processes) {
            if (ended(process) && process->id() == actor.first) {
                NoteResult(actor, process->status());
            }
            if (ended(process) && process.get() == actor.running) {
                actor.running = nullptr;
            }
        }
        return std::erase_if(actor.processes, ended) != 0;
    }

    void NoteResult(const Actor& actor, int status) {
        course_.results[actor.name] =
            WIFEXITED(status) ? static_cast<int8_t>(WEXITSTATUS(status)) : -WTERMSIG(status);
    }

    // The guardian of a change outlives the run that has started it.
    void LeaveActor(const TracedProcess& process) {
        if (current_->first == process.id()) {
            return;
        }
        auto& actor = *actors_.emplace_back(std::make_unique<Actor>());
        actor.name = kGuardian;
        actor.role = Role::kService;
        actor.first = process.id();
        const auto found = std::ranges::find(current_->processes, &process,
                                             [](const auto& owned) { return owned.get(); });
        actor.processes.push_back(std::move(*found));
        current_->processes.erase(found);
        current_->running = nullptr;
    }

    void End() {
        for (const auto& actor : actors_) {
            if (!actor->processes.empty()) {
                course_.left.insert(actor->name);
            }
            for (const auto& process : actor->processes) {
                (void)kill(process->id(), SIGKILL);
            }
        }
        int status = 0;
        while (Await(-1, status) != -1) {
        }
    }

    const Ticks ticks_;
    const Schedule schedule_;
    std::vector<std::unique_ptr<Actor>> actors_;
    Actor* current_ = nullptr;
    bool is_decided_ = false;   // the running caller goes on with the call before which it is
    std::set<pid_t> sleepers_;  // the processes that are before a sleep that has begun
    size_t steps_ = 0;
    size_t turn_ = 0;
    Course course_;
};

}  // namespace

std::string TextOf(const Schedule& schedule) {
    std::string text;
    for (const Choice& choice : schedule) {
        text.append(text.empty() ? "" : " ");
        text.append(std::to_string(choice.decision)).append("=").append(choice.caller);
    }
    return text;
}

Schedule ParseSchedule(const std::string& text) {
    Schedule schedule;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const size_t end = word.find('=');
        schedule.push_back({std::stoul(word.substr(0, end)), word.substr(end + 1)});
    }
    return schedule;
}

Course Run(const std::vector<Caller>& callers, const Schedule& schedule) {
    return Scheduler(callers, schedule).Run();
}

bool CanStep() {
#ifdef __x86_64__
    return true;
#else
    return false;
#endif
}

}  // namespace schedules
