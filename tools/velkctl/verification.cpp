// verification.cpp - whether the device holds what was set.
#include "velkctl/verification.h"

#include "velkctl/device.h"
#include "velkctl/result_codes.h"
#include "velkctl/terminal.h"

namespace velkctl {
namespace {

bool IsAddress(const Setting& setting) {
    const uint32_t id = setting.row->id;
    return id == VELK_CMD_IP_ADDRESS || id == VELK_CMD_NETMASK || id == VELK_CMD_GATEWAY;
}

// Anything else is with the kernel or the wireless daemon.
bool IsInFile(const Setting& setting) {
    return setting.row->interfaces != kEth1 && setting.row->id != VELK_CMD_LINK_SPEED;
}

// A DHCP interface answers with its lease; what is configured shows when it is static again.
bool AnswersWithLease(const Setting& setting) {
    if (!IsAddress(setting)) {
        return false;
    }
    const Answer method = Execute({VELK_GET, VELK_CMD_IP_METHOD, setting.interface});
    return method.result == LIB_VELK_SUCCESS && method.data[0] == VELK_METHOD_DHCP;
}

// Why a setting answers as it does instead of with what was set; empty when nothing can be said.
std::string_view LikelyCause(const Setting& setting, const Answer& answer) {
    const bool failed = answer.result != LIB_VELK_SUCCESS;
    if (failed && (IsAddress(setting) || setting.row->id == VELK_CMD_IP_METHOD)) {
        return "/etc/network/interfaces has no stanza \"inet static\" or \"inet dhcp\" of the "
               "interface";
    }
    if (IsAddress(setting) && answer.data[0] == '\0') {
        return "its stanza in /etc/network/interfaces is the last one and has no such line to "
               "replace";
    }
    if (setting.row->id == VELK_CMD_APIPA && answer.data[0] == VELK_OFF) {
        return "no line of /etc/dhclient-exit-hooks that runs for the interface has "
               "/usr/sbin/avahi-autoipd to switch";
    }
    if (IsAddress(setting)) {
        return "another line of its stanza in /etc/network/interfaces comes first, or the file "
               "cannot be written";
    }
    return !failed && IsInFile(setting) ? "the file that holds it cannot be written" : "";
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
