// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// changes.cpp - changes of settings, made as velkctl makes them but with real tools.
#include "fault/kit/changes.h"

#include <cstdlib>
#include <cstring>

#include "velkctl/call/device.h"
#include "velkctl/changes/apply.h"
#include "velkctl/changes/apply_plan.h"
#include "velkctl/changes/journal_record.h"
#include "velkctl/journal/set_record.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"

namespace fault {

using velkctl::ChangeSet;
using velkctl::Report;
using velkctl::Setting;
using velkctl::SettingChange;

std::optional<SettingChange> ChangeOf(const _velk_request& request) {
    const std::string interface(request.interface, strnlen(request.interface, VELK_INTERFACE_SIZE));
    const std::optional<Setting> setting = velkctl::FindSetting(request.command_id, interface);
    if (!setting || setting->row->held_in.holder != velkctl::Holder::kFile) {
        return std::nullopt;
    }
    SettingChange change{*setting, {}};
    memcpy(change.value.data(), request.data, change.value.size());
    return change;
}

int MakeSet(Device& tools, const ChangeSet& changes, const std::string& path) {
    tools.UseRealTools();
    setenv("PATH", path.c_str(), 1);
    Report report(Report::Form::kText);
    velkctl::Device device({}, report);
    velkctl::SetRecord record(changes, 0, device, report);
    const velkctl::Answer answer = device.Set(changes.front().setting, changes.front().value);
    record.Finish();
    return answer.ok() ? 0 : 1;
}

int MakeApply(Device& tools, const ChangeSet& changes, const std::string& path) {
    tools.UseRealTools();
    setenv("PATH", path.c_str(), 1);
    Report report(Report::Form::kText);
    const velkctl::Device device({}, report);
    velkctl::JournalRecord record({}, report);
    const velkctl::ApplyPlan plan = MakePlan(changes, {.is_automatic = false}, device);
    return static_cast<int>(Apply(plan, record, {}, device, report).status);
}

}  // namespace fault
