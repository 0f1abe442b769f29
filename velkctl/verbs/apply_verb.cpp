// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// apply_verb.cpp - the verbs that change many settings as one change: apply and import.
#include <algorithm>
#include <cerrno>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

#include "lib/base/paths.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/device.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/changes/apply.h"
#include "velkctl/changes/apply_plan.h"
#include "velkctl/changes/apply_time.h"
#include "velkctl/changes/change_guard.h"
#include "velkctl/changes/change_set.h"
#include "velkctl/changes/change_words.h"
#include "velkctl/changes/dhcp_end.h"
#include "velkctl/changes/journal_record.h"
#include "velkctl/changes/restarts.h"
#include "velkctl/cli/time_options.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/documents/settings_document.h"
#include "velkctl/guardian/guardian_process.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/journal_folder.h"
#include "velkctl/journal/journal_problem.h"
#include "velkctl/journal/waiting_change.h"
#include "velkctl/preview/preview_report.h"
#include "velkctl/preview/trial_run.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/assignment.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/spelling.h"
#include "velkctl/verbs/ask_to_keep.h"
#include "velkctl/verbs/document_settings.h"
#include "velkctl/verbs/set_notes.h"
#include "velkctl/verbs/setting_values.h"
#include "velkctl/verbs/waiting_entry.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr char kUnchanged[] = "apply: nothing was changed";

// ---- The wanted values -------------------------------------------------------------------------

struct WantedValues {
    ChangeSet changes{};
    std::vector<Problem> problems{};
    const SettingsDocument* document = nullptr;  // null: words
};

bool Holds(const Device& device, const DocumentSetting& row) {
    const Answer present = device.Get(row.setting);
    return present.ok() && row.setting.row->kind->ToJson(present.data) == row.value;
}

// A value that no set accepts is left out if the device has it already: an export has all values of
// its device.
WantedValues WantedBy(const SettingsDocument& document, const Device& device) {
    WantedValues wanted{.problems = document.problems, .document = &document};
    for (const DocumentSetting& row : document.settings) {
        if (row.parsed.ok()) {
            wanted.changes.push_back({row.setting, row.parsed.data});
        } else if (!Holds(device, row)) {
            wanted.problems.push_back(ValueProblem(row, document.name));
        }
    }
    return wanted;
}

// Asks for secrets only if the other values have no problem.
WantedValues WantedBy(const std::vector<std::string>& words) {
    RequestedChanges requested = ReadChanges("apply", words, Forcing::kImpossible);
    if (requested.problems.empty()) {
        AskForSecrets(requested, Forcing::kImpossible);
    }
    return {std::move(requested.changes), std::move(requested.problems)};
}

// ---- Options -----------------------------------------------------------------------------------

// Reads "auto", "never", "eth0" or "eth0,eth1". Refuses another value and returns nothing.
std::optional<RestartChoice> ReadRestart(const Invocation& invocation, Report& report) {
    const std::string word = invocation.restart.value_or("auto");
    RestartChoice choice{.is_automatic = word == "auto"};
    if (choice.is_automatic || word == "never") {
        return choice;
    }
    choice.interfaces = SplitAtCommas(word);
    const bool is_valid = std::ranges::all_of(choice.interfaces, [](const std::string& name) {
        return std::ranges::find(kInterfaces, name) != kInterfaces.end();
    });
    if (!is_valid) {
        report.Complain(
            "--restart: " + Quoted(word) + " is not valid; give " +
            OneOf(std::vector<std::string>{"auto", "never", "eth0", "eth1", "eth0,eth1"}));
        return std::nullopt;
    }
    return choice;
}

// Returns the seconds to confirm the change, 0 for a change without a confirmation. Refuses a value
// that is not valid and returns nothing.
std::optional<int> ReadConfirmation(const Invocation& invocation, Report& report) {
    if (invocation.ask && !CanAskForKey()) {
        report.Refuse("--ask: there is no terminal; give --confirm-within and 'velkctl confirm'");
        return std::nullopt;
    }
    if (invocation.confirm_if && invocation.confirm_if->empty()) {
        report.Refuse("--confirm-if: the command is empty; give a command of the shell");
        return std::nullopt;
    }
    if (invocation.ask && invocation.confirm_if) {
        report.Refuse("--ask and --confirm-if cannot be given together; give one of them");
        return std::nullopt;
    }
    if (invocation.confirm_within) {
        return ReadWindow("--confirm-within", *invocation.confirm_within, report);
    }
    return invocation.ask || invocation.confirm_if ? kUsualWindow : 0;
}

