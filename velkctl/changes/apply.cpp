// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// apply.cpp - carries out a plan as one change, which is put back if a step fails.
#include "velkctl/changes/apply.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <set>

#include "velkctl/call/answer.h"
#include "velkctl/call/device.h"
#include "velkctl/call/watched_call.h"
#include "velkctl/changes/change_set.h"
#include "velkctl/changes/dhcp_end.h"
#include "velkctl/changes/interface_restart.h"
#include "velkctl/files/interface_state.h"
#include "velkctl/files/tool_run.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_change.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

constexpr char kRepeat[] = "apply the change again";

// The old state is put back without --timeout.
TimeLimits LimitsOfTakingBack(const TimeLimits& limits) {
    return {.wait_seconds = std::max(limits.wait_seconds, kTakeBackSeconds)};
}

// The library's refusal has its reason as a detail, an interface that is not up as its message.
Problem NotRestartedAgain(const std::string& interface, const RestartOutcome& outcome) {
    Problem problem = *outcome.problem;
    if (!outcome.state.is_null()) {
        const std::string reason = problem.message.substr(interface.size() + 2);
        problem.detail.insert(0, reason + (problem.detail.empty() ? "" : "; "));
    }
    problem.message = interface + ": could not be restarted after the change was taken back";
    problem.remedy = "'velkctl recover' tries again";
    return problem;
}

class Application {
  public:
    Application(const ApplyPlan& plan, ChangeRecord& record, const TimeLimits& limits,
                const StopSignals& signals, Report& report)
        : plan_(plan),
          record_(record),
          limits_(limits),
          signals_(signals),
          report_(report),
          device_(limits, report, OnSignal::kEndCommand),
          patient_(LimitsOfTakingBack(limits), report, OnSignal::kFinishCommand) {}

    ApplyResult CarryOut() {
        if (const auto failure = record_.Begin(AllSteps(), plan_.restarts, device_)) {
            (void)IsFreeOf(failure->problem);
            result_.status = failure->status;
            return std::move(result_);
        }
        const bool is_done = EndClients() && MakeSteps() && SwitchBack() &&
                             IsFreeOf(record_.Flush()) && Restart() && Verify() && Ask() &&
                             !IsInterrupted() && IsFreeOf(record_.Finish());
        if (!is_done) {
            TakeBack();
        }
        return std::move(result_);
    }

  private:
    // The record covers also the files of values that a step may switch.
    ChangeSet AllSteps() const {
        ChangeSet steps;
        for (const PlannedChange& planned : plan_.changes) {
            steps.push_back(planned.change);
        }
        steps.insert(steps.end(), plan_.beside.begin(), plan_.beside.end());
        return steps;
    }

    bool IsInterrupted() const { return signals_.Pending() != 0; }

    // Reports each problem once. After a signal, a step that was ended is no problem.
    bool IsFreeOf(const std::optional<Problem>& problem) {
        if (problem && !IsInterrupted()) {
            ReportOnce(*problem);
        }
        return !problem;
    }

    void ReportOnce(const Problem& problem) {
        if (reported_.insert(problem.message + problem.detail).second) {
            report_.Complain(problem);
        }
    }

    void TakeDown(const std::string& interface) {
        taken_down_.try_emplace(interface, ReadInterfaceState(interface).has_address());
    }

    bool EndClients() {
        for (const std::string& interface : plan_.restarts) {
            if (SetsMethod(plan_, interface, VELK_METHOD_STATIC) &&
                HasDhcpClient(interface, device_)) {
                TakeDown(interface);
                if (!IsFreeOf(EndDhcpClient(interface))) {
                    return false;
                }
            }
        }
        return true;
    }

    bool MakeStep(const SettingChange& change) {
        const std::vector<MadeChange> made = MakeChanges({change}, {}, device_, report_);
        record_.StepMade();
        return made.front().status == ExitStatus::kDone;
    }

    bool MakeSteps() {
        return std::ranges::all_of(plan_.changes, [this](const PlannedChange& planned) {
            return !IsInterrupted() && IsAsPlanned(planned) && MakeStep(planned.change);
        });
    }

    // The trial and the end of a client take their time. A value that another program has set
    // meanwhile would be lost: undo knows the one from before it.
    bool IsAsPlanned(const PlannedChange& planned) {
        const auto& [change, old_value] = planned;
        if (!old_value || IsSwitchedByStep(change.setting) || !Differs(change) ||
            !Differs({change.setting, *old_value})) {
            return true;
        }
        const std::string name = change.setting.name();
        return IsFreeOf(Problem{.message = name + ": not set",
                                .setting = name,
                                .detail = "another program has set it since this change began"});
    }

