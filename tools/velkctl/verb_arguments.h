// verb_arguments.h - what stands behind a verb: its options, and words that are none.
#ifndef VELKCTL_VERB_ARGUMENTS_H_
#define VELKCTL_VERB_ARGUMENTS_H_

#include <string>
#include <string_view>
#include <vector>

#include "velkctl/verbs.h"
#include <CLI/CLI.hpp>

namespace velkctl {

using Words = std::vector<std::string>;

// "velkctl list"
std::string Usage(const Verb& verb);

// Complains about an option that the app, which is told of in the help of a command, does not have.
std::string UnknownOption(const CLI::App& app, std::string_view option, const std::string& command,
                          bool may_be_key = false, const std::string& hint = {});

// An argument without what stands behind "=", which may be a secret.
std::string_view WithoutValue(std::string_view argument);

void DeclareOptions(CLI::App& app, const Verb& verb);

// Says whether the verb has an option or flag of this name.
bool HasOption(const Verb& verb, std::string_view name);

// Makes two arguments of "--text=": CLI11 takes the next argument for the value of an option whose
// own is empty.
Words SplitEmptyValues(const Verb& verb, Words::const_iterator begin, Words::const_iterator end);

// The problem with "--wait 5", where 5 is a word of the verb and seems to be meant for the option;
// empty when there is none.
std::string ImpliedValueProblem(const Verb& verb, const Words& arguments);

// The problem with an argument that gives a flag a value, such as "--help=no" or "-hello", which
// CLI11 takes for the flag; empty when there is none. The second looks at all arguments of a verb.
std::string FlagProblem(const CLI::App& app, std::string_view argument);
std::string FlagProblem(const CLI::App& app, const Verb& verb, const Words& arguments);

// The problem with the options given; empty when there is none.
std::string TakeOptions(const CLI::App& app, const Verb& verb, Invocation& invocation);

// The problem with the arguments that are no known options; empty when all are words. Behind "--"
// everything is one.
std::string TakeWords(const CLI::App& app, const Verb& verb, Invocation& invocation);

}  // namespace velkctl

#endif  // VELKCTL_VERB_ARGUMENTS_H_
