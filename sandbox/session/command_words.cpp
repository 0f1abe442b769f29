// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// command_words.cpp - separates the command from the words of the sandbox.
#include "sandbox/session/command_words.h"

#include "velkctl/text/spelling.h"

namespace sandbox {
namespace {

constexpr char kMark[] = "--";
constexpr char kEnter[] = "enter";

bool IsOption(const std::string& word) {
    return word.size() > 1 && word.front() == '-';
}

bool IsNumber(const std::string& word) {
    return !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
}

// True if the next word is the value of this option. A value that may be missing is a number.
bool TakesNextWord(const CLI::App& app, const std::vector<std::string>& words, size_t at) {
    const CLI::Option* option = app.get_option_no_throw(words[at]);
    if (option == nullptr || option->get_items_expected_max() == 0) {
        return false;
    }
    return option->get_items_expected_min() > 0 ||
           (at + 1 < words.size() && IsNumber(words[at + 1]));
}

// Returns null if the parser has no verb of this name.
const CLI::App* FindVerb(const CLI::App& app, const std::string& name) {
    const auto found =
        app.get_subcommands([&name](const CLI::App* verb) { return verb->get_name() == name; });
    return found.empty() ? nullptr : found.front();
}

std::vector<std::string> SimilarVerbs(const CLI::App& app, const std::string& word) {
    if (word.find('/') != std::string::npos) {
        return {};
    }
    std::vector<std::string> names;
    for (const CLI::App* verb : app.get_subcommands({})) {
        names.push_back(verb->get_name());
    }
    return velkctl::SpellingSuggestions(word, names);
}

}  // namespace

Command TakeCommand(const CLI::App& app, std::vector<std::string>& words) {
    const CLI::App* verb = nullptr;
    size_t at = 0;
    while (at < words.size() && words[at] != kMark) {
        if (IsOption(words[at])) {
            at += TakesNextWord(app, words, at) ? 2 : 1;
        } else if (verb != nullptr || (verb = FindVerb(app, words[at])) == nullptr) {
            break;
        } else {
            ++at;
        }
    }
    Command command;
    if (at >= words.size() || (verb != nullptr && verb->get_name() != kEnter)) {
        return command;
    }
    command.is_marked = words[at] == kMark;
    if (verb == nullptr && !command.is_marked) {
        command.similar_verbs = SimilarVerbs(app, words[at]);
    }
    const auto start = words.begin() + static_cast<std::ptrdiff_t>(at);
    command.words.assign(start + (command.is_marked ? 1 : 0), words.end());
    words.erase(start, words.end());
    return command;
}

}  // namespace sandbox
