// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// secret_source.h - reads secrets that are not on the command line.
#ifndef VELKCTL_CHANGES_SECRET_SOURCE_H_
#define VELKCTL_CHANGES_SECRET_SOURCE_H_

#include <string>

#include "velkctl/text/data_bytes.h"

namespace velkctl {

// The text of a secret, or the problem of reading it.
struct Secret {
    std::string text{};
    std::string problem{};
};

// Reads a line of standard input for "-", the only line of a file for "@FILE", both without the
// newline. Any other word is the secret itself. A line of more than `longest` bytes is a problem.
// The rest of standard input stays unread. No problem repeats the word: a secret may begin with @.
Secret ReadSecret(const std::string& word, size_t longest = VELK_DATA_SIZE);

// True if standard input is a terminal.
bool CanAskForSecret();

// Asks twice for the value of a setting, without showing the input.
Secret AskForSecret(const std::string& name);

}  // namespace velkctl

#endif  // VELKCTL_CHANGES_SECRET_SOURCE_H_
