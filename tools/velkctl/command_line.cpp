// command_line.cpp - reads the command line and runs the verb in it.
#include "velkctl/command_line.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "velkctl/catalogue.h"
#include "velkctl/exit_meanings.h"
#include "velkctl/near_miss.h"
#include "velkctl/terminal.h"
#include "velkctl/verb_arguments.h"
#include "velkctl/verbs.h"
#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

constexpr char kJsonFlag[] = "--json";
constexpr char kToolName[] = "velkctl";
constexpr char kHelpVerb[] = "help";
constexpr std::string_view kSeeHelp = " ('velkctl --help' explains them)";
constexpr char kVersion[] = "velkctl " VELKCTL_VERSION;

// The usage line comes from the verb's row, not from what CLI11 knows of it.
class HelpFormatter : public CLI::Formatter {
  public:
    explicit HelpFormatter(std::string usage) : usage_(std::move(usage)) {}

    std::string make_usage(const CLI::App* /*app*/, std::string /*name*/) const override {
        return "Usage: " + usage_ + "\n";
    }

  private:
    std::string usage_;
};

void PrepareHelp(CLI::App& app, std::string usage, std::string footer) {
    app.formatter(std::make_shared<HelpFormatter>(std::move(usage)));
    app.set_help_flag("-h,--help", "show this help");
    app.footer(std::move(footer));
}

std::vector<std::string> VerbNames() {
    std::vector<std::string> names;
    for (const Verb& verb : Verbs()) {
        names.emplace_back(verb.name);
    }
    names.emplace_back(kHelpVerb);
    return names;
}

std::string Row(std::string name, std::string_view words) {
    name.resize(10, ' ');
    return "  " + name.append(words) + "\n";
}

std::string ToolFooter() {
    std::string footer = "Verbs:\n";
    for (const Verb& verb : Verbs()) {
        footer.append(Row(std::string(verb.name), verb.summary));
    }
    footer.append(Row(kHelpVerb, "show help for velkctl, or for the verb behind it"));
    footer.append("\nExit status:\n");
    for (const ExitMeaning& meaning : kExitMeanings) {
        footer.append(Row(std::to_string(static_cast<int>(meaning.status)), meaning.words));
    }
    return footer +
           "\n"
           "'velkctl VERB --help' tells more about a verb, and has examples. 'velkctl list' names\n"
           "the settings.";
}

// Parses; a status means that all is said and done. `prefix` begins complaints.
std::optional<ExitStatus> Parse(CLI::App& app, Words arguments, const std::string& prefix,
                                Report& report) {
    const std::string last = arguments.empty() ? "" : arguments.back();
    std::reverse(arguments.begin(), arguments.end());  // CLI11 takes the last one first
    try {
        app.parse(std::move(arguments));
        return std::nullopt;
    } catch (const CLI::CallForHelp&) {
        report.set_verb("");  // none was run
        report.Text(app.help());
        report.Member("help", app.help());
        return ExitStatus::kDone;
    } catch (const CLI::CallForVersion&) {
        report.Text(std::string(kVersion) + "\n");
        report.Member("version", VELKCTL_VERSION);
        return ExitStatus::kDone;
    } catch (const CLI::ArgumentMismatch&) {
        // An option takes whatever stands behind it, so only the last one can lack its value.
        return report.Refuse(prefix + "option " + Quoted(last) + " needs a value behind it");
    } catch (const CLI::Error& error) {
        return report.Refuse(prefix + Printable(error.what()));
    }
}

const Verb* FindVerb(std::string_view name) {
    const auto verb = std::ranges::find(Verbs(), name, &Verb::name);
    return verb == Verbs().end() ? nullptr : &*verb;
}

// Says about a word where a verb should stand what would be right. What it may be behind "=" is not
// repeated.
std::string UnknownVerb(std::string_view word) {
    if (FindSetting(Catalogue(), word)) {
        return Quoted(word) + " is a setting; give a verb in front of it, such as get or describe";
    }
    const std::vector<std::string> names = VerbNames();
    const std::vector<std::string> settings = NamesMeant(Catalogue(), word);
    if (NearMisses(word, names).empty() && !settings.empty()) {
        return "unknown verb " + Quoted(word) + "; did you mean the setting " + OneOf(settings) +
               "? Give a verb in front of it, such as get or describe";
    }
    return "unknown verb " + Quoted(word) + DidYouMean(word, names, "give " + OneOf(names)) +
           std::string(kSeeHelp);
}

// Says about an option in front of the verb what would be right.
std::string WrongOption(const CLI::App& app, std::string_view option) {
    for (const Verb& verb : Verbs()) {
        if (HasOption(verb, option)) {
            return "option " + Quoted(option) +
                   " stands in front of the verb; give it behind the verb";
        }
    }
    return UnknownOption(app, option, kToolName);
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

ExitStatus RunVerb(const Verb& verb, const Words& given, Report& report) {
    report.set_verb(verb.name);
    const std::string prefix = std::string(verb.name) + ": ";
    if (const std::string problem = ImpliedValueProblem(verb, given); !problem.empty()) {
        return report.Refuse(prefix + problem);
    }
    const Words arguments = SplitEmptyValues(verb, given.begin(), given.end());
    CLI::App app(std::string(kToolName).append(" ").append(prefix).append(verb.summary));
    PrepareHelp(app, Usage(verb), std::string(verb.help));
    DeclareOptions(app, verb);
    app.allow_extras();
    if (const std::string problem = FlagProblem(app, verb, arguments); !problem.empty()) {
        return report.Refuse(prefix + problem);
    }
    if (const auto status = Parse(app, arguments, prefix, report)) {
        return *status;
    }
    Invocation invocation;
    std::string problem = TakeOptions(app, verb, invocation);
    if (problem.empty()) {
        problem = TakeWords(app, verb, invocation);
    }
    return problem.empty() ? verb.run(invocation, report) : report.Refuse(prefix + problem);
}

// Runs arguments with no verb in front: options of the tool itself, and a verb behind them at most.
ExitStatus RunOwnOptions(const Words& arguments, Report& report) {
    CLI::App app("Read and change the network settings of the device.");
    PrepareHelp(app, std::string(kToolName) + " VERB [ARGUMENT...]", ToolFooter());
    app.set_version_flag("--version", kVersion, "show the version");
    app.add_flag(kJsonFlag)->description("answer as one JSON document");
    app.prefix_command();  // what follows the verb is the verb's
    const std::string problem = arguments.empty() ? "" : FlagProblem(app, arguments.front());
    if (!problem.empty()) {
        return report.Refuse(problem);
    }
    if (const auto status = Parse(app, arguments, "", report)) {
        return *status;
    }
    const Words rest = app.remaining();
    if (rest.empty()) {
        return report.Refuse("no verb given; give " + OneOf(VerbNames()) + std::string(kSeeHelp));
    }
    if (const Verb* verb = FindVerb(rest.front()); verb != nullptr) {
        return RunVerb(*verb, Words(rest.begin() + 1, rest.end()), report);
    }
    const std::string_view word = WithoutValue(rest.front());
    const bool is_option = word.starts_with('-') && word != "-" && word != "--";
    return report.Refuse(is_option ? WrongOption(app, word) : UnknownVerb(word));
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
    const Words arguments = WithHelpAsOption(given);
    const Verb* verb = arguments.empty() ? nullptr : FindVerb(arguments.front());
    // A parser of the tool's own options would be a good part of what a get costs.
    return verb == nullptr ? RunOwnOptions(arguments, report)
                           : RunVerb(*verb, Words(arguments.begin() + 1, arguments.end()), report);
}

}  // namespace velkctl
