// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// network_check.h - checks that the addresses of the interfaces fit together.
#ifndef VELKCTL_DOCTOR_NETWORK_CHECK_H_
#define VELKCTL_DOCTOR_NETWORK_CHECK_H_

#include <optional>

#include "velkctl/call/planned_values.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/setting_change.h"

namespace velkctl {

// Returns the conflict of a value with the configuration of the interface as it will be: an address
// that no host of its network can have, or that the gateway has; a gateway outside the network; one
// address that both interfaces are given at once.
// Nothing if there is no conflict or if it is unknown. `planned` has the changed value.
std::optional<Problem> NetworkProblem(const SettingChange& change, const PlannedValues& planned);

// Returns the configured addresses that do not fit each other: a gateway outside the network of its
// interface, an address that no host can have, one address of two interfaces, or a DNS server that
// is the device itself. Also an address or a mask that a static interface lacks. Of an interface
// with DHCP, only its present address is compared, with the DNS servers.
Findings NetworkMismatches(const PlannedValues& planned);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_NETWORK_CHECK_H_
