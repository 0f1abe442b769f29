// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// value_checks.h - checks the values that the device has with the checks of a set.
#ifndef VELKCTL_DOCTOR_VALUE_CHECKS_H_
#define VELKCTL_DOCTOR_VALUE_CHECKS_H_

#include <optional>
#include <string>

#include "velkctl/call/device.h"
#include "velkctl/call/planned_values.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// Returns a finding without a text, with the line of the file that the setting's value is read
// from. `text` is the value, or one word of it.
Finding AboutValue(const Setting& setting, const std::string& text);

// Returns the finding that a set would refuse this value of the setting, with the line of the file
// that the value is read from. Nothing if the value is valid, empty or a text.
std::optional<Finding> InvalidValue(const Setting& setting, const Data& value);

// Returns the first finding about the setting's own line in /etc/network/interfaces, or about the
// place of the line that a set adds. Nothing for other files.
std::optional<Finding> OwnLineFinding(const Setting& setting);

// Returns the finding about an invalid value as a note.
Problem NoteOf(const Finding& invalid_value);

// Returns the note about a value that was read: the finding about its line, and without one that
// about the value. Nothing if the value is valid and read from its own line.
std::optional<Problem> NoteAboutValue(const Setting& setting, const Data& value,
                                      const Device& device);

// Returns the note about the lines of a value that was set and read back: ifup may take another
// one. Nothing if there is no doubt.
std::optional<Problem> NoteAfterSet(const Setting& setting, const Data& value);

// Returns the configured addresses that do not fit each other: a gateway outside the network of its
// interface, an address that no host can have, one address of two interfaces, or a DNS server that
// is the device itself. Also an address or a mask that a static interface lacks. Of an interface
// with DHCP, only its present address is compared, with the DNS servers.
Findings NetworkMismatches(const PlannedValues& planned);

// Checks each value in the device's files, and the values of the interfaces against each other.
// Leaves out the settings that are read or set wrongly according to the findings in `known`.
Findings CheckValues(const Findings& known, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_VALUE_CHECKS_H_
