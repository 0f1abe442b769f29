// blocking.h - how long commands may take, and what they wait for.
#ifndef VELKCTL_BLOCKING_H_
#define VELKCTL_BLOCKING_H_

#include <string_view>

#include "velkctl/catalogue.h"
#include "velkctl/command.h"

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

#endif  // VELKCTL_BLOCKING_H_
