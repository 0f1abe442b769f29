// longest_wait.h - how long commands may take, and what they wait for.
#ifndef VELKCTL_CALL_LONGEST_WAIT_H_
#define VELKCTL_CALL_LONGEST_WAIT_H_

#include <string_view>

#include "velkctl/call/command.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

struct Blocking {
    int seconds = 0;             // at most; 0: there is no telling
    std::string_view awaited{};  // empty: nothing but files and the tools that copy them
};

// The longest that a command blocks, whatever the state of the device. The time that tools take is
// left out where they answer at once as a rule.
Blocking LongestCall(const Command& command);

// The longest that reading a setting blocks.
Blocking LongestGet(const Setting& setting);

}  // namespace velkctl

#endif  // VELKCTL_CALL_LONGEST_WAIT_H_
