// command.h - the command that runs on the device.
#ifndef SANDBOX_SESSION_COMMAND_H_
#define SANDBOX_SESSION_COMMAND_H_

#include <string>
#include <vector>

namespace sandbox {

// The sandbox's own exit statuses; every other one is the command's.
enum ExitStatus {
    kUsageError = 2,
    kSandboxFailed = 125,
    kCannotExecute = 126,
    kNotFound = 127,
    kSignalBase = 128  // the command died of a signal, whose number is added
};

// What a shell would report for a status that wait(2) gave.
int ExitStatusOf(int wait_status);

// Says one line on standard error, as Printable() shows it.
void Say(const std::string& text);

// Becomes the command. An empty one stands for the user's shell. The stand-ins and then
// `program_folder` come first on the command's search path. Returns the exit status only when the
// command cannot be run.
int BecomeCommand(const std::vector<std::string>& command, const std::string& program_folder);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_COMMAND_H_
