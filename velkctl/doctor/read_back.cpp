// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// read_back.cpp - whether the device holds the value that was set.
#include "velkctl/doctor/read_back.h"

#include <ctime>
#include <string>

#include "velkctl/call/answer.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/doctor/value_checks.h"
#include "velkctl/settings/affected_settings.h"
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

// A set that the library has just reported as done.
struct DoneSet {
    const Setting& setting;
    const std::string name;
    const std::string value;  // the wanted one, for people
    const FilesBefore& before;
    Report& report;

    bool IsHeldIn(const Answer& answer) const {
        return answer.ok() && setting.row->kind->Print(answer.data) == value;
    }
};

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
    if (!setting.row->held_in.is_of_lease) {
        return false;
    }
    const Answer method = device.Get(SettingOf(VELK_CMD_IP_METHOD, setting.interface));
    return method.ok() && !IsStaticMethod(method.data);
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
ReadBack NotHeld(const DoneSet& done, const std::string& difference, const std::string& detail,
                 const Findings& causes) {
    Problem problem{done.name + ": the library reported success, but " + difference, done.name};
    problem.detail = detail;
    if (!causes.empty()) {
        AddLikelyCause(problem, causes.front());
    }
    done.report.Complain(problem);
    return {false, ExitStatus::kNotHeld};
}

// True if the device holds a value that is neither the one before the set nor the one that was set.
bool IsThirdValue(const DoneSet& done, const Answer& answer) {
    const Setting& setting = done.setting;
    return answer.ok() && !setting.row->secret && done.before.value() &&
           setting.row->kind->Print(answer.data) != *done.before.value();
}

// True if another program may have set the value since. The daemon's value before the set is
// unknown, and for an address the causes always contain its line, so both prove nothing.
bool IsUndecided(const DoneSet& done, const Answer& answer, const Findings& causes) {
    const HeldIn& held_in = done.setting.row->held_in;
    const bool is_of_daemon = held_in.holder == Holder::kDaemon;
    const bool is_explained = !causes.empty() && !is_of_daemon && !held_in.is_of_lease;
    return answer.ok() && !is_explained && (done.before.value() || is_of_daemon);
}

// The set was done. The later one counts, as it would have a minute later.
ReadBack SetByAnother(const DoneSet& done, const Answer& answer) {
    done.report.Note(Problem{.message = done.name + ": set, but another program has set it to " +
                                        Quoted(done.setting.row->kind->Print(answer.data)) +
                                        " since",
                             .setting = done.name});
    return {false, ExitStatus::kDone};
}

// Compares a value that is not held with the one from before. A line that the set damages may also
// be read as a third value, so another program is named only if no finding explains the value.
ReadBack ExplainDifference(const DoneSet& done, const Answer& answer) {
    const std::string losses = LossesOf(done.before);
    const bool is_hindered = !losses.empty() || !Hindrances(done.setting, done.value).empty();
    if (!is_hindered && IsThirdValue(done, answer)) {
        return SetByAnother(done, answer);
    }
    const Findings causes = LikelyCauses(done.setting, done.value);
    const bool is_undecided = !is_hindered && IsUndecided(done, answer, causes);
    return NotHeld(done, HeldValue(done.setting, answer),
                   is_undecided ? "it was not set, or another program has set it since" : losses,
                   causes);
}

// Checks a value that cannot be read back by looking for findings that keep it from being set.
ReadBack CheckUnread(const DoneSet& done, const std::string& reason) {
    const std::string losses = LossesOf(done.before);
    const Findings causes = Hindrances(done.setting, done.value);
    if (!causes.empty() || !losses.empty()) {
        return NotHeld(done, "the device cannot hold the value", losses, causes);
    }
    done.report.Note(Problem{.message = done.name + ": set, but not checked", .detail = reason});
    return {std::nullopt, ExitStatus::kDone};
}

// Returns the outcome for a value that the device did not hold at first.
ReadBack CheckOther(const DoneSet& done, Answer answer, const Device& device) {
    const Setting& setting = done.setting;
    if (answer.timed_out || answer.interrupted) {
        done.report.Complain(ProblemOf(done.name + ": set, but not read back", done.name, answer));
        return {std::nullopt, StatusOf(answer)};
    }
    if (AnswersWithLease(setting, device)) {
        const std::string interface(setting.interface);
        return CheckUnread(done, "while " + interface + ".method is dhcp, its lease is shown");
    }
    if (setting.row->held_in.holder == Holder::kFile) {
        AwaitOtherChange();
        answer = device.Get(setting);
    }
    return done.IsHeldIn(answer) ? ReadBack{true, ExitStatus::kDone}
                                 : ExplainDifference(done, answer);
}

}  // namespace

ReadBack ReadSettingBack(const Setting& setting, const Data& wanted, const FilesBefore& before,
                         const Device& device, Report& report) {
    const DoneSet done{setting, setting.name(), setting.row->kind->Print(wanted), before, report};
    if (!setting.can_get()) {
        return CheckUnread(done, "it cannot be read");
    }
    const Answer answer = device.Get(setting);
    if (!done.IsHeldIn(answer)) {
        return CheckOther(done, answer, device);
    }
    if (const std::optional<Problem> note = NoteAfterSet(setting, wanted)) {
        report.Note(*note);
    }
    return {true, ExitStatus::kDone};
}

}  // namespace velkctl
