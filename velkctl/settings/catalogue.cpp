// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// catalogue.cpp - the settings velkctl knows.
#include "velkctl/settings/catalogue.h"

#include <algorithm>
#include <array>

#include "lib/base/find_row.h"
#include "lib/base/paths.h"
#include "lib/ipconf/interfaces_file.h"
#include "velkctl/settings/kinds_of_settings.h"
#include "velkctl/settings/time_entry.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/numbers.h"
#include "velkctl/text/spelling.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr bool kOpen = false;
constexpr bool kSecret = true;

constexpr HeldIn InFile(const char* file, std::string_view key = "", FileLine second_line = {}) {
    return {Holder::kFile, {file, key}, second_line};
}

constexpr HeldIn InEffect(TakesEffect takes_effect, HeldIn held_in) {
    held_in.takes_effect = takes_effect;
    return held_in;
}

// The line of an address setting. With method dhcp the tool reads the address of the lease instead.
constexpr HeldIn InAddressLine(std::string_view key, std::string_view tool = "") {
    return {Holder::kFile, {velk::kInterfacesFile, key}, {}, tool, /*is_of_lease=*/true};
}

// A set restarts the SNMP agent.
constexpr HeldIn kAdministratorLines =
    InEffect(TakesEffect::kAtOnce,
             InFile(velk::kIdentityFile, "ADMINISTRATOR=", {velk::kSnmpFile, "syscontact"}));
constexpr HeldIn kLocationLines =
    InEffect(TakesEffect::kAtOnce,
             InFile(velk::kIdentityFile, "LOCATION=", {velk::kSnmpFile, "syslocation"}));
constexpr HeldIn kTimeEntry = InEffect(TakesEffect::kWithCron, InFile(velk::kCrontab, kTimeClient));
constexpr HeldIn kTimeServerEntry =
    InEffect(TakesEffect::kWithNtp, InFile(velk::kCrontab, kTimeClient));
constexpr HeldIn kUpdateEntry =
    InEffect(TakesEffect::kWithCron, InFile(velk::kCrontab, "web_contents_updater"));
constexpr HeldIn kTimeLog = InFile(velk::kNtpLog);
constexpr HeldIn kMethodLines = InFile(velk::kInterfacesFile, "", {velk::kDhcpConfigFile});
constexpr HeldIn kAddressLine = InAddressLine(velk::kAddressKey, kInterfaceTool);
constexpr HeldIn kNetmaskLine = InAddressLine(velk::kNetmaskKey, kInterfaceTool);
constexpr HeldIn kGatewayLine = InAddressLine(velk::kGatewayKey);
constexpr HeldIn kNameServerLines =
    InEffect(TakesEffect::kOffAtLease, InFile(velk::kDhcpConfigFile, "domain-name-servers",
                                              {velk::kClientScript, "make_resolv_conf"}));
constexpr HeldIn kTimeServerLines =
    InEffect(TakesEffect::kOffAtLease,
             InFile(velk::kDhcpConfigFile, "ntp-servers", {velk::kExitHooks, velk::kClockSetter}));
constexpr HeldIn kLinkLocalLine =
    InEffect(TakesEffect::kAtLease, InFile(velk::kExitHooks, velk::kLinkLocalDaemon));
constexpr HeldIn kNoticeLines =
    InEffect(TakesEffect::kAtLease,
             InFile(velk::kExitHooks, velk::kFinishNotice, {velk::kExitHooks, velk::kStartNotice}));
constexpr HeldIn kResolver = InEffect(TakesEffect::kWithForwarder, InFile(velk::kResolverFile));
constexpr HeldIn kInKernel{.holder = Holder::kKernel};
constexpr HeldIn kByEthtool{
    .holder = Holder::kTool, .tool = kLinkTool, .takes_effect = TakesEffect::kAtOnce};
// The daemon applies a configuration that it was sent only after a restart.
constexpr HeldIn kInDaemon{.holder = Holder::kDaemon};

constexpr std::string_view kWepKeyHelp = "WEP key, or none; secret";

