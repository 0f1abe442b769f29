// catalogue.cpp - the settings velkctl knows.
#include "velkctl/catalogue.h"

#include <array>

#include "velkctl/terminal.h"

namespace velkctl {
namespace {

constexpr std::array<CatalogueRow, 1> kRows{{
    // name, id, interfaces, directions, value kind, help
    {"dns", VELK_CMD_DNS, kEth0 | kEth1, kGet | kSet, &kServerList,
     "DNS servers: one to three IPv4 addresses, or none; eth0 and eth1 share one list"},
}};

struct InterfaceFlag {
    unsigned flag;
    std::string_view interface;
};

constexpr std::array<InterfaceFlag, 3> kInterfaces{{
    {kNoInterface, ""},
    {kEth0, VELK_WIRED_INTERFACE},
    {kEth1, VELK_WIRELESS_INTERFACE},
}};

// The part of a name behind its interface, whether or not such an interface exists.
std::string_view WithoutInterface(std::string_view name) {
    const size_t dot = name.rfind('.');
    return dot == std::string_view::npos ? name : name.substr(dot + 1);
}

// "eth0.dns or eth1.dns"; empty when no row has the name.
std::string FullNames(std::span<const CatalogueRow> rows, std::string_view name) {
    std::string names;
    for (const Setting& setting : SettingsOf(rows)) {
        if (setting.row->name == name) {
            names.append(names.empty() ? "" : " or ").append(setting.name());
        }
    }
    return names;
}

}  // namespace

std::string Setting::name() const {
    const std::string own(row->name);
    return interface.empty() ? own : std::string(interface).append(".").append(own);
}

std::span<const CatalogueRow> Catalogue() {
    return kRows;
}

std::vector<Setting> SettingsOf(std::span<const CatalogueRow> rows) {
    std::vector<Setting> settings;
    for (const CatalogueRow& row : rows) {
        for (const InterfaceFlag& known : kInterfaces) {
            if ((row.interfaces & known.flag) != 0) {
                settings.push_back({&row, known.interface});
            }
        }
    }
    return settings;
}

std::optional<Setting> FindSetting(std::span<const CatalogueRow> rows, std::string_view name) {
    for (const Setting& setting : SettingsOf(rows)) {
        if (setting.name() == name) {
            return setting;
        }
    }
    return std::nullopt;
}

std::string UnknownSetting(std::span<const CatalogueRow> rows, std::string_view name) {
    const std::string right = FullNames(rows, WithoutInterface(name));
    return "unknown setting " + Quoted(name) +
           (right.empty() ? "; 'velkctl list' names them all" : "; give " + right);
}

}  // namespace velkctl
