// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tool_output.h - the output of the device's tools.
#ifndef VELKCTL_FILES_TOOL_OUTPUT_H_
#define VELKCTL_FILES_TOOL_OUTPUT_H_

#include <string>
#include <string_view>
#include <vector>

namespace velkctl {

// Returns the lines of an output in their order, without empty ones.
std::vector<std::string> OutputLines(std::string_view output);

// True for a message that tools print although they work: "ifdown: interface eth1 not configured".
bool IsHarmless(std::string_view line);

// Returns the lines without the harmless ones.
std::vector<std::string> WithoutHarmless(std::vector<std::string> lines);

}  // namespace velkctl

#endif  // VELKCTL_FILES_TOOL_OUTPUT_H_
