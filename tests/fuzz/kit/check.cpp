// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// check.cpp - the hard checks of every fuzz target.
#include "fuzz/kit/check.h"

#include <cstdlib>
#include <string>

#include <unistd.h>

namespace fuzz {

// Without stdio: a target may have exchanged its streams.
void Check(bool holds, std::string_view rule) {
    if (!holds) {
        const std::string line = "does not hold: " + std::string(rule) + "\n";
        [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
        abort();
    }
}

}  // namespace fuzz