struct ApplyOptions {
    RestartChoice restart;
    int window_seconds = 0;  // to confirm the change; 0: it needs no confirmation
};

std::optional<ApplyOptions> ReadOptions(const Invocation& invocation, Report& report) {
    const std::optional<RestartChoice> restart = ReadRestart(invocation, report);
    const std::optional<int> seconds = ReadConfirmation(invocation, report);
    return restart && seconds ? std::optional(ApplyOptions{*restart, *seconds}) : std::nullopt;
}

// ---- Output ------------------------------------------------------------------------------------

Json ChangesInJson(const ApplyPlan& plan) {
    Json changes = Json::array();
    for (const auto& [change, old_value] : plan.changes) {
        const Setting& setting = change.setting;
        Json object;
        object["name"] = setting.name();
        object["old"] = old_value ? ValueInJson(setting, *old_value, false) : Json(nullptr);
        object["new"] = ValueInJson(setting, change.value, false);
        changes.push_back(std::move(object));
    }
    return changes;
}

// "applied 3 settings, restarted eth0 (12 s)"
std::string Summary(const ApplyPlan& plan, const ApplyResult& result) {
    const size_t count = plan.changes.size();
    std::string text = "applied " + std::to_string(count);
    text.append(count == 1 ? " setting" : " settings");
    return text.append(RestartedText(result.restarts));
}

void NoteSkipped(const ApplyPlan& plan, Report& report) {
    if (!plan.skipped.empty()) {
        const bool is_one = plan.skipped.size() == 1;
        report.Note(Problem{
            .message = AllOf(NamesOf(plan.skipped)) + ": not applied",
            .detail = is_one ? "its value comes from DHCP" : "their values come from DHCP"});
    }
}

ExitStatus ReportProblems(const std::vector<Problem>& problems, ExitStatus status, Report& report) {
    for (const Problem& problem : problems) {
        report.Complain(problem);
    }
    return status;
}

// Adds the places of the values in the document, and how to leave out those that need the adapter.
std::vector<Problem> WithPlaces(const ApplyPlan& plan, const WantedValues& wanted) {
    std::vector<Problem> problems = plan.problems;
    if (wanted.document == nullptr) {
        return problems;
    }
    for (Problem& problem : problems) {
        AddPlace(problem, *wanted.document);
        if (plan.status == ExitStatus::kNoAdapter && !problem.setting.empty()) {
            problem.remedy = "attach an adapter, or leave its settings out: --only NAME,...";
        }
    }
    return problems;
}

// ---- The change --------------------------------------------------------------------------------

constexpr std::string_view kAsBefore = "all settings are as before";

// Returns the state of the device for a run that a signal ends.
std::string StateAfter(const ApplyResult& result, const JournalEntry& entry) {
    if (result.status == ExitStatus::kDone) {
        return entry.state == EntryState::kWaiting ? "the change waits for its confirmation"
                                                   : "the change is already made";
    }
    return std::string(result.status == ExitStatus::kPartlyBack ? "not all is as before"
                                                                : kAsBefore);
}

std::vector<Setting> SettingsIn(const ApplyPlan& plan) {
    std::vector<Setting> settings;
    for (const PlannedChange& planned : plan.changes) {
        settings.push_back(planned.change.setting);
    }
    return settings;
}

// The plan has the command that confirms the change, and its time.
Confirmation ConfirmationOf(const ApplyPlan& plan, const Invocation& invocation,
                            GuardianProcess& guardian) {
    if (plan.confirm_seconds == 0) {
        return {};
    }
    return {.guard = &guardian,
            .window_seconds = plan.confirm_seconds,
            .step_seconds = LongestTimeOf(plan, invocation.limits),
            .is_asked = !plan.confirm_if.empty()};
}

