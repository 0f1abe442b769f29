// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// usage.cpp - the help of velk-sandbox, and its messages about wrong usage.
#include "sandbox/session/usage.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "sandbox/process/exit_status.h"
#include "sandbox/process/messages.h"
#include "velkctl/text/spelling.h"

namespace sandbox {
namespace {

constexpr char kDescription[] =
    "Runs a command or a shell on a simulated device, with its own files and network.\n"
    "The machine around it stays unchanged.";
constexpr char kUsage[] =
    "Usage: velk-sandbox [OPTIONS] [COMMAND...]\n"
    "       velk-sandbox cable|adapter|router in|out [--name NAME]\n"
    "       velk-sandbox enter [--name NAME] [COMMAND...]\n"
    "       velk-sandbox watch [--name NAME]\n"
    "       velk-sandbox list\n"
    "\n"
    "COMMAND runs on the device with all its options; without it, a shell starts.\n"
    "Put -- before a command that begins with a dash or is named as a subcommand.\n";
constexpr char kExamples[] =
    "Examples:\n"
    "  velk-sandbox                           a shell on a new device\n"
    "  velk-sandbox velkctl get eth0.dns      one command\n"
    "  velk-sandbox --writable . make check   with the current folder writable\n"
    "\n";
constexpr char kExitStatus[] =
    "Exit status: that of the command, or 128 plus the signal that ended it.\n"
    "  2    wrong usage\n"
    "  125  the device could not be made, reached or changed\n"
    "  126  the command cannot be run\n"
    "  127  the command is not found\n";

constexpr size_t kOptionWidth = 20;  // keeps each line of the help within 80 columns

// Returns the name as a user types it, such as "velk-sandbox cable".
std::string FullName(const CLI::App& app) {
    const CLI::App* parent = app.get_parent();
    return parent == nullptr ? app.get_name() : parent->get_name() + " " + app.get_name();
}

std::string VerbUsage(const CLI::App& verb) {
    std::string usage = "Usage: " + FullName(verb);
    if (verb.get_option_no_throw("POSITION") != nullptr) {
        usage.append(" in|out");
    }
    if (verb.get_option_no_throw("--name") != nullptr) {
        usage.append(" [--name NAME]");
    }
    return usage.append(verb.get_name() == "enter" ? " [COMMAND...]\n" : "\n");
}

// The parser does not handle the command, so its own usage line would omit it.
class HelpFormatter : public CLI::Formatter {
  public:
    HelpFormatter() { column_width(kOptionWidth); }

    std::string make_usage(const CLI::App* app, std::string /*name*/) const override {
        return app->get_parent() == nullptr ? kUsage : VerbUsage(*app);
    }

    // The descriptions say which options belong together.
    std::string make_option_opts(const CLI::Option* option) const override {
        return option->get_items_expected_max() == 0 ? "" : " " + option->get_type_name();
    }

    // The usage line shows the positionals.
    std::string make_positionals(const CLI::App* /*app*/) const override { return {}; }

    std::string make_footer(const CLI::App* app) const override {
        return std::string(app->get_parent() == nullptr ? kExamples : "") + kExitStatus;
    }
};

// Returns the chosen verb, or the parser itself.
const CLI::App& ChosenVerb(const CLI::App& app) {
    const std::vector<CLI::App*> verbs = app.get_subcommands();
    return verbs.empty() ? app : *verbs.front();
}

std::string DescribeUnknown(const CLI::App& verb, const std::string& word) {
    if (!word.starts_with('-')) {
        return "unexpected argument '" + word + "'";
    }
    std::vector<std::string> options;
    for (const CLI::Option* option : verb.get_options()) {
        options.push_back("--" + option->get_single_name());
    }
    const std::vector<std::string> similar = velkctl::SpellingSuggestions(word, options);
    return "unknown option '" + word + "'" +
           (similar.empty() ? "" : "; did you mean " + velkctl::OneOf(similar) + "?");
}

// Describes a value that is missing or too much. The parser's message has the name of the option.
std::string DescribeMismatch(const CLI::App& verb, const std::string& message) {
    const size_t start = message.find("--");
    const size_t end = message.find_first_of(": ", start);
    const std::string name = start == std::string::npos ? "" : message.substr(start, end - start);
    const CLI::Option* option = verb.get_option_no_throw(name);
    if (option == nullptr) {
        return message;
    }
    if (option->get_items_expected_max() == 0) {
        return name + " takes no value";
    }
    return option->count() > 1 ? name + " is given more than once"
                               : name + ": " + option->get_type_name() + " is missing";
}

std::string Describe(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> unknown = app.remaining(true);
    if (!unknown.empty()) {
        return DescribeUnknown(ChosenVerb(app), unknown.front());
    }
    const bool is_mismatch =
        error.get_name() == "ArgumentMismatch" || error.get_name() == "ConversionError";
    return is_mismatch ? DescribeMismatch(ChosenVerb(app), error.what()) : error.what();
}

}  // namespace

void SetHelp(CLI::App& app) {
    app.name("velk-sandbox");
    app.description(kDescription);
    app.formatter(std::make_shared<HelpFormatter>());
    app.set_help_flag("-h,--help", "Show this help");
    app.set_version_flag("--version", "velk-sandbox " VELK_SANDBOX_VERSION, "Show the version");
}

WrongUsage::WrongUsage(const std::string& message, std::string fix)
    : ParseError("WrongUsage", message, kUsageError), fix_(std::move(fix)) {
}

void PrintUsageError(const CLI::App& app, const CLI::ParseError& error) {
    if (const auto* wrong = dynamic_cast<const WrongUsage*>(&error); wrong != nullptr) {
        PrintMessage(wrong->what());
        PrintDetail("fix: " + wrong->fix());
        return;
    }
    PrintMessage(Describe(app, error));
    PrintDetail("fix: see " + FullName(ChosenVerb(app)) + " --help");
}

}  // namespace sandbox
