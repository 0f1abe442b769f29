// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// trial_process.h - the process of a trial, and its results.
#ifndef VELKCTL_PREVIEW_TRIAL_PROCESS_H_
#define VELKCTL_PREVIEW_TRIAL_PROCESS_H_

#include <string>
#include <vector>

#include "velkctl/call/answer.h"
#include "velkctl/files/file_image.h"
#include "velkctl/preview/copy_plan.h"
#include "velkctl/preview/event_log.h"
#include "velkctl/preview/trial_run.h"

namespace velkctl {

struct TrialEnd {
    std::vector<Answer> answers{};
    std::vector<Event> events{};
    std::vector<FileImage> files{};  // in the copy, after all steps
    std::string tool_output{};
    bool is_complete = false;  // all steps ran, up to the first failure
    bool timed_out = false;
    // The step of making the copy that failed, and its errno; 0: none.
    std::string step{};
    int error = 0;
    bool is_refused = false;  // the failed step made the namespaces
};

// Runs the steps in a copy of the files. `timeout_seconds` is 0 for no limit.
TrialEnd RunTrialProcess(const std::vector<TrialStep>& steps, const CopyPlan& plan,
                         int timeout_seconds);

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_TRIAL_PROCESS_H_
