// command_line.cpp - reads the command line and runs the verb in it.
#include "velkctl/command_line.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

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

std::vector<std::string> VerbList() {
    std::vector<std::string> names;
    for (const Verb& verb : Verbs()) {
        names.emplace_back(verb.name);
    }
    return names;
}

std::string ToolFooter() {
    std::string footer = "Verbs:\n";
    for (const Verb& verb : Verbs()) {
        std::string name(verb.name);
        name.resize(10, ' ');
        footer.append("  ").append(name).append(verb.summary).append("\n");
    }
    return footer +
           "\n"
           "'velkctl VERB --help' tells more about a verb.\n"
           "\n"
           "Exit status: 0 done, 1 failed, 2 wrong usage or value, 3 another program is changing\n"
           "settings, 4 no wireless adapter, 5 refused while the cable is in the wired port,\n"
           "6 set, but the device does not hold the value, 7 given up because it took too long.";
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

ExitStatus RunVerb(const Verb& verb, const Words& arguments, Report& report) {
    report.set_verb(verb.name);
    const std::string prefix = std::string(verb.name) + ": ";
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

}  // namespace

Report::Form FormAskedFor(const Words& arguments) {
    const auto end = std::find(arguments.begin(), arguments.end(), "--");
    return std::find(arguments.begin(), end, kJsonFlag) == end ? Report::Form::kText
                                                               : Report::Form::kJson;
}

ExitStatus RunCommandLine(const Words& arguments, Report& report) {
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
        return report.Refuse("no verb given; give " + VerbNames() +
                             " ('velkctl --help' explains them)");
    }
    if (rest.front().starts_with('-')) {
        return report.Refuse(UnknownOption(Quoted(WithoutValue(rest.front())), kToolName));
    }
    for (const Verb& verb : Verbs()) {
        if (verb.name == rest.front()) {
            return RunVerb(verb, SplitEmptyValues(verb, rest.begin() + 1, rest.end()), report);
        }
    }
    const std::string_view word = WithoutValue(rest.front());
    const std::vector<std::string> names = VerbList();
    const std::string_view meant = NearMiss(word, names);
    return report.Refuse(
        "unknown verb " + Quoted(word) +
        (meant.empty() ? "; give " + VerbNames() : "; did you mean " + std::string(meant) + "?") +
        " ('velkctl --help' explains them)");
}

}  // namespace velkctl
