// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// trial_run.h - runs commands of the library in a private copy of the device's files.
#ifndef VELKCTL_PREVIEW_TRIAL_RUN_H_
#define VELKCTL_PREVIEW_TRIAL_RUN_H_

#include <optional>
#include <string>
#include <vector>

#include "velk/request.h"
#include "velkctl/call/answer.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/files/file_image.h"
#include "velkctl/preview/event_log.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/setting_change.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// A command of the library, with its data bytes.
struct TrialStep {
    velk_command_type type;
    uint32_t id;
    std::string interface {};
    Data data{};
    bool is_check = false;  // its failure does not end the trial
};

TrialStep StepOf(const SettingChange& change);
std::vector<TrialStep> StepsOf(const std::vector<SettingChange>& changes);

// Returns the steps that read the changed settings back, as far as a copy can show that: those in
// files and in the configuration of the wireless daemon. HeldAfter() compares their answers.
std::vector<TrialStep> ChecksOf(const std::vector<SettingChange>& changes);

struct TrialRun {
    // The trial was not possible: the kernel refuses namespaces, or a file cannot be read. All else
    // is empty then.
    std::optional<Problem> problem{};
    // One for each step up to the first failure of one that is no check, which is the last.
    std::vector<Answer> answers{};
    // All files that a command may change, before and after the steps, in the same order.
    std::vector<FileImage> before{};
    std::vector<FileImage> after{};
    // The steps of the library outside its own memory, in their order; see EventKind.
    std::vector<Event> events{};

    // True if every step succeeded, but for the checks.
    bool ok() const { return !problem && is_complete; }
    bool is_complete = false;
    // The trial ended without the answer of a step: it took too long, or was killed. The files
    // after it are not those after the steps.
    bool is_cut_off = false;
};

// Returns if the copy holds the value of this step after all steps; nothing if no check shows that,
// as with the address of an interface that has a lease.
std::optional<bool> HeldAfter(const TrialRun& run, const std::vector<TrialStep>& steps,
                              const TrialStep& step);

// Runs the steps in a process with a private copy of the files, up to the first failure. Nothing
// outside changes: tools that act on the device do not run, messages that change the configuration
// of the wireless daemon are not sent, nothing is written to the system log, waits are skipped. A
// query of the daemon and tools that only show something run as usual.
//
// The copy begins with the images, and with the present contents of all other files. Without images
// the files are read under the library's lock: while another program holds it, the answer is
// LIB_VELK_LOCKED, after `limits.wait_seconds`.
TrialRun RunTrial(const std::vector<TrialStep>& steps, const TimeLimits& limits,
                  const std::vector<FileImage>& images = {});

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_TRIAL_RUN_H_
