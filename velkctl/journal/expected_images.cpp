// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// expected_images.cpp - the files that an interrupted change would have made.
#include "velkctl/journal/expected_images.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "velkctl/preview/trial_run.h"

namespace velkctl {
namespace {

// The steps that change files and have a known value.
std::vector<TrialStep> FileSteps(const JournalEntry& entry) {
    std::vector<SettingChange> changes;
    for (const Step& step : entry.steps) {
        if (step.setting.row->held_in.holder == Holder::kFile && step.new_value) {
            changes.push_back({step.setting, *step.new_value});
        }
    }
    return StepsOf(changes);
}

// Returns the images of the files that the entry has.
std::vector<FileImage> OwnFiles(const std::vector<FileImage>& after, const JournalEntry& entry) {
    std::vector<FileImage> own;
    for (const FileImage& image : after) {
        const auto same = std::ranges::find(entry.before, image.path, &FileImage::path);
        if (same != entry.before.end()) {
            own.push_back(image);
        }
    }
    return own;
}

}  // namespace

std::optional<Problem> ExpectSteps(OpenChange& change, const TimeLimits& limits) {
    const std::vector<TrialStep> all = FileSteps(change.entry());
    std::vector<TrialStep> steps;
    for (const TrialStep& step : all) {
        steps.push_back(step);
        TrialRun run = RunTrial(steps, limits, change.entry().before);
        if (run.problem) {
            return std::move(run.problem);
        }
        (void)change.Expect(OwnFiles(run.after, change.entry()));
    }
    return std::nullopt;
}

}  // namespace velkctl
