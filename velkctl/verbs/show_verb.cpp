// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// show_verb.cpp - the verb that shows all readable settings.
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

#include "velkctl/call/answer.h"
#include "velkctl/call/device.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/value_checks.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/output.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/value_text.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/verbs/read_failure.h"
#include "velkctl/verbs/selected_settings.h"
#include "velkctl/verbs/setting_groups.h"
#include "velkctl/verbs/setting_reader.h"
#include "velkctl/verbs/setting_values.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

std::string Warning(const std::string& text) {
    return Coloured(text, Colour::kYellow, STDOUT_FILENO);
}

// Settings that cannot be read for the same reason.
struct UnreadGroup {
    ReadFailure failure;
    SettingGroup settings;
};

// Prints the values of a group as they are read, and after them the failures, which several
// settings may share.
class ShownRows {
  public:
    ShownRows(size_t width, GroupedRows& rows) : width_(width), rows_(rows) {}

    void AddValue(const Setting& setting, const std::string& value) {
        rows_.Add(NameColumn(setting, width_) + value + "\n");
    }

    void AddFailure(const Setting& setting, const ReadFailure& failure) {
        for (UnreadGroup& unread : unread_) {
            if (unread.failure.of_one == failure.of_one) {
                unread.settings.push_back(setting);
                return;
            }
        }
        unread_.push_back({failure, {setting}});
    }

    void Finish() {
        for (const UnreadGroup& unread : unread_) {
            rows_.Add(unread.settings.size() == 1 ? RowOf(unread) : LinesOf(unread));
        }
    }

  private:
    std::string RowOf(const UnreadGroup& unread) const {
        const std::string name = NameColumn(unread.settings.front(), width_);
        const std::string reason = CutToFit(unread.failure.of_one, name.size() + 2);
        return name + Warning("(" + reason + ")") + "\n";
    }

    // "8 settings need the cable out:", and their names
    static std::string LinesOf(const UnreadGroup& unread) {
        const std::string text =
            std::to_string(unread.settings.size()) + " settings " + unread.failure.of_several;
        return Warning(CutToFit(text, 1) + ":") + "\n" + NameLines(unread.settings);
    }

    const size_t width_;
    GroupedRows& rows_;
    std::vector<UnreadGroup> unread_;
};

// Adds the settings of a group, as they are read, to rows and to the document.
class ShownReadings {
  public:
    ShownReadings(bool show_secrets, const Device& device)
        : show_secrets_(show_secrets), reader_(device) {}

    void Add(const Setting& setting, ShownRows& rows) {
        const std::optional<Answer> answer = reader_.Read(setting);
        if (answer && answer->ok()) {
            AddValue(setting, answer->data, rows);
            return;
        }
        rows.AddFailure(setting,
                        answer ? ReadFailureOf(setting, *answer) : SkippedAsDaemonIsSilent());
        const Problem problem = ReadingProblem(setting, answer);
        read_.push_back(ReadingInJson(setting, nullptr, ProblemInJson(problem)));
    }

    Json Take() { return std::move(read_); }

  private:
    void AddValue(const Setting& setting, const Data& data, ShownRows& rows) {
        const bool is_valid = !InvalidValue(setting, data);
        rows.AddValue(setting,
                      ValueText(setting, data, show_secrets_) + (is_valid ? "" : "  (not valid)"));
        read_.push_back(
            ReadingInJson(setting, ValueInJson(setting, data, show_secrets_), nullptr, is_valid));
    }

    const bool show_secrets_;
    SettingReader reader_;
    Json read_ = Json::array();
};

}  // namespace

ExitStatus RunShow(const Invocation& invocation, Report& report) {
    Invocation selection = invocation;
    if (selection.words.empty()) {
        selection.words = {"*"};
    }
    const std::vector<Setting> settings = SelectReadable("show", selection, report);
    if (settings.empty()) {
        return ExitStatus::kInvalid;
    }
    const Device device(invocation.limits, report);
    ShownReadings readings(invocation.show_secrets, device);
    const std::vector<SettingGroup> groups = GroupsOf(settings);
    GroupedRows shown(groups.size(), !invocation.no_pager, report);
    for (const SettingGroup& group : groups) {
        shown.Begin(group);
        ShownRows rows(NameWidth(settings), shown);
        for (const Setting& setting : group) {
            readings.Add(setting, rows);
        }
        rows.Finish();
    }
    shown.Finish();
    report.Member("settings", readings.Take());
    return ExitStatus::kDone;  // also if a setting cannot be read
}

void CheckWordsOfShow(const Invocation& invocation, Report& report) {
    (void)SelectReadable("show", invocation, report);
}

}  // namespace velkctl
