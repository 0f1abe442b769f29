// affected_settings.h - groups of settings that findings are about.
#ifndef VELKCTL_DOCTOR_AFFECTED_SETTINGS_H_
#define VELKCTL_DOCTOR_AFFECTED_SETTINGS_H_

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "velkctl/settings/catalogue.h"

namespace velkctl {

// A setting that a finding is about.
struct Concern {
    uint32_t id;
    std::string interface {};  // empty: whichever it is asked for
};
using Concerns = std::vector<Concern>;

bool Includes(const Concerns& concerns, const Setting& setting);

// The full names of the settings, in the order of the catalogue: "eth0.method".
std::vector<std::string> SettingNames(const Concerns& concerns);

// The settings with these ids, on the interface or, when it is empty, on whichever.
Concerns ConcernsOf(std::span<const uint32_t> ids, const std::string& interface = "");

// What is asked of the wireless daemon.
Concerns WirelessSettings();
// Of these, its configuration, which it tells and keeps with or without an adapter.
Concerns WirelessConfiguration();
// What is refused while no adapter is attached.
Concerns AdapterFacts();

// What stands in files that are changed through an edit copy.
Concerns EditedSettings();

}  // namespace velkctl

#endif  // VELKCTL_DOCTOR_AFFECTED_SETTINGS_H_
