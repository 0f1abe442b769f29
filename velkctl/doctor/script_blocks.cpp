// script_blocks.cpp - where the blocks of a script are not what the library takes them for.
#include "velkctl/doctor/script_blocks.h"

#include <algorithm>

#include "lib/base/shell_blocks.h"
#include "lib/base/words.h"
#include "velkctl/files/text_file.h"

namespace velkctl {
namespace {

constexpr std::string_view kNoInterface = "\n\n";  // no line names it
constexpr std::string_view kBraced = "${interface}";

bool HasKeyword(std::string_view line, std::string_view keyword) {
    return velk::HasWord(line, keyword, /*comment_aware=*/true);
}

// Tells the branches of blocks from what is outside: in a branch, a line runs either for the
// interface that every condition names or for one that none does.
class BranchFollower {
  public:
    explicit BranchFollower(std::string_view variable)
        : of_every_(variable, ""), of_none_(variable, kNoInterface) {}

    // Takes the next line; true when it lies in a branch.
    bool TakeNext(std::string_view line) {
        const bool runs_for_every = of_every_.RunsNext(line);
        return runs_for_every != of_none_.RunsNext(line);
    }

  private:
    velk::ShellBlocks of_every_;
    velk::ShellBlocks of_none_;
};

// What every finding on a block has in common.
Finding At(const Script& script, size_t index) {
    return {.subject = script.subject,
            .effect = "may be switched for another interface",
            .file = script.path,
            .line = index + 1,
            .concerns = script.concerns,
            .hinders = script.hinders};
}

// A line within a branch.
Findings CheckInner(const Script& script, size_t index) {
    const std::string& line = script.lines[index];
    Finding finding = At(script, index);
    if (HasKeyword(line, "elif")) {
        finding.what = "the library takes what is below 'elif' for a part of the branch above";
        finding.remedy = "write 'else', or a block of its own for each interface";
        return {finding};
    }
    if (HasKeyword(line, "if")) {
        finding.what =
            "an 'if' within a block; the library takes the block for ended at the first 'fi'";
        finding.remedy = "write it without an 'if', as in: [ CONDITION ] && COMMAND";
        return {finding};
    }
    return {};
}

// A line that tells interfaces apart, outside every branch or beginning one.
Findings CheckOuter(const Script& script, size_t index) {
    const std::string& line = script.lines[index];
    if (IsComment(line) || !velk::Contains(line, "interface")) {
        return {};
    }
    Finding finding = At(script, index);
    const bool is_block = HasKeyword(line, "if") && velk::Contains(line, script.variable);
    if (is_block && velk::Contains(line, "!=")) {
        finding.effect = "would be switched for the wrong interface";
        finding.what = "the library takes '!=' for '='";
        finding.remedy = "compare with '=', and exchange the branches";
        return {finding};
    }
    const bool is_unknown_if = HasKeyword(line, "if") && velk::Contains(line, kBraced) && !is_block;
    if (is_unknown_if || HasKeyword(line, "case")) {
        finding.effect = "would be switched for every interface";
        finding.what = "the library does not see that " + Excerpt(line) + " tells interfaces apart";
        finding.remedy = "write: if [ \"$interface\" = \"eth0\" ]; then";
        return {finding};
    }
    return {};
}

}  // namespace

Findings CheckBlocks(const Script& script) {
    Findings findings;
    BranchFollower branches(script.variable);
    bool was_in_branch = false;
    size_t begin = 0;
    for (size_t i = 0; i < script.lines.size(); ++i) {
        const bool is_in_branch = branches.TakeNext(script.lines[i]);
        if (is_in_branch && !was_in_branch) {
            begin = i;
        }
        Append(findings, was_in_branch ? CheckInner(script, i) : CheckOuter(script, i));
        was_in_branch = is_in_branch;
    }
    if (was_in_branch) {
        Finding finding = At(script, begin);
        finding.what = "no line with 'fi' as a word ends the block";
        finding.remedy = "end it with a line 'fi'";
        findings.push_back(finding);
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

bool HasSecondMark(std::string_view line, size_t position) {
    const std::string_view before = line.substr(0, position);
    return std::ranges::count(before, '#') > 1;
}

Finding SecondMark(std::string_view noun, const std::string& file, size_t index) {
    return {.effect = "cannot be switched on",
            .what = "two '#' stand before the " + std::string(noun) +
                    ", and switching on takes one away",
            .file = file,
            .line = index + 1,
            .remedy = "leave one '#', in the first column",
            .hinders = Hinders::kSetting};
}

}  // namespace velkctl
