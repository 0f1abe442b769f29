// exit_status.h - exit statuses of the sandbox, and the lines it prints on standard error.
#ifndef SANDBOX_PROCESS_EXIT_STATUS_H_
#define SANDBOX_PROCESS_EXIT_STATUS_H_

#include <exception>
#include <string>

namespace sandbox {

// The sandbox's own exit statuses. Every other status is that of the command.
enum ExitStatus {
    kUsageError = 2,
    kSandboxFailed = 125,
    kCannotExecute = 126,
    kNotFound = 127,
    kSignalBase = 128  // plus the number of the signal that ended the command
};

// Converts a status of wait(2) to the exit status that a shell reports.
int ExitStatusOf(int wait_status);

// Prints one line on standard error, filtered by Printable().
void PrintMessage(const std::string& text);

// Prints an indented line that adds to the last message.
void PrintDetail(const std::string& text);

// Prints a message. A Failure with advice gets a second line: "  fix: ADVICE".
void PrintFailure(const std::exception& error);

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_EXIT_STATUS_H_