constexpr std::array<CatalogueRow, 36> kRows{{
    // name, id, interfaces, directions, value kind, secret, held in, help
    {"administrator", VELK_CMD_ADMINISTRATOR, kNoInterface, kGet | kSet, &kFreeText, kOpen,
     kAdministratorLines, "name of the administrator: a text, '' if empty"},
    {"location", VELK_CMD_LOCATION, kNoInterface, kGet | kSet, &kFreeText, kOpen, kLocationLines,
     "location of the device: a text, '' if empty"},
    {"ntp", VELK_CMD_NTP, kNoInterface, kGet | kSet, &kSwitch, kOpen, kTimeEntry,
     "set the clock from a time server: on or off"},
    {"dhcp-ntp", VELK_CMD_DHCP_NTP, kNoInterface, kGet | kSet, &kSwitch, kOpen, kTimeServerLines,
     "take time servers from DHCP: on or off"},
    {"ntp-server", VELK_CMD_NTP_SERVER, kNoInterface, kGet | kSet, &kHost, kOpen, kTimeServerEntry,
     "time server: a host name or address, or none"},
    {"ntp-result", VELK_CMD_NTP_RESULT, kNoInterface, kGet, &kNtpResult, kOpen, kTimeLog,
     "result of the last time synchronisation"},
    {"web-update", VELK_CMD_WEB_UPDATE, kNoInterface, kGet | kSet, &kSchedule, kOpen, kUpdateEntry,
     "schedule of the web update"},
    {"mac-address", VELK_CMD_MAC_ADDRESS, kEth0 | kEth1, kGet, &kMacAddress, kOpen, kInKernel,
     "hardware address: 6 bytes in hex"},
    {"method", VELK_CMD_IP_METHOD, kEth0 | kEth1, kGet | kSet, &kMethod, kOpen, kMethodLines,
     "where the address comes from: static or dhcp"},
    {"apipa", VELK_CMD_APIPA, kEth0 | kEth1, kGet | kSet, &kSwitch, kOpen, kLinkLocalLine,
     "link-local address if DHCP fails: on or off"},
    {"address", VELK_CMD_IP_ADDRESS, kEth0 | kEth1, kGet | kSet, &kAddress, kOpen, kAddressLine,
     "IPv4 address; with dhcp that of the lease"},
    {"netmask", VELK_CMD_NETMASK, kEth0 | kEth1, kGet | kSet, &kNetmask, kOpen, kNetmaskLine,
     "IPv4 mask; with dhcp that of the lease"},
    {"gateway", VELK_CMD_GATEWAY, kEth0 | kEth1, kGet | kSet, &kGateway, kOpen, kGatewayLine,
     "default gateway: an IPv4 address, or none"},
    {"dhcp-dns", VELK_CMD_DHCP_DNS, kEth0 | kEth1, kGet | kSet, &kSwitch, kOpen, kNameServerLines,
     "take DNS servers from DHCP: on or off"},
    {"dns", VELK_CMD_DNS, kEth0 | kEth1, kGet | kSet, &kServerList, kOpen, kResolver,
     "DNS servers of eth0 and eth1: up to three"},
    {"dhcp-notice", VELK_CMD_DHCP_NOTICE, kEth0, kSet, &kSwitch, kOpen, kNoticeLines,
     "print notices of the DHCP client: on or off"},
    {"link-speed", VELK_CMD_LINK_SPEED, kEth0, kGet | kSet, &kLinkMode, kOpen, kByEthtool,
     "speed in Mbit/s and duplex, or auto"},
    {"hardware-version", VELK_CMD_HARDWARE_VERSION, kEth1, kGet, &kShownText, kOpen, kInDaemon,
     "revision of the adapter"},
    {"software-version", VELK_CMD_SOFTWARE_VERSION, kEth1, kGet, &kShownText, kOpen, kInDaemon,
     "version of the wireless daemon"},
    {"standard", VELK_CMD_STANDARD, kEth1, kGet, &kOneToThree, kOpen, kInDaemon,
     "802.11 standard in use: 1 to 3"},
    {"service-set", VELK_CMD_SERVICE_SET, kEth1, kGet | kSet, &kServiceSet, kOpen, kInDaemon,
     "kind of network: infrastructure or ad-hoc"},
    {"ssid", VELK_CMD_SSID, kEth1, kGet | kSet, &kSsid, kOpen, kInDaemon,
     "name of the network: a text, '' if empty"},
    {"channel", VELK_CMD_CHANNEL, kEth1, kGet | kSet, &kChannel, kOpen, kInDaemon,
     "channel: 1 to 13"},
    {"region", VELK_CMD_REGION, kEth1, kGet, &kOneToThree, kOpen, kInDaemon,
     "region of the adapter: 1 to 3"},
    {"encryption", VELK_CMD_ENCRYPTION, kEth1, kGet | kSet, &kEncryption, kOpen, kInDaemon,
     "encryption: 1, 2 (wep), 3 or 4"},
    {"authentication", VELK_CMD_AUTHENTICATION, kEth1, kGet | kSet, &kOneToFour, kOpen, kInDaemon,
     "authentication: 1 to 4"},
    {"wep-key-1", VELK_CMD_WEP_KEY_1, kEth1, kGet | kSet, &kWepKey, kSecret, kInDaemon,
     kWepKeyHelp},
    {"wep-key-2", VELK_CMD_WEP_KEY_2, kEth1, kGet | kSet, &kWepKey, kSecret, kInDaemon,
     kWepKeyHelp},
    {"wep-key-3", VELK_CMD_WEP_KEY_3, kEth1, kGet | kSet, &kWepKey, kSecret, kInDaemon,
     kWepKeyHelp},
    {"wep-key-4", VELK_CMD_WEP_KEY_4, kEth1, kGet | kSet, &kWepKey, kSecret, kInDaemon,
     kWepKeyHelp},
    {"wep-default-key", VELK_CMD_WEP_DEFAULT_KEY, kEth1, kGet | kSet, &kWepKeyNumber, kOpen,
     kInDaemon, "number of the WEP key in use: 1 to 4"},
    {"psk", VELK_CMD_PSK, kEth1, kGet | kSet, &kPsk, kSecret, kInDaemon,
     "pre-shared key, or none; secret"},
    {"rate", VELK_CMD_RATE, kEth1, kGet, &kRate, kOpen, kInDaemon,
     "transmission rate: 4 bytes as 8 hex digits"},
    {"access-point", VELK_CMD_ACCESS_POINT, kEth1, kGet, &kMacAddress, kOpen, kInDaemon,
     "address of the access point: 6 bytes in hex"},
    {"signal", VELK_CMD_SIGNAL, kEth1, kGet, &kSignal, kOpen, kInDaemon,
     "signal strength: two numbers"},
    {"standards-enabled", VELK_CMD_STANDARDS_ENABLED, kEth1, kGet | kSet, &kStandardsEnabled, kOpen,
     kInDaemon, "802.11 standards to use: 2 or 3"},
}};

