// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// expected_images.cpp - the files that a change makes, found in a private copy.
#include "velkctl/journal/expected_images.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "velkctl/files/file_image.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/put_back.h"
#include "velkctl/preview/trial_run.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_change.h"

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

// Returns the images that differ from those before the change.
std::vector<FileImage> ChangedFiles(const TrialRun& run, const JournalEntry& entry) {
    std::vector<FileImage> changed;
    for (const FileImage& image : run.after) {
        const auto before = std::ranges::find(entry.before, image.path, &FileImage::path);
        if (before != entry.before.end() && !image.HasContentsOf(*before)) {
            changed.push_back(image);
        }
    }
    return changed;
}

std::optional<Problem> Expect(OpenChange& change, const std::vector<TrialStep>& steps,
                              const TimeLimits& limits) {
    TrialRun run = RunTrial(steps, limits, change.entry().before);
    if (!run.problem) {
        (void)change.Expect(ChangedFiles(run, change.entry()));
    }
    return std::move(run.problem);
}

bool HasUnknownFile(const JournalEntry& entry) {
    return std::ranges::any_of(entry.before, [&](const FileImage& before) {
        return CompareFile(ReadFileImage(before.path), entry) == FileCase::kOther;
    });
}

}  // namespace

std::optional<Problem> ExpectChange(OpenChange& change, const TimeLimits& limits) {
    const std::vector<TrialStep> steps = FileSteps(change.entry());
    return steps.empty() ? std::nullopt : Expect(change, steps, limits);
}

std::optional<Problem> ExpectSteps(OpenChange& change, const TimeLimits& limits) {
    if (!HasUnknownFile(change.entry())) {
        return std::nullopt;
    }
    std::vector<TrialStep> steps;
    for (const TrialStep& step : FileSteps(change.entry())) {
        steps.push_back(step);
        if (std::optional<Problem> problem = Expect(change, steps, limits)) {
            return problem;
        }
    }
    return std::nullopt;
}

}  // namespace velkctl
