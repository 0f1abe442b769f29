// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// preview_report.cpp - shows a trial, or the trace of a real call.
#include "velkctl/preview/preview_report.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

#include "velkctl/call/answer.h"
#include "velkctl/call/longest_wait.h"
#include "velkctl/preview/changed_files.h"
#include "velkctl/preview/library_steps.h"
#include "velkctl/report/result_codes.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/device_files.h"
#include "velkctl/text/escaping.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// The longest time of the real call.
struct LongestTime {
    long seconds = 0;                           // the sum of the waits with a limit
    std::vector<std::string_view> unlimited{};  // "the interface to come up"
};

// Returns the name of the setting that the step changes; empty if it is none.
std::string SettingOf(const TrialStep& step) {
    const std::optional<Setting> setting = FindSetting(step.id, step.interface);
    return step.type == VELK_SET && setting ? setting->name() : "";
}

// "eth0.dns", "restart of eth0", or "command 999" for one that the library may not have.
std::string NameOf(const TrialStep& step) {
    if (step.type == VELK_RESTART) {
        return "restart of " + step.interface;
    }
    const std::string setting = SettingOf(step);
    return setting.empty() ? "command " + std::to_string(step.id) : setting;
}

void AddWait(std::vector<std::string_view>& waits, std::string_view wait) {
    if (std::ranges::find(waits, wait) == waits.end()) {
        waits.push_back(wait);
    }
}

std::string Joined(const std::vector<std::string_view>& waits, std::string_view separator) {
    std::string text;
    for (const std::string_view wait : waits) {
        text.append(text.empty() ? "" : separator).append(wait);
    }
    return text;
}

LongestTime LongestTimeOf(const TrialRun& run, const std::vector<TrialStep>& steps) {
    LongestTime longest{SecondsWaited(run.events)};
    for (const TrialStep& step : steps) {
        const LongestWait wait = LongestWaitOf({step.type, step.id, step.interface});
        longest.seconds += wait.seconds;
        if (wait.seconds == 0 && !wait.awaited.empty()) {
            AddWait(longest.unlimited, wait.awaited);
        }
    }
    return longest;
}

std::string TextOf(const LongestTime& longest) {
    std::string text = "longest time: ";
    if (longest.seconds > 0) {
        text.append(std::to_string(longest.seconds)).append(" s");
    }
    if (!longest.unlimited.empty()) {
        text.append(longest.seconds > 0 ? ", and the time for " : "the time for ");
        text.append(Joined(longest.unlimited, ",\n  and for "));
    }
    if (longest.seconds == 0 && longest.unlimited.empty()) {
        text.append("no wait; only the time to change files");
    }
    return text + "\n";
}

// A file that this user cannot read may still be changed: the tool that changes it runs as root.
void NoteUnread(const TrialRun& run, const std::vector<TrialStep>& steps, Report& report) {
    for (const FileImage& image : run.before) {
        const auto& files = DeviceFiles();
        const auto file = std::ranges::find(files, image.path, &DeviceFile::path);
        const bool is_changed =
            file != files.end() && std::ranges::any_of(steps, [&](const TrialStep& step) {
                return step.type == VELK_SET && IsChangedBy(*file, step.id);
            });
        if (image.error == EACCES && is_changed) {
            report.Note(image.path + ": this user cannot read it, so its changes are not shown");
        }
    }
}

Json ResultsInJson(const TrialRun& run, const std::vector<TrialStep>& steps) {
    Json results = Json::array();
    for (size_t i = 0; i < run.answers.size(); ++i) {
        const std::optional<int> result = run.answers[i].known_result();
        const std::optional<bool> held = HeldAfter(run, steps, steps[i]);
        if (!steps[i].is_check) {
            results.push_back({{"name", NameOf(steps[i])},
                               {"result", result ? ResultInJson(*result) : Json(nullptr)},
                               {"held", held ? Json(*held) : Json(nullptr)}});
        }
    }
    return results;
}