struct InterfaceFlag {
    unsigned flag;
    std::string_view interface;
};

constexpr std::array<InterfaceFlag, 3> kInterfaceFlags{{
    {kNoInterface, ""},
    {kEth0, VELK_WIRED_INTERFACE},
    {kEth1, VELK_WIRELESS_INTERFACE},
}};

// Returns the part of a name after its interface, also if there is no such interface.
std::string_view WithoutInterface(std::string_view name) {
    const size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? name : name.substr(dot + 1);
}

std::vector<std::string> InterfaceNames() {
    return {VELK_WIRED_INTERFACE, VELK_WIRELESS_INTERFACE};
}

// True for a misspelt interface.
bool IsNearInterface(std::string_view word) {
    return !SpellingSuggestions(word, InterfaceNames()).empty();
}

// Returns the full names of all settings, or of those with this name or id.
std::vector<std::string> FullNames(std::optional<std::string_view> word = std::nullopt) {
    const std::optional<uint32_t> id = word ? ParseNumber<uint32_t>(*word) : std::nullopt;
    std::vector<std::string> names;
    for (const Setting& setting : Settings()) {
        if (!word || setting.row->name == *word || setting.row->id == id) {
            names.push_back(setting.name());
        }
    }
    return names;
}

std::vector<std::string> ShortNames() {
    std::vector<std::string> names;
    names.reserve(kRows.size());
    for (const CatalogueRow& row : kRows) {
        names.emplace_back(row.name);
    }
    return names;
}

