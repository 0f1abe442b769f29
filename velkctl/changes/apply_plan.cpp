// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// apply_plan.cpp - the steps that give the device a set of values.
#include "velkctl/changes/apply_plan.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

#include "velkctl/call/answer.h"
#include "velkctl/call/planned_values.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/files/interface_state.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/setting_change.h"
#include "velkctl/text/data_bytes.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr std::array<uint32_t, 6> kFirstSteps{VELK_CMD_IP_METHOD, VELK_CMD_IP_ADDRESS,
                                              VELK_CMD_NETMASK,   VELK_CMD_GATEWAY,
                                              VELK_CMD_APIPA,     VELK_CMD_DNS};

bool IsOfDaemon(const Setting& setting) {
    return setting.row->held_in.holder == Holder::kDaemon;
}

bool GetsLease(std::string_view interface, const PlannedValues& planned) {
    const std::optional<Data> method = planned.Get(VELK_CMD_IP_METHOD, interface);
    return method && (*method)[0] == VELK_METHOD_DHCP;
}

// The interfaces have one list of DNS servers.
std::optional<Problem> DnsConflict(const SettingChange& change, const ChangeSet& wanted) {
    const auto other = std::ranges::find_if(wanted, [&](const SettingChange& row) {
        return row.setting.row == change.setting.row &&
               row.setting.interface != change.setting.interface;
    });
    if (change.setting.row->id != VELK_CMD_DNS || other == wanted.end() ||
        IsSameValue(change.setting, change.value, other->value)) {
        return std::nullopt;
    }
    const std::string name = change.setting.name();
    return Problem{.message = name + ": another value than " + other->setting.name(),
                   .setting = name,
                   .detail = "eth0 and eth1 have one list of DNS servers",
                   .remedy = "give both the same servers, or one of them alone"};
}

// ---- Restarts ----------------------------------------------------------------------------------

bool NeedsRestart(const SettingChange& change) {
    switch (change.setting.row->held_in.takes_effect) {
        case TakesEffect::kAtRestart:
            return true;
        case TakesEffect::kOffAtLease:  // the client asks for the option after a restart
            return change.value[0] == VELK_ON;
        default:
            return false;
    }
}

// A setting of the whole device that needs a restart is one of the DHCP client.
bool Concerns(const SettingChange& change, std::string_view interface,
              const PlannedValues& planned) {
    return change.setting.interface.empty() ? GetsLease(interface, planned)
                                            : change.setting.interface == interface;
}

// Returns the reason why a restart would not have eth1 use its settings; empty if none.
std::string ReasonAgainstRestart(std::string_view interface) {
    if (interface != VELK_WIRELESS_INTERFACE) {
        return "";
    }
    if (!CheckAdapter().empty()) {
        return "no adapter is attached";
    }
    return ReadInterfaceState(VELK_WIRED_INTERFACE).has_link ? "the cable is in eth0" : "";
}

// ---- Comparison --------------------------------------------------------------------------------

class Planner {
  public:
    Planner(const ChangeSet& wanted, const Device& device)
        : wanted_(wanted), device_(device), planned_(device, wanted) {}

    ApplyPlan MakePlan(const RestartChoice& choice) {
        for (const SettingChange& change : wanted_) {
            Compare(change);
        }
        AddConflicts();
        AddBeside();
        SortSteps(plan_.changes);
        if (choice.is_automatic) {
            ChooseRestarts();
        } else if (!plan_.changes.empty()) {
            plan_.restarts = choice.interfaces;
        }
        return std::move(plan_);
    }

  private:
    void Compare(const SettingChange& change) {
        const Setting& setting = change.setting;
        if (IsAddressCommand(setting.row->id) && GetsLease(setting.interface, planned_)) {
            plan_.skipped.push_back(setting);
        } else if (!setting.can_get() || ShowsOtherMethod(setting)) {
            plan_.changes.push_back({change});
        } else if (!(is_daemon_silent_ && IsOfDaemon(setting))) {
            CompareValue(change, device_.Get(setting));
        }
    }

