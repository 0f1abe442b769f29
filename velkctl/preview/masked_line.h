// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// masked_line.h - lines of the device's files and of the shell, without their secrets.
#ifndef VELKCTL_PREVIEW_MASKED_LINE_H_
#define VELKCTL_PREVIEW_MASKED_LINE_H_

#include <string>
#include <string_view>

namespace velkctl {

// Returns a line for people, without a newline: control characters are escaped, tabs stay. Of a
// line that begins with the name of a secret, such as "wpa-psk" or "rocommunity", the rest is
// masked, also if it is a comment. `mark` is the number of characters before the line of a file.
std::string MaskedLine(std::string_view line, size_t mark = 0);

// Returns the place of the secret in a line that begins with its name; the line's length if it has
// none.
size_t SecretIn(std::string_view line);

}  // namespace velkctl

#endif  // VELKCTL_PREVIEW_MASKED_LINE_H_
