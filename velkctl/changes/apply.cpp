// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// apply.cpp - carries out a plan as one change, which is put back if a step fails.
#include "velkctl/changes/apply.h"

#include <algorithm>
#include <chrono>
#include <set>

#include "velkctl/changes/dhcp_end.h"
#include "velkctl/changes/interface_restart.h"
#include "velkctl/files/tool_run.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

class Run {
  public:
    Run(const ApplyPlan& plan, ChangeRecord& record, const TimeLimits& limits, const Device& device,
        Report& report)
        : plan_(plan), record_(record), limits_(limits), device_(device), report_(report) {}

    ApplyResult Finish() {
        if (const auto failure = record_.Begin(AllSteps(), plan_.restarts, device_)) {
            report_.Complain(failure->problem);
            result_.status = failure->status;
            return std::move(result_);
        }
        const bool is_done = EndClients() && MakeSteps() && SwitchBack() && Pass(record_.Flush()) &&
                             Restart() && Verify() && Ask() && Pass(record_.Finish());
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

    bool Pass(const std::optional<Problem>& problem) {
        if (problem) {
            report_.Complain(*problem);
        }
        return !problem;
    }

    bool EndClients() {
        for (const std::string& interface : plan_.restarts) {
            if (SetsMethod(plan_, interface, VELK_METHOD_STATIC) &&
                HasDhcpClient(interface, device_)) {
                taken_down_.insert(interface);
                if (!Pass(EndDhcpClient(interface))) {
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
            return MakeStep(planned.change);
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
            return !Differs(wanted) || MakeStep(wanted);
        });
    }

    bool Restart() {
        for (const std::string& interface : plan_.restarts) {
            const auto start = std::chrono::steady_clock::now();
            taken_down_.insert(interface);
            const RestartOutcome outcome = RestartInterface(interface, limits_, device_);
            const auto time = std::chrono::steady_clock::now() - start;
            const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(time).count();
            result_.restarts.push_back({interface, static_cast<int>(seconds), outcome.state});
            record_.StepMade();  // a DHCP client may have written a file
            if (!Pass(outcome.problem)) {
                return false;
            }
        }
        return true;
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
            RunTool({"sh", "-c", plan_.confirm_if}, std::chrono::seconds(plan_.confirm_seconds));
        if (run.ended && run.status == 0) {
            return true;
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
        for (const std::string& interface : taken_down_) {
            if (SetsMethod(plan_, interface, VELK_METHOD_DHCP) &&
                HasDhcpClient(interface, device_)) {
                (void)Pass(EndDhcpClient(interface));
            }
        }
        result_.status = record_.TakeBack(device_, report_);
        for (const std::string& interface : taken_down_) {
            (void)Pass(RestartInterface(interface, limits_, device_).problem);
        }
        record_.FinishTakeBack();
    }

    const ApplyPlan& plan_;
    ChangeRecord& record_;
    const TimeLimits limits_;
    const Device& device_;
    Report& report_;
    ApplyResult result_;
    std::set<std::string> taken_down_;  // interfaces that are or were down
};

}  // namespace

ApplyResult Apply(const ApplyPlan& plan, ChangeRecord& record, const TimeLimits& limits,
                  const Device& device, Report& report) {
    return Run(plan, record, limits, device, report).Finish();
}

}  // namespace velkctl
