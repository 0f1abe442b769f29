// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// examination.h - runs the doctor's checks, for the whole device or for one setting.
#ifndef VELKCTL_DOCTOR_EXAMINATION_H_
#define VELKCTL_DOCTOR_EXAMINATION_H_

#include "velkctl/doctor/finding.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

// Runs every check, the wireless daemon's last.
Findings ExamineDevice(Report& report);

// Returns the findings that affect the setting. Runs only the checks that can have one, and does
// not query the wireless daemon. `value` is the value that was set, for the fix; empty if unknown.
Findings ExamineFor(const Setting& setting, std::string_view value = {});

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_EXAMINATION_H_
