// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// link_settings.h - the speed and duplex of a port, as ethtool(8) shows them.
#ifndef VELK_WIRED_LINK_SETTINGS_H_
#define VELK_WIRED_LINK_SETTINGS_H_

#include <string_view>

namespace velk {

// The settings that ethtool shows, named after the fields of the kernel's ethtool_cmd record.
struct LinkSettings {
    int autoneg = 0;
    int speed = 0;
    int duplex = 0;

    void Read(std::string_view line);
    // Returns the mode 1 to 5; 0 for settings without a mode.
    int Mode() const;
};

}  // namespace velk

#endif  // VELK_WIRED_LINK_SETTINGS_H_
