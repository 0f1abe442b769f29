// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// apply.cpp - carries out a plan as one change, which is put back if a step fails.
#include "velkctl/changes/apply.h"

#include <algorithm>
#include <chrono>
#include <set>

#include "velkctl/call/answer.h"
#include "velkctl/changes/change_set.h"
#include "velkctl/changes/dhcp_end.h"
#include "velkctl/changes/interface_restart.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_change.h"

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
                             Restart() && Verify() && Pass(record_.Finish());
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
            return IsAsPlanned(planned) && MakeStep(planned.change);
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
        report_.Complain({.message = name + ": not set",
                          .setting = name,
                          .detail = "another program has set it since this change began"});
        return false;
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
