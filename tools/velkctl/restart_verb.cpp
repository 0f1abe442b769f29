// restart_verb.cpp - the verb that restarts an interface.
#include <string>

#include "velkctl/device.h"
#include "velkctl/result_codes.h"
#include "velkctl/terminal.h"
#include "velkctl/verbs.h"

namespace velkctl {
namespace {

constexpr char kNotifyOnly = 2;  // first data byte of a restart of eth1

}  // namespace

ExitStatus RunRestart(const Invocation& invocation) {
    const std::string& interface = invocation.words.front();
    if (interface != VELK_WIRED_INTERFACE && interface != VELK_WIRELESS_INTERFACE) {
        return Refuse("restart: " + invocation.Shown(interface) +
                      " is not an interface of the device; give eth0 or eth1");
    }
    Data data{};
    if (invocation.notify_only) {
        if (interface != VELK_WIRELESS_INTERFACE) {
            return Refuse("restart: --notify-only is for eth1; leave it out for " + interface);
        }
        data[0] = kNotifyOnly;
    }
    const Answer answer = Execute({VELK_RESTART, VELK_CMD_RESTART, interface}, data);
    if (answer.result != LIB_VELK_SUCCESS) {
        Complain(DescribeFailure(interface + ": could not be restarted", answer.result));
    }
    return FindResultCode(answer.result).status;
}

}  // namespace velkctl
