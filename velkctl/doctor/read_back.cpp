// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// read_back.cpp - whether the device holds the value that was set.
#include "velkctl/doctor/read_back.h"

#include <ctime>

#include "velkctl/call/command.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/doctor/value_checks.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

constexpr int kPauses = 5;
constexpr timespec kPause{.tv_sec = 0, .tv_nsec = 10'000'000};

// A change of another program empties a file for a moment. Waits for its end, but not long.
void AwaitOtherChange() {
    int pauses = 0;
    do {
        (void)nanosleep(&kPause, nullptr);
        ++pauses;
    } while (pauses < kPauses && LibraryLock().is_busy());
}

// Returns the losses that last.
std::string LossesOf(const FilesBefore& before) {
    if (before.Losses().empty()) {
        return {};
    }
    AwaitOtherChange();
    return before.Losses();
}

// True if the interface answers with its lease, and so not with the configured address.
bool AnswersWithLease(const Setting& setting, const Device& device) {
    if (!IsAddressCommand(setting.row->id)) {
        return false;
    }
    const Answer method =
        device.Execute({VELK_GET, VELK_CMD_IP_METHOD, setting.interface}, {}, setting.name());
    return method.ok() && method.data[0] == VELK_METHOD_DHCP;
}

// Returns the value that is read instead, without a secret.
std::string HeldValue(const Setting& setting, const Answer& answer) {
    if (!answer.ok()) {
        return "it cannot be read back: " + FailureReason(answer);
    }
    if (setting.row->secret) {
        return "the device holds another value";
    }
    return "the device holds " + QuotedWhole(setting.row->kind->Print(answer.data));
}

// `difference` says how the device differs. `detail` names the files that have lost their text, or
// says that another program may be the reason.
ReadBack NotHeld(const Setting& setting, const std::string& difference, const std::string& detail,
                 const Findings& causes, Report& report) {
    const std::string name = setting.name();
    Problem problem{name + ": the library reported success, but " + difference, name};
    problem.detail = detail;
    if (!causes.empty()) {
        AddLikelyCause(problem, causes.front());
    }
    report.Complain(problem);
    return {false, ExitStatus::kNotHeld};
}

ReadBack NotReadInTime(const Setting& setting, const Answer& answer, Report& report) {
    const std::string name = setting.name();
    report.Complain(ProblemOf(name + ": set, but not read back", name, answer));
    return {std::nullopt, StatusOf(answer)};
}

// True if the device holds a value that is neither the one before the set nor the one that was set.
bool IsThirdValue(const Setting& setting, const Answer& answer, const FilesBefore& before) {
    return answer.ok() && !setting.row->secret && before.value() &&
           setting.row->kind->Print(answer.data) != *before.value();
}

// True if a set without effect cannot be distinguished from another program that has set the value
// since. The daemon is not asked before a set. The causes of an address always have its line.
bool IsUndecided(const Setting& setting, const Answer& answer, const FilesBefore& before,
                 const Findings& causes) {
    const bool is_of_daemon = setting.row->held_in.holder == Holder::kDaemon;
    const bool is_explained =
        !causes.empty() && !is_of_daemon && !IsAddressCommand(setting.row->id);
    return answer.ok() && !is_explained && (before.value() || is_of_daemon);
}

// The set was done. The later one counts, as it would have a minute later.
ReadBack SetByAnother(const Setting& setting, const Answer& answer, Report& report) {
    const std::string name = setting.name();
    report.Note(Problem{.message = name + ": set, but another program has set it to " +
                                   Quoted(setting.row->kind->Print(answer.data)) + " since",
                        .setting = name});
    return {false, ExitStatus::kDone};
}

// Compares a value that is not held with the one from before. A line that the set damages may also
// be read as a third value, so another program is named only if no finding explains the value.
ReadBack ExplainDifference(const Setting& setting, const Data& wanted, const Answer& answer,
                           const FilesBefore& before, Report& report) {
    const std::string value = setting.row->kind->Print(wanted);
    const std::string losses = LossesOf(before);
    const bool is_hindered = !losses.empty() || !Hindrances(setting, value).empty();
    if (!is_hindered && IsThirdValue(setting, answer, before)) {
        return SetByAnother(setting, answer, report);
    }
    const Findings causes = LikelyCauses(setting, value);
    const bool is_undecided = !is_hindered && IsUndecided(setting, answer, before, causes);
    return NotHeld(setting, HeldValue(setting, answer),
                   is_undecided ? "it was not set, or another program has set it since" : losses,
                   causes, report);
}

// Checks a value that cannot be read back by looking for findings that keep it from being set.
ReadBack CheckUnread(const Setting& setting, const std::string& reason, const std::string& losses,
                     const Findings& causes, Report& report) {
    if (!causes.empty() || !losses.empty()) {
        return NotHeld(setting, "the device cannot hold the value", losses, causes, report);
    }
    report.Note(setting.name() + ": set, but not checked: " + reason);
    return {std::nullopt, ExitStatus::kDone};
}

}  // namespace

ReadBack ReadSettingBack(const Setting& setting, const Data& wanted, const FilesBefore& before,
                         const Device& device, Report& report) {
    const ValueKind& kind = *setting.row->kind;
    const auto hindrances = [&] { return Hindrances(setting, kind.Print(wanted)); };
    if (!setting.can_get()) {
        return CheckUnread(setting, "it cannot be read", LossesOf(before), hindrances(), report);
    }
    const auto is_held = [&](const Answer& answer) {
        return answer.ok() && kind.Print(answer.data) == kind.Print(wanted);
    };
    Answer answer = device.Get(setting);
    if (is_held(answer)) {
        if (const std::optional<Problem> note = NoteAfterSet(setting, wanted)) {
            report.Note(*note);
        }
        return {true, ExitStatus::kDone};
    }
    if (answer.timed_out) {
        return NotReadInTime(setting, answer, report);
    }
    if (AnswersWithLease(setting, device)) {
        return CheckUnread(
            setting,
            "while " + std::string(setting.interface) + ".method is dhcp, its lease is shown",
            LossesOf(before), hindrances(), report);
    }
    if (setting.row->held_in.holder == Holder::kFile) {
        AwaitOtherChange();
        answer = device.Get(setting);
    }
    return is_held(answer) ? ReadBack{true, ExitStatus::kDone}
                           : ExplainDifference(setting, wanted, answer, before, report);
}

}  // namespace velkctl
