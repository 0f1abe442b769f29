// concerns.cpp - groups of settings that findings are about.
#include "velkctl/doctor/concerns.h"

#include <algorithm>

#include "velkctl/device_files.h"

namespace velkctl {

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

Concerns WirelessSettings() {
    Concerns concerns;
    for (const CatalogueRow& row : Catalogue()) {
        if (row.interfaces == kEth1) {
            concerns.push_back({.id = row.id});
        }
    }
    return concerns;
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
