// main.cpp - velkctl: reads and changes the device's network settings from a shell.
#include <exception>
#include <string>
#include <vector>

#include "velkctl/command_line.h"
#include "velkctl/terminal.h"

namespace {

velkctl::ExitStatus Run(int argc, char** argv) {
    const int first = argc > 0 ? 1 : 0;
    try {
        return velkctl::RunCommandLine(std::vector<std::string>(argv + first, argv + argc));
    } catch (const std::exception& error) {
        velkctl::Complain(std::string("internal error: ") + velkctl::Printable(error.what()));
        return velkctl::ExitStatus::kFailed;
    }
}

}  // namespace

int main(int argc, char** argv) {
    const velkctl::ExitStatus status = Run(argc, argv);
    const bool printed = velkctl::FinishPrinting();
    if (status == velkctl::ExitStatus::kDone && !printed) {
        return static_cast<int>(velkctl::ExitStatus::kFailed);
    }
    return static_cast<int>(status);
}
