// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// help.cpp - the help texts of velkctl and of its verbs.
#include "velkctl/cli/help.h"

#include <utility>

#include "velkctl/report/exit_status.h"
#include "velkctl/text/columns.h"

namespace velkctl {
namespace {

constexpr size_t kOptionWidth = 20;
constexpr size_t kNameWidth = 10;

// A name that is too long for its column has the description below it.
std::string Row(std::string name, size_t width, std::string_view description) {
    constexpr std::string_view kIndent = "  ";
    if (name.size() >= width) {
        name.append("\n").append(width + kIndent.size(), ' ');
    }
    return std::string(kIndent) + Padded(std::move(name), width).append(description) + "\n";
}

std::string Options(const Verb& verb) {
    std::string rows = "Options:\n" + Row("-h,--help", kOptionWidth, "show this help");
    for (const VerbOption& option : verb.options) {
        std::string name(option.name);
        if (!option.value.empty()) {
            name.append(" ").append(option.value);
        }
        rows.append(Row(std::move(name), kOptionWidth, option.help));
    }
    for (const VerbFlag& flag : verb.flags) {
        rows.append(Row(std::string(flag.name), kOptionWidth, flag.help));
    }
    return rows;
}

std::string Help(const Verb& verb, std::string text, std::string_view ending) {
    text.append("\nUsage: ").append(Usage(verb)).append("\n\n").append(Options(verb));
    return text.append("\n").append(ending).append("\n");
}

}  // namespace

std::string CommandName(const Verb& verb) {
    return std::string("velkctl").append(verb.name.empty() ? "" : " ").append(verb.name);
}

std::string Usage(const Verb& verb) {
    return CommandName(verb).append(verb.arguments.empty() ? "" : " ").append(verb.arguments);
}

std::string VerbHelp(const Verb& verb) {
    return Help(verb, CommandName(verb).append(": ").append(verb.summary), verb.help);
}

std::string ToolHelp() {
    std::string ending = "Verbs:\n";
    for (const Verb& verb : Verbs()) {
        ending.append(Row(std::string(verb.name), kNameWidth, verb.summary));
    }
    ending.append(Row(std::string(kHelpVerb), kNameWidth, "show help for velkctl or for a verb"));
    ending.append("\nExit status:\n");
    for (const ExitMeaning& meaning : kExitMeanings) {
        ending.append(
            Row(std::to_string(static_cast<int>(meaning.status)), kNameWidth, meaning.description));
    }
    ending.append("\n").append(Tool().help);
    return Help(Tool(), std::string(Tool().summary), ending);
}

}  // namespace velkctl
