// affected_settings.cpp - groups of settings that findings are about.
#include "velkctl/doctor/affected_settings.h"

#include <algorithm>

#include "velk.h"
#include "velkctl/files/device_files.h"

namespace velkctl {
namespace {

Concerns WirelessSettingsOf(bool (*is_wanted)(const CatalogueRow& row)) {
    Concerns concerns;
    for (const CatalogueRow& row : Catalogue()) {
        if (row.interfaces == kEth1 && is_wanted(row)) {
            concerns.push_back({.id = row.id});
        }
    }
    return concerns;
}

// The daemon's configuration can be set, what it reports of the adapter cannot.
bool IsConfiguration(const CatalogueRow& row) {
    return (row.directions & kSet) != 0;
}

}  // namespace

bool Includes(const Concerns& concerns, const Setting& setting) {
    return std::ranges::any_of(concerns, [&](const Concern& concern) {
        return concern.id == setting.row->id &&
               (concern.interface.empty() || concern.interface == setting.interface);
    });
}

Concerns ConcernsOf(std::span<const uint32_t> ids, const std::string& interface) {
    Concerns concerns;
    for (const uint32_t id : ids) {
        concerns.push_back({.id = id, .interface = interface});
    }
    return concerns;
}

std::vector<std::string> SettingNames(const Concerns& concerns) {
    std::vector<std::string> names;
    for (const Setting& setting : SettingsOf(Catalogue())) {
        if (Includes(concerns, setting)) {
            names.push_back(setting.name());
        }
    }
    return names;
}

Concerns WirelessSettings() {
    return WirelessSettingsOf([](const CatalogueRow&) { return true; });
}

Concerns WirelessConfiguration() {
    return WirelessSettingsOf(IsConfiguration);
}

Concerns AdapterFacts() {
    Concerns facts =
        WirelessSettingsOf([](const CatalogueRow& row) { return !IsConfiguration(row); });
    facts.push_back({.id = VELK_CMD_MAC_ADDRESS, .interface = VELK_WIRELESS_INTERFACE});
    return facts;
}

Concerns EditedSettings() {
    Concerns concerns;
    for (const DeviceFile& file : DeviceFiles()) {
        const Concerns more = ConcernsOf(file.holds);
        if (file.change == Change::kByEdit) {
            concerns.insert(concerns.end(), more.begin(), more.end());
        }
    }
    return concerns;
}

}  // namespace velkctl
