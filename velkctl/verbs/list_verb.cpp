// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// list_verb.cpp - the verb that lists the settings.
#include <string>
#include <vector>

#include "velkctl/cli/verbs.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/verbs/setting_groups.h"
#include "velkctl/verbs/setting_values.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

std::string Directions(const Setting& setting) {
    return std::string(setting.can_get() ? "get" : "   ") + (setting.can_set() ? " set" : "    ");
}

std::string RowsOf(const SettingGroup& group, size_t width) {
    std::string rows;
    for (const Setting& setting : group) {
        const std::string start = NameColumn(setting, width) + Directions(setting) + "  ";
        rows.append(start).append(CutToFit(setting.row->help, start.size())).append("\n");
    }
    return rows;
}

}  // namespace

ExitStatus RunList(const Invocation& invocation, Report& report) {
    std::vector<Setting> settings = Settings();
    if (!invocation.words.empty()) {
        std::erase_if(settings, [&](const Setting& setting) {
            return setting.interface != invocation.words.front();
        });
    }
    const size_t width = NameWidth(settings);
    const std::vector<SettingGroup> groups = GroupsOf(settings);
    GroupedRows rows(groups.size(), !invocation.no_pager, report);
    Json listed = Json::array();
    for (const SettingGroup& group : groups) {
        rows.Begin(group);
        rows.Add(RowsOf(group, width));
        for (const Setting& setting : group) {
            listed.push_back(FactsInJson(setting));
        }
    }
    rows.Finish();
    report.Member("settings", std::move(listed));
    return ExitStatus::kDone;
}

}  // namespace velkctl
