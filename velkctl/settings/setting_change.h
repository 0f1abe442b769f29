// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// setting_change.h - a setting and its new value.
#ifndef VELKCTL_SETTINGS_SETTING_CHANGE_H_
#define VELKCTL_SETTINGS_SETTING_CHANGE_H_

#include "velkctl/settings/catalogue.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

struct SettingChange {
    Setting setting;
    Data value{};
};

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_SETTING_CHANGE_H_