    // True if a set of another setting of the plan changes this one.
    bool IsSwitchedByStep(const Setting& setting) const {
        return std::ranges::any_of(plan_.changes, [&](const PlannedChange& planned) {
            return Includes(SettingsBeside(planned.change.setting), setting);
        });
    }

    // True if the device is known to have another value.
    bool Differs(const SettingChange& wanted) const {
        if (!wanted.setting.can_get()) {
            return false;
        }
        const Answer present = device_.Get(wanted.setting);
        return present.ok() && !IsSameValue(wanted.setting, present.data, wanted.value);
    }

    // A set of the method may switch an option that has its value already.
    bool SwitchBack() {
        return std::ranges::all_of(plan_.beside, [this](const SettingChange& wanted) {
            return !IsInterrupted() && (!Differs(wanted) || MakeStep(wanted));
        });
    }

    bool Restart() {
        return std::ranges::all_of(plan_.restarts, [this](const std::string& interface) {
            return !IsInterrupted() && RestartOne(interface);
        });
    }

    bool RestartOne(const std::string& interface) {
        const auto start = std::chrono::steady_clock::now();
        TakeDown(interface);
        const RestartOutcome outcome = RestartInterface(interface, limits_, device_, kRepeat);
        const auto time = std::chrono::steady_clock::now() - start;
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time).count();
        result_.restarts.push_back({interface, static_cast<int>(seconds), outcome.state});
        record_.StepMade();  // a DHCP client may have written a file
        return IsFreeOf(outcome.problem);
    }

    bool Verify() {
        bool holds_all = true;
        for (const SettingChange& wanted : AllSteps()) {
            if (Differs(wanted)) {
                const std::string name = wanted.setting.name();
                report_.Complain({.message = name + ": does not have its value any more",
                                  .setting = name,
                                  .detail = "a later step or another program has changed it"});
                holds_all = false;
            }
        }
        return holds_all;
    }

    // A command may decide in the place of a person.
    bool Ask() {
        if (plan_.confirm_if.empty()) {
            return true;
        }
        const ToolRun run =
            RunTool({"sh", "-c", plan_.confirm_if}, std::chrono::seconds(plan_.confirm_seconds),
                    [this] { return IsInterrupted(); });
        if (run.ended && run.status == 0) {
            return true;
        }
        if (IsInterrupted()) {
            return false;
        }
        const std::string reason =
            run.ended ? "has ended with status " + std::to_string(run.status)
                      : "has not ended within " + std::to_string(plan_.confirm_seconds) + " s";
        report_.Complain({.message = "apply: the change is not confirmed",
                          .detail = Quoted(plan_.confirm_if) + " " + reason});
        return false;
    }

    void TakeBack() {
        result_.is_taken_back = true;
        if (IsInterrupted()) {
            report_.Note("interrupted; the old state is being put back");
        }
        EndClientsOfChange();
        result_.status = record_.TakeBack(patient_, report_);
        bool are_up = true;
        for (const auto& [interface, had_address] : taken_down_) {
            are_up = RestartAgain(interface, had_address) && are_up;
        }
        record_.FinishTakeBack(are_up);
    }

    void EndClientsOfChange() {
        for (const auto& [interface, had_address] : taken_down_) {
            if (SetsMethod(plan_, interface, VELK_METHOD_DHCP) &&
                HasDhcpClient(interface, patient_)) {
                if (const std::optional<Problem> problem = EndDhcpClient(interface)) {
                    ReportOnce(*problem);
                }
            }
        }
    }

    // Returns false if the interface is not as before. One without an address before the change may
    // have none after it: the first restart has reported that.
    bool RestartAgain(const std::string& interface, bool had_address) {
        const RestartOutcome outcome =
            RestartInterface(interface, LimitsOfTakingBack(limits_), patient_);
        if (!outcome.problem) {
            return true;
        }
        if (!had_address && !outcome.state.is_null()) {
            ReportOnce(*outcome.problem);
            return true;
        }
        ReportOnce(NotRestartedAgain(interface, outcome));
        result_.status = ExitStatus::kPartlyBack;
        return false;
    }

    const ApplyPlan& plan_;
    ChangeRecord& record_;
    const TimeLimits limits_;
    const StopSignals& signals_;
    Report& report_;
    const Device device_;   // a signal or --timeout ends a step
    const Device patient_;  // nothing ends a step of putting back
    ApplyResult result_;
    std::map<std::string, bool> taken_down_;  // interfaces; true: with an address before
    std::set<std::string> reported_;
};

}  // namespace

ApplyResult Apply(const ApplyPlan& plan, ChangeRecord& record, const TimeLimits& limits,
                  const StopSignals& signals, Report& report) {
    return Application(plan, record, limits, signals, report).CarryOut();
}

}  // namespace velkctl
