// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// escaping.h - makes text safe for a terminal.
#ifndef VELKCTL_TEXT_ESCAPING_H_
#define VELKCTL_TEXT_ESCAPING_H_

#include <string>
#include <string_view>

namespace velkctl {

// Sets if later calls show characters beyond ASCII or escape their bytes. On a terminal of another
// character set such bytes could control it.
void ShowUtf8(bool is_shown);

// Returns the bytes as one line of UTF-8 text. Characters that control the terminal, are invisible
// or change the direction of text are escaped byte by byte as \x1b, as are bytes that are no text.
// A backslash is written twice.
std::string Printable(std::string_view bytes);

// The same for a value, so that set takes it as it was shown: a backslash is written once, or as
// \x5c if an escape would follow from it.
std::string PrintableValue(std::string_view bytes);

// Returns the bytes of such a value.
std::string UnprintedValue(std::string_view text);

// True if characters beyond ASCII are shown.
bool ShowsUtf8();

// True if the text has a character that controls the terminal, such as a newline.
bool HasControls(std::string_view text);

// Return 'word' for a message. Quoted() cuts a word of more than 40 characters, QuotedWhole() only
// one that is longer than any value.
std::string Quoted(std::string_view word);
std::string QuotedWhole(std::string_view word);

// Returns the same, or a placeholder for a word that may be a key.
std::string QuotedUnlessKey(std::string_view word, bool may_be_key);

}  // namespace velkctl

#endif  // VELKCTL_TEXT_ESCAPING_H_
