// verification.cpp - whether the device holds what was set.
#include "velkctl/verification.h"

#include "velkctl/causes.h"
#include "velkctl/command.h"
#include "velkctl/terminal.h"

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
        return DescribeFailure("it cannot be read back", answer);
    }
    if (setting.row->secret) {
        return "the device holds another value";
    }
    return "the device holds " + Quoted(setting.row->kind->Print(answer.data));
}

Verification NotHeld(const Setting& setting, const std::string& instead, std::string_view cause,
                     Report& report) {
    const std::string name = setting.name();
    report.Complain(Problem{name + ": the library reported success, but " + instead +
                                (cause.empty() ? "" : "; likely cause: " + std::string(cause)),
                            name});
    return {false, ExitStatus::kNotHeld};
}

Verification NotReadInTime(const Setting& setting, const Answer& answer, Report& report) {
    const std::string name = setting.name();
    report.Complain(Problem{DescribeFailure(name + ": set, but not read back", answer), name});
    return {std::nullopt, StatusOf(answer)};
}

}  // namespace

Verification VerifySet(const Setting& setting, const Data& wanted, const Device& device,
                       Report& report) {
    constexpr Verification kNotChecked{std::nullopt, ExitStatus::kDone};
    if (!setting.can_get()) {
        return kNotChecked;
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
        report.Note(setting.name() + ": set, but not checked: while " +
                    std::string(setting.interface) + ".method is dhcp, its lease is shown");
        return kNotChecked;
    }
    return NotHeld(setting, WhatIsHeld(setting, answer), LikelyCause(setting, answer), report);
}

}  // namespace velkctl
