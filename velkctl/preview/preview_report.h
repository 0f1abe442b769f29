// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// preview_report.h - shows a trial, or the trace of a real call.
#ifndef VELKCTL_PREVIEW_PREVIEW_REPORT_H_
#define VELKCTL_PREVIEW_PREVIEW_REPORT_H_

#include <string>
#include <vector>

#include "velkctl/files/file_image.h"
#include "velkctl/preview/event_log.h"
#include "velkctl/preview/trial_run.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"

namespace velkctl {

// Shows the results of a trial: the differences of files, the library's steps, and the longest time
// of the real call. The document gets the member "preview". Complains about a failed step, and if
// the trial was not possible. Returns the exit status.
ExitStatus ReportTrial(const TrialRun& run, const std::vector<TrialStep>& steps, Report& report);

// Shows the differences of files and the library's steps in a real call, as the member "trace".
void ReportTrace(const std::vector<FileImage>& before, const std::vector<FileImage>& after,
                 const std::vector<Event>& events, Report& report);

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_PREVIEW_REPORT_H_
