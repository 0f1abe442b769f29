// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// setting_patterns.cpp - words that select several settings.
#include "velkctl/settings/setting_patterns.h"

#include <fnmatch.h>

namespace velkctl {
namespace {

bool IsInterface(std::string_view word) {
    return word == VELK_WIRED_INTERFACE || word == VELK_WIRELESS_INTERFACE;
}

}  // namespace

bool IsPattern(std::string_view word) {
    return IsInterface(word) || word.find_first_of("*?[") != std::string_view::npos;
}

std::vector<Setting> SettingsMatching(const std::string& pattern) {
    std::vector<Setting> settings = Settings();
    std::erase_if(settings, [&](const Setting& setting) {
        return setting.interface != pattern &&
               fnmatch(pattern.c_str(), setting.name().c_str(), FNM_NOESCAPE) != 0;
    });
    return settings;
}

}  // namespace velkctl
