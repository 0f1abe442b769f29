// value_checks.h - checks the values that the device has with the checks of a set.
#ifndef VELKCTL_DOCTOR_VALUE_CHECKS_H_
#define VELKCTL_DOCTOR_VALUE_CHECKS_H_

#include <optional>

#include "velkctl/doctor/finding.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// Returns the finding that a set would refuse this value of the setting, with the line of the file
// that the value is read from. Nothing if the value is valid, empty or secret.
std::optional<Finding> InvalidValue(const Setting& setting, const Data& value);

// The same as a note for a reader of the value.
Problem NoteOf(const Finding& invalid_value);

// Checks each value in the device's files, and the values of the interfaces against each other.
// Leaves out the settings that are read wrongly according to the findings in `known`.
Findings CheckValues(const Findings& known, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_VALUE_CHECKS_H_
