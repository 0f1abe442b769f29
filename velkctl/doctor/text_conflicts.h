// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// text_conflicts.h - values that would have a set change the wrong text of a file.
#ifndef VELKCTL_DOCTOR_TEXT_CONFLICTS_H_
#define VELKCTL_DOCTOR_TEXT_CONFLICTS_H_

#include <optional>

#include "velkctl/call/device.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// The library replaces the first occurrence of a text on a line. Returns the reason why this set,
// or the next one, would replace another text: the name of a time server is also a part of the
// command before it, or administrator or location has a word of the SNMP agent's file in it.
// Compares the new value and the present ones. Returns nothing if every set finds the right place,
// or if the files cannot be read.
std::optional<Problem> TextConflict(const Setting& setting, const Data& value,
                                    const Device& device);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_TEXT_CONFLICTS_H_
