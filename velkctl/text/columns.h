// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// columns.h - texts for the columns of a table and for lines of limited width.
#ifndef VELKCTL_TEXT_COLUMNS_H_
#define VELKCTL_TEXT_COLUMNS_H_

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace velkctl {

// Returns the text with blanks after it.
std::string Padded(std::string text, size_t width);

// Returns the text, cut to the width. A cut text ends in "...".
std::string Cut(std::string_view text, size_t width);

// Returns the words in lines that do not exceed the width, each line indented and ended by a
// newline. A word that is too long has a line of its own.
std::string WrappedWords(std::span<const std::string> words, size_t width, size_t indent);

// Returns the text with lines that do not exceed the width. A longer line is broken at its blanks
// and continues with a deeper indent. A command that a person may copy stays whole, as does a long
// word.
std::string Wrapped(std::string_view text, size_t width);

// Returns the number of lines that the text takes on a terminal with this number of columns.
// Escapes of colours count as characters.
size_t LinesOnScreen(std::string_view text, size_t columns);

}  // namespace velkctl

#endif  // VELKCTL_TEXT_COLUMNS_H_
