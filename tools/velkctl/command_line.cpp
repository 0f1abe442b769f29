// command_line.cpp - reads the command line and runs the verb in it.
#include "velkctl/command_line.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "velkctl/terminal.h"
#include "velkctl/verb_arguments.h"
#include "velkctl/verbs.h"
#include <CLI/CLI.hpp>

namespace velkctl {
namespace {

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
        name.resize(9, ' ');
        footer.append("  ").append(name).append(verb.summary).append("\n");
    }
    return footer +
           "\n"
           "'velkctl VERB --help' tells more about a verb.\n"
           "\n"
           "Exit status: 0 done, 1 failed, 2 wrong usage or value, 3 another program is changing\n"
           "settings, 4 no wireless adapter, 5 refused while the cable is in the wired port,\n"
           "6 set, but the device does not hold the value.";
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

ExitStatus RunVerb(const Verb& verb, const Words& arguments) {
    const std::string prefix = std::string(verb.name) + ": ";
    CLI::App app(std::string(kToolName).append(" ").append(prefix).append(verb.summary));
    PrepareHelp(app, Usage(verb), std::string(verb.help));
    DeclareOptions(app, verb);
    app.allow_extras();
    if (const std::string problem = FlagProblem(app, verb, arguments); !problem.empty()) {
        return Refuse(prefix + problem);
    }
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
    const std::string problem = arguments.empty() ? "" : FlagProblem(app, arguments.front());
    if (!problem.empty()) {
        return Refuse(problem);
    }
    if (const auto status = Parse(app, arguments, "")) {
        return *status;
    }
    const Words rest = app.remaining();
    if (rest.empty()) {
        return Refuse("no verb given; give " + VerbNames() + " ('velkctl --help' explains them)");
    }
    if (rest.front().starts_with('-')) {
        return Refuse(UnknownOption(Quoted(WithoutValue(rest.front())), kToolName));
    }
    for (const Verb& verb : Verbs()) {
        if (verb.name == rest.front()) {
            return RunVerb(verb, SplitEmptyValues(verb, rest.begin() + 1, rest.end()));
        }
    }
    return Refuse("unknown verb " + Quoted(WithoutValue(rest.front())) + "; give " + VerbNames() +
                  " ('velkctl --help' explains them)");
}

}  // namespace velkctl