// Reports a change that is made. One that waits is reported with the command that keeps it.
void ReportDone(const ApplyPlan& plan, const ApplyResult& result, const JournalEntry& entry,
                const Report& report) {
    std::string text = Summary(plan, result);
    if (entry.state == EntryState::kWaiting) {
        const std::string left = std::to_string(SecondsLeft(entry));
        text.append("; keep with: velkctl confirm ").append(entry.id);
        text.append(" (").append(left).append(" s left; a reboot puts it back too)");
    }
    report.Inform(WrappedAt80(text, 0) + "\n");
}

void ReportEntry(const JournalEntry& entry, Report& report) {
    const bool waits = entry.state == EntryState::kWaiting;
    report.Member("id", TextOrNull(entry.id));
    report.Member("state", entry.id.empty() ? Json(nullptr) : Json(NameOf(entry.state)));
    report.Member("seconds_left", waits ? Json(SecondsLeft(entry)) : Json(nullptr));
}

// Makes the change and ends the record of it, so that the lock is free again. Sets `entry`; it is
// without an id if the change has none. Ends velkctl by a signal that has come meanwhile.
ExitStatus MakeChange(const ApplyPlan& plan, const Invocation& invocation,
                      std::optional<JournalRecord>& record, const Device& device, Report& report,
                      JournalEntry& entry) {
    const SetNotes notes(SettingsIn(plan), device, true);
    const StopSignals signals;
    const ApplyResult result = Apply(plan, *record, invocation.limits, signals, report);
    entry = record->entry();
    record.reset();
    report.Member("restarts", RestartsInJson(result.restarts));
    report.Member("taken_back", result.is_taken_back);
    ReportEntry(entry, report);
    if (result.status == ExitStatus::kDone) {
        ReportDone(plan, result, entry, report);
    }
    if (const int signal = signals.Pending(); signal != 0) {
        EndInterrupted(signal, StateAfter(result, entry), report);
    }
    if (result.status == ExitStatus::kDone) {
        notes.PrintResults(SettingsIn(plan), report);
    } else if (result.is_taken_back && result.status == ExitStatus::kFailed) {
        report.Note(std::string(kAsBefore));
    }
    return result.status;
}

ExitStatus CarryOut(const ApplyPlan& plan, const Invocation& invocation, JournalLock lock,
                    const Device& device, Report& report) {
    GuardianProcess guardian;
    std::optional<JournalRecord> record(std::in_place, std::move(lock), invocation.limits, report,
                                        ConfirmationOf(plan, invocation, guardian));
    JournalEntry entry;
    const ExitStatus status = MakeChange(plan, invocation, record, device, report, entry);
    const bool asks = invocation.ask && entry.state == EntryState::kWaiting;
    return asks ? AskToKeep(invocation.limits, report) : status;
}

// The DHCP client of an interface that leaves dhcp is ended by velkctl itself.
void NoteEndedClients(const ApplyPlan& plan, const Device& device, Report& report) {
    for (const std::string& interface : plan.restarts) {
        if (SetsMethod(plan, interface, VELK_METHOD_STATIC) && HasDhcpClient(interface, device)) {
            std::string note = interface;
            note.append(": its DHCP client would be ended first: sudo ifdown ").append(interface);
            report.Note(note);
        }
    }
}

// Carries the plan out in a private copy alone.
ExitStatus TryPlan(const ApplyPlan& plan, const Invocation& invocation, const Device& device,
                   Report& report) {
    ChangeSet changes;
    std::ranges::transform(plan.changes, std::back_inserter(changes), &PlannedChange::change);
    std::vector<TrialStep> steps = StepsOf(changes);
    for (const std::string& interface : plan.restarts) {
        steps.push_back({VELK_RESTART, VELK_CMD_RESTART, interface});
    }
    const std::vector<TrialStep> checks = ChecksOf(changes);
    steps.insert(steps.end(), checks.begin(), checks.end());
    NoteEndedClients(plan, device, report);
    return ReportTrial(RunTrial(steps, invocation.limits), steps, report);
}

void NotePlan(const ApplyPlan& plan, Report& report) {
    for (const Problem& note : plan.notes) {
        report.Note(note);
    }
}

// Reports a plan without a problem that is not carried out.
ExitStatus ShowChecked(const ApplyPlan& plan, Report& report) {
    NotePlan(plan, report);
    report.Member("checked", true);
    for (const PlannedChange& planned : plan.changes) {
        report.Inform(planned.change.setting.name() + ": can be set\n");
    }
    if (plan.changes.empty()) {
        report.Inform("nothing to change\n");
    }
    return ExitStatus::kDone;
}