// Returns the full names of the settings with these names without interface.
std::vector<std::string> FullNamesOf(std::span<const std::string> short_names) {
    std::vector<std::string> names;
    for (const std::string& short_name : short_names) {
        for (std::string& name : FullNames(short_name)) {
            names.push_back(std::move(name));
        }
    }
    return names;
}

bool IsGlob(std::string_view word) {
    return word.find_first_of("*?[") != std::string_view::npos;
}

// Returns the full names that another program's name may mean: those on its interface, or all if
// there is none on it.
std::vector<std::string> NamesElsewhere(std::string_view name) {
    const std::string_view own = WithoutInterface(name);
    const std::string_view start = name.substr(0, name.size() - own.size());
    std::vector<std::string> names = FullNamesOf(OtherNamesOf(own, ShortNames()));
    std::vector<std::string> on_interface = names;
    std::erase_if(on_interface, [start](const std::string& n) { return !n.starts_with(start); });
    return on_interface.empty() ? names : on_interface;
}

// Returns the full names that a misspelt one may mean, with its interface or without.
std::vector<std::string> GuessedNames(std::string_view name) {
    if (std::vector<std::string> meant = NamesElsewhere(name); !meant.empty()) {
        return meant;
    }
    std::vector<std::string> meant = SpellingSuggestions(name, FullNames());
    return meant.empty() ? FullNamesOf(SpellingSuggestions(WithoutInterface(name), ShortNames()))
                         : meant;
}

// Returns the message about a word that is more than a name; empty if it is not.
std::string WrongForm(std::string_view name) {
    const size_t equals = name.find('=');
    if (equals != std::string_view::npos) {
        // The text after the "=" may be a secret.
        return Quoted(name.substr(0, equals)) + " is followed by '='; give the name alone";
    }
    return IsGlob(name) ? Quoted(name) + " is a pattern, for get and show only; give one name" : "";
}

// Returns the message about the name of a setting that lacks its interface, or has a wrong one;
// empty if there is no setting of this name.
std::string WrongInterface(std::string_view name) {
    const std::vector<std::string> right = FullNames(WithoutInterface(name));
    if (right.empty()) {
        return {};
    }
    const bool lacks_interface = velk::FindRow(kRows, name, &CatalogueRow::name) != nullptr;
    return (right.size() > 1 && lacks_interface
                ? Quoted(name) + " is a setting of both interfaces; give "
                : "unknown setting " + Quoted(name) + "; give ") +
           OneOf(right);
}

// A restart of eth1 with the cable in neither runs ifup nor notifies the wireless daemon.
bool NeedsCableOut(const Setting& setting) {
    const TakesEffect time = setting.row->held_in.takes_effect;
    return setting.interface == VELK_WIRELESS_INTERFACE &&
           (time == TakesEffect::kAtRestart || time == TakesEffect::kAtLease ||
            time == TakesEffect::kOffAtLease);
}

}  // namespace

std::string Setting::name() const {
    const std::string own(row->name);
    return interface.empty() ? own : std::string(interface).append(".").append(own);
}

bool IsSameValue(const Setting& setting, const Data& one, const Data& other) {
    return setting.row->kind->ToJson(one) == setting.row->kind->ToJson(other);
}

std::string EffectMoment(const Setting& setting) {
    const std::string restarted =
        setting.interface.empty() ? "eth0 or eth1" : std::string(setting.interface);
    switch (setting.row->held_in.takes_effect) {
        case TakesEffect::kAtOnce:
            return "at once";
        case TakesEffect::kWithCron:
        case TakesEffect::kWithNtp:
            return "at the next run of cron";
        case TakesEffect::kWithForwarder:
            return "when the DNS forwarder reads its file again";
        case TakesEffect::kAtLease:
            return "at the next lease or restart of " + restarted;
        default:
            return "at the next restart of " + restarted;
    }
}

std::string EffectCondition(const Setting& setting) {
    const HeldIn& held_in = setting.row->held_in;
    std::string conditions;
    const auto append = [&](bool applies, std::string_view condition) {
        if (applies) {
            conditions.append(conditions.empty() ? "" : ", ").append(condition);
        }
    };
    append(held_in.is_of_lease, "with method static");
    append(NeedsCableOut(setting), "without the cable in eth0");
    append(held_in.takes_effect == TakesEffect::kOffAtLease, "off at the next lease");
    append(held_in.takes_effect == TakesEffect::kWithNtp, "once ntp is on");
    return conditions;
}

