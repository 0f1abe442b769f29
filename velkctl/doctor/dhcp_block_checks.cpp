// dhcp_block_checks.cpp - whether an interface's block can be switched off and on with the method.
#include <optional>

#include "lib/base/comment_switch.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "lib/dhcp/config_blocks.h"
#include "velkctl/doctor/dhcp_checks.h"

namespace velkctl {
namespace {

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

}  // namespace

Findings CheckDhcpBlock(const Lines& lines, const std::string& interface) {
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

}  // namespace velkctl
