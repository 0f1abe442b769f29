// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// expected_images.cpp - the files that a change makes, found in a private copy.
#include "velkctl/journal/expected_images.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "velkctl/call/answer.h"
#include "velkctl/files/file_image.h"
#include "velkctl/journal/journal_entry.h"
#include "velkctl/journal/put_back.h"
#include "velkctl/preview/trial_run.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_change.h"
#include "velkctl/settings/value_kind.h"

namespace velkctl {
namespace {

// The user's limits do not hold for putting a change back. Shell lines take a second at most.
constexpr TimeLimits kTrialLimits{.timeout_seconds = 60};

bool IsInFile(const Step& step) {
    return step.setting.row->held_in.holder == Holder::kFile && step.new_value;
}

// An apply sets such a value only if another step has switched it.
bool IsKept(const JournalEntry& entry, const Step& step) {
    return entry.kind == EntryKind::kApply && step.old_value == step.new_value;
}

// The steps that change files and have a known value.
std::vector<TrialStep> FileSteps(const JournalEntry& entry) {
    std::vector<TrialStep> steps;
    for (const Step& step : entry.steps) {
        if (IsInFile(step) && !IsKept(entry, step)) {
            steps.push_back(StepOf({step.setting, *step.new_value}));
        }
    }
    return steps;
}

bool Holds(const Answer& answer, const Step& step) {
    const ValueKind& kind = *step.setting.row->kind;
    return answer.ok() && kind.Print(answer.data) == kind.Print(*step.new_value);
}

// Returns the steps, then those that set a switched value again.
std::vector<TrialStep> WithSwitchedBack(const JournalEntry& entry, std::vector<TrialStep> steps,
                                        const TimeLimits& limits) {
    const size_t first = steps.size();
    std::vector<Step> kept;
    std::vector<TrialStep> gets = steps;
    for (const Step& step : entry.steps) {
        if (IsInFile(step) && IsKept(entry, step)) {
            kept.push_back(step);
            const std::string interface(step.setting.interface);
            gets.push_back({VELK_GET, step.setting.row->id, interface, {}, /*is_check=*/true});
        }
    }
    const TrialRun run = kept.empty() ? TrialRun() : RunTrial(gets, limits, entry.before);
    for (size_t i = first; i < run.answers.size(); ++i) {
        const Step& step = kept[i - first];
        if (!Holds(run.answers[i], step)) {
            steps.push_back(StepOf({step.setting, *step.new_value}));
        }
    }
    return steps;
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

bool HasFile(const JournalEntry& entry, bool (*is_meant)(FileCase found)) {
    return std::ranges::any_of(entry.before, [&](const FileImage& before) {
        return is_meant(CompareFile(ReadFileImage(before.path), entry));
    });
}

bool HasUnknownFile(const JournalEntry& entry) {
    return HasFile(entry, [](FileCase found) { return found == FileCase::kOther; });
}

bool HasChangedFile(const JournalEntry& entry) {
    return HasFile(entry, [](FileCase found) { return found != FileCase::kOld; });
}

// Runs the steps. The run has a problem also if it was cut off: it may lack files then. Those that
// it has are right.
TrialRun RunSteps(const JournalEntry& entry, const std::vector<TrialStep>& steps,
                  const TimeLimits& limits) {
    TrialRun run = RunTrial(steps, limits, entry.before);
    if (run.is_cut_off) {
        run.problem = Problem{.message = "the steps did not end in a private copy of the files"};
    }
    return run;
}

// Adds the files after these steps. Returns the problem if no trial is possible.
std::optional<Problem> AddImages(JournalEntry& entry, const std::vector<TrialStep>& steps) {
    TrialRun run = RunSteps(entry, steps, kTrialLimits);
    for (FileImage& image : ChangedFiles(run, entry)) {
        AddAfter(entry, std::move(image));
    }
    return std::move(run.problem);
}

// Returns the entry with its own images and those of another one.
JournalEntry WithImagesOf(JournalEntry entry, const JournalEntry& other) {
    for (const std::vector<FileImage>* images : {&other.between, &other.after}) {
        for (const FileImage& image : *images) {
            AddAfter(entry, image);
        }
    }
    return entry;
}

// An undo writes the bytes of an earlier entry, which its steps may not make. A trial run starts no
// DHCP client.
JournalEntry WithoutForeignImages(JournalEntry entry) {
    if (entry.kind == EntryKind::kUndo) {
        return entry;
    }
    const auto is_of_steps = [&](const FileImage& image) {
        return !MayGetServersOfLease(image.path, entry);
    };
    std::erase_if(entry.after, is_of_steps);
    std::erase_if(entry.between, is_of_steps);
    return entry;
}

}  // namespace

std::optional<Problem> ExpectChange(OpenChange& change, const TimeLimits& limits) {
    const std::vector<TrialStep> changes = FileSteps(change.entry());
    if (changes.empty()) {
        return std::nullopt;
    }
    const std::vector<TrialStep> steps = WithSwitchedBack(change.entry(), changes, limits);
    TrialRun run = RunSteps(change.entry(), steps, limits);
    (void)change.Expect(ChangedFiles(run, change.entry()));
    return std::move(run.problem);
}

std::optional<Problem> ExpectSteps(OpenChange& change) {
    if (!HasChangedFile(change.entry())) {
        return std::nullopt;
    }
    JournalEntry entry = WithoutForeignImages(change.entry());
    std::vector<TrialStep> steps;
    for (const TrialStep& step : WithSwitchedBack(entry, FileSteps(entry), kTrialLimits)) {
        steps.push_back(step);
        if (std::optional<Problem> problem = AddImages(entry, steps)) {
            change.UseImages(WithImagesOf(change.entry(), entry));
            return HasUnknownFile(change.entry()) ? std::move(problem) : std::nullopt;
        }
    }
    change.UseImages(std::move(entry));
    return std::nullopt;
}

JournalEntry WithOwnImages(const JournalEntry& entry) {
    const std::vector<TrialStep> steps = FileSteps(entry);
    if (entry.kind == EntryKind::kUndo || steps.empty() || !HasChangedFile(entry)) {
        return entry;
    }
    JournalEntry own = WithoutForeignImages(entry);
    return AddImages(own, WithSwitchedBack(entry, steps, kTrialLimits)) ? entry : own;
}

}  // namespace velkctl
