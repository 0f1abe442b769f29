// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// comment_switch.cpp - switches a line of a script or configuration file off and on by a "#".
#include "lib/base/comment_switch.h"

namespace velk {

bool IsCommentedOut(std::string_view line, size_t position) {
    const size_t mark = line.find('#');
    return mark != std::string_view::npos && mark <= position;
}

std::string SwitchLine(std::string_view line, size_t position, bool on) {
    std::string switched(line);
    const bool is_off = IsCommentedOut(line, position);
    if (on && is_off) {
        switched.erase(line.find('#'), 1);
    } else if (!on && !is_off) {
        switched.insert(0, 1, '#');
    }
    return switched;
}

}  // namespace velk
