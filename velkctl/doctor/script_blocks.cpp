// script_blocks.cpp - checks the blocks of a script, and the lines in them that the library
// switches.
#include "velkctl/doctor/script_blocks.h"

#include <algorithm>

#include "lib/base/shell_blocks.h"
#include "lib/base/words.h"

namespace velkctl {
namespace {

constexpr std::string_view kOtherInterface = "\n\n";  // no line names it
constexpr std::string_view kBraced = "${interface}";
constexpr std::string_view kForAnother = "may be switched for another interface";

bool HasKeyword(std::string_view line, std::string_view keyword) {
    return velk::HasWord(line, keyword, /*comment_aware=*/true);
}

// A line within a branch.
Findings CheckInner(const Finding& about, std::string_view line) {
    if (HasKeyword(line, "elif")) {
        return {about.Problem(
            kForAnother, "the library takes the lines below 'elif' for a part of the branch above",
            "write 'else', or a block of its own for each interface")};
    }
    if (HasKeyword(line, "if")) {
        return {about.Problem(
            kForAnother,
            "an 'if' within a block; the library takes the block for ended at the first 'fi'",
            "write it without an 'if', as in: [ CONDITION ] && COMMAND")};
    }
    return {};
}

// A line outside every branch, or at the start of one.
Findings CheckOuter(const Script& script, const Finding& about, std::string_view line) {
    if (IsComment(line) || !velk::Contains(line, "interface")) {
        return {};
    }
    const bool is_block = HasKeyword(line, "if") && velk::Contains(line, script.variable);
    if (is_block && velk::Contains(line, "!=")) {
        return {about.Problem("would be switched for the wrong interface",
                              "the library takes '!=' for '='",
                              "compare with '=', and exchange the branches")};
    }
    const bool is_unknown_if = HasKeyword(line, "if") && velk::Contains(line, kBraced) && !is_block;
    if (is_unknown_if || HasKeyword(line, "case")) {
        return {about.Problem(
            "would be switched for every interface",
            "the library does not see that " + Excerpt(line) + " depends on the interface",
            "write: if [ \"$interface\" = \"eth0\" ]; then")};
    }
    return {};
}

}  // namespace

Findings CheckBlocks(const Script& script) {
    // In a branch, a line runs either for the interface that every condition names or for one that
    // none names. Outside, it runs for both.
    velk::ShellBlocks of_every(script.variable, "");
    velk::ShellBlocks of_none(script.variable, kOtherInterface);
    Findings findings;
    bool was_in_branch = false;
    size_t begin = 0;
    for (size_t i = 0; i < script.lines.size(); ++i) {
        const std::string& line = script.lines[i];
        const bool runs_for_every = of_every.RunsNext(line);
        const bool is_in_branch = runs_for_every != of_none.RunsNext(line);
        begin = is_in_branch && !was_in_branch ? i : begin;
        const Finding about = script.about.At(i);
        Append(findings, was_in_branch ? CheckInner(about, line) : CheckOuter(script, about, line));
        was_in_branch = is_in_branch;
    }
    if (was_in_branch) {
        findings.push_back(script.about.At(begin).Problem(
            kForAnother, "no line with 'fi' as a word ends the block", "end it with a line 'fi'"));
    }
    return findings;
}

std::vector<size_t> LinesThatRun(const Script& script, std::string_view interface) {
    std::vector<size_t> indexes;
    velk::ShellBlocks blocks(script.variable, interface);
    for (size_t i = 0; i < script.lines.size(); ++i) {
        const bool runs = blocks.RunsNext(script.lines[i]);
        if (runs || interface.empty()) {
            indexes.push_back(i);
        }
    }
    return indexes;
}

Findings CheckMarks(const Finding& about, std::string_view line, size_t position,
                    std::string_view noun) {
    if (std::ranges::count(line.substr(0, position), '#') < 2) {
        return {};
    }
    return {about.Problem(
        "cannot be switched on",
        "there are two '#' before the " + std::string(noun) + ", and switching on takes one away",
        "leave one '#', in the first column")};
}

}  // namespace velkctl
