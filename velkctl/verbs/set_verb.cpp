// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// set_verb.cpp - the verb that changes settings.
#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/cli/verb_arguments.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_change.h"
#include "velkctl/verbs/change_set.h"
#include "velkctl/verbs/change_words.h"
#include "velkctl/verbs/set_notes.h"
#include "velkctl/verbs/setting_values.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

void AddConflicts(RequestedChanges& requested, bool force, const Device& device) {
    std::vector<Problem>& problems = requested.problems;
    const std::vector<Problem> conflicts =
        force ? std::vector<Problem>() : FindConflicts(requested.changes, problems, device);
    problems.insert(problems.end(), conflicts.begin(), conflicts.end());
}

// Returns the changes to make, sorted. Asks for secrets only if the other values have no problem.
// Reports all problems; then returns nothing.
ChangeSet CheckedChanges(const Invocation& invocation, const Device& device, Report& report) {
    RequestedChanges requested = ReadChanges(invocation);
    AddConflicts(requested, invocation.force, device);
    if (requested.problems.empty() && !requested.unread_secrets.empty()) {
        AskForSecrets(requested, invocation.force);
        AddConflicts(requested, invocation.force, device);
    }
    for (const Problem& problem : requested.problems) {
        report.Complain(problem);
    }
    SortChanges(requested.changes);
    return requested.problems.empty() ? std::move(requested.changes) : ChangeSet();
}

Json HeldInJson(const MadeChange& made) {
    return made.held ? Json(*made.held) : Json(nullptr);
}

std::vector<Setting> SettingsToSet(const ChangeSet& changes) {
    std::vector<Setting> settings;
    for (const SettingChange& change : changes) {
        settings.push_back(change.setting);
    }
    return settings;
}

// Returns the settings that hold their new value, as far as is known.
std::vector<Setting> SettingsThatHold(const ChangeSet& changes,
                                      const std::vector<MadeChange>& made) {
    std::vector<Setting> settings;
    for (size_t i = 0; i < made.size(); ++i) {
        if (made[i].has_effect()) {
            settings.push_back(changes[i].setting);
        }
    }
    return settings;
}

// A setting of the form "NAME VALUE...".
Json SettingInJson(const SettingChange& change, const MadeChange& made) {
    Json object;
    object["name"] = change.setting.name();
    object["value"] = ValueInJson(change.setting, change.value, false);
    object["held"] = HeldInJson(made);
    object["takes_effect"] = EffectTime(change.setting);
    return object;
}

// All settings of a call, also those after a failure.
Json SettingsInJson(const ChangeSet& changes, std::vector<MadeChange> made) {
    made.resize(changes.size());
    Json settings = Json::array();
    for (size_t i = 0; i < changes.size(); ++i) {
        Json object = SettingInJson(changes[i], made[i]);
        object["set"] = made[i].is_set;
        settings.push_back(std::move(object));
    }
    return settings;
}

}  // namespace

ExitStatus RunSet(const Invocation& invocation, Report& report) {
    const Device device(invocation.limits, report);
    const ChangeSet changes = CheckedChanges(invocation, device, report);
    if (changes.empty()) {
        return ExitStatus::kInvalid;
    }
    const bool is_single = !IsAssignment(invocation.words.front());
    const ChangeOptions options{.read_back = !invocation.no_verify, .forced = invocation.force};
    const SetNotes notes(SettingsToSet(changes), device,
                         !invocation.force && !invocation.no_verify);
    const std::vector<MadeChange> made = MakeChanges(changes, options, device, report);
    if (is_single && made.front().is_set) {
        report.Member("setting", SettingInJson(changes.front(), made.front()));
    }
    if (!is_single || changes.size() > 1) {
        report.Member("settings", SettingsInJson(changes, made));
    }
    notes.Print(SettingsThatHold(changes, made), report);
    return made.back().status;
}

// Reports the problems of words with unknown options beside them. In the form "NAME VALUE..." such
// an option may be the value, so only the other form is checked.
void CheckWordsOfSet(const Invocation& invocation, Report& report) {
    if (!IsAssignment(invocation.words.front())) {
        return;
    }
    for (const Problem& problem : ReadChanges(invocation).problems) {
        report.Complain(problem);
    }
}

}  // namespace velkctl
