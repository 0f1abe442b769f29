// network_check.h - checks that the addresses of an interface fit together.
#ifndef VELKCTL_VERBS_NETWORK_CHECK_H_
#define VELKCTL_VERBS_NETWORK_CHECK_H_

#include <optional>

#include "velkctl/call/device.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// Returns the conflict of a value with the configuration of the interface: an address that no host
// of its network can have, or that the gateway has; a gateway outside the network. Nothing if there
// is no conflict or if it is unknown.
std::optional<Problem> NetworkProblem(const Setting& setting, const Data& value,
                                      const Device& device);

}  // namespace velkctl

#endif  // VELKCTL_VERBS_NETWORK_CHECK_H_
