// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// progress.cpp - the progress line at a terminal.
#include "velkctl/report/progress.h"

#include <cstdio>
#include <optional>

#include <unistd.h>

#include "velkctl/report/output.h"

namespace velkctl {
namespace {

constexpr size_t kUsualWidth = 80;

// A line as wide as the terminal would wrap, and the next one would not replace it.
size_t RoomForLine() {
    const std::optional<TerminalSize> size = TerminalSizeOf(STDERR_FILENO);
    return (size ? size->columns : kUsualWidth) - 1;
}

}  // namespace

std::string ProgressLine(std::string_view subject, std::string_view awaited, long seconds,
                         long longest) {
    std::string line(subject);
    line.append(": ").append(std::to_string(seconds)).append(" s");
    if (longest > 0) {
        line.append(" of at most ").append(std::to_string(longest)).append(" s");
    }
    return line.append(", waiting for ").append(awaited);
}

void ProgressDisplay::Show(std::string_view line) {
    if (!is_shown_) {
        return;
    }
    line = line.substr(0, RoomForLine());
    std::string text(1, '\r');
    text.append(line);
    if (line.size() < width_) {
        text.append(width_ - line.size(), ' ');
    }
    (void)fputs(text.c_str(), stderr);
    width_ = line.size();
}

void ProgressDisplay::Clear() {
    if (width_ == 0) {
        return;
    }
    std::string text(1, '\r');
    text.append(width_, ' ').append(1, '\r');
    (void)fputs(text.c_str(), stderr);
    width_ = 0;
}

}  // namespace velkctl
