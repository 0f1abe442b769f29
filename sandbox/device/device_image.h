// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// device_image.h - a device in a file: a capture, or a tar archive of a root folder.
#ifndef SANDBOX_DEVICE_DEVICE_IMAGE_H_
#define SANDBOX_DEVICE_DEVICE_IMAGE_H_

#include <optional>
#include <string>
#include <vector>

#include "sandbox/device/recorded_state.h"
#include "sandbox/device/sample_files.h"

namespace sandbox {

struct DeviceImage {
    std::vector<SampleFile> files;       // sorted by path
    std::optional<RecordedState> state;  // if the file is a capture
    std::string wireless_record;         // the answers of the daemon; empty: unknown
};

// Reads a tar archive. Takes only the members in folders of the device's own, and the device's
// files in other folders: the rest of a whole root folder does not run on this machine. Throws
// Failure if it has none, or if a member is unsafe: outside the root folder, a device node, a link
// that leads to a file of this machine.
DeviceImage ReadDeviceImage(const std::string& file);

}  // namespace sandbox

#endif  // SANDBOX_DEVICE_DEVICE_IMAGE_H_
