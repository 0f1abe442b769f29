// programs.h - finds and runs programs of the system.
#ifndef SANDBOX_PROCESS_PROGRAMS_H_
#define SANDBOX_PROCESS_PROGRAMS_H_

#include <string>
#include <vector>

#include <unistd.h>

namespace sandbox {

// The path of a program in one of the system's folders, or an empty text.
std::string FindProgram(const std::string& name);

// The words as execv(3) takes them. They must outlive what is returned.
std::vector<char*> ArgumentsOf(std::vector<std::string>& words);

// Runs a program, given by its path, to its end. `output` is its standard output. Returns what a
// shell would report; 127 if it cannot be run.
int RunProgram(std::vector<std::string> words, int output = STDOUT_FILENO);

}  // namespace sandbox

#endif  // SANDBOX_PROCESS_PROGRAMS_H_
