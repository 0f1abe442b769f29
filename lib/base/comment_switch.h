// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// comment_switch.h - switches a line of a script or configuration file off and on by a "#".
#ifndef VELK_BASE_COMMENT_SWITCH_H_
#define VELK_BASE_COMMENT_SWITCH_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace velk {

// Returns true if the line has a "#" at or before `position`. With npos any "#" counts.
bool IsCommentedOut(std::string_view line, size_t position);

// Returns the line with the text at `position` switched on or off. On deletes the first "#"; off
// puts one into column one, before the indentation. A line already in that state is unchanged.
std::string SwitchLine(std::string_view line, size_t position, bool on);

}  // namespace velk

#endif  // VELK_BASE_COMMENT_SWITCH_H_
