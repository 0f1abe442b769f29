// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// get_verb.cpp - the verb that shows the values of settings.
#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "velkctl/call/answer.h"
#include "velkctl/call/device.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/doctor/value_checks.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/setting_patterns.h"
#include "velkctl/settings/value_text.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/verbs/selected_settings.h"
#include "velkctl/verbs/setting_groups.h"
#include "velkctl/verbs/setting_reader.h"
#include "velkctl/verbs/setting_values.h"
#include "velkctl/verbs/unread_settings.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// Reads settings and shows their values. Reports the failures at the end: in text together if the
// reason is the same, in JSON each.
class Readings {
  public:
    Readings(const Invocation& invocation, const Device& device, Report& report)
        : invocation_(invocation), device_(device), reader_(device), report_(report) {}

    // Shows the value after the prefix.
    void Show(const Setting& setting, const std::string& prefix) {
        const std::optional<Answer> answer = reader_.Read(setting);
        if (answer && answer->ok()) {
            ShowValue(setting, prefix, answer->data);
            return;
        }
        report_.ShowToolOutput();
        report_.Text(invocation_.bare_value ? "\n" : "");  // every name has its line
        const Problem problem = ReadingProblem(setting, answer);
        if (report_.is_json()) {
            readings_.push_back(ReadingInJson(setting, nullptr, ProblemInJson(problem)));
        }
        if (answer && status_ == ExitStatus::kDone) {
            status_ = StatusWithCause(setting, *answer);
        }
        unread_.Add(setting, problem, report_);
    }

    // Returns the status of the first failure.
    ExitStatus Finish() {
        unread_.Complain(report_);
        report_.Member("settings", std::move(readings_));
        return status_;
    }

  private:
    void ShowValue(const Setting& setting, const std::string& prefix, const Data& data) {
        const bool show_secrets = invocation_.show_secrets;
        const auto value = invocation_.bare_value ? BareValue : ValueText;
        report_.Text(prefix + value(setting, data, show_secrets) + "\n");
        if (const std::optional<Problem> note = NoteAboutValue(setting, data, device_)) {
            report_.Note(*note);
        }
        if (!report_.is_json()) {
            return;  // the JSON code would take pages of memory for nothing
        }
        const bool is_valid = !InvalidValue(setting, data);
        readings_.push_back(
            ReadingInJson(setting, ValueInJson(setting, data, show_secrets), nullptr, is_valid));
    }

    const Invocation& invocation_;
    const Device& device_;
    SettingReader reader_;
    Report& report_;
    Json readings_ = Json::array();
    UnreadSettings unread_;
    ExitStatus status_ = ExitStatus::kDone;
};

}  // namespace

ExitStatus RunGet(const Invocation& invocation, Report& report) {
    const std::vector<Setting> settings = SelectReadable("get", invocation, report);
    if (settings.empty()) {
        return ExitStatus::kInvalid;
    }
    const bool is_one_name = invocation.words.size() == 1 && !IsPattern(invocation.words.front());
    const bool bare = is_one_name || invocation.bare_value;
    const size_t width = NameWidth(settings);
    const Device device(invocation.limits, report);
    Readings readings(invocation, device, report);
    for (const Setting& setting : settings) {
        readings.Show(setting, bare ? "" : NameColumn(setting, width));
    }
    return readings.Finish();
}

void CheckWordsOfGet(const Invocation& invocation, Report& report) {
    (void)SelectReadable("get", invocation, report);
}

}  // namespace velkctl
