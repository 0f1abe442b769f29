// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// setting_values.cpp - settings and their values in the output of verbs.
#include "velkctl/verbs/setting_values.h"

#include <algorithm>
#include <utility>

#include "velkctl/call/longest_wait.h"
#include "velkctl/settings/value_text.h"
#include "velkctl/text/columns.h"
#include "velkctl/text/masking.h"
#include <nlohmann/json.hpp>

namespace velkctl {

Json ValueInJson(const Setting& setting, const Data& data, bool show_secrets) {
    return IsMasked(setting.row->secret, show_secrets, data) ? Json(kMask)
                                                             : setting.row->kind->ToJson(data);
}

std::string BareValue(const Setting& setting, const Data& data, bool show_secrets) {
    const Json value = ValueInJson(setting, data, show_secrets);
    const bool is_empty = value.empty() || (value.is_string() && value.get<std::string>().empty());
    return is_empty ? "" : ValueText(setting, data, show_secrets);
}

std::string CouldNotBeRead(const Setting& setting) {
    return setting.name() + ": could not be read";
}

Json ReadingInJson(const Setting& setting, Json value, Json error, Json valid) {
    Json object;
    object["name"] = setting.name();
    object["value"] = std::move(value);
    object["error"] = std::move(error);
    object["valid"] = std::move(valid);
    return object;
}

Json FactsInJson(const Setting& setting) {
    Json object;
    object["name"] = setting.name();
    object["id"] = setting.row->id;
    object["interface"] = setting.interface.empty() ? Json(nullptr) : Json(setting.interface);
    object["get"] = setting.can_get();
    object["set"] = setting.can_set();
    object["secret"] = setting.row->secret;
    object["description"] = setting.row->help;
    object["type"] = setting.row->kind->Type();
    object["expected"] = setting.can_set() ? Json(setting.row->kind->Wanted()) : Json(nullptr);
    object["values"] = setting.row->kind->Values();
    object["longest_seconds"] = LongestWaitOf(setting).seconds;
    object["takes_effect"] = setting.can_set() ? Json(EffectTime(setting)) : Json(nullptr);
    return object;
}

size_t NameWidth(const std::vector<Setting>& settings) {
    size_t width = 0;
    for (const Setting& setting : settings) {
        width = std::max(width, setting.name().size());
    }
    return width;
}

std::string NameColumn(const Setting& setting, size_t width) {
    return Padded(setting.name(), width) + "  ";
}

}  // namespace velkctl
