// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// failure.cpp - the exception of the sandbox: one line of text, and advice if there is any.
#include "sandbox/process/failure.h"

#include <cstring>

namespace sandbox {

void Fail(const std::string& action, int error, const std::string& fix) {
    throw Failure(action + ": " + strerror(error), fix);
}

}  // namespace sandbox
