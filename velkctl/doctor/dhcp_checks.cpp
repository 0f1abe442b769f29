// dhcp_checks.cpp - whether the library finds its way about the DHCP client's configuration.
#include "lib/base/comment_switch.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "lib/dhcp/config_blocks.h"
#include "velkctl/doctor/checks.h"

namespace velkctl {
namespace {

constexpr std::string_view kInterface = "interface";

// About a block that is not as the library reads it. The method is read from its stanza.
Finding AboutBlocks() {
    return {.subject = "method, dhcp-dns and dhcp-ntp",
            .file = velk::kDhcpConfigFile,
            .remedy = "write the closing brace on a line of its own",
            .affected = SettingsHeldIn(velk::kDhcpConfigFile),
            .impact = Impact::kSetting};
}

bool OpensBrace(const Lines& lines, size_t index) {
    if (velk::Contains(lines[index], "{") || index + 1 == lines.size()) {
        return velk::Contains(lines[index], "{");
    }
    const std::string_view next = Trimmed(lines[index + 1]);
    return next == "{" || next == "#{";
}

// A line at which the library takes a block to begin.
Findings CheckOpening(const Lines& lines, size_t index) {
    const Finding about = AboutBlocks().At(index);
    if (IsComment(lines[index]) && !OpensBrace(lines, index)) {
        return {about.Problem(
            "are not found, or switched for the wrong lines",
            "the remark " + Excerpt(lines[index]) + " is taken for the opening line of a block",
            "word it without 'interface'")};
    }
    if (velk::Contains(lines[index], velk::kBlockEnd)) {
        return {about.Problem(
            "are switched for the wrong lines",
            "the block ends where it begins; its interface's lines run on to the next '}'")};
    }
    return {};
}

// The blocks of all interfaces, whether switched off or not.
Findings CheckBlockLines(const Lines& lines) {
    // Every opening line holds this word, so every block is the wanted one.
    velk::ConfigBlocks blocks(kInterface, /*comment_aware=*/false);
    Findings findings;
    size_t begin = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
        const bool was_in_block = blocks.in_block();
        (void)blocks.Concerns(lines[i]);
        if (!was_in_block && blocks.in_block()) {
            begin = i;
            Append(findings, CheckOpening(lines, i));
        }
    }
    if (blocks.in_block()) {
        findings.push_back(AboutBlocks().At(begin).Problem(
            "are switched for the wrong lines", "no line with '}' as a word ends the block"));
    }
    return findings;
}

// True for a line that begins with one "#", and is no statement or part of one without it.
bool LooksLikeRemark(std::string_view line) {
    const std::string_view text = Trimmed(line.substr(1));
    return !text.empty() && !text.starts_with('#') &&
           !velk::Contains(";{},", text.substr(text.size() - 1));
}

// A line of a block. Switching the block on deletes the line's first "#".
Findings CheckMember(const Finding& about, std::string_view line, bool is_off) {
    if (!velk::Contains(line, "#")) {
        return {};
    }
    const bool is_comment = line.starts_with('#');
    const std::string mark = "the '#' of " + std::string(is_comment ? "" : "the remark in ") +
                             Excerpt(line) + " is taken away";
    if (!is_comment || !is_off) {
        return {about.Problem("would break the file when set to dhcp", mark)};
    }
    return LooksLikeRemark(line) ? Findings{about.Warning("may break the file when set to dhcp",
                                                          mark + ", and it looks like a remark")}
                                 : Findings{};
}

Finding Absence(const Finding& about, const Lines& lines, const std::string& interface) {
    const std::string opening = "interface \"" + interface + "\" {";
    for (size_t i = 0; i < lines.size(); ++i) {
        if (velk::Contains(lines[i], "interface") && velk::Contains(lines[i], interface)) {
            return about.At(i).Problem(
                "does not switch the interface's block",
                "the library does not recognise the opening line " + Excerpt(lines[i]),
                "write: " + opening);
        }
    }
    return about.Warning(
        "switches nothing here", "there is no block of the interface",
        "add one: \"" + opening + "\", its statements, \"}\", each on a line of its own");
}

// The interface's block, which is switched with the method.
Findings CheckBlockOf(const Lines& lines, const std::string& interface) {
    // The method itself is read from its stanza.
    const Finding about{.subject = interface + ".method",
                        .file = velk::kDhcpConfigFile,
                        .remedy = "put the remark above the block",
                        .affected = SettingsOf(VELK_CMD_IP_METHOD, interface)};
    velk::ConfigBlocks blocks(interface, /*comment_aware=*/false);
    Findings findings;
    bool is_off = false;
    bool has_block = false;
    for (size_t i = 0; i < lines.size(); ++i) {
        const bool was_in_block = blocks.in_block();
        const bool is_in_scope = blocks.Concerns(lines[i]);
        if (!was_in_block && blocks.in_block()) {
            has_block = true;
            is_off = velk::IsCommentedOut(lines[i], std::string_view::npos);
        }
        if (was_in_block || blocks.in_block()) {
            Append(findings, CheckMember(about.At(i), Trimmed(lines[i]), is_off));
        } else if (is_in_scope && velk::Contains(lines[i], velk::kBlockEnd)) {
            findings.push_back(about.At(i).Problem(
                "switches a line that is not its own", "a '}' outside the blocks of interfaces",
                "move these braces into a file of their own, and include it here"));
        }
    }
    if (!has_block) {
        findings.push_back(Absence(about, lines, interface));
    }
    return findings;
}

}  // namespace

Findings CheckDhcpConfig() {
    const TextFile file = ReadTextFile(velk::kDhcpConfigFile);
    if (!HasPlainLines(file)) {
        return {};
    }
    Findings findings = CheckBlockLines(file.lines);
    if (!findings.empty()) {
        return findings;  // the library misreads the lines below them
    }
    Append(findings, CheckBlockOf(file.lines, VELK_WIRED_INTERFACE));
    Append(findings, CheckBlockOf(file.lines, VELK_WIRELESS_INTERFACE));
    Append(findings, CheckDhcpRequests(file.lines));
    return findings;
}

}  // namespace velkctl
