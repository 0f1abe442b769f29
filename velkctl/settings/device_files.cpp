// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_files.cpp - the files that the library works with, and how it changes them.
#include "velkctl/settings/device_files.h"

#include <algorithm>
#include <array>

#include "lib/base/paths.h"
#include "velkctl/text/spelling.h"

namespace velkctl {
namespace {

struct FileRow {
    const char* path;
    Change change;
    std::string_view loss_if_missing{};  // empty: the loss
    std::string_view loss = "can be neither read nor set";
    std::string_view subject{};  // the subject of a file without settings
};

constexpr std::array<FileRow, 10> kFiles{{
    {velk::kInterfacesFile, Change::kByEdit},
    {velk::kExitHooks, Change::kByEdit},
    {velk::kDhcpConfigFile, Change::kByEdit, "cannot be set"},
    {velk::kClientScript, Change::kByEdit, "cannot be set"},
    {velk::kResolverFile, Change::kWhole, "cannot be read until it is set"},
    {velk::kCrontab, Change::kByEdit},
    {velk::kIdentityFile, Change::kByEdit},
    {velk::kSnmpFile, Change::kBySudo, "", "do not reach the SNMP agent"},
    {velk::kSupportList, Change::kNever, "", "are not recognised, except the built-in one",
     "wireless adapters"},
    {velk::kUsbDevices, Change::kNever, "", "are never found", "wireless adapters"},
}};

bool IsIn(const FileLine& line, std::string_view path) {
    return line.file != nullptr && line.file == path;
}

DeviceFile MakeDeviceFile(const FileRow& row) {
    const std::string_view missing = row.loss_if_missing.empty() ? row.loss : row.loss_if_missing;
    DeviceFile file{row.path, row.change, row.loss, missing, std::string(row.subject), {}, {}};
    for (const auto& [setting, key] : LinesOfSettings(row.path)) {
        file.changed_by.push_back(setting);
        if (IsIn(setting.row->held_in.line, row.path)) {
            file.holds.push_back(setting);
        }
    }
    if (!file.changed_by.empty()) {
        file.subject = SubjectOf(file.changed_by);
    }
    return file;
}

}  // namespace

std::string SubjectOf(const std::vector<Setting>& settings) {
    const bool is_of_one_interface = std::ranges::all_of(settings, [&](const Setting& setting) {
        return setting.interface == settings.front().interface;
    });
    std::vector<std::string> names;
    for (const Setting& setting : settings) {
        std::string name = is_of_one_interface ? setting.name() : std::string(setting.row->name);
        if (std::ranges::find(names, name) == names.end()) {
            names.push_back(std::move(name));
        }
    }
    return AllOf(names);
}

const std::vector<DeviceFile>& DeviceFiles() {
    static const std::vector<DeviceFile> files = [] {
        std::vector<DeviceFile> made;
        std::ranges::transform(kFiles, std::back_inserter(made), MakeDeviceFile);
        return made;
    }();
    return files;
}

bool IsChangedBy(const DeviceFile& file, uint32_t id) {
    return std::ranges::any_of(file.changed_by,
                               [id](const Setting& setting) { return setting.row->id == id; });
}

bool IsChangedBy(std::string_view path, uint32_t id) {
    return std::ranges::any_of(DeviceFiles(), [&](const DeviceFile& file) {
        return file.path == path && IsChangedBy(file, id);
    });
}

std::vector<SettingLine> LinesOfSettings(std::string_view path) {
    std::vector<SettingLine> lines;
    for (const Setting& setting : Settings()) {
        for (const FileLine& line : {setting.row->held_in.line, setting.row->held_in.second_line}) {
            if (IsIn(line, path)) {
                lines.push_back({setting, line.key});
            }
        }
    }
    std::stable_partition(lines.begin(), lines.end(),
                          [](const SettingLine& line) { return !line.setting.interface.empty(); });
    return lines;
}

}  // namespace velkctl
