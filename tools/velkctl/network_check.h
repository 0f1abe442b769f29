// network_check.h - whether an interface's addresses fit together.
#ifndef VELKCTL_NETWORK_CHECK_H_
#define VELKCTL_NETWORK_CHECK_H_

#include <string>

#include "velkctl/catalogue.h"
#include "velkctl/data.h"

namespace velkctl {

// What is wrong with a value in the light of the interface's other settings: a gateway that its
// configured address and mask do not reach. Empty when nothing is, or when that cannot be told.
std::string NetworkProblem(const Setting& setting, const Data& value);

}  // namespace velkctl

#endif  // VELKCTL_NETWORK_CHECK_H_
