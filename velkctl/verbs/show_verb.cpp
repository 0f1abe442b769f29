// show_verb.cpp - the verb that shows all readable settings.
#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include <unistd.h>

#include "velkctl/call/device.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/report/output.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/verbs/setting_values.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// A daemon without an answer for this time is not asked again.
constexpr std::chrono::seconds kSilent{10};

class Table {
  public:
    Table(size_t width, const Report& report)
        : width_(width),
          colours_(!report.is_json() && IsTerminal(STDOUT_FILENO) && getenv("NO_COLOR") == nullptr),
          report_(report) {}

    void Value(const std::string& name, const std::string& value) const {
        report_.Text(Padded(name, width_) + "  " + value + "\n");
    }
    void Failure(const std::string& name, const std::string& reason) const {
        report_.Text(Padded(name, width_) + "  " + (colours_ ? "\x1b[33m" : "") + "(" + reason +
                     ")" + (colours_ ? "\x1b[0m" : "") + "\n");
    }

  private:
    const size_t width_;
    const bool colours_;
    const Report& report_;
};

std::vector<Setting> Readable(std::optional<std::string_view> interface) {
    std::vector<Setting> settings = Settings();
    std::erase_if(settings, [&](const Setting& setting) {
        return !setting.can_get() || (interface && setting.interface != *interface);
    });
    return settings;
}

bool IsWireless(const Setting& setting) {
    return setting.row->interfaces == kEth1;
}

// Shows the settings in order. After one time-out of the wireless daemon it skips its other
// settings.
class SettingsTable {
  public:
    SettingsTable(bool show_secrets, const Device& device, const Table& table)
        : show_secrets_(show_secrets), device_(device), table_(table) {}

    void Show(const Setting& setting) {
        if (daemon_is_silent_ && IsWireless(setting)) {
            Skip(setting);
            return;
        }
        const auto start = std::chrono::steady_clock::now();
        const Answer answer = device_.Get(setting);
        const bool took_long =
            answer.timed_out || std::chrono::steady_clock::now() - start > kSilent;
        daemon_is_silent_ = daemon_is_silent_ || (!answer.ok() && took_long && IsWireless(setting));
        if (answer.ok()) {
            table_.Value(setting.name(), ValueText(setting, answer.data, show_secrets_));
            shown_.push_back(
                ReadingInJson(setting, ValueInJson(setting, answer.data, show_secrets_), nullptr));
        } else {
            table_.Failure(setting.name(), FailureReason(answer));
            const Problem problem = ProblemOf(CouldNotBeRead(setting), setting.name(), answer);
            shown_.push_back(ReadingInJson(setting, nullptr, OneLine(problem)));
        }
    }

    Json TakeShown() { return std::move(shown_); }

  private:
    void Skip(const Setting& setting) {
        const std::string reason = "skipped: the wireless daemon does not answer";
        table_.Failure(setting.name(), reason);
        shown_.push_back(ReadingInJson(setting, nullptr, setting.name() + ": " + reason));
    }

    const bool show_secrets_;
    const Device& device_;
    const Table& table_;
    Json shown_ = Json::array();
    bool daemon_is_silent_ = false;
};

}  // namespace

ExitStatus RunShow(const Invocation& invocation, Report& report) {
    std::optional<std::string_view> interface;
    if (!invocation.words.empty()) {
        interface = invocation.words.front();
    }
    const std::vector<Setting> settings = Readable(interface);
    const Table table(NameWidth(settings), report);
    const Device device(invocation.limits, report);
    SettingsTable shown(invocation.show_secrets, device, table);
    for (const Setting& setting : settings) {
        shown.Show(setting);
    }
    report.Member("settings", shown.TakeShown());
    return ExitStatus::kDone;  // also if a setting cannot be read
}

}  // namespace velkctl
