// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// link_settings.cpp - the speed and duplex of a port, as ethtool(8) shows them.
#include "lib/wired/link_settings.h"

#include "lib/base/words.h"
#include "velk/request.h"

namespace velk {

void LinkSettings::Read(std::string_view line) {
    if (Contains(line, "Auto-negotiation: on")) {
        autoneg = 1;
    } else if (Contains(line, "Auto-negotiation: off")) {
        autoneg = 0;
    } else if (Contains(line, "Speed: 100M")) {
        speed = 100;
    } else if (Contains(line, "Speed: 10M")) {
        speed = 10;
    } else if (Contains(line, "Duplex: Full")) {
        duplex = 1;
    } else if (Contains(line, "Duplex: Half")) {
        duplex = 0;
    }
}

int LinkSettings::Mode() const {
    if (autoneg == 1) {
        return VELK_LINK_AUTO;
    }
    if (speed == 100) {
        return duplex == 1 ? VELK_LINK_100_FULL : VELK_LINK_100_HALF;
    }
    if (speed == 10) {
        return duplex == 1 ? VELK_LINK_10_FULL : VELK_LINK_10_HALF;
    }
    return 0;
}

}  // namespace velk
