// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// link_speed.cpp - reads and forces the speed and duplex of the wired port with ethtool(8).
#include <array>
#include <string_view>

#include <net/if.h>

#include "lib/base/command_output.h"
#include "lib/base/data_area.h"
#include "lib/base/log.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velk/request.h"
#include "velk/wired.h"

namespace velk {
namespace {

// The options of "ethtool -s" for the modes 1 to 5.
constexpr std::array kModeOptions{
    "autoneg on",
    "speed 100 duplex full autoneg off",
    "speed 100 duplex half autoneg off",
    "speed 10 duplex full autoneg off",
    "speed 10 duplex half autoneg off",
};

// The settings that ethtool shows, named after the fields of the kernel's ethtool_cmd record.
struct LinkSettings {
    int autoneg = 0;
    int speed = 0;
    int duplex = 0;

    void Read(std::string_view line);
    int Mode() const;
};

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

// Returns the mode 1 to 5; 0 for settings without a mode.
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

}  // namespace
}  // namespace velk

using namespace velk;

int GetLinkSpeed(int /*socket*/, ifreq& ifr, int /*request*/, char* out) {
    if (out == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    const std::string name(FieldText(ifr.ifr_name));
    CommandOutput output(CommandLine("sudo ethtool %s > %s", name.c_str(), kResultFile));
    if (output.run_result() != LIB_VELK_SUCCESS) {
        return LIB_VELK_FAILURE;
    }
    if (!output.is_open()) {
        Log("ifstream");
        return LIB_VELK_FAILURE;
    }
    LinkSettings settings;
    for (std::string_view line; output.ReadLine(line);) {
        settings.Read(line);
    }
    output.Remove();
    const int mode = settings.Mode();
    if (mode == 0) {
        Log("ecmd.autoneg=%d, ecmd.speed=%d", settings.autoneg, settings.speed);
        return LIB_VELK_FAILURE;
    }
    out[0] = static_cast<char>(mode);
    return LIB_VELK_SUCCESS;
}

int SetLinkSpeed(int /*socket*/, ifreq& ifr, int /*request*/, const char* value) {
    if (value == nullptr) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    const auto mode = static_cast<unsigned char>(value[0]);
    if (mode < VELK_LINK_AUTO || mode > VELK_LINK_10_HALF) {
        return LIB_VELK_INVALID_PARAMETER;
    }
    const std::string name(FieldText(ifr.ifr_name));
    return CommandLine("sudo ethtool -s %s %s", name.c_str(), kModeOptions[mode - 1U]).Run();
}
