// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// overdue_change.h - settles the last change before the work of a run.
#ifndef VELKCTL_GUARDIAN_OVERDUE_CHANGE_H_
#define VELKCTL_GUARDIAN_OVERDUE_CHANGE_H_

#include "velkctl/report/report.h"

namespace velkctl {

// Takes the last change back if its time is over and its guardian was killed. Notes once that a
// change was taken back without a request. Does nothing for a user who may not read the journal.
void SettleLastChange(Report& report);

}  // namespace velkctl

#endif  // VELKCTL_GUARDIAN_OVERDUE_CHANGE_H_