std::string EffectTime(const Setting& setting) {
    const std::string condition = EffectCondition(setting);
    return EffectMoment(setting) + (condition.empty() ? "" : ", " + condition);
}

std::span<const CatalogueRow> Catalogue() {
    return kRows;
}

std::vector<Setting> Settings() {
    static const std::vector<Setting> settings = [] {
        std::vector<Setting> made;
        made.reserve(kRows.size() * kInterfaceFlags.size());
        for (const CatalogueRow& row : kRows) {
            for (const InterfaceFlag& known : kInterfaceFlags) {
                if ((row.interfaces & known.flag) != 0) {
                    made.push_back({&row, known.interface});
                }
            }
        }
        return made;
    }();
    return settings;
}

std::optional<Setting> FindSetting(std::string_view name) {
    const std::vector<Setting> settings = Settings();
    if (const Setting* setting = velk::FindRow(settings, name, &Setting::name)) {
        return *setting;
    }
    const auto has_name = [name](const Setting& setting) { return setting.row->name == name; };
    const auto setting = std::ranges::find_if(settings, has_name);
    return std::ranges::count_if(settings, has_name) == 1 ? std::optional(*setting) : std::nullopt;
}

std::optional<Setting> FindSetting(uint32_t id, std::string_view interface) {
    for (const Setting& setting : Settings()) {
        if (setting.row->id == id && setting.interface == interface) {
            return setting;
        }
    }
    return std::nullopt;
}

Setting SettingOf(uint32_t id, std::string_view interface) {
    return FindSetting(id, interface).value();
}

bool IsSameSetting(const Setting& one, const Setting& other) {
    return one.row->id == other.row->id && one.interface == other.interface;
}

bool IsAddressCommand(uint32_t id) {
    const CatalogueRow* row = velk::FindRow(kRows, id, &CatalogueRow::id);
    return row != nullptr && row->held_in.is_of_lease;
}

bool IsStaticMethod(const Data& method) {
    return method[0] == VELK_METHOD_STATIC;
}

bool NamesSecret(std::string_view word) {
    const std::vector<Setting> settings = Settings();
    const std::optional<uint32_t> id = ParseNumber<uint32_t>(word);
    return std::any_of(settings.begin(), settings.end(), [&](const Setting& setting) {
        return setting.row->secret &&
               (setting.name() == word || setting.row->name == word || setting.row->id == id);
    });
}

std::vector<std::string> NamesMeant(std::string_view name) {
    std::vector<std::string> meant = FullNames(WithoutInterface(name));
    return meant.empty() ? GuessedNames(name) : meant;
}

std::string UnknownSetting(std::string_view name, bool may_be_key) {
    if (may_be_key) {
        return "unknown setting, not repeated here as it may be a key; 'velkctl list' names them "
               "all";
    }
    if (std::string form = WrongForm(name); !form.empty()) {
        return form;
    }
    if (std::string interface = WrongInterface(name); !interface.empty()) {
        return interface;
    }
    if (name == VELK_WIRED_INTERFACE || name == VELK_WIRELESS_INTERFACE) {
        return Quoted(name) + " is an interface, not a setting; 'velkctl show " +
               std::string(name) + "' shows its settings";
    }
    if (IsNearInterface(name)) {
        return UnknownInterface(name, Quoted(name));
    }
    if (const std::vector<std::string> meant = GuessedNames(name); !meant.empty()) {
        return "unknown setting " + Quoted(name) + Suggestion(meant);
    }
    return "unknown setting " + Quoted(name) + "; 'velkctl list' names them all";
}

std::string UnknownInterface(std::string_view word, const std::string& shown) {
    if (IsGlob(word)) {
        return shown + " is a pattern, for get and show only; give one interface";
    }
    const std::vector<std::string> interfaces = InterfaceNames();
    return shown + " is not an interface of the device" +
           DidYouMean(word, interfaces, "give " + OneOf(interfaces));
}

}  // namespace velkctl
