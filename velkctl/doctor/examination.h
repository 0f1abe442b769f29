// examination.h - the doctor's list of checks, for the whole device or for one setting.
#ifndef VELKCTL_DOCTOR_EXAMINATION_H_
#define VELKCTL_DOCTOR_EXAMINATION_H_

#include "velkctl/doctor/finding.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"

namespace velkctl {

Findings ExamineDevice(Report& report);

// What concerns the setting. Only the checks that can find such a thing are made; the wireless
// daemon is not asked.
Findings ExamineFor(const Setting& setting);

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_EXAMINATION_H_
