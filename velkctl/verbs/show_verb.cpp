// show_verb.cpp - the verb that shows all settings there are to read.
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <unistd.h>

#include "velkctl/call/device.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/escaping.h"
#include "velkctl/verbs/setting_values.h"
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
    std::vector<Setting> settings = Settings();
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
    Showing(bool show_secrets, const Device& device, const Table& table)
        : show_secrets_(show_secrets), device_(device), table_(table) {}

    void Show(const Setting& setting) {
        if (daemon_is_silent_ && IsWireless(setting)) {
            PassOver(setting);
            return;
        }
        const auto start = std::chrono::steady_clock::now();
        const Answer answer = device_.Get(setting);
        const bool took_long =
            answer.timed_out || std::chrono::steady_clock::now() - start > kSilent;
        daemon_is_silent_ = daemon_is_silent_ || (!answer.ok() && took_long && IsWireless(setting));
        shown_.push_back(ReadingInJson(setting, answer, show_secrets_));
        if (answer.ok()) {
            table_.Value(setting.name(), ValueInWords(setting, answer.data, show_secrets_));
        } else {
            table_.Failure(setting.name(), WhyNot(answer));
        }
    }

    Json TakeShown() { return std::move(shown_); }

  private:
    void PassOver(const Setting& setting) {
        const std::string reason = "not asked: the wireless daemon did not answer before";
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
    const std::optional<Patience> patience = PatienceOf(invocation, report);
    if (!patience) {
        return ExitStatus::kInvalid;
    }
    std::optional<std::string_view> interface;
    if (!invocation.words.empty()) {
        interface = invocation.words.front();
        if (*interface != VELK_WIRED_INTERFACE && *interface != VELK_WIRELESS_INTERFACE) {
            return report.Refuse("show: " + UnknownInterface(*interface, Quoted(*interface)));
        }
    }
    const std::vector<Setting> settings = Readable(interface);
    size_t width = 0;
    for (const Setting& setting : settings) {
        width = std::max(width, setting.name().size());
    }
    const Table table(width, report);
    const Device device(*patience, report);
    Showing showing(invocation.show_secrets, device, table);
    for (const Setting& setting : settings) {
        showing.Show(setting);
    }
    report.Member("settings", showing.TakeShown());
    return ExitStatus::kDone;  // that a setting cannot be read just now is part of the picture
}

}  // namespace velkctl
