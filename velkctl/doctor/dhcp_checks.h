// dhcp_checks.h - the parts of the check of the DHCP client's configuration.
#ifndef VELKCTL_DOCTOR_DHCP_CHECKS_H_
#define VELKCTL_DOCTOR_DHCP_CHECKS_H_

#include <string>

#include "velkctl/doctor/finding.h"
#include "velkctl/files/text_file.h"

namespace velkctl {

// An interface's block as switching the method sees it.
Findings CheckDhcpBlock(const Lines& lines, const std::string& interface);

// The "request" statements as switching an option sees them.
Findings CheckDhcpRequests(const Lines& lines);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_DHCP_CHECKS_H_
