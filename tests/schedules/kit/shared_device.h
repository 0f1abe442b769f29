// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shared_device.h - a device with real tools, made anew for each run of callers.
#ifndef TESTS_SCHEDULES_KIT_SHARED_DEVICE_H_
#define TESTS_SCHEDULES_KIT_SHARED_DEVICE_H_

#include <cstdint>
#include <string>

#include "schedules/kit/scheduler.h"
#include "velk.h"

namespace schedules {

// The link speed and the address that the tools of the device print.
inline constexpr char kPrintedSpeed = VELK_LINK_100_HALF;
inline constexpr char kPrintedAddress[] = "10.0.0.5";

// Makes the files of the device, and the tools.
void MakeDevice();

// To be called in each process that uses the device: nothing is recorded, and the tools are those
// of MakeDevice().
void EnterDevice();

// Returns the text of a setting of eth0; "(unreadable)" if it cannot be read.
std::string ValueOf(uint32_t id);

// Names the files, locks and processes that callers have left; empty if there are none.
std::string FindRemains(const Course& course);

}  // namespace schedules

#endif  // TESTS_SCHEDULES_KIT_SHARED_DEVICE_H_
