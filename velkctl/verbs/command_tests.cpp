// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// command_tests.cpp - tries the commands of settings without changing the device.
#include "velkctl/verbs/command_tests.h"

#include <chrono>
#include <vector>

#include "velk/request.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/preview/changed_files.h"
#include "velkctl/preview/trial_run.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/settings/value_kind.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/text/escaping.h"
#include "velkctl/verbs/image_reasons.h"
#include "velkctl/verbs/setting_reader.h"

namespace velkctl {
namespace {

Verdict VerdictOf(const Setting& setting, const Answer& answer) {
    const ExitStatus status = StatusWithCause(setting, answer);
    const bool is_by_state = status == ExitStatus::kNoAdapter || status == ExitStatus::kWiredLinked;
    return is_by_state ? Verdict::kUntested : Verdict::kFails;
}

// Returns the values to try: all that have names, and the example of the kind.
std::vector<std::string> WordsToTry(const ValueKind& kind) {
    std::vector<std::string> words = kind.Values();
    words.push_back(kind.Example());
    return words;
}

// Returns a value that the setting does not have; its present one if no other is known.
Data ValueToTry(const Setting& setting, const std::string& present) {
    const ValueKind& kind = *setting.row->kind;
    Data last{};
    for (const std::string& word : WordsToTry(kind)) {
        const std::vector<std::string> words{word};
        const Parsed parsed = kind.Parse(words);
        if (!parsed.ok()) {
            continue;
        }
        last = parsed.data;
        if (kind.Print(parsed.data) != present) {
            break;
        }
    }
    return last;
}

// Returns the step that gives the interface a method; the value of some settings is only shown
// with one of them. Its own failure is no failure of the setting.
TrialStep SetMethod(const Setting& setting, char method) {
    TrialStep step{VELK_SET, VELK_CMD_IP_METHOD, std::string(setting.interface)};
    step.data[0] = method;
    step.is_check = true;
    return step;
}

// An image has no lease: its addresses are read from its files.
std::vector<TrialStep> StepsToRead(const Setting& setting, bool is_in_image) {
    std::vector<TrialStep> steps;
    if (is_in_image && IsAddressCommand(setting.row->id)) {
        steps.push_back(SetMethod(setting, VELK_METHOD_STATIC));
    }
    steps.push_back({VELK_GET, setting.row->id, std::string(setting.interface)});
    return steps;
}

std::vector<TrialStep> StepsToTry(const SettingChange& change) {
    std::vector<TrialStep> steps;
    const uint32_t id = change.setting.row->id;
    if (IsAddressCommand(id)) {
        steps.push_back(SetMethod(change.setting, VELK_METHOD_STATIC));
    } else if (id == VELK_CMD_DHCP_DNS) {
        steps.push_back(SetMethod(change.setting, VELK_METHOD_DHCP));
    }
    steps.push_back(StepOf(change));
    const std::vector<TrialStep> checks = ChecksOf({change});
    steps.insert(steps.end(), checks.begin(), checks.end());
    return steps;
}

}  // namespace

// Adds the likely reason for a set without effect, or the output of the tools.
Problem CommandTester::NotHeld(const SettingChange& change, const Answer& answer) const {
    const std::string name = change.setting.name();
    Problem problem{.message = name + ": a set reports success, but does not set the value",
                    .setting = name};
    if (!images_.empty()) {
        problem.detail = ReasonInImage(change.setting, images_);
        return problem;
    }
    const std::string value = change.setting.row->kind->Print(change.value);
    const Findings causes = Hindrances(change.setting, value);
    if (!causes.empty()) {
        AddLikelyCause(problem, causes.front());
    } else if (!answer.tool_output.empty()) {
        problem.detail = Printable(answer.tool_output.front());
    }
    return problem;
}

// The likely causes are those of the device, not of an image.
Problem CommandTester::ProblemWith(const Setting& setting, const std::string& message,
                                   const Answer& answer) const {
    const std::string text = setting.name() + message;
    if (images_.empty()) {
        return ProblemOfSet(text, setting, answer);
    }
    return {.message = text,
            .setting = setting.name(),
            .result = answer.known_result(),
            .detail = ReasonInImage(setting, images_)};
}

// An image has no kernel and no daemon.
std::optional<CommandTest> CommandTester::Untested(const Setting& setting,
                                                   velk_command_type type) const {
    if (images_.empty() || setting.row->held_in.holder == Holder::kFile) {
        return std::nullopt;
    }
    const Problem problem{.message = setting.name() + ": is not held in a file",
                          .setting = setting.name()};
    return CommandTest{setting, type, Verdict::kUntested, problem};
}

CommandTest CommandTester::TestGet(const Setting& setting) {
    if (const std::optional<CommandTest> untested = Untested(setting, VELK_GET)) {
        return *untested;
    }
    const bool is_of_daemon = setting.row->held_in.holder == Holder::kDaemon;
    if (is_of_daemon && daemon_is_silent_) {
        return {setting, VELK_GET, Verdict::kFails, ReadingProblem(setting, std::nullopt)};
    }
    const auto start = std::chrono::steady_clock::now();
    const TrialRun run = RunTrial(StepsToRead(setting, !images_.empty()), limits_, images_);
    if (run.problem) {
        return {setting, VELK_GET, Verdict::kNotRun, *run.problem};
    }
    const Answer& answer = run.answers.back();
    if (answer.ok()) {
        return {
            .setting = setting, .type = VELK_GET, .value = setting.row->kind->Print(answer.data)};
    }
    const bool took_long = std::chrono::steady_clock::now() - start > kSilence;
    if (is_of_daemon && (answer.timed_out || took_long)) {
        daemon_is_silent_ = true;
    }
    const Problem problem = images_.empty() ? ReadingProblem(setting, answer)
                                            : ProblemWith(setting, ": could not be read", answer);
    return {setting, VELK_GET, VerdictOf(setting, answer), problem};
}

CommandTest CommandTester::TestSet(const Setting& setting,
                                   const std::optional<CommandTest>& get) const {
    if (const std::optional<CommandTest> untested = Untested(setting, VELK_SET)) {
        return *untested;
    }
    // A set of the daemon's configuration reads it first.
    const bool is_of_daemon = setting.row->held_in.holder == Holder::kDaemon;
    if (is_of_daemon && get && get->verdict != Verdict::kWorks) {
        return {setting, VELK_SET, get->verdict, get->problem};
    }
    return setting.can_get() ? TestValue({setting, ValueToTry(setting, get ? get->value : "")})
                             : TestEachValue(setting);
}

CommandTest CommandTester::TestValue(const SettingChange& change) const {
    const Setting& setting = change.setting;
    const std::vector<TrialStep> steps = StepsToTry(change);
    const TrialRun run = RunTrial(steps, limits_, images_);
    if (run.problem) {
        return {setting, VELK_SET, Verdict::kNotRun, *run.problem};
    }
    const Answer& last = run.answers.back();
    if (!run.ok()) {
        return {setting, VELK_SET, VerdictOf(setting, last),
                ProblemWith(setting, ": could not be set", last)};
    }
    const bool is_held = setting.can_get() ? HeldAfter(run, steps, StepOf(change)).value_or(true)
                                           : !ChangedFiles(run.before, run.after).empty();
    if (!is_held) {
        return {setting, VELK_SET, Verdict::kFails, NotHeld(change, last)};
    }
    return {setting, VELK_SET};
}

// A setting that cannot be read back works if one of its values changes a file: it has another one.
CommandTest CommandTester::TestEachValue(const Setting& setting) const {
    const ValueKind& kind = *setting.row->kind;
    CommandTest last{setting, VELK_SET, Verdict::kFails};
    for (const std::string& word : kind.Values()) {
        const std::vector<std::string> words{word};
        last = TestValue({setting, kind.Parse(words).data});
        if (last.verdict != Verdict::kFails) {
            break;
        }
    }
    return last;
}

}  // namespace velkctl
