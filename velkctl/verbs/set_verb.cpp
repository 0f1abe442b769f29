// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// set_verb.cpp - the verb that changes settings.
#include <optional>
#include <string>
#include <vector>

#include "velkctl/call/device.h"
#include "velkctl/changes/change_set.h"
#include "velkctl/changes/change_words.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/set_checks.h"
#include "velkctl/journal/set_record.h"
#include "velkctl/journal/unrecorded_change.h"
#include "velkctl/preview/call_trace.h"
#include "velkctl/preview/preview_report.h"
#include "velkctl/preview/trial_run.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_change.h"
#include "velkctl/text/assignment.h"
#include "velkctl/verbs/set_notes.h"
#include "velkctl/verbs/setting_values.h"
#include "velkctl/verbs/waiting_entry.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

Forcing ForcingOf(const Invocation& invocation) {
    return invocation.force ? Forcing::kGiven : Forcing::kPossible;
}

void AddConflicts(RequestedChanges& requested, bool force, const Device& device) {
    std::vector<Problem>& problems = requested.problems;
    const std::vector<Problem> conflicts =
        force ? std::vector<Problem>() : FindConflicts(requested.changes, problems, device);
    problems.insert(problems.end(), conflicts.begin(), conflicts.end());
}

// Returns the changes to make, sorted. Asks for secrets only if the other values have no problem.
// Reports all problems; then returns nothing.
ChangeSet CheckedChanges(const Invocation& invocation, const Device& device, Report& report) {
    RequestedChanges requested = ReadChanges("set", invocation.words, ForcingOf(invocation));
    AddConflicts(requested, invocation.force, device);
    if (requested.problems.empty() && !requested.unread_secrets.empty()) {
        AskForSecrets(requested, ForcingOf(invocation));
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

// Makes the changes in a private copy alone.
ExitStatus TryChanges(const ChangeSet& changes, const Invocation& invocation, Report& report) {
    for (const SettingChange& change : changes) {
        if (const std::optional<Problem> note = UnusualKeyNote(change)) {
            report.Note(*note);
        }
    }
    std::vector<TrialStep> steps = StepsOf(changes);
    if (!invocation.no_verify) {
        const std::vector<TrialStep> checks = ChecksOf(changes);
        steps.insert(steps.end(), checks.begin(), checks.end());
    }
    return ReportTrial(RunTrial(steps, invocation.limits), steps, report);
}

// Shows the steps of the library after the changes, also of those that failed.
std::vector<MadeChange> MakeTraced(const ChangeSet& changes, ChangeOptions options,
                                   const Device& device, bool is_traced, Report& report) {
    std::optional<CallTrace> trace;
    if (is_traced) {
        trace.emplace();
    }
    std::vector<MadeChange> made = MakeChanges(changes, options, device, report);
    if (trace) {
        trace->Print(report);
    }
    return made;
}

// Makes the changes, with an entry in the journal if wanted. Returns nothing and sets the status if
// another run of velkctl is changing settings, or a change waits; it is reported.
std::vector<MadeChange> MakeRecorded(const ChangeSet& changes, const Invocation& invocation,
                                     Device& device, Report& report, ExitStatus& refusal) {
    const ChangeOptions options{.read_back = !invocation.no_verify, .forced = invocation.force};
    if (RefuseWhileOneWaits("set: nothing was changed", report)) {
        refusal = ExitStatus::kWaits;
        return {};
    }
    if (invocation.no_journal) {
        const UnrecordedChange change("set", invocation.limits.wait_seconds, report);
        refusal = change.refusal();
        return change.is_refused() ? std::vector<MadeChange>()
                                   : MakeTraced(changes, options, device, invocation.trace, report);
    }
    SetRecord record(changes, invocation.limits.wait_seconds, device, report);
    if (record.is_refused()) {
        refusal = record.refusal();
        return {};
    }
    std::vector<MadeChange> made = MakeTraced(changes, options, device, invocation.trace, report);
    record.Finish();
    return made;
}

}  // namespace

ExitStatus RunSet(const Invocation& invocation, Report& report) {
    Device device(invocation.limits, report);
    const ChangeSet changes = CheckedChanges(invocation, device, report);
    if (changes.empty()) {
        return ExitStatus::kInvalid;
    }
    if (invocation.dry_run) {
        return TryChanges(changes, invocation, report);
    }
    const bool is_single = !IsAssignment(invocation.words.front());
    const SetNotes notes(SettingsToSet(changes), device,
                         !invocation.force && !invocation.no_verify);
    ExitStatus refusal = ExitStatus::kDone;
    const std::vector<MadeChange> made = MakeRecorded(changes, invocation, device, report, refusal);
    if (made.empty()) {
        return refusal;
    }
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
    for (const Problem& problem :
         ReadChanges("set", invocation.words, ForcingOf(invocation)).problems) {
        report.Complain(problem);
    }
}

}  // namespace velkctl
