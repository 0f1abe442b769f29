// key_problems.h - problems with the text of a key other than its length.
#ifndef VELKCTL_SETTINGS_KEY_PROBLEMS_H_
#define VELKCTL_SETTINGS_KEY_PROBLEMS_H_

#include <string_view>

namespace velkctl {

// Return the problem with a key, without a part of the key; empty if none.
std::string_view KeyProblem(std::string_view key);
std::string_view WepKeyProblem(std::string_view key);

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_KEY_PROBLEMS_H_
