// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// setting_reader.cpp - reads settings one after the other, without waiting for a silent daemon
// twice.
#include "velkctl/verbs/setting_reader.h"

#include <chrono>

#include "velkctl/call/answer.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/verbs/read_failure.h"
#include "velkctl/verbs/setting_values.h"

namespace velkctl {
namespace {

bool IsWireless(const Setting& setting) {
    return setting.row->interfaces == kEth1;
}

}  // namespace

std::optional<Answer> SettingReader::Read(const Setting& setting) {
    if (!IsWireless(setting)) {
        return device_.Get(setting);
    }
    if (daemon_is_silent_) {
        return std::nullopt;
    }
    const auto start = std::chrono::steady_clock::now();
    Answer answer = device_.Get(setting);
    const bool took_long = answer.timed_out || std::chrono::steady_clock::now() - start > kSilence;
    daemon_is_silent_ = !answer.ok() && took_long;
    return answer;
}

Problem ReadingProblem(const Setting& setting, const std::optional<Answer>& answer) {
    if (answer) {
        return ProblemOfGet(CouldNotBeRead(setting), setting, *answer);
    }
    Problem problem{CouldNotBeRead(setting), setting.name()};
    problem.detail = SkippedAsDaemonIsSilent().of_one;
    return problem;
}

}  // namespace velkctl
