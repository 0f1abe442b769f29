// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// copy_trial.cpp - a set in a private copy of its files.
#include "velkctl/journal/copy_trial.h"

#include <algorithm>
#include <cerrno>

#include "velkctl/call/library_lock.h"
#include "velkctl/call/stop_signals.h"
#include "velkctl/preview/trial_run.h"
#include "velkctl/settings/value_kind.h"

namespace velkctl {
namespace {

std::optional<std::vector<FileImage>> ReadFiles(const std::vector<FileImage>& files) {
    const LibraryLock lock(kSetSeconds);
    if (lock.is_busy()) {
        return std::nullopt;
    }
    std::vector<FileImage> images;
    images.reserve(files.size());
    for (const FileImage& file : files) {
        images.push_back(ReadFileImage(file.path));
    }
    return images;
}

bool CanBeWritten(const FileImage& file) {
    return file.error == 0 && MayWrite(file);
}

// The first and the last step get the setting.
bool HasTaken(const TrialRun& run, const Setting& setting, const Data& value) {
    const ValueKind& kind = *setting.row->kind;
    return run.ok() && run.answers.back().ok() &&
           kind.Print(run.answers.back().data) == kind.Print(value);
}

// Adds the files that the trial has changed.
void AddChanged(const TrialRun& run, const std::vector<FileImage>& files, CopyTrial& trial) {
    for (const FileImage& now : files) {
        const auto then = std::ranges::find(run.after, now.path, &FileImage::path);
        if (then != run.after.end() && !then->HasContentsOf(now)) {
            trial.now.push_back(now);
            trial.then.push_back(*then);
        }
    }
}

}  // namespace

std::optional<CopyTrial> TryInCopy(const Setting& setting, const Data& value,
                                   const std::vector<FileImage>& files) {
    const std::optional<std::vector<FileImage>> now = ReadFiles(files);
    if (!now || !setting.can_get()) {
        return std::nullopt;
    }
    const TrialStep get{VELK_GET, setting.row->id, std::string(setting.interface), {}, true};
    const TrialRun run = RunTrial({get, StepOf({setting, value}), get}, {}, *now);
    if (run.is_cut_off || !HasTaken(run, setting, value)) {
        return std::nullopt;
    }
    CopyTrial trial{.held = run.answers.front()};
    AddChanged(run, *now, trial);
    return std::ranges::all_of(trial.now, CanBeWritten) ? std::optional(trial) : std::nullopt;
}

int CarryOver(const CopyTrial& trial) {
    const StopSignals signals;
    const LibraryLock lock(kSetSeconds);
    int error = lock.is_busy() ? EWOULDBLOCK : 0;
    for (size_t i = 0; i < trial.now.size() && error == 0; ++i) {
        error = WriteFileImage(trial.then[i], trial.now[i]);
    }
    return error;
}

}  // namespace velkctl