// `lock` is null for a dry run and a check. Otherwise the values are compared under it: another run
// may take its own change back meanwhile.
ExitStatus ApplyWanted(const WantedValues& wanted, const ApplyOptions& options,
                       const Invocation& invocation, JournalLock* lock, const Device& device,
                       Report& report) {
    ApplyPlan plan = MakePlan(wanted.changes, options.restart, device);
    if (!plan.problems.empty()) {
        return ReportProblems(WithPlaces(plan, wanted), plan.status, report);
    }
    plan.confirm_if = invocation.confirm_if.value_or("");
    plan.confirm_seconds = options.window_seconds;
    report.Member("changes", ChangesInJson(plan));
    report.Member("skipped", NamesOf(plan.skipped));
    NoteSkipped(plan, report);
    if (invocation.check) {
        return ShowChecked(plan, report);
    }
    if (plan.changes.empty()) {
        report.Member("restarts", Json::array());
        report.Member("taken_back", false);
        ReportEntry({}, report);
        report.Inform("nothing to change\n");
        return ExitStatus::kDone;
    }
    NotePlan(plan, report);
    return lock == nullptr ? TryPlan(plan, invocation, device, report)
                           : CarryOut(plan, invocation, std::move(*lock), device, report);
}

// A journal that cannot be used is found when the change begins: without a difference it is not
// needed.
ExitStatus ApplyUnderLock(const WantedValues& wanted, const ApplyOptions& options,
                          const Invocation& invocation, const Device& device, Report& report) {
    JournalLock lock =
        AwaitJournalLock(JournalLock::Use::kAlone, invocation.limits.wait_seconds, 0, report);
    if (RefuseWhileOneWaits(kUnchanged, report)) {
        return ExitStatus::kWaits;
    }
    if (lock.error() == EWOULDBLOCK) {
        report.Complain(LockedProblem(kUnchanged, velk::kJournalLock));
        return ExitStatus::kLocked;
    }
    return ApplyWanted(wanted, options, invocation, &lock, device, report);
}

// True for NAME=VALUE. The name of a file may have an "=" after a slash.
bool IsWordOfSetting(std::string_view word) {
    return IsAssignment(word) && WithoutValue(word).find('/') == std::string_view::npos;
}

ExitStatus RunWith(const WantedValues& wanted, const Invocation& invocation, const Device& device,
                   Report& report) {
    const std::optional<ApplyOptions> options = ReadOptions(invocation, report);
    if (!options || !wanted.problems.empty()) {
        return ReportProblems(wanted.problems, ExitStatus::kInvalid, report);
    }
    const bool changes_nothing = invocation.dry_run || invocation.check;
    return changes_nothing ? ApplyWanted(wanted, *options, invocation, nullptr, device, report)
                           : ApplyUnderLock(wanted, *options, invocation, device, report);
}

ExitStatus RunDocument(std::string_view verb, const Invocation& invocation, const Device& device,
                       Report& report) {
    const std::optional<SettingsDocument> document =
        OpenDocument(verb, invocation.words.front(), invocation.only, report);
    return document ? RunWith(WantedBy(*document, device), invocation, device, report)
                    : ExitStatus::kInvalid;
}

}  // namespace

ExitStatus RunApply(const Invocation& invocation, Report& report) {
    const Device device(invocation.limits, report);
    if (IsWordOfSetting(invocation.words.front())) {
        return RunWith(WantedBy(invocation.words), invocation, device, report);
    }
    if (invocation.words.size() > 1) {
        return report.Refuse("apply: several words given; give one document or NAME=VALUE words");
    }
    const std::string& word = invocation.words.front();
    if (FindSetting(word) && access(word.c_str(), F_OK) != 0) {
        return report.Refuse(Problem{.message = "apply: " + Quoted(word) + " has no '='",
                                     .remedy = "give " + word + "=VALUE"});
    }
    return RunDocument("apply", invocation, device, report);
}

ExitStatus RunImport(const Invocation& invocation, Report& report) {
    const Device device(invocation.limits, report);
    return RunDocument("import", invocation, device, report);
}

}  // namespace velkctl
