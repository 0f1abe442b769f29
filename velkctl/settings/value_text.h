// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// value_text.h - the value of a setting as people read it.
#ifndef VELKCTL_SETTINGS_VALUE_TEXT_H_
#define VELKCTL_SETTINGS_VALUE_TEXT_H_

#include <string>

#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// Returns a value for people. A secret is masked unless it is empty or may be shown.
std::string ValueText(const Setting& setting, const Data& data, bool show_secrets);

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_VALUE_TEXT_H_
