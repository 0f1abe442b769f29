// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// script_checks.cpp - whether the library can switch the lines of the DHCP client's scripts: the
// commands of its exit hooks, and the calls that install a lease's name servers.
#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/comment_switch.h"
#include "lib/base/paths.h"
#include "lib/base/shell_blocks.h"
#include "lib/base/words.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

constexpr std::string_view kOtherInterface = "\n\n";  // no line names it
constexpr std::string_view kBraced = "${interface}";
constexpr std::string_view kForAnother = "may be switched for another interface";

// A script with lines that the library switches by a "#".
struct Script {
    Finding about;         // a finding without a text about a misread block
    std::string variable;  // a condition must name it to begin a block
    Lines lines{};
};

bool HasKeyword(std::string_view line, std::string_view keyword) {
    return velk::HasWord(line, keyword, /*comment_aware=*/true);
}

// A line within a branch.
Findings CheckInner(const Finding& about, std::string_view line) {
    if (HasKeyword(line, "elif")) {
        return {about.Problem(
            kForAnother,
            "an 'elif' within a block; the library takes the lines below it for the branch above",
            "write 'else', or a block of its own for each interface")};
    }
    if (HasKeyword(line, "if")) {
        return {about.Problem(
            kForAnother, "an 'if' within a block; for the library the block ends at the first 'fi'",
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
            "a condition that the library does not see; " + Excerpt(line) +
                " depends on the interface",
            is_unknown_if ? "write $interface instead of ${interface}"
                          : "for each interface write: if [ \"$interface\" = \"NAME\" ]; then")};
    }
    return {};
}

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

// Returns the lines that run for the interface, as the library reads the script, and for which the
// condition is true; those of all interfaces if the interface is empty.
template <typename Condition>
std::vector<size_t> LinesThatRun(const Script& script, std::string_view interface,
                                 Condition is_wanted) {
    velk::ShellBlocks blocks(script.variable, interface);
    return IndexesOf(script.lines, [&](const std::string& line) {
        const bool runs = blocks.RunsNext(line) || interface.empty();
        return runs && is_wanted(line);
    });
}

Findings CheckCommand(const Finding& about, const std::string& line, const SettingLine& switched) {
    const size_t position = line.find(switched.key);
    if (Findings marks = CheckMarks(about, line, position, "command"); !marks.empty()) {
        return marks;
    }
    const bool is_on = !velk::IsCommentedOut(line, position);
    const bool is_read = switched.setting.row->id == VELK_CMD_APIPA;
    if (is_on && is_read && !HasKeyword(line, switched.key)) {
        return {about.With(Impact::kReading)
                    .Problem("is shown as off although it is on",
                             "there is no blank before or after the command's name",
                             "write " + std::string(switched.key) + " between blanks")};
    }
    return {};
}

Findings CheckCommands(const Script& script, const SettingLine& switched) {
    const std::string command(switched.key);
    const std::string interface(switched.setting.interface);
    // A setting of the device is switched here and read from another file.
    const Finding about = About({switched.setting}, velk::kExitHooks,
                                interface.empty() ? Impact::kNothing : Impact::kSetting);
    const std::vector<size_t> indexes = LinesThatRun(
        script, interface, [&](std::string_view line) { return velk::Contains(line, command); });
    if (!indexes.empty()) {
        return FindingsOfEach(indexes, [&](size_t index) {
            return CheckCommand(about.At(index), script.lines[index], switched);
        });
    }
    return {about.Problem(
        "cannot be switched",
        "no line" + (interface.empty() ? "" : " that runs for " + interface) + " has " + command,
        "add the line that runs " + command + ", with a '#' before it for off")};
}

// Returns the position of the function's name as a word of the line; npos if none.
size_t FindFunction(std::string_view function, std::string_view line) {
    size_t position = 0;
    const bool is_found = velk::FindWord(line, function, /*comment_aware=*/false, position);
    return is_found ? position : std::string_view::npos;
}

bool IsDefinition(std::string_view function, std::string_view line) {
    const size_t position = FindFunction(function, line);
    return Trimmed(line.substr(position + function.size())).starts_with('(');
}

Findings CheckCall(const Finding& about, std::string_view line, std::string_view function) {
    if (!IsDefinition(function, line)) {
        return CheckMarks(about, line, FindFunction(function, line), "call");
    }
    return {about.Problem("would break the script", "the library takes this definition for a call",
                          "leave no blank between make_resolv_conf and ()")};
}

Findings CheckCalls(const Script& script, const SettingLine& switched) {
    const std::string interface(switched.setting.interface);
    // The setting is read from the DHCP client's configuration.
    const Finding about = About({switched.setting}, velk::kClientScript, Impact::kNothing);
    const std::vector<size_t> indexes = LinesThatRun(script, interface, [&](std::string_view line) {
        return FindFunction(switched.key, line) != std::string_view::npos;
    });
    Findings findings = FindingsOfEach(indexes, [&](size_t index) {
        return CheckCall(about.At(index), script.lines[index], switched.key);
    });
    const bool is_called = std::ranges::any_of(
        indexes, [&](size_t i) { return !IsDefinition(switched.key, script.lines[i]); });
    if (!is_called) {
        findings.push_back(
            about.Problem("does not switch the name servers of a lease",
                          "no line that runs for " + interface + " calls make_resolv_conf",
                          "add a line with make_resolv_conf alone, with a '#' before it for off"));
    }
    return findings;
}

// `check` looks for the lines of one setting.
template <typename Check>
Findings CheckScript(Script script, Check check) {
    TextFile file = ReadTextFile(script.about.file);
    if (!HasPlainLines(file)) {
        return {};
    }
    script.lines = std::move(file.lines);
    Findings findings = CheckBlocks(script);
    Append(findings,
           FindingsOfEach(LinesOfSettings(script.about.file),
                          [&](const SettingLine& switched) { return check(script, switched); }));
    return findings;
}

}  // namespace

Findings CheckExitHooks() {
    return CheckScript(
        {About(SettingsHeldIn(velk::kExitHooks), velk::kExitHooks, Impact::kSetting), "$interface"},
        CheckCommands);
}

Findings CheckClientScript() {
    return CheckScript(
        {About(SettingsChanging(velk::kClientScript), velk::kClientScript, Impact::kNothing),
         "interface"},
        CheckCalls);
}

Findings CheckMarks(const Finding& about, std::string_view line, size_t position,
                    std::string_view noun) {
    if (std::ranges::count(line.substr(0, position), '#') < 2) {
        return {};
    }
    return {about.Problem(
        "cannot be switched on",
        "there are two '#' before the " + std::string(noun) + "; switching on removes only one",
        "leave one '#', in the first column")};
}

}  // namespace velkctl
