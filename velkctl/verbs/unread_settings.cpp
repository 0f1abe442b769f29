// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// unread_settings.cpp - settings that could not be read, grouped by the reason.
#include "velkctl/verbs/unread_settings.h"

#include <algorithm>
#include <string>

namespace velkctl {
namespace {

bool HaveSameReason(const Problem& one, const Problem& other) {
    return one.detail == other.detail && one.remedy == other.remedy && one.result == other.result;
}

}  // namespace

void UnreadSettings::Add(const Setting& setting, const Problem& problem, const Report& report) {
    const auto same = std::ranges::find_if(
        groups_, [&](const Group& group) { return HaveSameReason(group.problem, problem); });
    if (same == groups_.end() || report.is_json()) {
        groups_.push_back({problem, {setting}});
    } else {
        same->settings.push_back(setting);
    }
}

void UnreadSettings::Complain(Report& report) const {
    for (const Group& group : groups_) {
        report.Complain(ProblemOf(group));
    }
}

Problem UnreadSettings::ProblemOf(const Group& group) {
    Problem problem = group.problem;
    if (group.settings.size() > 1) {
        const std::string names = NameLines(group.settings);
        problem.message = std::to_string(group.settings.size()) + " settings could not be read:\n" +
                          names.substr(0, names.size() - 1);
    }
    return problem;
}

}  // namespace velkctl
