// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// usage.h - the help of velk-sandbox, and its messages about wrong usage.
#ifndef SANDBOX_SESSION_USAGE_H_
#define SANDBOX_SESSION_USAGE_H_

#include <string>

#include <CLI/CLI.hpp>

namespace sandbox {

// Sets the texts of the help, and the options that show it. Call it before verbs are added, which
// inherit its form.
void SetHelp(CLI::App& app);

// A usage error in the words of the sandbox, with its fix.
class WrongUsage : public CLI::ParseError {
  public:
    WrongUsage(const std::string& message, std::string fix);

    const std::string& fix() const { return fix_; }

  private:
    std::string fix_;
};

// Prints the error that the parser found, and its fix or which help to read.
void PrintUsageError(const CLI::App& app, const CLI::ParseError& error);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_USAGE_H_
