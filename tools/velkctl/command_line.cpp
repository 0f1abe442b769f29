// command_line.cpp - reads the command line and runs the verb in it.
#include "velkctl/command_line.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "velkctl/terminal.h"
#include "velkctl/verbs.h"
#include <CLI/CLI.hpp>

namespace velkctl {
namespace {

using Words = std::vector<std::string>;

constexpr char kToolName[] = "velkctl";
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

std::string VerbNames() {
    std::string names;
    for (const Verb& verb : Verbs()) {
        const bool last = &verb == &Verbs().back();
        names.append(names.empty() ? "" : last ? " or " : ", ").append(verb.name);
    }
    return names;
}

std::string ToolFooter() {
    std::string footer = "Verbs:\n";
    for (const Verb& verb : Verbs()) {
        std::string name(verb.name);
        name.resize(6, ' ');
        footer.append("  ").append(name).append(verb.summary).append("\n");
    }
    return footer +
           "\n"
           "'velkctl VERB --help' tells more about a verb.\n"
           "\n"
           "Exit status: 0 done, 1 failed, 2 wrong usage or value, 3 another program is changing\n"
           "settings, 4 no wireless adapter, 5 refused while the cable is in the wired port.";
}

std::string Usage(const Verb& verb) {
    std::string usage = std::string(kToolName).append(" ").append(verb.name);
    return verb.arguments.empty() ? usage : usage.append(" ").append(verb.arguments);
}

std::string UnknownOption(std::string_view option, const std::string& command) {
    return "unknown option " + Quoted(option) + "; '" + command + " --help' lists the options";
}

// Parses; a status means that all is said and done. `prefix` begins complaints.
std::optional<ExitStatus> Parse(CLI::App& app, Words arguments, const std::string& prefix) {
    const std::string last = arguments.empty() ? "" : arguments.back();
    std::reverse(arguments.begin(), arguments.end());  // CLI11 takes the last one first
    try {
        app.parse(std::move(arguments));
        return std::nullopt;
    } catch (const CLI::CallForHelp&) {
        Print(app.help());
        return ExitStatus::kDone;
    } catch (const CLI::CallForVersion&) {
        Print(std::string(kVersion) + "\n");
        return ExitStatus::kDone;
    } catch (const CLI::ArgumentMismatch&) {
        // An option takes whatever stands behind it, so only the last one can lack its value.
        return Refuse(prefix + "option " + Quoted(last) + " needs a value behind it");
    } catch (const CLI::Error& error) {
        return Refuse(prefix + Printable(error.what()));
    }
}

const VerbOption* FindOption(const Verb& verb, std::string_view name) {
    const auto row = std::find_if(verb.options.begin(), verb.options.end(),
                                  [name](const VerbOption& option) { return option.name == name; });
    return row == verb.options.end() ? nullptr : &*row;
}

// Makes two arguments of "--text=": CLI11 takes the next argument for the value of an option whose
// own is empty.
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
        if (name.size() < argument->size()) {
            split.emplace_back();
        } else if (argument + 1 != end) {
            split.push_back(*++argument);
        }
    }
    return split;
}

void DeclareOptions(CLI::App& app, const Verb& verb) {
    for (const VerbOption& option : verb.options) {
        const std::string help(option.help);
        // Repeating is found by TakeOptions(), which says it better.
        app.add_option(std::string(option.name), help)
            ->type_name(std::string(option.value))
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }
}

// The problem with the options given; empty when there is none.
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
    return {};
}

bool LooksLikeOption(const std::string& word) {
    return word.size() > 1 && word[0] == '-' && (word[1] < '0' || word[1] > '9');
}

// The problem with the arguments that are no known options; empty when all are words. Behind "--"
// everything is one.
std::string TakeWords(const CLI::App& app, const Verb& verb, Invocation& invocation) {
    bool only_words = false;
    for (const std::string& argument : app.remaining()) {
        if (!only_words && argument == "--") {
            only_words = true;
            continue;
        }
        if (!only_words && LooksLikeOption(argument)) {
            return UnknownOption(argument, std::string(kToolName).append(" ").append(verb.name));
        }
        invocation.words.push_back(argument);
    }
    if (invocation.words.size() < verb.min_words) {
        return "argument missing; usage: " + Usage(verb);
    }
    if (invocation.words.size() > verb.max_words) {
        return Quoted(invocation.words[verb.max_words]) +
               " is one argument too many; usage: " + Usage(verb);
    }
    return {};
}

ExitStatus RunVerb(const Verb& verb, const Words& arguments) {
    const std::string prefix = std::string(verb.name) + ": ";
    CLI::App app(std::string(kToolName).append(" ").append(prefix).append(verb.summary));
    PrepareHelp(app, Usage(verb), std::string(verb.help));
    DeclareOptions(app, verb);
    app.allow_extras();
    if (const auto status = Parse(app, arguments, prefix)) {
        return *status;
    }
    Invocation invocation;
    std::string problem = TakeOptions(app, verb, invocation);
    if (problem.empty()) {
        problem = TakeWords(app, verb, invocation);
    }
    return problem.empty() ? verb.run(invocation) : Refuse(prefix + problem);
}

}  // namespace

ExitStatus RunCommandLine(const Words& arguments) {
    CLI::App app("Read and change the network settings of the device.");
    PrepareHelp(app, std::string(kToolName) + " VERB [ARGUMENT...]", ToolFooter());
    app.set_version_flag("--version", kVersion, "show the version");
    app.prefix_command();  // what follows the verb is the verb's
    if (const auto status = Parse(app, arguments, "")) {
        return *status;
    }
    const Words rest = app.remaining();
    if (rest.empty()) {
        return Refuse("no verb given; give " + VerbNames() + " ('velkctl --help' explains them)");
    }
    if (rest.front().starts_with('-')) {
        return Refuse(UnknownOption(rest.front(), kToolName));
    }
    for (const Verb& verb : Verbs()) {
        if (verb.name == rest.front()) {
            return RunVerb(verb, SplitEmptyValues(verb, rest.begin() + 1, rest.end()));
        }
    }
    return Refuse("unknown verb " + Quoted(rest.front()) + "; give " + VerbNames() +
                  " ('velkctl --help' explains them)");
}

}  // namespace velkctl
