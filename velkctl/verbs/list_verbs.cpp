// list_verbs.cpp - the verbs that tell what settings there are.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "velkctl/call/longest_wait.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/numbers.h"
#include "velkctl/verbs/setting_values.h"
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
    object["wanted"] = setting.can_set() ? Json(setting.row->kind->Wanted()) : Json(nullptr);
    object["values"] = setting.row->kind->Values();
    object["longest_seconds"] = LongestGet(setting).seconds;
    return object;
}

// The settings that a full name, a name without its interface or an id stands for.
std::vector<Setting> FindAll(std::string_view word) {
    std::vector<Setting> settings = Settings();
    const std::optional<uint32_t> id = ParseNumber<uint32_t>(word);
    std::erase_if(settings, [&](const Setting& setting) {
        return setting.name() != word && setting.row->name != word && setting.row->id != id;
    });
    return settings;
}

// What the setting takes or shows, with what its values mean.
std::string ValuesInWords(const Setting& setting) {
    const ValueKind& kind = *setting.row->kind;
    if (!setting.can_set() && kind.Values().empty()) {
        return {};  // the help says it all
    }
    std::string text =
        std::string("\n  ") + (setting.can_set() ? "takes " : "shows ") + kind.Wanted();
    const std::vector<Meaning> meanings = kind.Meanings();
    size_t width = 0;
    for (const Meaning& meaning : meanings) {
        width = std::max(width, meaning.value.size());
    }
    for (const Meaning& meaning : meanings) {
        text.append("\n    ").append(Padded(std::string(meaning.value), width));
        text.append("  ").append(meaning.words);
    }
    return text;
}

std::string Examples(const Setting& setting) {
    const std::string name = setting.name();
    std::string text;
    if (setting.can_get()) {
        text.append("\n  example: velkctl get ").append(name);
    }
    if (setting.can_set()) {
        text.append("\n  example: velkctl set ").append(name).append(" ");
        text.append(setting.row->kind->Example());
    }
    return text;
}

std::string InWords(const Setting& setting) {
    const Blocking longest = LongestGet(setting);
    std::string text = setting.name() + "\n  " + std::string(setting.row->help) + "\n  command " +
                       std::to_string(setting.row->id) + ": " +
                       (setting.can_get() ? (setting.can_set() ? "get and set" : "get") : "set");
    text.append(ValuesInWords(setting));
    if (setting.row->secret) {
        text.append(
            "\n  a secret: masked unless --show-secrets is given; -, @FILE or a prompt take it");
    }
    if (setting.can_get() && longest.seconds > 0) {
        text.append("\n  reading it may take ").append(std::to_string(longest.seconds));
        text.append(" seconds: it waits for ").append(longest.awaited);
    }
    return text + Examples(setting) + "\n";
}

}  // namespace

ExitStatus RunList(const Invocation& invocation, Report& report) {
    std::vector<Setting> settings = Settings();
    if (!invocation.words.empty()) {
        const std::string& interface = invocation.words.front();
        if (interface != VELK_WIRED_INTERFACE && interface != VELK_WIRELESS_INTERFACE) {
            return report.Refuse("list: " + UnknownInterface(interface, Quoted(interface)));
        }
        std::erase_if(settings,
                      [&](const Setting& setting) { return setting.interface != interface; });
    }
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
        return report.Refuse("describe: " + UnknownSetting(word));
    }
    Json described = Json::array();
    for (const Setting& setting : settings) {
        report.Text(InWords(setting));
        described.push_back(InJson(setting));
    }
    report.Member("settings", std::move(described));
    return ExitStatus::kDone;
}

}  // namespace velkctl
