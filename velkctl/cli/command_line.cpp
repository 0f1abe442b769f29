// command_line.cpp - reads the command line and runs the verb in it.
#include "velkctl/cli/command_line.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "velkctl/cli/help.h"
#include "velkctl/cli/verb_arguments.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/find_row.h"
#include "velkctl/text/spelling.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr char kJsonFlag[] = "--json";
constexpr std::string_view kSeeHelp = " ('velkctl --help' explains them)";

std::vector<std::string> VerbNames() {
    std::vector<std::string> names;
    for (const Verb& verb : Verbs()) {
        names.emplace_back(verb.name);
    }
    names.emplace_back(kHelpVerb);
    return names;
}

// Says all that a run for help has to say.
ExitStatus ShowHelp(const std::string& help, Report& report) {
    report.set_verb("");  // none was run
    report.Text(help);
    report.Member("help", help);
    return ExitStatus::kDone;
}

ExitStatus ShowVersion(Report& report) {
    report.Text("velkctl " VELKCTL_VERSION "\n");
    report.Member("version", VELKCTL_VERSION);
    return ExitStatus::kDone;
}

const Verb* FindVerb(std::string_view name) {
    return FindRow(Verbs(), name, &Verb::name);
}

// Says about a word where a verb should stand what would be right. What it may be behind "=" is not
// repeated.
std::string UnknownVerb(std::string_view word) {
    if (FindSetting(word)) {
        return Quoted(word) + " is a setting; give a verb in front of it, such as get or describe";
    }
    const std::vector<std::string> names = VerbNames();
    const std::vector<std::string> settings = NamesMeant(word);
    if (NearMisses(word, names).empty() && !settings.empty()) {
        return "unknown verb " + Quoted(word) + "; did you mean the setting " + OneOf(settings) +
               "? Give a verb in front of it, such as get or describe";
    }
    return "unknown verb " + Quoted(word) + DidYouMean(word, names, "give " + OneOf(names)) +
           std::string(kSeeHelp);
}

// Says about an option in front of the verb what would be right.
std::string WrongOption(std::string_view option) {
    const std::string_view name = WithoutValue(option);
    for (const Verb& verb : Verbs()) {
        if (HasOption(verb, name)) {
            return "option " + Quoted(name) +
                   " stands in front of the verb; give it behind the verb";
        }
    }
    return UnknownOption(Tool(), option);
}

// The arguments with "help" and "help VERB" in the words that mean the same: "--help" and
// "VERB --help".
Words WithHelpAsOption(Words arguments) {
    auto word = std::find_if(arguments.begin(), arguments.end(),
                             [](const std::string& argument) { return argument != kJsonFlag; });
    if (word == arguments.end() || *word != kHelpVerb) {
        return arguments;
    }
    word = arguments.erase(word);
    const bool is_verb = word != arguments.end() && *word != kHelpVerb && !word->starts_with('-');
    arguments.insert(word + (is_verb ? 1 : 0), "--help");
    return arguments;
}

// Says whether a second verb, or whatever it is, stands behind "help VERB".
bool AsksTooMuchHelp(const Words& arguments) {
    Words words = arguments;
    std::erase(words, kJsonFlag);
    return words.size() > 2 && words.front() == kHelpVerb;
}

ExitStatus RunVerb(const Verb& verb, Words given, Report& report) {
    report.set_verb(verb.name);
    const std::string prefix = std::string(verb.name) + ": ";
    const Arguments arguments = ReadArguments(verb, std::move(given));
    if (!arguments.problem.empty()) {
        return report.Refuse(prefix + arguments.problem);
    }
    if (arguments.invocation.help) {
        return ShowHelp(VerbHelp(verb), report);
    }
    const std::string problem = ArgumentsProblem(verb, arguments);
    return problem.empty() ? verb.run(arguments.invocation, report)
                           : report.Refuse(prefix + problem);
}

bool StandsBeforeVerb(std::string_view argument) {
    return argument.starts_with('-') && argument != "-" && argument != "--";
}

// Runs options of the tool itself and the verb behind them, either of which may be missing.
ExitStatus RunArguments(const Words& arguments, Report& report) {
    const auto word = std::ranges::find_if_not(arguments, StandsBeforeVerb);
    const Arguments own = ReadArguments(Tool(), Words(arguments.begin(), word));
    if (!own.problem.empty()) {
        return report.Refuse(own.problem);
    }
    if (own.invocation.version) {
        return ShowVersion(report);
    }
    if (own.invocation.help) {
        return ShowHelp(ToolHelp(), report);
    }
    if (!own.invocation.words.empty()) {
        return report.Refuse(WrongOption(own.invocation.words.front()));
    }
    if (word == arguments.end()) {
        return report.Refuse("no verb given; give " + OneOf(VerbNames()) + std::string(kSeeHelp));
    }
    if (const Verb* verb = FindVerb(*word); verb != nullptr) {
        return RunVerb(*verb, Words(word + 1, arguments.end()), report);
    }
    return report.Refuse(UnknownVerb(WithoutValue(*word)));
}

}  // namespace

Report::Form FormAskedFor(const Words& arguments) {
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    return std::find(arguments.begin(), end, kJsonFlag) == end ? Report::Form::kText
                                                               : Report::Form::kJson;
}

ExitStatus RunCommandLine(const Words& given, Report& report) {
    if (AsksTooMuchHelp(given)) {
        // A word behind the verb is not repeated: it may be a key.
        return report.Refuse("help: arguments given behind the verb; usage: velkctl help [VERB]");
    }
    return RunArguments(WithHelpAsOption(given), report);
}

}  // namespace velkctl
