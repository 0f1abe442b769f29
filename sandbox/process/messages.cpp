// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// messages.cpp - prints the sandbox's messages on standard error.
#include "sandbox/process/messages.h"

#include <cstdio>

#include "sandbox/process/failure.h"
#include "sandbox/process/terminal_line.h"

namespace sandbox {

void PrintMessage(const std::string& text) {
    (void)fprintf(stderr, "velk-sandbox: %s\n", TerminalLine(text).c_str());
}

void PrintDetail(const std::string& text) {
    (void)fprintf(stderr, "  %s\n", TerminalLine(text).c_str());
}

void PrintFailure(const std::exception& error) {
    PrintMessage(error.what());
    const auto* failure = dynamic_cast<const Failure*>(&error);
    if (failure != nullptr && !failure->fix().empty()) {
        PrintDetail("fix: " + failure->fix());
    }
}

}  // namespace sandbox
