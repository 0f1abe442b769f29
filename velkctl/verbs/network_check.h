// network_check.h - whether an interface's addresses fit together.
#ifndef VELKCTL_VERBS_NETWORK_CHECK_H_
#define VELKCTL_VERBS_NETWORK_CHECK_H_

#include <string>

#include "velkctl/call/device.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data.h"

namespace velkctl {

// What is wrong with a value in the light of the interface's other settings, as they are
// configured: an address that no host of its network can have, or that the gateway has; a gateway
// outside the network. Empty when nothing is, or when that cannot be told.
std::string NetworkProblem(const Setting& setting, const Data& value, const Device& device);

}  // namespace velkctl

#endif  // VELKCTL_VERBS_NETWORK_CHECK_H_
