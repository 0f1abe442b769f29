// list_verbs.cpp - the verbs that tell what settings and results there are.
#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <vector>

#include "velkctl/blocking.h"
#include "velkctl/catalogue.h"
#include "velkctl/result_codes.h"
#include "velkctl/setting_values.h"
#include "velkctl/terminal.h"
#include "velkctl/verbs.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

std::string Directions(const Setting& setting) {
    return std::string(setting.can_get() ? "get" : "   ") + (setting.can_set() ? " set" : "    ");
}

Json InJson(const Setting& setting) {
    Json object;
    object["name"] = setting.name();
    object["id"] = setting.row->id;
    object["interface"] = setting.interface.empty() ? Json(nullptr) : Json(setting.interface);
    object["get"] = setting.can_get();
    object["set"] = setting.can_set();
    object["secret"] = setting.row->secret;
    object["help"] = setting.row->help;
    object["values"] = setting.row->kind->Values();
    object["longest_seconds"] = LongestGet(setting).seconds;
    return object;
}

// The settings that a full name, a name without its interface or an id stands for.
std::vector<Setting> FindAll(std::string_view word) {
    std::vector<Setting> settings = SettingsOf(Catalogue());
    const std::optional<uint32_t> id = ParseId(word);
    std::erase_if(settings, [&](const Setting& setting) {
        return setting.name() != word && setting.row->name != word && setting.row->id != id;
    });
    return settings;
}

void Describe(const Setting& setting, Report& report) {
    const std::string name = setting.name();
    const Blocking longest = LongestGet(setting);
    std::string text = name + "\n  " + std::string(setting.row->help) + "\n  command " +
                       std::to_string(setting.row->id) + ": " +
                       (setting.can_get() ? (setting.can_set() ? "get and set" : "get") : "set");
    if (setting.row->secret) {
        text.append(
            "\n  a secret: masked unless --show-secrets is given; - , @FILE or a prompt take it");
    }
    if (setting.can_get() && longest.seconds > 0) {
        text.append("\n  reading it may take ").append(std::to_string(longest.seconds));
        text.append(" seconds: it waits for ").append(longest.awaited);
    }
    text.append("\n  example: velkctl ").append(setting.can_get() ? "get " : "set ").append(name);
    report.Text(text + (setting.can_get() ? "" : " VALUE") + "\n");
}

std::optional<int> ParseCode(std::string_view word) {
    for (const ResultCode& row : kResultCodes) {
        if (word == row.name || word == row.name.substr(std::string_view("LIB_VELK_").size())) {
            return row.code;
        }
    }
    int code = 0;
    const auto [stop, error] = std::from_chars(word.begin(), word.end(), code);
    return error == std::errc() && stop == word.end() ? std::optional(code) : std::nullopt;
}

}  // namespace

ExitStatus RunList(const Invocation& /*invocation*/, Report& report) {
    const std::vector<Setting> settings = SettingsOf(Catalogue());
    size_t width = 0;
    for (const Setting& setting : settings) {
        width = std::max(width, setting.name().size());
    }
    Json listed = Json::array();
    for (const Setting& setting : settings) {
        report.Text(Padded(setting.name(), width) + "  " + Directions(setting) + "  " +
                    std::string(setting.row->help) + "\n");
        listed.push_back(InJson(setting));
    }
    report.Member("settings", std::move(listed));
    return ExitStatus::kDone;
}

ExitStatus RunDescribe(const Invocation& invocation, Report& report) {
    const std::string& word = invocation.words.front();
    const std::vector<Setting> settings = FindAll(word);
    if (settings.empty()) {
        return report.Refuse("describe: " + UnknownSetting(Catalogue(), word));
    }
    Json described = Json::array();
    for (const Setting& setting : settings) {
        Describe(setting, report);
        described.push_back(InJson(setting));
    }
    report.Member("settings", std::move(described));
    return ExitStatus::kDone;
}

ExitStatus RunExplain(const Invocation& invocation, Report& report) {
    const std::string& word = invocation.words.front();
    const std::optional<int> code = ParseCode(word);
    if (!code) {
        return report.Refuse("explain: " + Quoted(word) +
                             " is not a result; give a number such as -3, or its name");
    }
    const ResultCode row = FindResultCode(*code);
    report.Text(DescribeResult(*code) + "\n  what to do: " + std::string(row.remedy) +
                "\n  exit status of velkctl: " + std::to_string(static_cast<int>(row.status)) +
                "\n");
    Json explained = ResultInJson(*code);
    explained["remedy"] = row.remedy;
    explained["exit_status"] = static_cast<int>(row.status);
    report.Member("result", std::move(explained));
    return ExitStatus::kDone;
}

}  // namespace velkctl
