// verification.cpp - whether the device holds what was set.
#include "velkctl/verification.h"

#include "velkctl/causes.h"
#include "velkctl/device.h"
#include "velkctl/terminal.h"

namespace velkctl {
namespace {

bool IsAddress(const Setting& setting) {
    const uint32_t id = setting.row->id;
    return id == VELK_CMD_IP_ADDRESS || id == VELK_CMD_NETMASK || id == VELK_CMD_GATEWAY;
}

// A DHCP interface answers with its lease; what is configured shows when it is static again.
bool AnswersWithLease(const Setting& setting) {
    if (!IsAddress(setting)) {
        return false;
    }
    const Answer method = Execute({VELK_GET, VELK_CMD_IP_METHOD, setting.interface});
    return method.result == LIB_VELK_SUCCESS && method.data[0] == VELK_METHOD_DHCP;
}

// What the setting answers instead, in words that give no secret away.
std::string WhatIsHeld(const Setting& setting, const Answer& answer) {
    if (StatusOf(answer) != ExitStatus::kDone) {
        return DescribeFailure("it cannot be read back", answer);
    }
    if (setting.row->secret) {
        return "the device holds another value";
    }
    return "the device holds " + Quoted(setting.row->kind->Print(answer.data));
}

}  // namespace

std::optional<bool> VerifySet(const Setting& setting, const Data& wanted, const Patience& patience,
                              Report& report) {
    if (!setting.can_get()) {
        return std::nullopt;
    }
    const std::string name = setting.name();
    const Answer answer = ExecutePatiently({VELK_GET, setting.row->id, setting.interface}, {},
                                           patience, name, report);
    const ValueKind& kind = *setting.row->kind;
    if (StatusOf(answer) == ExitStatus::kDone && kind.Print(answer.data) == kind.Print(wanted)) {
        return true;
    }
    if (AnswersWithLease(setting)) {
        report.Note(name + ": set, but not checked: while " + std::string(setting.interface) +
                    ".method is dhcp, its lease is shown");
        return std::nullopt;
    }
    const std::string_view cause = LikelyCause(setting, answer);
    report.Complain(Problem{name + ": the library reported success, but " +
                                WhatIsHeld(setting, answer) +
                                (cause.empty() ? "" : "; likely cause: " + std::string(cause)),
                            name});
    return false;
}

}  // namespace velkctl
