// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// captured_device.h - prepares a device that is in a file (--rootfs FILE).
#ifndef SANDBOX_SESSION_CAPTURED_DEVICE_H_
#define SANDBOX_SESSION_CAPTURED_DEVICE_H_

#include <vector>

#include "sandbox/device/device.h"
#include "sandbox/device/device_image.h"
#include "sandbox/device/sample_files.h"

namespace sandbox {

// Adds the files of the image to the device, and the recorded facts that are kept in files: link
// mode, sockets and missing folders. Removes the tools that the captured device lacks from
// `stand_ins` and hides those of the machine; for a tool that the machine lacks, adds one that does
// nothing. Call it before any mount.
void AddCapturedFiles(const DeviceImage& image, std::vector<SampleFile> stand_ins,
                      DeviceOptions& device);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_CAPTURED_DEVICE_H_
