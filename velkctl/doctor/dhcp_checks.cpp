// dhcp_checks.cpp - whether the library finds its way about the DHCP client's configuration.
#include "velkctl/doctor/dhcp_checks.h"

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
    Append(findings, CheckDhcpBlock(file.lines, VELK_WIRED_INTERFACE));
    Append(findings, CheckDhcpBlock(file.lines, VELK_WIRELESS_INTERFACE));
    Append(findings, CheckDhcpRequests(file.lines));
    return findings;
}

}  // namespace velkctl
