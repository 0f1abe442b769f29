// usage.h - the help of velk-sandbox, and its messages about wrong usage.
#ifndef SANDBOX_SESSION_USAGE_H_
#define SANDBOX_SESSION_USAGE_H_

#include <CLI/CLI.hpp>

namespace sandbox {

// Sets the texts of the help, and the options that show it. Call it before verbs are added, which
// inherit its form.
void SetHelp(CLI::App& app);

// Prints the error that the parser found, and which help to read.
void PrintUsageError(const CLI::App& app, const CLI::ParseError& error);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_USAGE_H_
