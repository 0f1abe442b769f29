// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// describe_verb.cpp - the verb that describes a setting.
#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "velkctl/call/longest_wait.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/output.h"
#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/value_kind.h"
#include "velkctl/text/columns.h"
#include "velkctl/text/numbers.h"
#include "velkctl/verbs/setting_values.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// Returns the settings with this full name, name without interface, or id.
std::vector<Setting> FindAll(std::string_view word) {
    std::vector<Setting> settings = Settings();
    const std::optional<uint32_t> id = ParseNumber<uint32_t>(word);
    std::erase_if(settings, [&](const Setting& setting) {
        return setting.name() != word && setting.row->name != word && setting.row->id != id;
    });
    return settings;
}

// Returns the values of a setting with their meanings.
std::string ValuesText(const Setting& setting) {
    const ValueKind& kind = *setting.row->kind;
    std::string text;
    if (setting.can_set() || !kind.Values().empty()) {  // else the description names them
        text.append("\n  ").append(setting.can_set() ? "takes " : "shows ").append(kind.Wanted());
    }
    if (!kind.Coding().empty()) {
        text.append("\n  ").append(kind.Coding());
    }
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

std::string Describe(const Setting& setting) {
    const LongestWait longest = LongestWaitOf(setting);
    std::string text = setting.name() + "\n  " + std::string(setting.row->help) + "\n  command " +
                       std::to_string(setting.row->id) + ": " +
                       (setting.can_get() ? (setting.can_set() ? "get and set" : "get") : "set");
    text.append(ValuesText(setting));
    if (setting.row->secret) {
        text.append("\n  a secret: masked without --show-secrets; give it as -, @FILE or at the ");
        text.append("prompt");
    }
    if (setting.can_set()) {
        const std::string condition = EffectCondition(setting);
        text.append("\n  takes effect ").append(EffectMoment(setting));
        text.append(condition.empty() ? "" : ",\n    ").append(condition);
    }
    if (setting.can_get() && longest.seconds > 0) {
        text.append("\n  reading takes at most ").append(std::to_string(longest.seconds));
        text.append(" s; it waits\n    for ").append(longest.awaited);
    }
    return text + Examples(setting) + "\n";
}

}  // namespace

ExitStatus RunDescribe(const Invocation& invocation, Report& report) {
    const std::string& word = invocation.words.front();
    const std::vector<Setting> settings = FindAll(word);
    if (settings.empty()) {
        return report.Refuse("describe: " + UnknownSetting(word));
    }
    Json described = Json::array();
    for (const Setting& setting : settings) {
        report.Text(FittedToTerminal(Describe(setting)));
        described.push_back(FactsInJson(setting));
    }
    report.Member("settings", std::move(described));
    return ExitStatus::kDone;
}

}  // namespace velkctl
