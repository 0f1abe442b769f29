// exit_status.cpp - exit statuses of the sandbox, and the lines it prints on standard error.
#include "sandbox/process/exit_status.h"

#include <cstdio>

#include <sys/wait.h>

#include "sandbox/process/failure.h"
#include "sandbox/process/printable.h"

namespace sandbox {

int ExitStatusOf(int wait_status) {
    return WIFSIGNALED(wait_status) ? kSignalBase + WTERMSIG(wait_status)
                                    : WEXITSTATUS(wait_status);
}

void PrintMessage(const std::string& text) {
    (void)fprintf(stderr, "velk-sandbox: %s\n", Printable(text).c_str());
}

void PrintDetail(const std::string& text) {
    (void)fprintf(stderr, "  %s\n", Printable(text).c_str());
}

void PrintFailure(const std::exception& error) {
    PrintMessage(error.what());
    const auto* failure = dynamic_cast<const Failure*>(&error);
    if (failure != nullptr && !failure->fix().empty()) {
        PrintDetail("fix: " + failure->fix());
    }
}

}  // namespace sandbox
