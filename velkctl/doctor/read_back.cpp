// read_back.cpp - whether the device holds the value that was set.
#include "velkctl/doctor/read_back.h"

#include "velkctl/call/command.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

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

// `difference` says how the device differs, `losses` names the files that have lost their text.
ReadBack NotHeld(const Setting& setting, const std::string& difference, const std::string& losses,
                 const Findings& causes, Report& report) {
    const std::string name = setting.name();
    Problem problem{name + ": the library reported success, but " + difference, name};
    problem.detail = losses;
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

// True if the device holds a value that is neither the one before the set nor the one that was set:
// only another program can have set it, after this set.
bool IsSetByAnother(const Setting& setting, const Answer& answer, const FilesBefore& before) {
    return answer.ok() && !setting.row->secret && before.value() && before.Losses().empty() &&
           setting.row->kind->Print(answer.data) != *before.value();
}

// The set was done. The later one counts, as it would have a minute later.
ReadBack SetByAnother(const Setting& setting, const Answer& answer, Report& report) {
    report.Note(setting.name() + ": set, but another program has set it to " +
                Quoted(setting.row->kind->Print(answer.data)) + " since");
    return {false, ExitStatus::kDone};
}

// Checks a value that cannot be read back by looking for findings that keep it from being set.
ReadBack CheckUnread(const Setting& setting, const std::string& reason, const std::string& losses,
                     Findings causes, Report& report) {
    std::erase_if(causes, [](const Finding& cause) {
        return cause.severity != Severity::kProblem || !HindersSetting(cause.impact);
    });
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
    const auto causes = [&] { return LikelyCauses(setting, kind.Print(wanted)); };
    if (!setting.can_get()) {
        return CheckUnread(setting, "it cannot be read", before.Losses(), causes(), report);
    }
    const Answer answer = device.Get(setting);
    if (answer.ok() && kind.Print(answer.data) == kind.Print(wanted)) {
        return {true, ExitStatus::kDone};
    }
    if (answer.timed_out) {
        return NotReadInTime(setting, answer, report);
    }
    if (AnswersWithLease(setting, device)) {
        return CheckUnread(
            setting,
            "while " + std::string(setting.interface) + ".method is dhcp, its lease is shown",
            before.Losses(), causes(), report);
    }
    if (IsSetByAnother(setting, answer, before)) {
        return SetByAnother(setting, answer, report);
    }
    return NotHeld(setting, HeldValue(setting, answer), before.Losses(), causes(), report);
}

}  // namespace velkctl
