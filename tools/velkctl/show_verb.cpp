// show_verb.cpp - the verb that shows all settings there are to read.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <unistd.h>

#include "velkctl/catalogue.h"
#include "velkctl/patience.h"
#include "velkctl/setting_values.h"
#include "velkctl/terminal.h"
#include "velkctl/verbs.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// A daemon that did not answer within this time is not asked again.
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
    std::vector<Setting> settings = SettingsOf(Catalogue());
    std::erase_if(settings, [&](const Setting& setting) {
        return !setting.can_get() || (interface && setting.interface != *interface);
    });
    return settings;
}

bool IsWireless(const Setting& setting) {
    return setting.row->interfaces == kEth1;
}

// Shows the settings one after the other; those of a daemon that was silent once are passed over.
class Showing {
  public:
    Showing(const Invocation& invocation, const Patience& patience, const Table& table,
            Report& report)
        : invocation_(invocation), patience_(patience), table_(table), report_(report) {}

    void Show(const Setting& setting) {
        if (daemon_is_silent_ && IsWireless(setting)) {
            Fail(setting, "not asked: the wireless daemon did not answer before");
            return;
        }
        const auto start = std::chrono::steady_clock::now();
        const Answer answer = ExecutePatiently({VELK_GET, setting.row->id, setting.interface}, {},
                                               patience_, setting.name(), report_);
        if (StatusOf(answer) == ExitStatus::kDone) {
            table_.Value(setting.name(),
                         ValueInWords(setting, answer.data, invocation_.show_secrets));
            shown_.push_back(SettingInJson(
                setting, ValueInJson(setting, answer.data, invocation_.show_secrets), nullptr));
            return;
        }
        const bool took_long =
            answer.timed_out || std::chrono::steady_clock::now() - start > kSilent;
        daemon_is_silent_ = daemon_is_silent_ || (took_long && IsWireless(setting));
        Fail(setting, WhyNot(answer));
    }

    Json TakeShown() { return std::move(shown_); }

  private:
    void Fail(const Setting& setting, const std::string& reason) {
        table_.Failure(setting.name(), reason);
        shown_.push_back(SettingInJson(setting, nullptr, reason));
    }

    const Invocation& invocation_;
    const Patience& patience_;
    const Table& table_;
    Report& report_;
    Json shown_ = Json::array();
    bool daemon_is_silent_ = false;
};

}  // namespace

ExitStatus RunShow(const Invocation& invocation, Report& report) {
    const std::optional<Patience> patience = PatienceOf(invocation, report);
    if (!patience) {
        return ExitStatus::kInvalid;
    }
    std::optional<std::string_view> interface;
    if (!invocation.words.empty()) {
        interface = invocation.words.front();
        if (*interface != VELK_WIRED_INTERFACE && *interface != VELK_WIRELESS_INTERFACE) {
            return report.Refuse("show: " + Quoted(*interface) +
                                 " is not an interface of the device; give eth0 or eth1");
        }
    }
    const std::vector<Setting> settings = Readable(interface);
    size_t width = 0;
    for (const Setting& setting : settings) {
        width = std::max(width, setting.name().size());
    }
    const Table table(width, report);
    Showing showing(invocation, *patience, table, report);
    for (const Setting& setting : settings) {
        showing.Show(setting);
    }
    report.Member("settings", showing.TakeShown());
    return ExitStatus::kDone;  // that a setting cannot be read just now is part of the picture
}

}  // namespace velkctl
