// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shell_blocks.cpp - finds the lines of a shell script that run for an interface.
#include "lib/base/shell_blocks.h"

#include "lib/base/words.h"

namespace velk {
namespace {

bool HasKeyword(std::string_view line, std::string_view keyword) {
    return HasWord(line, keyword, /*comment_aware=*/true);
}

}  // namespace

bool ShellBlocks::RunsNext(std::string_view line) {
    if (place_ == Place::kOutside && BeginsBlock(line)) {
        place_ = Place::kCondition;
    }
    if (place_ == Place::kOutside) {
        return true;
    }
    if (HasKeyword(line, "fi")) {
        place_ = Place::kOutside;
    } else if (place_ == Place::kCondition && HasKeyword(line, "then")) {
        place_ = Place::kThen;  // on the line of the "if", too
    } else if (place_ == Place::kThen && HasKeyword(line, "else")) {
        place_ = Place::kElse;
    }
    if (place_ == Place::kThen) {
        return matches_;
    }
    if (place_ == Place::kElse) {
        return !matches_;
    }
    return true;
}

bool ShellBlocks::BeginsBlock(std::string_view line) {
    constexpr std::string_view kIf = "if";
    size_t position = 0;
    if (!FindWord(line, kIf, /*comment_aware=*/true, position)) {
        return false;
    }
    const std::string_view condition = line.substr(position + kIf.size());
    matches_ = Contains(condition, interface_);
    return Contains(condition, variable_);
}

}  // namespace velk
