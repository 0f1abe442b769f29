// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dhcp_checks.cpp - checks that the library can find the blocks of /etc/dhclient.conf and the
// options that the client requests.
#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/comment_switch.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "lib/dhcp/config_blocks.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

constexpr std::string_view kInterface = "interface";
constexpr std::string_view kRequest = "request";
constexpr std::string_view kStatementEnd = ";";

// About a block that is not as the library reads it. The method is read from its stanza.
Finding AboutBlocks() {
    Finding about =
        About(SettingsChanging(velk::kDhcpConfigFile), velk::kDhcpConfigFile, Impact::kBoth);
    about.affected = SettingsHeldIn(velk::kDhcpConfigFile);
    about.remedy = "write the closing brace on a line of its own";
    return about;
}

// A line of the file, and its place in the blocks as the library finds them.
struct BlockLine {
    size_t index;
    size_t begin;      // the index of the line that opened the last block
    bool is_in_block;  // also true for the lines that begin and end it
    bool is_in_scope;  // counts for the interface
    bool is_open;      // the block goes on below it

    bool opens() const { return is_in_block && index == begin; }
};

std::vector<BlockLine> BlockLinesOf(const Lines& lines, std::string_view interface,
                                    bool comment_aware) {
    velk::ConfigBlocks blocks(interface, comment_aware);
    std::vector<BlockLine> found;
    size_t begin = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
        const bool was_in_block = blocks.in_block();
        const bool is_in_scope = blocks.IsInScope(lines[i]);
        const bool is_open = blocks.in_block();
        begin = !was_in_block && is_open ? i : begin;
        found.push_back({i, begin, was_in_block || is_open, is_in_scope, is_open});
    }
    return found;
}

bool OpensBrace(const Lines& lines, size_t index) {
    const std::string_view next = index + 1 < lines.size() ? Trimmed(lines[index + 1]) : "";
    return velk::Contains(lines[index], "{") || next == "{" || next == "#{";
}

// A line at which the library takes a block to begin.
Findings CheckOpening(const Lines& lines, size_t index) {
    const Finding about = AboutBlocks().At(index);
    if (IsComment(lines[index]) && !OpensBrace(lines, index)) {
        return {about.Problem(
            "are not found, or switched for the wrong lines",
            "the library takes a comment for the start of a block; it is " + Excerpt(lines[index]),
            "remove the word 'interface' from the comment")};
    }
    if (velk::Contains(lines[index], velk::kBlockEnd)) {
        return {about.Problem(
            "are switched for the wrong lines",
            "the block ends on its first line; all lines up to the next '}' count as its own")};
    }
    return {};
}

// The blocks of all interfaces, whether switched off or not.
Findings CheckBlockBounds(const Lines& lines) {
    // Every opening line holds this word, so every block is the wanted one.
    const std::vector<BlockLine> block_lines =
        BlockLinesOf(lines, kInterface, /*comment_aware=*/false);
    Findings findings = FindingsOfEach(block_lines, [&](const BlockLine& own) {
        return own.opens() ? CheckOpening(lines, own.index) : Findings();
    });
    if (!block_lines.empty() && block_lines.back().is_open) {
        findings.push_back(AboutBlocks()
                               .At(block_lines.back().begin)
                               .Problem("are switched for the wrong lines",
                                        "no line with '}' as a word ends the block"));
    }
    return findings;
}

// True for a line that begins with one "#", and is no statement or part of one without it.
bool LooksLikeComment(std::string_view line) {
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
    const std::string mark = "the '#' of " + std::string(is_comment ? "" : "the comment in ") +
                             Excerpt(line) + " is removed";
    if (!is_comment || !is_off) {
        return {about.Problem("would break the file when set to dhcp", mark)};
    }
    if (LooksLikeComment(line)) {
        return {about.Warning("may break the file when set to dhcp",
                              mark + "; it looks like a comment")};
    }
    return {};
}

Finding NoBlock(const Finding& about, const Lines& lines, const std::string& interface) {
    const std::string opening = "interface \"" + interface + "\" {";
    const std::vector<size_t> similar = IndexesOf(lines, [&](std::string_view line) {
        return velk::Contains(line, kInterface) && velk::Contains(line, interface);
    });
    if (!similar.empty()) {
        return about.At(similar.front())
            .Problem("does not switch the interface's block",
                     "the library does not recognise the opening line; it is " +
                         Excerpt(lines[similar.front()]),
                     "write: " + opening);
    }
    return about.Warning("switches nothing here", "there is no block of the interface",
                         "add: \"" + opening + "\", its statements, \"}\", each on its own line");
}

// Switching the interface's block changes its lines, and any other line in scope with a brace.
Findings CheckBlockLine(const Finding& about, const Lines& lines, const BlockLine& own) {
    const std::string& line = lines[own.index];
    if (own.is_in_block) {
        const bool is_off = velk::IsCommentedOut(lines[own.begin], std::string_view::npos);
        return CheckMember(about, Trimmed(line), is_off);
    }
    if (!own.is_in_scope || !velk::Contains(line, velk::kBlockEnd)) {
        return {};
    }
    return {about.Problem("also switches a line outside its block",
                          "a '}' is outside the blocks of interfaces",
                          "move these braces into a file of their own, and include it here")};
}

