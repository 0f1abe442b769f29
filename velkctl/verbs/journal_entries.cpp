// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// journal_entries.cpp - changes of the journal in the output of verbs.
#include "velkctl/verbs/journal_entries.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <ctime>

#include "velkctl/files/file_image.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/columns.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/verbs/setting_values.h"

namespace velkctl {
namespace {

constexpr std::string_view kUnknown = "unknown";

std::string TextOf(const Setting& setting, const std::optional<Data>& value) {
    return value ? ValueText(setting, *value, false) : std::string(kUnknown);
}

Json JsonOf(const Setting& setting, const std::optional<Data>& value) {
    return value ? ValueInJson(setting, *value, false) : Json(nullptr);
}

std::string HealthText(const StoredEntry& stored) {
    if (stored.error != 0) {
        return strerror(stored.error);
    }
    switch (stored.decoded.health) {
        case EntryHealth::kTorn:
            return "not begun";
        case EntryHealth::kLater:
            return "made by a later velkctl";
        default:
            return "damaged";
    }
}

}  // namespace

std::string LocalTime(int64_t seconds) {
    const auto time = static_cast<time_t>(seconds);
    tm parts{};
    std::array<char, 32> text{};
    (void)strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", localtime_r(&time, &parts));
    return text.data();
}

std::string StepLines(const JournalEntry& entry) {
    std::vector<Setting> settings;
    for (const Step& step : entry.steps) {
        settings.push_back(step.setting);
    }
    const size_t width = NameWidth(settings);
    std::string lines;
    for (const Step& step : entry.steps) {
        lines.append("  ").append(NameColumn(step.setting, width));
        lines.append(TextOf(step.setting, step.old_value)).append(" -> ");
        lines.append(TextOf(step.setting, step.new_value)).append("\n");
    }
    return lines;
}

std::string StateText(const StoredEntry& stored) {
    if (!stored.is_whole()) {
        return HealthText(stored);
    }
    const EntryState state = stored.decoded.entry.state;
    const bool is_stuck = state == EntryState::kStuck;
    return stored.is_interrupted() && !is_stuck ? "interrupted" : std::string(NameOf(state));
}

Json StepsInJson(const JournalEntry& entry) {
    Json steps = Json::array();
    for (const Step& step : entry.steps) {
        Json object;
        object["name"] = step.setting.name();
        object["old"] = JsonOf(step.setting, step.old_value);
        object["new"] = JsonOf(step.setting, step.new_value);
        steps.push_back(std::move(object));
    }
    return steps;
}

Json EntryInJson(const StoredEntry& stored) {
    const JournalEntry& entry = stored.decoded.entry;
    Json object;
    object["id"] = entry.id;
    object["change"] = NameOf(entry.kind);
    object["undoes"] = TextOrNull(entry.undoes);
    object["time"] = entry.time;
    object["user"] = entry.user;
    object["state"] = StateText(stored);
    object["settings"] = StepsInJson(entry);
    object["files"] = Json::array();
    for (const FileImage& image : entry.before) {
        object["files"].push_back(image.path);
    }
    return object;
}

}  // namespace velkctl
