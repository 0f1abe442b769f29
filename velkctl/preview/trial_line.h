// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// trial_line.h - which shell lines of the library run in a private copy of the device's files.
#ifndef VELKCTL_PREVIEW_TRIAL_LINE_H_
#define VELKCTL_PREVIEW_TRIAL_LINE_H_

#include <string>
#include <string_view>

namespace velkctl {

// Returns the line to run in the copy; empty if it must not run. Lines that read, or change only
// files of the copy, run without sudo: it would write to the system log of the device. All others
// act on the device, such as ifdown, or are not known.
std::string TrialLine(std::string_view line);

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_TRIAL_LINE_H_
