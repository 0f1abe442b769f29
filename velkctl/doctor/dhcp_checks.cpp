// dhcp_checks.cpp - whether the library finds its way about the DHCP client's configuration.
#include "velkctl/doctor/dhcp_checks.h"

#include <string>
#include <string_view>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "lib/dhcp/config_blocks.h"
#include "velk.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/files/text_file.h"

namespace velkctl {
namespace {

constexpr std::string_view kInterface = "interface";

// What every finding on a block that is not what it seems has in common.
Finding At(size_t index) {
    return {.subject = "method, dhcp-dns and dhcp-ntp",
            .effect = "are switched for the wrong lines",
            .file = velk::kDhcpConfigFile,
            .line = index + 1,
            .remedy = "write the closing brace on a line of its own",
            // The method is read from its stanza.
            .concerns = {{.id = VELK_CMD_DHCP_DNS}, {.id = VELK_CMD_DHCP_NTP}},
            .hinders = Hinders::kSetting};
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
    Finding finding = At(index);
    if (IsComment(lines[index]) && !OpensBrace(lines, index)) {
        finding.effect = "are not found, or switched for the wrong lines";
        finding.what =
            "the remark " + Excerpt(lines[index]) + " is taken for the opening line of a block";
        finding.remedy = "word it without 'interface'";
        return {finding};
    }
    if (velk::Contains(lines[index], velk::kBlockEnd)) {
        finding.what =
            "the block ends where it begins; its interface's lines run on to the next '}'";
        return {finding};
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
        Finding finding = At(begin);
        finding.what = "no line with '}' as a word ends the block";
        findings.push_back(finding);
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
        return findings;  // what is below them is not what it seems, to the library
    }
    Append(findings, CheckDhcpBlock(file.lines, VELK_WIRED_INTERFACE));
    Append(findings, CheckDhcpBlock(file.lines, VELK_WIRELESS_INTERFACE));
    Append(findings, CheckDhcpRequests(file.lines));
    return findings;
}

}  // namespace velkctl