Json PreviewInJson(const TrialRun& run, const std::vector<TrialStep>& steps) {
    const LongestTime longest = LongestTimeOf(run, steps);
    Json preview;
    preview["results"] = ResultsInJson(run, steps);
    preview["files"] = InJson(ChangedFiles(run.before, run.after));
    preview["steps"] = InJson(StepsIn(run.events));
    preview["longest_seconds"] = longest.seconds;
    preview["then_waits_for"] = TextOrNull(Joined(longest.unlimited, " and "));
    return preview;
}

std::string ResultText(const TrialRun& run, const std::vector<TrialStep>& steps) {
    std::string text;
    for (size_t i = 0; i < run.answers.size(); ++i) {
        const bool is_restart = steps[i].type == VELK_RESTART;
        const bool is_held = HeldAfter(run, steps, steps[i]).value_or(true);
        if (!steps[i].is_check && run.answers[i].ok() && is_held) {
            text.append(NameOf(steps[i]));
            text.append(is_restart ? ": would be done\n" : ": would be set\n");
        }
    }
    return text;
}

ExitStatus Refuse(const TrialRun& run, const TrialStep& step, Report& report) {
    const Answer& answer = run.answers.back();
    report.Complain(ProblemOf(NameOf(step) + ": would fail", SettingOf(step), answer));
    return StatusOf(answer);
}

// The output of the tools explains a failure.
void KeepToolOutput(const TrialRun& run, Report& report) {
    std::vector<std::string> lines;
    for (const std::string& line : run.answers.back().tool_output) {
        lines.push_back(Printable(line));
    }
    report.KeepToolOutput(std::move(lines));
}

// Complains about the values that the copy does not hold. Real sets would end with the same status.
ExitStatus CheckHeld(const TrialRun& run, const std::vector<TrialStep>& steps, Report& report) {
    ExitStatus status = ExitStatus::kDone;
    for (const TrialStep& step : steps) {
        if (!step.is_check && !HeldAfter(run, steps, step).value_or(true)) {
            const std::string name = NameOf(step);
            report.Complain(Problem{
                .message = name + ": the library would report success, but not set the value",
                .setting = name});
            status = ExitStatus::kNotHeld;
        }
    }
    return status;
}

}  // namespace

ExitStatus ReportTrial(const TrialRun& run, const std::vector<TrialStep>& steps, Report& report) {
    if (run.problem) {
        report.Complain(*run.problem);
        return ExitStatus::kFailed;
    }
    if (run.after.empty()) {
        return Refuse(run, steps.front(), report);
    }
    report.Member("preview", PreviewInJson(run, steps));
    report.Text(ResultText(run, steps));
    const std::vector<ChangedFile> files = ChangedFiles(run.before, run.after);
    report.Text(files.empty() ? "no file would change\n" : TextOf(files));
    const std::string library_steps = TextOf(StepsIn(run.events));
    report.Text(library_steps.empty() ? "" : "steps of the library:\n" + library_steps);
    report.Text(TextOf(LongestTimeOf(run, steps)));
    NoteUnread(run, steps, report);
    KeepToolOutput(run, report);
    return run.ok() ? CheckHeld(run, steps, report)
                    : Refuse(run, steps[run.answers.size() - 1], report);
}

void ReportTrace(const std::vector<FileImage>& before, const std::vector<FileImage>& after,
                 const std::vector<Event>& events, Report& report) {
    const std::vector<ChangedFile> files = ChangedFiles(before, after);
    const std::vector<LibraryStep> steps = StepsIn(events);
    Json trace;
    trace["files"] = InJson(files);
    trace["steps"] = InJson(steps);
    report.Member("trace", std::move(trace));
    report.Text(files.empty() ? "no file has changed\n" : TextOf(files));
    report.Text(steps.empty() ? "" : "steps of the library:\n" + TextOf(steps));
}

}  // namespace velkctl
