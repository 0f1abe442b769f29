// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// trial_run.cpp - runs commands of the library in a private copy of the device's files.
#include "velkctl/preview/trial_run.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <iterator>
#include <thread>

#include "lib/base/find_row.h"
#include "lib/base/paths.h"
#include "velkctl/call/library_lock.h"
#include "velkctl/files/tool_output.h"
#include "velkctl/preview/copy_plan.h"
#include "velkctl/preview/namespaces.h"
#include "velkctl/preview/trial_process.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/value_kind.h"

namespace velkctl {
namespace {

using Milliseconds = std::chrono::milliseconds;

constexpr Milliseconds kLockPause{100};
// Another program may replace a file during each trial.
constexpr int kTries = 5;

// Returns false if another program still holds the lock after the time to wait.
bool AwaitLock(std::optional<LibraryLock>& lock, int wait_seconds) {
    Milliseconds left = std::chrono::seconds(wait_seconds);
    lock.emplace();
    while (lock->is_busy() && left > Milliseconds::zero()) {
        std::this_thread::sleep_for(kLockPause);
        left -= kLockPause;
        lock.emplace();
    }
    return !lock->is_busy();
}

// Returns the images with those of the files that they lack.
std::vector<FileImage> WithPresentFiles(std::vector<FileImage> images) {
    for (const std::string& path : ChangeableFiles()) {
        if (velk::FindRow(images, path, &FileImage::path) == nullptr) {
            images.push_back(ReadFileImage(path));
        }
    }
    return images;
}

// A larger file than this program reads could be copied only in part.
std::optional<Problem> UnreadProblem(const std::vector<FileImage>& images) {
    const FileImage* large = velk::FindRow(images, EFBIG, &FileImage::error);
    if (large == nullptr) {
        return std::nullopt;
    }
    return Problem{.message = large->path + ": is too large for a private copy",
                   .file = large->path};
}

Problem ProblemOf(const TrialEnd& end) {
    Problem problem{.message = "a private copy of the files is not possible here"};
    problem.detail = end.step + ": " + strerror(end.error);
    if (end.is_refused) {
        problem.message =
            "the kernel refuses namespaces, so a private copy of the files is not "
            "possible";
        problem.detail.clear();
        problem.remedy = NamespaceAdvice(end.error);
    }
    return problem;
}

// The line that removes this file does not run: its folder is the real one.
FileImage OldAddressAfter(const FileImage& before, const std::vector<Event>& events) {
    const bool is_removed = std::ranges::any_of(events, [](const Event& event) {
        return event.kind == EventKind::kShellLineNotRun &&
               event.text.ends_with(velk::kOldAddressFile);
    });
    return is_removed ? FileImage{before.path} : before;
}

// In the copy of an ordinary user the files have other owners and modes.
FileImage AfterOf(const FileImage& before, const FileImage& in_copy) {
    FileImage after = in_copy;
    if (before.exists && after.exists) {
        after.mode = before.mode;
        after.owner = before.owner;
        after.group = before.group;
    }
    return after;
}

std::vector<FileImage> FilesAfter(const std::vector<FileImage>& before, const TrialEnd& end) {
    std::vector<FileImage> files;
    for (const FileImage& image : before) {
        const FileImage* in_copy = velk::FindRow(end.files, image.path, &FileImage::path);
        if (image.path == velk::kOldAddressFile) {
            files.push_back(OldAddressAfter(image, end.events));
        } else {
            files.push_back(in_copy == nullptr ? image : AfterOf(image, *in_copy));
        }
    }
    return files;
}

// Returns the answer of a check; null if there is none.
const Answer* CheckOf(const TrialRun& run, const std::vector<TrialStep>& steps, uint32_t id,
                      const std::string& interface) {
    for (size_t i = 0; i < std::min(run.answers.size(), steps.size()); ++i) {
        const bool is_wanted = steps[i].is_check && steps[i].type == VELK_GET;
        if (is_wanted && steps[i].id == id && steps[i].interface == interface) {
            return &run.answers[i];
        }
    }
    return nullptr;
}

// True if all steps have answers, and those that must have succeeded.
bool IsComplete(const TrialRun& run, const std::vector<TrialStep>& steps) {
    return run.answers.size() == steps.size() && !steps.empty() &&
           (steps.back().is_check || run.answers.back().ok());
}

// A trial that ended by itself or by the deadline has no answer for its last step.
Answer MissingAnswer(const TrialEnd& end, const TimeLimits& limits) {
    return {.result = LIB_VELK_FAILURE,
            .timed_out = end.timed_out,
            .timeout_seconds = limits.timeout_seconds};
}

bool IsOvertaken(const TrialEnd& end) {
    return end.error == ESTALE;
}

// Returns nothing if another program has replaced a file meanwhile, unless this is the last try.
std::optional<TrialRun> TryOnce(const std::vector<TrialStep>& steps, const TimeLimits& limits,
                                const std::vector<FileImage>& images, bool is_last) {
    std::optional<LibraryLock> lock;
    if (images.empty() && !AwaitLock(lock, limits.wait_seconds)) {
        return TrialRun{.answers = {{LIB_VELK_LOCKED}}};
    }
    TrialRun run{.before = WithPresentFiles(images)};
    lock.reset();
    if (run.problem = UnreadProblem(run.before); run.problem) {
        return TrialRun{.problem = run.problem};
    }
    TrialEnd end = RunTrialProcess(steps, PlanCopy(run.before), limits.timeout_seconds);
    if (IsOvertaken(end) && !is_last) {
        return std::nullopt;
    }
    if (end.error != 0) {
        return TrialRun{.problem = ProblemOf(end)};
    }
    run.after = FilesAfter(run.before, end);
    run.events = std::move(end.events);
    run.answers = std::move(end.answers);
    run.is_cut_off = !end.is_complete;
    if (run.is_cut_off) {
        // The last step may have answered before the trial ended.
        run.answers.resize(std::min(run.answers.size(), steps.size() - 1));
        run.answers.push_back(MissingAnswer(end, limits));
    }
    run.is_complete = IsComplete(run, steps);
    if (!run.answers.empty()) {
        run.answers.back().tool_output = OutputLines(end.tool_output);
    }
    return run;
}

}  // namespace

TrialStep StepOf(const SettingChange& change) {
    return {VELK_SET, change.setting.row->id, std::string(change.setting.interface), change.value};
}

std::vector<TrialStep> StepsOf(const std::vector<SettingChange>& changes) {
    std::vector<TrialStep> steps;
    std::ranges::transform(changes, std::back_inserter(steps), StepOf);
    return steps;
}

std::vector<TrialStep> ChecksOf(const std::vector<SettingChange>& changes) {
    std::vector<TrialStep> checks;
    for (const SettingChange& change : changes) {
        const CatalogueRow& row = *change.setting.row;
        const bool is_in_copy =
            row.held_in.holder == Holder::kFile || row.held_in.holder == Holder::kDaemon;
        if (!change.setting.can_get() || !is_in_copy) {
            continue;
        }
        const std::string interface(change.setting.interface);
        if (IsAddressCommand(row.id)) {
            checks.push_back({VELK_GET, VELK_CMD_IP_METHOD, interface, {}, true});
        }
        checks.push_back({VELK_GET, row.id, interface, {}, true});
    }
    return checks;
}

std::optional<bool> HeldAfter(const TrialRun& run, const std::vector<TrialStep>& steps,
                              const TrialStep& step) {
    const Answer* method = CheckOf(run, steps, VELK_CMD_IP_METHOD, step.interface);
    const bool shows_lease =
        method != nullptr && (!method->ok() || method->data[0] == VELK_METHOD_DHCP);
    const Answer* answer = CheckOf(run, steps, step.id, step.interface);
    const std::optional<Setting> setting = FindSetting(step.id, step.interface);
    if (answer == nullptr || !setting || (IsAddressCommand(step.id) && shows_lease)) {
        return std::nullopt;
    }
    const ValueKind& kind = *setting->row->kind;
    return answer->ok() && kind.Print(answer->data) == kind.Print(step.data);
}

TrialRun RunTrial(const std::vector<TrialStep>& steps, const TimeLimits& limits,
                  const std::vector<FileImage>& images) {
    for (int i = 1; i < kTries; ++i) {
        if (std::optional<TrialRun> run = TryOnce(steps, limits, images, /*is_last=*/false)) {
            return std::move(*run);
        }
    }
    return *TryOnce(steps, limits, images, /*is_last=*/true);
}

}  // namespace velkctl
