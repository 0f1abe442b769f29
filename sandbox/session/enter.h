// enter.h - a second terminal on a running device.
#ifndef SANDBOX_SESSION_ENTER_H_
#define SANDBOX_SESSION_ENTER_H_

#include <functional>
#include <string>
#include <vector>

namespace sandbox {

struct Visit {
    std::string device;  // its name; empty: the only one that is running
    std::vector<std::string> command;
    std::string program_folder;
};

// Runs the command on the device, a shell when it is empty, and returns the exit status to end
// with. The command ends with the device, and with this process. Throws Failure.
int RunVisit(const Visit& visit);

// Runs a function there, whose result is the exit status to end with.
int RunThere(const std::string& device, const std::function<int()>& function);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_ENTER_H_
