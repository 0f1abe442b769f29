// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// stand_ins.h - scripts that replace tools which do not work on a device.
#ifndef SANDBOX_SESSION_STAND_INS_H_
#define SANDBOX_SESSION_STAND_INS_H_

#include <string>
#include <vector>

#include "sandbox/device/sample_files.h"

namespace sandbox {

// Chooses the stand-ins that this user needs on this machine and reads them from `folder`.
// `has_agent` is true if the device has a script for the SNMP agent. Call it before any mount.
// Throws Failure.
std::vector<SampleFile> ChooseStandIns(const std::string& folder, bool has_agent);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_STAND_INS_H_
