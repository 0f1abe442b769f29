// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// command_words.h - separates the command from the words of the sandbox.
#ifndef SANDBOX_SESSION_COMMAND_WORDS_H_
#define SANDBOX_SESSION_COMMAND_WORDS_H_

#include <string>
#include <vector>

#include "sandbox/session/exec_command.h"
#include <CLI/CLI.hpp>

namespace sandbox {

// Removes the command from `words` and returns it. It begins after the first "--", or at the first
// word that is no option, no value of an option and no verb of the parser. All its words are
// unchanged. Of the verbs, only `enter` takes a command.
Command TakeCommand(const CLI::App& app, std::vector<std::string>& words);

}  // namespace sandbox

#endif  // SANDBOX_SESSION_COMMAND_WORDS_H_