// The interface's block, which is switched with the method.
Findings CheckBlockOf(const Lines& lines, const std::string& interface) {
    // The method itself is read from its stanza.
    const Finding about =
        About(SettingsOf(VELK_CMD_IP_METHOD, interface), velk::kDhcpConfigFile, Impact::kNothing)
            .FixedBy("put the comment above the block");
    const std::vector<BlockLine> block_lines =
        BlockLinesOf(lines, interface, /*comment_aware=*/false);
    Findings findings = FindingsOfEach(block_lines, [&](const BlockLine& own) {
        return CheckBlockLine(about.At(own.index), lines, own);
    });
    if (std::ranges::none_of(block_lines, &BlockLine::is_in_block)) {
        findings.push_back(NoBlock(about, lines, interface));
    }
    return findings;
}

// The request statements, as the setting that switches the option reads them.
class RequestCheck {
  public:
    RequestCheck(const Lines& lines, const SettingLine& option)
        : lines_(lines),
          option_(option.key),
          interface_(option.setting.interface),
          about_(About({option.setting}, velk::kDhcpConfigFile, Impact::kSetting)) {}

    Findings Run() {
        for (const BlockLine& own : BlockLinesOf(lines_, interface_, !interface_.empty())) {
            const bool is_comment = velk::Contains(lines_[own.index], "#");
            if (own.is_in_scope && (own.is_open || !is_comment)) {
                TakeLine(own.index);
            }
        }
        if (is_open_) {
            AddUnended();
        }
        if (!begin_) {
            findings_.push_back(NoStatement());
        }
        return std::move(findings_);
    }

  private:
    bool Has(size_t index, std::string_view word) const {
        return velk::HasWord(lines_[index], word, /*comment_aware=*/!interface_.empty());
    }

    void TakeLine(size_t index) {
        if (is_open_ && Has(index, velk::kBlockEnd)) {
            AddUnended();
            is_open_ = false;
        }
        if (Has(index, kRequest)) {
            begin_ = index;
            is_open_ = true;
            runs_on_ = true;
        }
        if (runs_on_) {
            TakeLineOfStatement(index);
        }
    }

    // Once the library has met the option, the statement runs on for it to a line that ends a
    // statement without the option.
    void TakeLineOfStatement(size_t index) {
        const bool ends = velk::Contains(lines_[index], kStatementEnd);
        const bool has_option = Has(index, option_);
        if (ends && !has_option && !is_open_) {
            AddSecond(index);
        }
        runs_on_ = has_option || !ends;
        is_open_ = is_open_ && !ends;
    }

    void AddSecond(size_t index) {
        findings_.push_back(about_.At(index)
                                .With(Impact::kNothing)
                                .Problem("would break the file when set to on once more",
                                         option_ + " is also added to " + Excerpt(lines_[index]) +
                                             "; the request statement above has it already",
                                         "move the request statement below it"));
    }

    void AddUnended() {
        findings_.push_back(about_.At(*begin_).Problem("is switched in the wrong statement",
                                                       "no ';' ends this request statement",
                                                       "write one after its last option"));
    }

    Finding NoStatement() const {
        const std::vector<BlockLine> block_lines =
            BlockLinesOf(lines_, interface_, /*comment_aware=*/false);
        const auto found = std::ranges::find_if(block_lines, [&](const BlockLine& one) {
            return one.is_open && IsComment(lines_[one.begin]) &&
                   velk::HasWord(lines_[one.index], kRequest, /*comment_aware=*/false);
        });
        if (found != block_lines.end()) {
            return about_.At(found->begin)
                .Of(Severity::kNote, "cannot be set while the method is static")
                .Because(
                    "the block of the interface is switched off; no other request statement "
                    "applies",
                    "if DHCP is wanted: velkctl set " + interface_ + ".method dhcp");
        }
        return about_.Problem("cannot be set",
                              interface_.empty() ? "there is no request statement"
                                                 : "no request statement applies to " + interface_,
                              "add one: request subnet-mask, broadcast-address, routers;");
    }

    const Lines& lines_;
    const std::string option_;
    const std::string interface_;  // empty: the option of all interfaces
    const Finding about_;
    std::optional<size_t> begin_{};  // the start of the last request statement
    bool is_open_ = false;           // the statement has no ";" yet
    bool runs_on_ = false;           // for the library, the next line is a part of it
    Findings findings_{};
};

}  // namespace

Findings CheckDhcpConfig() {
    const TextFile file = ReadTextFile(velk::kDhcpConfigFile);
    if (!HasPlainLines(file)) {
        return {};
    }
    Findings findings = CheckBlockBounds(file.lines);
    if (!findings.empty()) {
        return findings;  // the library misreads the lines below them
    }
    Append(findings, FindingsOfEach(kInterfaces, [&](const std::string& interface) {
               return CheckBlockOf(file.lines, interface);
           }));
    Append(findings,
           FindingsOfEach(LinesOfSettings(velk::kDhcpConfigFile), [&](const SettingLine& option) {
               return option.key.empty() ? Findings() : RequestCheck(file.lines, option).Run();
           }));
    return findings;
}

}  // namespace velkctl
