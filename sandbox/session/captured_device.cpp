// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// captured_device.cpp - prepares a device that is in a file (--rootfs FILE).
#include "sandbox/session/captured_device.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string>
#include <utility>

#include "lib/base/paths.h"
#include "sandbox/device/network_control.h"
#include "sandbox/device/recorded_state.h"
#include "sandbox/hardware/ports.h"
#include "sandbox/process/programs.h"
#include "sandbox/process/run_paths.h"

namespace sandbox {
namespace {

namespace fs = std::filesystem;

constexpr mode_t kProgramMode = 0755;

bool Has(const std::vector<SampleFile>& files, const fs::path& path) {
    return std::ranges::find(files, path, &SampleFile::path) != files.end();
}

// A recorded tool is named by its path if scripts name it so.
bool IsTool(const SampleFile& file, const RecordedTool& tool) {
    return tool.name.starts_with('/') ? file.path == tool.name : file.path.filename() == tool.name;
}

void HideTool(const RecordedTool& tool, DeviceOptions& device) {
    if (tool.name.starts_with('/')) {
        device.hidden_files.push_back(tool.name);
        return;
    }
    for (std::string& path : FindPrograms(tool.name)) {
        device.hidden_files.push_back(std::move(path));
    }
}

// The stand-ins of a device without them are in kStandInFolder, too.
void RemoveMissingTools(const RecordedState& state, std::vector<SampleFile>& stand_ins,
                        DeviceOptions& device) {
    for (const RecordedTool& tool : state.tools) {
        if (tool.path.empty()) {
            HideTool(tool, device);
            std::erase_if(stand_ins,
                          [&tool](const SampleFile& file) { return IsTool(file, tool); });
        }
    }
}

void AddOtherTools(const RecordedState& state, std::vector<SampleFile>& stand_ins) {
    for (const RecordedTool& tool : state.tools) {
        const bool is_path = tool.name.starts_with('/');
        const bool is_here = is_path ? fs::exists(tool.path) : !FindProgram(tool.name).empty();
        const bool is_stand_in = std::ranges::any_of(
            stand_ins, [&tool](const auto& file) { return IsTool(file, tool); });
        if (!tool.path.empty() && !is_here && !is_stand_in && !Has(stand_ins, tool.path)) {
            SampleFile script = MakeSample(tool.path, "#!/bin/sh\n");
            script.mode = kProgramMode;
            stand_ins.push_back(std::move(script));
        }
    }
}

// The stand-in of ethtool reads its settings from this file.
SampleFile LinkModeFile(const LinkMode& mode) {
    const fs::path path = fs::path(kRunFolder) / (std::string("ethtool.") + kWiredPort.name);
    const std::string text = std::string(mode.negotiates ? "on " : "off ") +
                             std::to_string(mode.speed) +
                             (mode.is_full_duplex ? " full\n" : " half\n");
    return MakeSample(path, text);
}

// A daemon that runs makes its own socket.
void AddSockets(const RecordedState& state, DeviceOptions& device) {
    for (const RecordedSocket& recorded : state.sockets) {
        const bool is_daemons = recorded.path == velk::kRequestSocket;
        if (is_daemons && state.daemon != RecordedDaemon::kMissing) {
            continue;
        }
        SampleFile socket;
        socket.path = recorded.path;
        socket.mode = recorded.mode;
        socket.kind = FileKind::kSocket;
        device.files.push_back(std::move(socket));
    }
}

void AddState(const RecordedState& state, std::vector<SampleFile>& stand_ins,
              DeviceOptions& device) {
    RemoveMissingTools(state, stand_ins, device);
    AddOtherTools(state, stand_ins);
    AddSockets(state, device);
    device.missing_folders = state.missing_folders;
    if (state.link_mode) {
        device.files.push_back(LinkModeFile(*state.link_mode));
    }
}

}  // namespace

void AddCapturedFiles(const DeviceImage& image, std::vector<SampleFile> stand_ins,
                      DeviceOptions& device) {
    if (image.state) {
        AddState(*image.state, stand_ins, device);
    }
    if (!image.wireless_record.empty()) {
        device.files.push_back(MakeSample(kWirelessRecord, image.wireless_record));
    }
    std::ranges::copy(image.files, std::back_inserter(device.files));
    std::ranges::move(stand_ins, std::back_inserter(device.files));
}

}  // namespace sandbox
