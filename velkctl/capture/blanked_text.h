// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// blanked_text.h - files and outputs without the secrets in them.
#ifndef VELKCTL_CAPTURE_BLANKED_TEXT_H_
#define VELKCTL_CAPTURE_BLANKED_TEXT_H_

#include <string>
#include <string_view>
#include <vector>

namespace velkctl {

// Replaces each character of a secret. It is valid in keys of letters and of hex digits.
inline constexpr char kBlank = '0';

// Returns the text with kBlank in place of each character of a secret. Its lines, words and lengths
// stay. A secret is the rest of a line after the name of one, such as "wpa-psk", the password in a
// URL, and any of `secrets`.
std::string BlankedText(std::string_view text, const std::vector<std::string>& secrets);

// The same for bytes without lines: only `secrets` are replaced.
std::string BlankedBytes(std::string bytes, const std::vector<std::string>& secrets);

}  // namespace velkctl

#endif  // VELKCTL_CAPTURE_BLANKED_TEXT_H_
