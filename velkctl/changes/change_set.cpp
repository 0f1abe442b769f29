// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// change_set.cpp - changes that are checked together before the first of them is made.
#include "velkctl/changes/change_set.h"

#include <algorithm>
#include <span>
#include <string>
#include <tuple>

#include "velkctl/call/answer.h"
#include "velkctl/call/files_before.h"
#include "velkctl/call/planned_values.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/doctor/read_back.h"
#include "velkctl/doctor/set_checks.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {
namespace {

bool HasProblem(const std::vector<Problem>& problems, const Setting& setting) {
    return std::ranges::find(problems, setting.name(), &Problem::setting) != problems.end();
}

std::optional<Problem> FindConflict(const SettingChange& change, const PlannedValues& planned,
                                    const Device& device, WayOut way_out) {
    std::optional<Problem> problem = NetworkProblem(change, planned, way_out);
    problem = problem ? problem : ClearedKeyProblem(change, planned);
    return problem ? problem : TextConflict(change, device, way_out);
}

MadeChange ReportFailure(const Setting& setting, const Answer& answer, const FilesBefore& before,
                         Report& report) {
    if (answer.interrupted) {
        return {.status = StatusOf(answer)};  // the caller, who holds the signal back, says so
    }
    Problem problem = ProblemOfSet(setting.name() + ": could not be set", setting, answer);
    const std::string losses = answer.timed_out ? "" : before.Losses();
    problem.detail.append(losses.empty() || problem.detail.empty() ? "" : "; ").append(losses);
    report.Complain(problem);
    return {.status = StatusWithCause(setting, answer)};
}

MadeChange MakeChange(const SettingChange& change, ChangeOptions options, const Device& device,
                      Report& report) {
    if (const std::optional<Problem> doubt = UnusualKeyNote(change)) {
        report.Note(*doubt);
    }
    // A value that is not valid may be read as another one: no sign of another program.
    const FilesBefore before =
        options.forced ? FilesBefore(change.setting) : FilesBefore(change.setting, device);
    const Answer answer = device.Set(change.setting, change.value);
    if (!answer.ok()) {
        return ReportFailure(change.setting, answer, before, report);
    }
    if (!options.read_back) {
        return {.is_set = true};
    }
    const ReadBack found = ReadSettingBack(change.setting, change.value, before, device, report);
    return {true, found.held, found.status};
}

// "eth0.address, eth0.netmask", or "none"
std::string NamesInText(std::span<const SettingChange> changes) {
    std::string names;
    for (const SettingChange& change : changes) {
        names.append(names.empty() ? "" : ", ").append(change.setting.name());
    }
    return names.empty() ? "none" : names;
}

// Adds which of several changes were made before the run stopped.
void NoteStop(const ChangeSet& changes, const std::vector<MadeChange>& made, Report& report) {
    const std::span<const SettingChange> all(changes);
    if (all.size() > 1) {
        const size_t last = made.size() - 1;
        const size_t set = made[last].has_effect() ? made.size() : last;
        report.Note(Problem{.message = "set: stopped at " + changes[last].setting.name(),
                            .detail = "set: " + NamesInText(all.first(set)) +
                                      "; not set: " + NamesInText(all.subspan(set))});
    }
}

}  // namespace

void SortChanges(ChangeSet& changes) {
    std::ranges::sort(changes, {}, [](const SettingChange& change) {
        const bool is_cleared_key = change.setting.row->secret && change.value == Data{};
        return std::tuple(change.setting.interface, is_cleared_key, change.setting.row);
    });
}

std::vector<Problem> FindConflicts(const ChangeSet& changes, const std::vector<Problem>& known,
                                   const Device& device, WayOut way_out) {
    const PlannedValues planned(device, changes);
    std::vector<Problem> conflicts;
    for (const SettingChange& change : changes) {
        const bool is_checked = !HasProblem(known, change.setting);
        const std::optional<Problem> conflict =
            is_checked ? FindConflict(change, planned, device, way_out) : std::nullopt;
        if (conflict) {
            conflicts.push_back(*conflict);
        }
    }
    return conflicts;
}

std::vector<MadeChange> MakeChanges(const ChangeSet& changes, ChangeOptions options,
                                    const Device& device, Report& report) {
    std::vector<MadeChange> made;
    for (const SettingChange& change : changes) {
        made.push_back(MakeChange(change, options, device, report));
        if (made.back().status != ExitStatus::kDone) {
            NoteStop(changes, made, report);
            break;
        }
    }
    return made;
}

}  // namespace velkctl
