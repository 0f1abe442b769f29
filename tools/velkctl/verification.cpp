// verification.cpp - whether the device holds what was set.
#include "velkctl/verification.h"

#include "velkctl/causes.h"
#include "velkctl/device.h"
#include "velkctl/result_codes.h"
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
    if (answer.result != LIB_VELK_SUCCESS) {
        return DescribeFailure("it cannot be read back", answer.result);
    }
    if (setting.row->secret) {
        return "the device holds another value";
    }
    return "the device holds " + Quoted(setting.row->kind->Print(answer.data));
}

}  // namespace

ExitStatus VerifySet(const Setting& setting, const Data& wanted) {
    if (!setting.can_get()) {
        return ExitStatus::kDone;
    }
    const Answer answer = Execute({VELK_GET, setting.row->id, setting.interface});
    const ValueKind& kind = *setting.row->kind;
    if (answer.result == LIB_VELK_SUCCESS && kind.Print(answer.data) == kind.Print(wanted)) {
        return ExitStatus::kDone;
    }
    if (AnswersWithLease(setting)) {
        Complain(setting.name() + ": set, but not checked: while " +
                 std::string(setting.interface) + ".method is dhcp, its lease is shown");
        return ExitStatus::kDone;
    }
    const std::string_view cause = LikelyCause(setting, answer);
    Complain(setting.name() + ": the library reported success, but " + WhatIsHeld(setting, answer) +
             (cause.empty() ? "" : "; likely cause: " + std::string(cause)));
    return ExitStatus::kNotHeld;
}

}  // namespace velkctl
