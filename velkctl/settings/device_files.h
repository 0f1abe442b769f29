// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_files.h - the files that the library works with, and how it changes them.
#ifndef VELKCTL_SETTINGS_DEVICE_FILES_H_
#define VELKCTL_SETTINGS_DEVICE_FILES_H_

#include <string>
#include <string_view>
#include <vector>

#include "velkctl/settings/catalogue.h"

namespace velkctl {

enum class Change {
    kNever,
    kByEdit,  // as the calling user, through an edit copy
    kWhole,   // as the calling user; a missing file is made
    kBySudo,
};

// Returns the names of the settings: "eth0.address and eth0.netmask". Those of several interfaces
// are named without them, each once: "method, dhcp-dns and dhcp-ntp".
std::string SubjectOf(const std::vector<Setting>& settings);

struct DeviceFile {
    const char* path;
    Change change;
    std::string_view loss;             // the effect on the subject if the file cannot be used
    std::string_view loss_if_missing;  // the same if there is no file
    std::string subject;               // "method, address, netmask and gateway"
    std::vector<Setting> holds;        // the settings that are read from it
    std::vector<Setting> changed_by;   // the settings that change it when set
};

const std::vector<DeviceFile>& DeviceFiles();

bool IsChangedBy(const DeviceFile& file, uint32_t id);
// The same for a path. False for a path of no device file.
bool IsChangedBy(std::string_view path, uint32_t id);

// A line of a file that belongs to a setting, and the key that marks it.
struct SettingLine {
    Setting setting;
    std::string_view key;
};

// Returns the lines of all settings in the file: those of interfaces, then those of the device.
std::vector<SettingLine> LinesOfSettings(std::string_view path);

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_DEVICE_FILES_H_
