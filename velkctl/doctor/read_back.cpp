// read_back.cpp - whether the device holds what was set.
#include "velkctl/doctor/read_back.h"

#include "velkctl/call/command.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

// A DHCP interface answers with its lease; what is configured shows when it is static again.
bool AnswersWithLease(const Setting& setting, const Device& device) {
    if (!IsAddressCommand(setting.row->id)) {
        return false;
    }
    const Answer method =
        device.Execute({VELK_GET, VELK_CMD_IP_METHOD, setting.interface}, {}, setting.name());
    return method.ok() && method.data[0] == VELK_METHOD_DHCP;
}

// What the setting answers instead, in words that give no secret away.
std::string WhatIsHeld(const Setting& setting, const Answer& answer) {
    if (!answer.ok()) {
        return "it cannot be read back: " + FailureReason(answer);
    }
    if (setting.row->secret) {
        return "the device holds another value";
    }
    return "the device holds " + Quoted(setting.row->kind->Print(answer.data));
}

// `instead` is what was found out, and `losses` names the files that have lost their text.
Verification NotHeld(const Setting& setting, const std::string& instead, const std::string& losses,
                     const Findings& causes, Report& report) {
    const std::string name = setting.name();
    Problem problem{name + ": the library reported success, but " + instead, name};
    problem.detail = losses;
    if (!causes.empty()) {
        AddLikelyCause(problem, causes.front());
    }
    report.Complain(problem);
    return {false, ExitStatus::kNotHeld};
}

Verification NotReadInTime(const Setting& setting, const Answer& answer, Report& report) {
    const std::string name = setting.name();
    report.Complain(ProblemOf(name + ": set, but not read back", name, answer));
    return {std::nullopt, StatusOf(answer)};
}

// A value that cannot be read back: what keeps it from being set can be seen all the same.
Verification JudgeUnseen(const Setting& setting, const std::string& why_unseen,
                         const std::string& losses, Report& report) {
    Findings causes = CausesOf(setting);
    std::erase_if(causes, [](const Finding& cause) {
        return cause.severity != Severity::kProblem || cause.hinders != Hinders::kSetting;
    });
    if (!causes.empty() || !losses.empty()) {
        return NotHeld(setting, "the device cannot hold the value", losses, causes, report);
    }
    report.Note(setting.name() + ": set, but not checked: " + why_unseen);
    return {std::nullopt, ExitStatus::kDone};
}

}  // namespace

Verification VerifySet(const Setting& setting, const Data& wanted, const FilesBefore& before,
                       const Device& device, Report& report) {
    if (!setting.can_get()) {
        return JudgeUnseen(setting, "it cannot be read", before.Losses(), report);
    }
    const Answer answer = device.Get(setting);
    const ValueKind& kind = *setting.row->kind;
    if (answer.ok() && kind.Print(answer.data) == kind.Print(wanted)) {
        return {true, ExitStatus::kDone};
    }
    if (answer.timed_out) {
        return NotReadInTime(setting, answer, report);
    }
    if (AnswersWithLease(setting, device)) {
        return JudgeUnseen(
            setting,
            "while " + std::string(setting.interface) + ".method is dhcp, its lease is shown",
            before.Losses(), report);
    }
    return NotHeld(setting, WhatIsHeld(setting, answer), before.Losses(), CausesOf(setting),
                   report);
}

}  // namespace velkctl
