// causes.h - why a setting does not hold what was set.
#ifndef VELKCTL_CAUSES_H_
#define VELKCTL_CAUSES_H_

#include <string_view>

#include "velkctl/answer.h"
#include "velkctl/catalogue.h"

namespace velkctl {

// The likely cause of the answer that a setting gives instead of the value that the library has
// just reported as set; empty when nothing can be said.
std::string_view LikelyCause(const Setting& setting, const Answer& answer);

}  // namespace velkctl

#endif  // VELKCTL_CAUSES_H_
