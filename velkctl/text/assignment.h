// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// assignment.h - words of the form NAME=VALUE.
#ifndef VELKCTL_TEXT_ASSIGNMENT_H_
#define VELKCTL_TEXT_ASSIGNMENT_H_

#include <string_view>

namespace velkctl {

// Returns the argument without "=" and the text after it, which may be a secret.
constexpr std::string_view WithoutValue(std::string_view argument) {
    return argument.substr(0, argument.find('='));
}

// True for "NAME=VALUE".
constexpr bool IsAssignment(std::string_view word) {
    return word.find('=') != std::string_view::npos;
}

}  // namespace velkctl

#endif  // VELKCTL_TEXT_ASSIGNMENT_H_
