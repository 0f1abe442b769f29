// verb_arguments.h - what stands behind a verb: its options, and words that are none.
#ifndef VELKCTL_CLI_VERB_ARGUMENTS_H_
#define VELKCTL_CLI_VERB_ARGUMENTS_H_

#include <string>
#include <string_view>
#include <vector>

#include "velkctl/cli/verbs.h"

namespace velkctl {

using Words = std::vector<std::string>;

struct Arguments {
    Invocation invocation{};   // its words are all that is no option of the verb
    std::string problem{};     // with how an option is given, even where help is asked for
    std::string_view twice{};  // an option that is given again
    std::string unknown{};     // the first of the words that looks like an option
};

// Takes the arguments apart. Behind "--" nothing is an option, nor looks like one.
Arguments ReadArguments(const Verb& verb, Words given);

// The problem with the arguments of a verb that is to be run; empty when there is none.
std::string ArgumentsProblem(const Verb& verb, const Arguments& arguments);

// Complains about an option that a verb, or the tool itself, does not have.
std::string UnknownOption(const Verb& verb, std::string_view option, bool may_be_key = false);

// Says whether the verb has an option or flag of this name.
bool HasOption(const Verb& verb, std::string_view name);

// An argument without what stands behind "=", which may be a secret.
std::string_view WithoutValue(std::string_view argument);

}  // namespace velkctl

#endif  // VELKCTL_CLI_VERB_ARGUMENTS_H_
