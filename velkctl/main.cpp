// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// main.cpp - velkctl: reads and changes the device's network settings from a shell.
#include <csignal>
#include <exception>
#include <string>
#include <vector>

#include "velkctl/call/environment.h"
#include "velkctl/cli/command_line.h"
#include "velkctl/guardian/guardian.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/report/output.h"
#include "velkctl/report/report.h"
#include "velkctl/text/escaping.h"

namespace {

velkctl::ExitStatus Run(const std::vector<std::string>& arguments, velkctl::Report& report) {
    try {
        return velkctl::RunCommandLine(arguments, report);
    } catch (const std::exception& error) {
        report.Complain(std::string("internal error: ") + velkctl::Printable(error.what()));
        return velkctl::ExitStatus::kFailed;
    }
}

}  // namespace

int main(int argc, char** argv) {
    // A write beyond the file size limit then fails, and the library keeps the file unchanged.
    (void)signal(SIGXFSZ, SIG_IGN);
    const bool has_utf8_locale = velkctl::HasUtf8Locale();
    velkctl::FixEnvironment();
    const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
    if (velkctl::IsGuardianCommand(argc > 0 ? argv[0] : nullptr)) {
        return velkctl::RunGuardian(arguments);
    }
    velkctl::Report report(velkctl::RequestedForm(arguments));
    velkctl::ShowUtf8(has_utf8_locale || report.is_json());
    const velkctl::ExitStatus status = Run(arguments, report);
    report.Finish(status);
    const bool printed = velkctl::FinishPrinting();
    if (status == velkctl::ExitStatus::kDone && !printed) {
        return static_cast<int>(velkctl::ExitStatus::kFailed);
    }
    return static_cast<int>(status);
}
