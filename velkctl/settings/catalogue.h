// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// catalogue.h - the settings velkctl knows.
#ifndef VELKCTL_SETTINGS_CATALOGUE_H_
#define VELKCTL_SETTINGS_CATALOGUE_H_

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "velkctl/settings/value_kind.h"
#include "velkctl/text/data_bytes.h"

namespace velkctl {

// Flags of CatalogueRow::interfaces.
inline constexpr unsigned kNoInterface = 1U;
inline constexpr unsigned kEth0 = 2U;
inline constexpr unsigned kEth1 = 4U;

// Flags of CatalogueRow::directions.
inline constexpr unsigned kGet = 1U;
inline constexpr unsigned kSet = 2U;

// A line of a file. The library finds it by a key, a command or an option on the line. `key` is
// empty if the setting has no line of its own.
struct FileLine {
    const char* file = nullptr;
    std::string_view key{};
};

enum class Holder {
    kFile,
    kKernel,
    kTool,    // a tool reads it from the kernel and sets it there
    kDaemon,  // the wireless daemon
};

// The time when a change takes effect.
enum class TakesEffect {
    kAtOnce,
    kAtRestart,      // when the interface is restarted
    kAtLease,        // the DHCP client's script reads it at each event of a lease
    kOffAtLease,     // off: as kAtLease; on: after a restart, when the client asks for the option
    kWithCron,       // cron reads its file each minute
    kWithNtp,        // the same, but the entry may be switched off
    kWithForwarder,  // the DNS forwarder watches its file
};

// Where a setting is held.
struct HeldIn {
    Holder holder = Holder::kFile;
    FileLine line{};
    FileLine second_line{};  // changed with it by a set
    // The tool that reads it; for a setting in a file, only while a lease is shown.
    std::string_view tool{};
    bool is_of_lease = false;  // with method dhcp the value of the lease is read
    TakesEffect takes_effect = TakesEffect::kAtRestart;
};

// Tools that read settings.
inline constexpr std::string_view kInterfaceTool = "ifconfig";
inline constexpr std::string_view kLinkTool = "ethtool";

struct CatalogueRow {
    std::string_view name;
    uint32_t id;
    unsigned interfaces;
    unsigned directions;
    const ValueKind* kind;
    bool secret;  // masked in output unless --show-secrets is given
    HeldIn held_in;
    std::string_view help;
};

// A row of the catalogue on one of its interfaces, as in "eth0.dns".
struct Setting {
    const CatalogueRow* row;
    std::string_view interface;  // empty for a setting of the whole device

    bool can_get() const { return (row->directions & kGet) != 0; }
    bool can_set() const { return (row->directions & kSet) != 0; }
    std::string name() const;
};

// True if both values are the same for programs.
bool IsSameValue(const Setting& setting, const Data& one, const Data& other);

// Returns the time when a change of the setting takes effect: "at the next restart of eth0".
std::string EffectMoment(const Setting& setting);
// Returns the conditions for it: "with method static". Empty if it has none.
std::string EffectCondition(const Setting& setting);
// Returns both: "at the next restart of eth0, with method static".
std::string EffectTime(const Setting& setting);

std::span<const CatalogueRow> Catalogue();

// Returns every setting, in the order of the catalogue.
std::vector<Setting> Settings();

// Returns the setting with this name; nothing if none. The interface may be left out of a name that
// only one setting has: "ssid".
std::optional<Setting> FindSetting(std::string_view name);

// Returns the setting of this command on an interface; nothing if none.
std::optional<Setting> FindSetting(uint32_t id, std::string_view interface);

// The same for a setting that exists.
Setting SettingOf(uint32_t id, std::string_view interface = "");

// True for two copies of one setting.
bool IsSameSetting(const Setting& one, const Setting& other);

inline constexpr std::array<const char*, 2> kInterfaces{VELK_WIRED_INTERFACE,
                                                        VELK_WIRELESS_INTERFACE};

// True for the commands of the address, netmask and gateway. With method static they read the
// configuration, with method dhcp the lease.
bool IsAddressCommand(uint32_t id);

// True if this value of a method is static.
bool IsStaticMethod(const Data& method);

// True if the word is the name of a secret, with its interface or without, or its id.
bool NamesSecret(std::string_view word);

// Returns the full names that a short or misspelt one may mean; empty if none is near it.
std::vector<std::string> NamesMeant(std::string_view name);

// Returns the message about a name that FindSetting() does not find, with the names to give
// instead. A name that may be a key is neither repeated nor compared.
std::string UnknownSetting(std::string_view name, bool may_be_key = false);

// Returns the message about a word that is neither eth0 nor eth1. `shown` is the word as the
// message repeats it.
std::string UnknownInterface(std::string_view word, const std::string& shown);

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_CATALOGUE_H_
