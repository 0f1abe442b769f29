// verb_arguments.cpp - what stands behind a verb: its options, and words that are none.
#include "velkctl/verb_arguments.h"

#include <algorithm>

#include "velkctl/catalogue.h"
#include "velkctl/near_miss.h"
#include "velkctl/terminal.h"

namespace velkctl {
namespace {

// The flag that an argument such as "--help=no" or "-hello" would be taken for; empty when none.
std::string FlagWithValue(const CLI::App& app, std::string_view argument) {
    for (const CLI::Option* flag : app.get_options()) {
        if (flag->get_items_expected_max() != 0) {
            continue;
        }
        for (const std::string& name : flag->get_lnames()) {
            if (argument.starts_with("--" + name + "=")) {
                return "--" + name;
            }
        }
        for (const std::string& name : flag->get_snames()) {
            if (argument.starts_with("-" + name) && argument.size() > name.size() + 1) {
                return "-" + name;
            }
        }
    }
    return {};
}

std::vector<std::string> OptionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

std::string CommandName(const Verb& verb) {
    return std::string("velkctl ").append(verb.name);
}

const VerbOption* FindOption(const Verb& verb, std::string_view name) {
    const auto row = std::find_if(verb.options.begin(), verb.options.end(),
                                  [name](const VerbOption& option) { return option.name == name; });
    return row == verb.options.end() ? nullptr : &*row;
}

bool LooksLikeOption(const std::string& word) {
    return word.size() > 1 && word[0] == '-' && (word[1] < '0' || word[1] > '9');
}

bool IsNumber(std::string_view word) {
    return !word.empty() && word.find_first_not_of("0123456789") == std::string_view::npos;
}

// What helps who means a word by it, and not an option.
std::string DashHint(const Verb& verb) {
    return verb.run == RunSet ? "; put -- before a value that begins with a dash" : "";
}

// Says whether the second word of a verb may be a number: a value, or the id of a command.
bool TakesNumber(const Verb& verb) {
    return verb.run == RunSet || verb.run == RunCall;
}

// Says whether the arguments may hold a secret: beside the name or id of one, and behind a name
// that is misspelt.
bool MayHoldSecret(const Verb& verb, const Words& arguments) {
    const auto first = std::find_if_not(arguments.begin(), arguments.end(), LooksLikeOption);
    if (verb.run == RunSet && first != arguments.end() && !FindSetting(Catalogue(), *first)) {
        return true;
    }
    return std::any_of(arguments.begin(), arguments.end(), [](const std::string& argument) {
        return NamesSecret(Catalogue(), argument);
    });
}

}  // namespace

std::string Usage(const Verb& verb) {
    std::string usage = CommandName(verb);
    return verb.arguments.empty() ? usage : usage.append(" ").append(verb.arguments);
}

std::string UnknownOption(const CLI::App& app, std::string_view option, const std::string& command,
                          bool may_be_key, const std::string& hint) {
    return "unknown option" +
           (may_be_key ? ", not repeated here as it may be a key" : " " + Quoted(option)) +
           DidYouMean(option, OptionNames(app),
                      "'" + command + " --help' lists the options" + hint);
}

std::string_view WithoutValue(std::string_view argument) {
    return argument.substr(0, argument.find('='));
}

std::string FlagProblem(const CLI::App& app, std::string_view argument) {
    const std::string flag = FlagWithValue(app, argument);
    return flag.empty() ? flag : "option " + Quoted(flag) + " takes no value; leave it out";
}

std::string FlagProblem(const CLI::App& app, const Verb& verb, const Words& arguments) {
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument == "--") {
            break;  // only words follow
        }
        if (FindOption(verb, *argument) != nullptr && argument + 1 != arguments.end()) {
            ++argument;  // its value
            continue;
        }
        std::string problem = FlagProblem(app, *argument);
        if (!problem.empty()) {
            return problem;
        }
    }
    return {};
}

std::string ImpliedValueProblem(const Verb& verb, const Words& arguments) {
    size_t words = 0;
    for (size_t i = 0; i + 1 < arguments.size() && arguments[i] != "--"; ++i) {
        const VerbOption* option = FindOption(verb, arguments[i]);
        const std::string& next = arguments[i + 1];
        if (option == nullptr) {
            words += LooksLikeOption(arguments[i]) ? 0 : 1;
        } else if (option->implied.empty()) {
            ++i;  // its value
        } else if (IsNumber(next) && !(words == 1 && TakesNumber(verb))) {
            // The number is not repeated: it may be a key.
            return arguments[i] + " takes its seconds behind '='; write " + arguments[i] +
                   "=SECONDS";
        }
    }
    return {};
}

Words SplitEmptyValues(const Verb& verb, Words::const_iterator begin, Words::const_iterator end) {
    Words split;
    for (auto argument = begin; argument != end; ++argument) {
        const std::string_view name(argument->data(),
                                    argument->size() - (argument->ends_with('=')));
        if (FindOption(verb, name) == nullptr) {
            split.push_back(*argument);
            continue;
        }
        split.emplace_back(name);
        const std::string_view implied = FindOption(verb, name)->implied;
        if (!implied.empty()) {
            split.emplace_back(implied);
        } else if (name.size() < argument->size()) {
            split.emplace_back();
        } else if (argument + 1 != end) {
            split.push_back(*++argument);
        }
    }
    return split;
}

bool HasOption(const Verb& verb, std::string_view name) {
    return FindOption(verb, name) != nullptr ||
           std::ranges::any_of(verb.flags,
                               [name](const VerbFlag& flag) { return flag.name == name; });
}

void DeclareOptions(CLI::App& app, const Verb& verb) {
    for (const VerbOption& option : verb.options) {
        const std::string help(option.help);
        // Repeating is found by TakeOptions(), which says it better.
        app.add_option(std::string(option.name), help)
            ->type_name(std::string(option.value))
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }
    for (const VerbFlag& flag : verb.flags) {
        app.add_flag(std::string(flag.name))->description(std::string(flag.help));
    }
}

std::string TakeOptions(const CLI::App& app, const Verb& verb, Invocation& invocation) {
    for (const VerbOption& option : verb.options) {
        const Words& values = app.get_option(std::string(option.name))->results();
        if (values.size() > 1) {
            return "option " + Quoted(option.name) + " is given twice; give it once";
        }
        if (!values.empty()) {
            invocation.*option.target = values.front();
        }
    }
    for (const VerbFlag& flag : verb.flags) {
        invocation.*flag.target = app.count(std::string(flag.name)) > 0;
    }
    return {};
}

std::string TakeWords(const CLI::App& app, const Verb& verb, Invocation& invocation) {
    const Words arguments = app.remaining();
    invocation.beside_secret = MayHoldSecret(verb, arguments);
    bool only_words = false;
    for (const std::string& argument : arguments) {
        if (!only_words && argument == "--") {
            only_words = true;
            continue;
        }
        if (!only_words && LooksLikeOption(argument)) {
            return UnknownOption(app, WithoutValue(argument), CommandName(verb),
                                 invocation.beside_secret, DashHint(verb));
        }
        invocation.words.push_back(argument);
    }
    if (invocation.words.size() < verb.min_words) {
        return "argument missing; usage: " + Usage(verb);
    }
    if (invocation.words.size() > verb.max_words) {
        return invocation.Shown(invocation.words[verb.max_words]) +
               " is one argument too many; usage: " + Usage(verb);
    }
    return {};
}

}  // namespace velkctl
