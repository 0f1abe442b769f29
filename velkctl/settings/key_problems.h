// key_problems.h - what is wrong with the text of a key, beside its length.
#ifndef VELKCTL_SETTINGS_KEY_PROBLEMS_H_
#define VELKCTL_SETTINGS_KEY_PROBLEMS_H_

#include <string_view>

namespace velkctl {

// Empty when nothing is wrong. A problem repeats nothing of the key.
std::string_view KeyProblem(std::string_view key);
std::string_view WepKeyProblem(std::string_view key);

}  // namespace velkctl

#endif  // VELKCTL_SETTINGS_KEY_PROBLEMS_H_
