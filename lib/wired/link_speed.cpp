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
#include "lib/wired/link_settings.h"
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
