// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// setting_values.h - settings and their values in the output of verbs.
#ifndef VELKCTL_VERBS_SETTING_VALUES_H_
#define VELKCTL_VERBS_SETTING_VALUES_H_

#include <string>
#include <vector>

#include "velkctl/report/report.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"
#include <nlohmann/json.hpp>

namespace velkctl {

// Returns a value for JSON. A secret is masked unless it is empty or may be shown.
Json ValueInJson(const Setting& setting, const Data& data, bool show_secrets);

// Returns the bare value for scripts. It is empty for an empty value and for none.
std::string BareValue(const Setting& setting, const Data& data, bool show_secrets);

// Returns the first line of the failure to read a setting: "eth0.dns: could not be read".
std::string CouldNotBeRead(const Setting& setting);

// {"name": ..., "value": ..., "error": null, "valid": true}. The error is that of ProblemInJson().
// `valid` says if a set would take the value; null if it could not be read.
Json ReadingInJson(const Setting& setting, Json value, Json error, Json valid = nullptr);

// Returns the facts about a setting that list and describe print in JSON.
Json FactsInJson(const Setting& setting);

// Returns the length of the longest name.
size_t NameWidth(const std::vector<Setting>& settings);

// Returns the name as the first column of a table: "eth0.dns  ".
std::string NameColumn(const Setting& setting, size_t width);

}  // namespace velkctl

#endif  // VELKCTL_VERBS_SETTING_VALUES_H_
