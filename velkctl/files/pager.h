// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// pager.h - shows a long text a screen at a time.
#ifndef VELKCTL_FILES_PAGER_H_
#define VELKCTL_FILES_PAGER_H_

#include <string_view>

namespace velkctl {

// True if standard output is a terminal with a program for long texts.
bool HasPager();

// Prints a text. If standard output is a terminal that is too small for it, prints through the
// program that PAGER names, or through less if it is installed. PAGER=cat or an empty one means no
// program. If the program fails, prints the text itself.
void PrintPaged(std::string_view text);

}  // namespace velkctl

#endif  // VELKCTL_FILES_PAGER_H_