    // True for an address while the device shows that of a lease and will have the method static.
    bool ShowsOtherMethod(const Setting& setting) const {
        return IsAddressCommand(setting.row->id) && !device_.HasStaticMethod(setting.interface);
    }

    // A file without a line of the setting cannot be read, and can be set.
    void CompareValue(const SettingChange& change, const Answer& present) {
        if (!present.ok() && IsOfDaemon(change.setting)) {
            AddUnreadable(change.setting, present);
        } else if (!present.ok()) {
            plan_.changes.push_back({change});
        } else if (IsSameValue(change.setting, present.data, change.value)) {
            held_.push_back(change);
        } else {
            plan_.changes.push_back({change, present.data});
        }
    }

    // The daemon is not asked again: it may take its time to fail.
    void AddUnreadable(const Setting& setting, const Answer& answer) {
        is_daemon_silent_ = true;
        plan_.status = StatusWithCause(setting, answer);
        plan_.problems.push_back(
            ProblemOfGet(setting.name() + ": could not be compared", setting, answer));
    }

    void AddConflicts() {
        ChangeSet changes;
        for (const PlannedChange& planned : plan_.changes) {
            changes.push_back(planned.change);
        }
        std::vector<Problem> conflicts = FindConflicts(changes, {}, device_);
        for (const SettingChange& change : changes) {
            if (const std::optional<Problem> conflict = DnsConflict(change, wanted_)) {
                conflicts.push_back(*conflict);
            }
        }
        if (!conflicts.empty()) {
            plan_.status = ExitStatus::kInvalid;
            plan_.problems.insert(plan_.problems.begin(), conflicts.begin(), conflicts.end());
        }
    }

    void AddBeside() {
        AffectedSettings switched;
        for (const PlannedChange& planned : plan_.changes) {
            switched = UnionOf(std::move(switched), SettingsBeside(planned.change.setting));
        }
        for (const SettingChange& held : held_) {
            if (Includes(switched, held.setting)) {
                plan_.beside.push_back(held);
            }
        }
    }

    void ChooseRestarts() {
        for (const std::string interface : kInterfaces) {
            const auto needs_it = [&](const PlannedChange& planned) {
                return NeedsRestart(planned.change) &&
                       Concerns(planned.change, interface, planned_);
            };
            if (std::ranges::any_of(plan_.changes, needs_it)) {
                ChooseRestart(interface);
            }
        }
    }

    void ChooseRestart(const std::string& interface) {
        const std::string reason = ReasonAgainstRestart(interface);
        if (reason.empty()) {
            plan_.restarts.push_back(interface);
            return;
        }
        plan_.notes.push_back({.message = interface + ": not restarted; " + reason,
                               .detail = "its settings take effect at its next restart"});
    }

    const ChangeSet& wanted_;
    const Device& device_;
    const PlannedValues planned_;
    ApplyPlan plan_;
    ChangeSet held_;  // the values that the device has already
    bool is_daemon_silent_ = false;
};

}  // namespace

bool SetsMethod(const ApplyPlan& plan, std::string_view interface, int method) {
    return std::ranges::any_of(plan.changes, [&](const PlannedChange& planned) {
        const auto& [setting, value] = planned.change;
        return setting.row->id == VELK_CMD_IP_METHOD && setting.interface == interface &&
               value[0] == method;
    });
}

bool IsSameValue(const Setting& setting, const Data& one, const Data& other) {
    return setting.row->kind->ToJson(one) == setting.row->kind->ToJson(other);
}

void SortSteps(std::vector<PlannedChange>& changes) {
    std::ranges::sort(changes, {}, [](const PlannedChange& planned) {
        const auto& [setting, value] = planned.change;
        const auto* rank = std::ranges::find(kFirstSteps, setting.row->id);
        const bool is_cleared_key = setting.row->secret && value == Data{};
        return std::tuple(rank, is_cleared_key, setting.interface, setting.row);
    });
}

ApplyPlan MakePlan(const ChangeSet& wanted, const RestartChoice& choice, const Device& device) {
    return Planner(wanted, device).MakePlan(choice);
}

}  // namespace velkctl
