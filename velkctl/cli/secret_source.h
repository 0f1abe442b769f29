// secret_source.h - secrets that need not stand on a command line.
#ifndef VELKCTL_CLI_SECRET_SOURCE_H_
#define VELKCTL_CLI_SECRET_SOURCE_H_

#include <string>

#include "velkctl/text/data.h"

namespace velkctl {

// The text of a secret, or the problem that kept it from being read.
struct Secret {
    std::string text{};
    std::string problem{};
};

// Takes "-" for a line of standard input, "@FILE" for the only line of a file, without the end of
// the line, and any other word as it stands. A line of more than `longest` bytes is a problem. The
// rest of standard input is left to others. No problem repeats the word: a secret may begin with @.
Secret ReadSecret(const std::string& word, size_t longest = VELK_DATA_SIZE);

// Says whether somebody sits at a terminal who can be asked.
bool CanAskForSecret();

// Asks for the value of a setting, twice, without showing what is typed.
Secret AskForSecret(const std::string& name);

}  // namespace velkctl

#endif  // VELKCTL_CLI_SECRET_SOURCE_H_
