// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// tool_run.h - one run of velkctl in this process, with the rules that hold for every run.
#ifndef TESTS_FUZZ_KIT_TOOL_RUN_H_
#define TESTS_FUZZ_KIT_TOOL_RUN_H_

#include <string>
#include <vector>

namespace fuzz {

struct ToolResult {
    int status;
    std::string output;
    std::string error;

    // The texts of both streams, to look for a secret in them.
    std::string All() const { return output + error; }
};

// Runs velkctl with these arguments. Checks that the status is a documented one, that a document is
// whole and has the same status, and that text is readable at a terminal: each problem on lines of
// its own, after the name of the tool.
ToolResult RunTool(const std::vector<std::string>& arguments);

// True for a text that is not in any message by chance: at least eight times one character.
bool IsTelling(const std::string& text);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_TOOL_RUN_H_
