// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// command_line.cpp - reads the command line and runs the verb in it.
#include "velkctl/cli/command_line.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "lib/base/find_row.h"
#include "velkctl/call/time_limits.h"
#include "velkctl/cli/help.h"
#include "velkctl/cli/time_options.h"
#include "velkctl/cli/verb_arguments.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/guardian/overdue_change.h"
#include "velkctl/report/output.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/assignment.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/spelling.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr char kJsonFlag[] = "--json";
constexpr std::string_view kSeeHelp = "'velkctl --help' lists the verbs";

std::vector<std::string> VerbNames() {
    std::vector<std::string> names;
    for (const Verb& verb : Verbs()) {
        names.emplace_back(verb.name);
    }
    names.emplace_back(kHelpVerb);
    return names;
}

ExitStatus ShowHelp(const std::string& help, Report& report) {
    report.set_verb("");  // none was run
    report.Text(FittedToTerminal(help));
    report.Member("help", help);
    return ExitStatus::kDone;
}

ExitStatus ShowVersion(Report& report) {
    report.Text("velkctl " VELKCTL_VERSION "\n");
    report.Member("version", VELKCTL_VERSION);
    return ExitStatus::kDone;
}

const Verb* FindVerb(std::string_view name) {
    return velk::FindRow(Verbs(), name, &Verb::name);
}

// Returns the message about a word that is not a verb. `word` has no part after "=".
std::string UnknownVerb(std::string_view word) {
    if (FindSetting(word)) {
        return Quoted(word) + " is a setting; give a verb before it, such as get or describe";
    }
    const std::vector<std::string> names = VerbNames();
    const std::vector<std::string> settings = NamesMeant(word);
    if (SpellingSuggestions(word, names).empty() && !settings.empty()) {
        return "unknown verb " + Quoted(word) + Suggestion(settings, "the setting ") +
               " Give a verb before it, such as get or describe";
    }
    return "unknown verb " + Quoted(word) + DidYouMean(word, names, kSeeHelp);
}

// Returns the message about an option that is not valid before the verb.
std::string WrongOption(std::string_view option) {
    const std::string_view name = WithoutValue(option);
    for (const Verb& verb : Verbs()) {
        if (HasOption(verb, name)) {
            return Quoted(name) + " is an option of a verb; give it after the verb";
        }
    }
    return UnknownOption(Tool(), option);
}

// True for a flag that may be given before any verb and after it.
bool IsFlagOfAll(const std::string& argument) {
    return argument == kJsonFlag || argument == "--quiet" || argument == "--verbose";
}

// Returns the arguments with "help" and "help VERB" replaced by "--help" and "VERB --help".
std::vector<std::string> WithHelpAsOption(std::vector<std::string> arguments) {
    auto word = std::ranges::find_if_not(arguments, IsFlagOfAll);
    if (word == arguments.end() || *word != kHelpVerb) {
        return arguments;
    }
    word = arguments.erase(word);
    const bool is_verb = word != arguments.end() && *word != kHelpVerb && !word->starts_with('-');
    arguments.insert(word + (is_verb ? 1 : 0), "--help");
    return arguments;
}

// True if a word follows "help VERB".
bool HasWordAfterHelp(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = arguments;
    std::erase_if(words, IsFlagOfAll);
    return words.size() > 2 && words.front() == kHelpVerb;
}

Report::Detail DetailOf(const Invocation& invocation) {
    if (invocation.verbose) {
        return Report::Detail::kVerbose;
    }
    return invocation.quiet ? Report::Detail::kQuiet : Report::Detail::kUsual;
}

// Refuses every problem with the options, and then with the words. Returns false if there is one.
bool IsValid(const Verb& verb, Arguments& arguments, Report& report) {
    const std::vector<std::string> problems = ArgumentsProblems(verb, arguments);
    for (const std::string& problem : problems) {
        report.Refuse(std::string(verb.name) + ": " + problem);
    }
    Invocation& invocation = arguments.invocation;
    const std::optional<TimeLimits> limits = ReadTimeOptions(invocation, report);
    if (problems.empty() && limits) {
        invocation.limits = *limits;
        return true;
    }
    if (verb.check_words != nullptr && !invocation.words.empty()) {
        verb.check_words(invocation, report);
    }
    return false;
}

// `own` has the options before the verb.
ExitStatus RunVerb(const Verb& verb, const Invocation& own, std::vector<std::string> given,
                   Report& report) {
    report.set_verb(verb.name);
    const std::string prefix = std::string(verb.name) + ": ";
    Arguments arguments = ReadArguments(verb, std::move(given));
    if (!arguments.problem.empty()) {
        return report.Refuse(prefix + arguments.problem);
    }
    Invocation& invocation = arguments.invocation;
    if (invocation.help) {
        return ShowHelp(VerbHelp(verb), report);
    }
    invocation.quiet = invocation.quiet || own.quiet;
    invocation.verbose = invocation.verbose || own.verbose;
    if (!IsValid(verb, arguments, report)) {
        return ExitStatus::kInvalid;
    }
    report.set_detail(DetailOf(invocation));
    if (verb.works_with_device) {
        SettleLastChange(report);
    }
    return verb.run(invocation, report);
}

bool IsOption(std::string_view argument) {
    return argument.starts_with('-') && argument != "-" && argument != "--";
}

// Refuses every option that is not valid before the verb. Returns true if there is one.
bool RefuseWrongOptions(const Arguments& own, Report& report) {
    std::vector<std::string> wrong = own.unknown;
    const std::vector<std::string>& numbers = own.invocation.words;  // "-5"
    wrong.insert(wrong.end(), numbers.begin(), numbers.end());
    for (const std::string& option : wrong) {
        report.Refuse(WrongOption(option));
    }
    return !wrong.empty();
}

// Runs the options of the tool itself, then the verb. Each may be missing.
ExitStatus RunArguments(const std::vector<std::string>& arguments, Report& report) {
    const auto word = std::ranges::find_if_not(arguments, IsOption);
    const Arguments own = ReadArguments(Tool(), {arguments.begin(), word});
    if (!own.problem.empty()) {
        return report.Refuse(own.problem);
    }
    if (own.invocation.version) {
        return ShowVersion(report);
    }
    if (own.invocation.help) {
        return ShowHelp(ToolHelp(), report);
    }
    if (RefuseWrongOptions(own, report)) {
        return ExitStatus::kInvalid;
    }
    if (word == arguments.end()) {
        return report.Refuse("no verb given; " + std::string(kSeeHelp));
    }
    if (const Verb* verb = FindVerb(*word); verb != nullptr) {
        return RunVerb(*verb, own.invocation, {word + 1, arguments.end()}, report);
    }
    return report.Refuse(UnknownVerb(WithoutValue(*word)));
}

}  // namespace

Report::Form RequestedForm(const std::vector<std::string>& arguments) {
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    return std::find(arguments.begin(), end, kJsonFlag) == end ? Report::Form::kText
                                                               : Report::Form::kJson;
}

ExitStatus RunCommandLine(const std::vector<std::string>& given, Report& report) {
    if (HasWordAfterHelp(given)) {
        // The message does not repeat the words after the verb: they may be keys.
        return report.Refuse("help: too many arguments; usage: velkctl help [VERB]");
    }
    return RunArguments(WithHelpAsOption(given), report);
}

}  // namespace velkctl
