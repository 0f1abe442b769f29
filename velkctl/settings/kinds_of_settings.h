// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// kinds_of_settings.h - the kinds of values that the settings of the catalogue have.
#ifndef VELKCTL_SETTINGS_KINDS_OF_SETTINGS_H_
#define VELKCTL_SETTINGS_KINDS_OF_SETTINGS_H_

#include <array>
#include <cstdint>

#include "velkctl/settings/address_values.h"
#include "velkctl/settings/coded_values.h"
#include "velkctl/settings/host_value.h"
#include "velkctl/settings/raw_values.h"
#include "velkctl/settings/schedule_value.h"
#include "velkctl/settings/server_list.h"
#include "velkctl/settings/text_values.h"
#include "velkctl/settings/value_kind.h"
#include "velkctl/text/ipv4.h"

namespace velkctl {

inline constexpr ServerListKind kServerList{};
inline constexpr HostKind kHost{};
inline constexpr ScheduleKind kSchedule{};

// ---- Addresses ---------------------------------------------------------------------------------
inline constexpr AddressKind kAddress{"an IPv4 address",
                                      "192.168.0.10",
                                      HostAddressProblem,
                                      /*takes_none=*/false,
                                      {"192.168.0.10/24", "sets the netmask, too"}};
inline constexpr AddressKind kNetmask{
    "an IPv4 mask",       "255.255.255.0",
    MaskProblem,
    /*takes_none=*/false, {"24", "the mask with this number of ones"},
    MaskOfPrefix};
inline constexpr AddressKind kGateway{"an IPv4 address", "192.168.0.1", HostAddressProblem,
                                      /*takes_none=*/true};

// ---- Coded values ------------------------------------------------------------------------------
inline constexpr std::array<CodedValue, 2> kSwitchTable{{
    {VELK_ON, "on"},
    {VELK_OFF, "off"},
}};
inline constexpr std::array<CodedValue, 2> kMethodTable{{
    {VELK_METHOD_STATIC, "static", "address, netmask and gateway are those that are set"},
    {VELK_METHOD_DHCP, "dhcp", "a DHCP server gives them"},
}};
inline constexpr std::array<CodedValue, 3> kNtpResultTable{{
    {VELK_NTP_REACHED, "reached", "a server answered; the clock was set"},
    {VELK_NTP_NOT_REACHED, "not-reached", "no server answered"},
    {VELK_NTP_NO_RESULT, "no-result", "it has not run yet, or was switched off"},
}};
inline constexpr std::array<CodedValue, 5> kLinkModeTable{{
    {VELK_LINK_AUTO, "auto", "negotiated with the other end"},
    {VELK_LINK_100_FULL, "100-full", "100 Mbit/s, full duplex"},
    {VELK_LINK_100_HALF, "100-half", "100 Mbit/s, half duplex"},
    {VELK_LINK_10_FULL, "10-full", "10 Mbit/s, full duplex"},
    {VELK_LINK_10_HALF, "10-half", "10 Mbit/s, half duplex"},
}};
inline constexpr std::array<CodedValue, 2> kServiceSetTable{{
    {1, "infrastructure", "a network with an access point"},
    {2, "ad-hoc", "a network without one"},
}};
inline constexpr uint8_t kWep = 2;
inline constexpr std::array<CodedValue, 4> kEncryptionTable{{
    {1},
    {kWep, "wep"},
    {3},
    {4},
}};
// The wireless daemon gives these numbers their meaning; the library passes them on.
inline constexpr std::string_view kCodedByDaemon =
    "the wireless daemon defines the meaning; see its manual";
inline constexpr std::string_view kEncryptionCoding =
    "the wireless daemon defines the meaning of 1, 3 and 4; see its manual";
inline constexpr auto kOneToThreeTable = NumberTable<1, 3>();
inline constexpr auto kOneToFourTable = NumberTable<1, 4>();
inline constexpr auto kWepKeyNumberTable = NumberTable<1, VELK_WEP_KEYS>();
inline constexpr auto kChannelTable = NumberTable<1, VELK_CHANNELS>();
inline constexpr auto kStandardsEnabledTable = NumberTable<2, 3>();

inline constexpr CodedKind kSwitch{kSwitchTable};
inline constexpr CodedKind kMethod{kMethodTable};
inline constexpr CodedKind kNtpResult{kNtpResultTable};
inline constexpr CodedKind kLinkMode{kLinkModeTable};
inline constexpr CodedKind kServiceSet{kServiceSetTable};
inline constexpr CodedKind kEncryption{kEncryptionTable, kEncryptionCoding};
inline constexpr CodedKind kOneToThree{kOneToThreeTable, kCodedByDaemon};
inline constexpr CodedKind kOneToFour{kOneToFourTable, kCodedByDaemon};
inline constexpr CodedKind kWepKeyNumber{kWepKeyNumberTable};
inline constexpr CodedKind kChannel{kChannelTable};
inline constexpr CodedKind kStandardsEnabled{kStandardsEnabledTable, kCodedByDaemon};

// ---- Texts -------------------------------------------------------------------------------------
// A text that can only be read, such as a version.
inline constexpr TextKind kShownText{kNone, "a text of at most 511 bytes", "",
                                     [](size_t length) { return length < VELK_DATA_SIZE; }};
inline constexpr TextKind kFreeText{"''", "a text of at most 511 bytes", "'a text'",
                                    [](size_t length) { return length < VELK_DATA_SIZE; }};
inline constexpr TextKind kSsid{"''", "a text of at most 32 bytes", "'my network'",
                                [](size_t length) { return length <= VELK_SSID_SIZE; }};
// The empty word, which a script's unset variable gives, does not clear a key. An example takes the
// key from standard input.
inline constexpr TextKind kPsk{kNone, "a text of 1 to 64 bytes, or none", "-",
                               [](size_t length) { return length >= 1 && length <= VELK_PSK_SIZE; },
                               KeyProblem};
inline constexpr TextKind kWepKey{
    kNone, "a text of 5 or 13 bytes, 10 or 26 hex digits, or none", "-",
    [](size_t length) {
        return length == VELK_WEP_SHORT_KEY || length == VELK_WEP_LONG_KEY ||
               length == VELK_WEP_SHORT_HEX_KEY || length == VELK_WEP_LONG_HEX_KEY;
    },
    WepKeyProblem};

// ---- Raw values --------------------------------------------------------------------------------
inline constexpr MacAddressKind kMacAddress{};
inline constexpr HexBytesKind kRate{4, kCodedByDaemon};
inline constexpr NumberPairKind kSignal{kCodedByDaemon};

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_KINDS_OF_SETTINGS_H_
