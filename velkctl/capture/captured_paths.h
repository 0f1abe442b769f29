// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// captured_paths.h - the files and folders of the device that a capture has.
#ifndef VELKCTL_CAPTURE_CAPTURED_PATHS_H_
#define VELKCTL_CAPTURE_CAPTURED_PATHS_H_

#include <string>
#include <vector>

#include "velkctl/capture/capture.h"

namespace velkctl {

// Returns the folders of files that the library reads or makes.
std::vector<std::string> CapturedFolders();

// Adds these folders and the files in them that the library reads or leaves there. Of the system
// log, only the lines about the link of eth0 are added: the library reads no others.
void AddDeviceFiles(Capture& capture);

}  // namespace velkctl

#endif  // VELKCTL_CAPTURE_CAPTURED_PATHS_H_
