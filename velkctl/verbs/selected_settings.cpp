// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// selected_settings.cpp - the settings that the words of a verb select for reading.
#include "velkctl/verbs/selected_settings.h"

#include <optional>
#include <string>

#include "velkctl/settings/setting_patterns.h"

namespace velkctl {
namespace {

std::vector<Setting> ReadableMatching(const std::string& pattern) {
    std::vector<Setting> settings = SettingsMatching(pattern);
    std::erase_if(settings, [](const Setting& setting) { return !setting.can_get(); });
    return settings;
}

// Returns the settings of a name or pattern; none if it cannot be read or does not exist.
std::vector<Setting> Select(const std::string& word) {
    if (IsPattern(word)) {
        return ReadableMatching(word);
    }
    const std::optional<Setting> setting = FindSetting(word);
    return setting && setting->can_get() ? std::vector<Setting>{*setting} : std::vector<Setting>{};
}

Problem SelectionProblem(std::string_view verb, const std::string& word,
                         const Invocation& invocation) {
    if (const std::optional<Setting> setting = FindSetting(word)) {
        const std::string name = setting->name();
        return Problem{
            name + ": cannot be read, only set; 'velkctl set " + name + " VALUE' sets it", name};
    }
    const std::string problem = IsPattern(word) ? invocation.Shown(word) +
                                                      " matches no setting that can be read; "
                                                      "'velkctl list' names them all"
                                                : UnknownSetting(word, invocation.beside_secret);
    return Problem{std::string(verb) + ": " + problem};
}

}  // namespace

std::vector<Setting> SelectReadable(std::string_view verb, const Invocation& invocation,
                                    Report& report) {
    std::vector<Setting> settings;
    bool is_refused = false;
    for (const std::string& word : invocation.words) {
        const std::vector<Setting> selected = Select(word);
        settings.insert(settings.end(), selected.begin(), selected.end());
        if (selected.empty()) {
            report.Complain(SelectionProblem(verb, word, invocation));
            is_refused = true;
        }
    }
    return is_refused ? std::vector<Setting>{} : settings;
}

}  // namespace velkctl
