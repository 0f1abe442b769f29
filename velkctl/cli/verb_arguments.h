// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// verb_arguments.h - parses the arguments after a verb: options and words.
#ifndef VELKCTL_CLI_VERB_ARGUMENTS_H_
#define VELKCTL_CLI_VERB_ARGUMENTS_H_

#include <string>
#include <string_view>
#include <vector>

#include "velkctl/cli/verbs.h"

namespace velkctl {

struct Arguments {
    Invocation invocation{};  // its words are the arguments that are no options of the verb
    std::string problem{};    // a misused option, reported even if help is requested
    std::vector<std::string_view> twice{};  // options that are given twice
    std::vector<std::string> unknown{};     // options that the verb does not have
};

// Parses the arguments. After "--" all are words.
Arguments ReadArguments(const Verb& verb, std::vector<std::string> given);

// Returns the problems with the options of a verb and with the number of its words.
std::vector<std::string> ArgumentsProblems(const Verb& verb, const Arguments& arguments);

// Returns the message about an option that the verb or the tool does not have.
std::string UnknownOption(const Verb& verb, std::string_view option, bool may_be_key = false);

// True if the verb has an option or flag of this name.
bool HasOption(const Verb& verb, std::string_view name);

}  // namespace velkctl

#endif  // VELKCTL_CLI_VERB_ARGUMENTS_H_
