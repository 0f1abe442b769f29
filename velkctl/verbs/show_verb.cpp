// show_verb.cpp - the verb that shows all readable settings.
#include <chrono>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

#include "velkctl/call/device.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/doctor/likely_cause.h"
#include "velkctl/doctor/value_checks.h"
#include "velkctl/report/output.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/verbs/read_failure.h"
#include "velkctl/verbs/selected_settings.h"
#include "velkctl/verbs/setting_groups.h"
#include "velkctl/verbs/setting_values.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// A daemon without an answer for this time is not asked again.
constexpr std::chrono::seconds kSilent{10};

bool IsWireless(const Setting& setting) {
    return setting.row->interfaces == kEth1;
}

std::string Warning(const std::string& text) {
    return Coloured(text, Colour::kYellow, STDOUT_FILENO);
}

// Settings that cannot be read for the same reason.
struct UnreadSettings {
    ReadFailure failure;
    SettingGroup settings;
};

// The rows of one group: the values, and after them the failures that several settings share.
class ShownRows {
  public:
    explicit ShownRows(size_t width) : width_(width) {}

    void AddValue(const Setting& setting, const std::string& value) {
        rows_.append(NameColumn(setting, width_)).append(value).append("\n");
    }

    void AddFailure(const Setting& setting, const ReadFailure& failure) {
        for (UnreadSettings& unread : unread_) {
            if (unread.failure.of_one == failure.of_one) {
                unread.settings.push_back(setting);
                return;
            }
        }
        unread_.push_back({failure, {setting}});
    }

    std::string Text() const {
        std::string text = rows_;
        for (const UnreadSettings& unread : unread_) {
            text.append(unread.settings.size() == 1 ? RowOf(unread) : LinesOf(unread));
        }
        return text;
    }

  private:
    std::string RowOf(const UnreadSettings& unread) const {
        const std::string name = NameColumn(unread.settings.front(), width_);
        const std::string reason = CutToFit(unread.failure.of_one, name.size() + 2);
        return name + Warning("(" + reason + ")") + "\n";
    }

    // "8 settings need the cable out:", and their names
    static std::string LinesOf(const UnreadSettings& unread) {
        const std::string text =
            std::to_string(unread.settings.size()) + " settings " + unread.failure.of_several;
        return Warning(CutToFit(text, 1) + ":") + "\n" + NameLines(unread.settings);
    }

    const size_t width_;
    std::string rows_;
    std::vector<UnreadSettings> unread_;
};

// Reads settings in order. After one time-out of the wireless daemon it skips its other settings.
class SettingReader {
  public:
    SettingReader(bool show_secrets, const Device& device)
        : show_secrets_(show_secrets), device_(device) {}

    void Read(const Setting& setting, ShownRows& rows) {
        if (daemon_is_silent_ && IsWireless(setting)) {
            Skip(setting, rows);
            return;
        }
        const auto start = std::chrono::steady_clock::now();
        const Answer answer = device_.Get(setting);
        const bool took_long =
            answer.timed_out || std::chrono::steady_clock::now() - start > kSilent;
        daemon_is_silent_ = daemon_is_silent_ || (!answer.ok() && took_long && IsWireless(setting));
        if (answer.ok()) {
            const bool is_valid = !InvalidValue(setting, answer.data);
            rows.AddValue(setting, ValueText(setting, answer.data, show_secrets_) +
                                       (is_valid ? "" : "  (not valid)"));
            read_.push_back(ReadingInJson(setting, ValueInJson(setting, answer.data, show_secrets_),
                                          nullptr, is_valid));
        } else {
            rows.AddFailure(setting, ReadFailureOf(setting, answer));
            AddError(setting, ProblemOfGet(CouldNotBeRead(setting), setting, answer));
        }
    }

    Json TakeReadings() { return std::move(read_); }

  private:
    void Skip(const Setting& setting, ShownRows& rows) {
        const ReadFailure failure = SkippedAsDaemonIsSilent();
        rows.AddFailure(setting, failure);
        Problem problem{CouldNotBeRead(setting), setting.name()};
        problem.detail = failure.of_one;
        AddError(setting, problem);
    }

    void AddError(const Setting& setting, const Problem& problem) {
        read_.push_back(ReadingInJson(setting, nullptr, ProblemInJson(problem)));
    }

    const bool show_secrets_;
    const Device& device_;
    Json read_ = Json::array();
    bool daemon_is_silent_ = false;
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
    const size_t width = NameWidth(settings);
    const Device device(invocation.limits, report);
    SettingReader reader(invocation.show_secrets, device);
    GroupedRows shown;
    for (const SettingGroup& group : GroupsOf(settings)) {
        ShownRows rows(width);
        for (const Setting& setting : group) {
            reader.Read(setting, rows);
        }
        shown.Add(group, rows.Text());
    }
    shown.Print(!invocation.no_pager, report);
    report.Member("settings", reader.TakeReadings());
    return ExitStatus::kDone;  // also if a setting cannot be read
}

}  // namespace velkctl
