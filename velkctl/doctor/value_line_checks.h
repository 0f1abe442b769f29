// value_line_checks.h - whether the library finds the lines of a stanza that hold addresses.
#ifndef VELKCTL_DOCTOR_VALUE_LINE_CHECKS_H_
#define VELKCTL_DOCTOR_VALUE_LINE_CHECKS_H_

#include "velkctl/doctor/finding.h"
#include "velkctl/doctor/stanza.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// The lines for address, netmask and gateway.
Findings CheckValueLines(const Lines& lines, const Stanza& stanza);

// The line that an address is read from; nothing wrong with it by itself. None for other settings.
Findings ValueLineOf(const Setting& setting);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_VALUE_LINE_CHECKS_H_
