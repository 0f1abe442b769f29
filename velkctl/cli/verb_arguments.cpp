// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// verb_arguments.cpp - parses the arguments after a verb: options and words.
#include "velkctl/cli/verb_arguments.h"

#include <algorithm>
#include <span>

#include <getopt.h>

#include "lib/base/find_row.h"
#include "velkctl/cli/help.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/assignment.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/spelling.h"

namespace velkctl {
namespace {

using Flag = bool Invocation::*;

Flag FindFlag(const Verb& verb, std::string_view name) {
    if (name == "--help" || name == "-h") {
        return &Invocation::help;
    }
    const VerbFlag* row = velk::FindRow(verb.flags, name, &VerbFlag::name);
    return row == nullptr ? nullptr : row->target;
}

std::vector<std::string> OptionNames(const Verb& verb) {
    std::vector<std::string> names{"--help"};
    for (const VerbOption& option : verb.options) {
        names.emplace_back(option.name);
    }
    for (const VerbFlag& flag : verb.flags) {
        names.emplace_back(flag.name);
    }
    return names;
}

// Returns the options of the verb for getopt_long(3), which wants names without dashes.
std::vector<option> OptionRows(const Verb& verb) {
    std::vector<option> rows{{"help", no_argument, nullptr, 0}, {"h", no_argument, nullptr, 0}};
    for (const VerbOption& row : verb.options) {
        const int has_value = row.implied.empty() ? required_argument : optional_argument;
        rows.push_back({row.name.data() + 2, has_value, nullptr, 0});
    }
    for (const VerbFlag& row : verb.flags) {
        rows.push_back({row.name.data() + 2, no_argument, nullptr, 0});
    }
    rows.push_back({});
    return rows;
}

bool LooksLikeOption(std::string_view word) {
    return word.size() > 1 && word[0] == '-' && (word[1] < '0' || word[1] > '9');
}

bool IsNumber(std::string_view word) {
    return !word.empty() && word.find_first_not_of("0123456789") == std::string_view::npos;
}

// Returns a clause for a user who meant a word and not an option.
std::string DashHint(const Verb& verb) {
    return verb.words.takes_value ? "a value that begins with a dash needs -- before it; " : "";
}

// True if the next word of the verb may be a number.
bool TakesNumber(const Verb& verb, const std::vector<std::string>& words_before) {
    const bool is_second = 1 == std::ranges::count_if(words_before, [](const std::string& word) {
                               return !LooksLikeOption(word);
                           });
    return is_second && verb.words.second_is_number && !IsAssignment(words_before.front());
}

// True if a word may be a secret: next to the name or id of one, or after a misspelt name.
bool MayHoldSecret(const Verb& verb, const std::vector<std::string>& words) {
    const auto first = std::ranges::find_if_not(words, LooksLikeOption);
    if (verb.words.takes_value && first != words.end() && !FindSetting(WithoutValue(*first))) {
        return true;
    }
    return std::ranges::any_of(
        words, [](const std::string& word) { return NamesSecret(WithoutValue(word)); });
}

// Returns the word to follow its noun in a message, or a note in its place.
std::string AfterNoun(std::string_view word, bool may_be_key) {
    return may_be_key ? ", not repeated here as it may be a key" : " " + Quoted(word);
}

std::string TakesNoValue(std::string_view flag) {
    return "option " + Quoted(flag) + " takes no value; leave it out";
}

std::string NeedsValue(std::string_view option) {
    return "option " + Quoted(option) + " needs a value; write " + std::string(option) + "=VALUE";
}

// Stores an option, with its value from optarg. Returns the problem with it; empty if none. `next`
// is the argument after it.
std::string TakeOption(const Verb& verb, const VerbOption& option, const char* next,
                       Arguments& read) {
    const std::string name(option.name);
    if (optarg == nullptr && next != nullptr && IsNumber(next) &&
        !TakesNumber(verb, read.invocation.words)) {
        // The message does not repeat the number: it may be a key.
        return name + " takes its seconds after '='; write " + name + "=SECONDS";
    }
    std::optional<std::string>& value = read.invocation.*option.target;
    if (value) {
        read.twice.push_back(option.name);
    }
    const bool is_empty = optarg == nullptr || *optarg == '\0';
    value.emplace(is_empty ? option.implied : optarg);
    return {};
}

// Stores an argument that is no option of the verb.
void TakeWord(std::string_view word, Arguments& read) {
    if (LooksLikeOption(word)) {
        read.unknown.emplace_back(word);
    } else {
        read.invocation.words.emplace_back(word);
    }
}

// Stores the argument at this index, which getopt_long(3) has read. `is_wrong` is true if it
// refused the argument.
void TakeArgument(const Verb& verb, char* const* argv, int at, bool is_wrong, Arguments& read) {
    const std::string_view name = WithoutValue(argv[at]);
    if (const Flag flag = FindFlag(verb, name)) {
        read.invocation.*flag = true;
        read.problem = is_wrong ? TakesNoValue(name) : "";
    } else if (const VerbOption* option = velk::FindRow(verb.options, name, &VerbOption::name)) {
        read.problem = is_wrong ? NeedsValue(name) : TakeOption(verb, *option, argv[optind], read);
    } else {
        optind = at + 1;  // getopt_long(3) may take a value for an abbreviated name
        TakeWord(argv[at], read);
    }
}

// Returns the arguments as getopt_long(3) reads them: after the name of the program.
std::vector<char*> PointersTo(std::vector<std::string>& arguments) {
    std::vector<char*> pointers{nullptr};
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

// Returns the problem with a first word that is not an interface, or an empty text.
std::string InterfaceProblem(const Invocation& invocation) {
    const std::string& word = invocation.words.front();
    const bool is_known = word == VELK_WIRED_INTERFACE || word == VELK_WIRELESS_INTERFACE;
    return is_known ? "" : UnknownInterface(word, invocation.Shown(word));
}

// Returns the problem with the number of the words, or with an interface; empty if none.
std::string WordsProblem(const Verb& verb, const Invocation& invocation) {
    const std::vector<std::string>& words = invocation.words;
    if (words.size() < verb.words.least) {
        return "argument missing; usage: " + Usage(verb);
    }
    if (words.size() > verb.words.most) {
        return "unexpected argument" + AfterNoun(words[verb.words.most], invocation.beside_secret) +
               "; usage: " + Usage(verb);
    }
    return verb.words.first_is_interface && !words.empty() ? InterfaceProblem(invocation) : "";
}

}  // namespace

Arguments ReadArguments(const Verb& verb, std::vector<std::string> given) {
    const std::vector<char*> pointers = PointersTo(given);
    char* const* argv = pointers.data();
    const int argc = static_cast<int>(given.size()) + 1;
    const std::vector<option> rows = OptionRows(verb);
    // "-" keeps the order of the words. Without short options "-hello" is one option and not five.
    const auto next = [&] { return getopt_long_only(argc, argv, "-", rows.data(), nullptr); };
    opterr = 0;  // prints no messages
    optind = 0;  // a test reads arguments more than once
    Arguments read;
    int found = 0;
    for (int at = 1; read.problem.empty() && (found = next()) != -1; at = optind) {
        TakeArgument(verb, argv, at, found == '?', read);
    }
    std::vector<std::string>& words = read.invocation.words;
    words.insert(words.end(), argv + optind, argv + argc);  // those after "--"
    read.invocation.beside_secret = MayHoldSecret(verb, words);
    return read;
}

std::vector<std::string> ArgumentsProblems(const Verb& verb, const Arguments& arguments) {
    const Invocation& invocation = arguments.invocation;
    std::vector<std::string> problems;
    for (const std::string& option : arguments.unknown) {
        problems.push_back(UnknownOption(verb, option, invocation.beside_secret));
    }
    for (const std::string_view option : arguments.twice) {
        problems.push_back("option " + Quoted(option) + " is given twice; give it once");
    }
    if (invocation.quiet && invocation.verbose) {
        problems.emplace_back("--quiet and --verbose exclude each other; give one of them");
    }
    // An unknown option may have been meant for a word.
    const std::string problem = arguments.unknown.empty() ? WordsProblem(verb, invocation) : "";
    if (!problem.empty()) {
        problems.push_back(problem);
    }
    return problems;
}

std::string UnknownOption(const Verb& verb, std::string_view option, bool may_be_key) {
    const std::string_view name = WithoutValue(option);
    return "unknown option" + AfterNoun(name, may_be_key) +
           DidYouMean(name, OptionNames(verb),
                      DashHint(verb) + "'" + CommandName(verb) + " --help' lists the options");
}

bool HasOption(const Verb& verb, std::string_view name) {
    return velk::FindRow(verb.options, name, &VerbOption::name) != nullptr ||
           velk::FindRow(verb.flags, name, &VerbFlag::name) != nullptr;
}

}  // namespace velkctl
