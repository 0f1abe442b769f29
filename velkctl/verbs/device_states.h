// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_states.h - the configuration of each part of the device beside its running state.
#ifndef VELKCTL_VERBS_DEVICE_STATES_H_
#define VELKCTL_VERBS_DEVICE_STATES_H_

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include "velkctl/call/device.h"

namespace velkctl {

// A part of the device. Empty texts are not known, or not configured.
struct PartState {
    std::string name;
    std::string configured{};
    std::string running{};
    bool differs = false;
    std::optional<bool> is_on{};     // nothing for a part that is neither on nor off
    std::optional<time_t> expiry{};  // the end of a lease; nothing without one
};

using PartStates = std::vector<PartState>;

// Returns the parts of an interface; those of the whole device if `wanted` is empty.
PartStates ReadStates(const std::string& wanted, const Device& device);

}  // namespace velkctl

#endif  // VELKCTL_VERBS_DEVICE_STATES_H_
