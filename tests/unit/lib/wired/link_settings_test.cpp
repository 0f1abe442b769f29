// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include "lib/wired/link_settings.h"

#include <initializer_list>
#include <string_view>

#include <gtest/gtest.h>

#include "velk/request.h"

namespace {

int ModeOf(std::initializer_list<std::string_view> lines) {
    velk::LinkSettings settings;
    for (const std::string_view line : lines) {
        settings.Read(line);
    }
    return settings.Mode();
}

TEST(LinkSettingsTest, EachFixedModeIsReadFromItsThreeLines) {
    constexpr std::string_view kFixed = "\tAuto-negotiation: off\n";
    EXPECT_EQ(ModeOf({"\tSpeed: 100Mb/s\n", "\tDuplex: Full\n", kFixed}), VELK_LINK_100_FULL);
    EXPECT_EQ(ModeOf({"\tSpeed: 100Mb/s\n", "\tDuplex: Half\n", kFixed}), VELK_LINK_100_HALF);
    EXPECT_EQ(ModeOf({"\tSpeed: 10Mb/s\n", "\tDuplex: Full\n", kFixed}), VELK_LINK_10_FULL);
    EXPECT_EQ(ModeOf({"\tSpeed: 10Mb/s\n", "\tDuplex: Half\n", kFixed}), VELK_LINK_10_HALF);
}

TEST(LinkSettingsTest, NegotiationDecidesBeforeSpeedAndDuplex) {
    EXPECT_EQ(ModeOf({"\tSpeed: 10Mb/s\n", "\tDuplex: Half\n", "\tAuto-negotiation: on\n"}),
              VELK_LINK_AUTO);
}

TEST(LinkSettingsTest, WithoutASpeedThereIsNoMode) {
    EXPECT_EQ(ModeOf({}), 0);
    EXPECT_EQ(ModeOf({"\tSpeed: Unknown!\n", "\tDuplex: Full\n"}), 0);
    EXPECT_EQ(ModeOf({"\tSpeed: 2500Mb/s\n", "\tDuplex: Full\n"}), 0);
}

TEST(LinkSettingsTest, ALaterLineReplacesAnEarlierOne) {
    EXPECT_EQ(ModeOf({"Speed: 100Mb/s", "Speed: 10Mb/s", "Duplex: Full"}), VELK_LINK_10_FULL);
    EXPECT_EQ(ModeOf({"Auto-negotiation: on", "Auto-negotiation: off", "Speed: 100Mb/s"}),
              VELK_LINK_100_HALF);
}

}  // namespace
