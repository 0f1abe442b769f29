// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shell_words.h - reads a shell line as a POSIX shell would, as far as the library's lines go.
#ifndef TESTS_FUZZ_KIT_SHELL_WORDS_H_
#define TESTS_FUZZ_KIT_SHELL_WORDS_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

// The line's words with quotes and backslashes undone; nothing when a character outside quotes
// would mean something to the shell.
std::optional<std::vector<std::string>> ShellWords(std::string_view line);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_SHELL_WORDS_H_
