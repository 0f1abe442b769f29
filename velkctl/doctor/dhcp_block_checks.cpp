// dhcp_block_checks.cpp - whether an interface's block can be switched off and on with the method.
#include <optional>
#include <string>
#include <string_view>

#include "lib/base/comment_switch.h"
#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "lib/dhcp/config_blocks.h"
#include "velk.h"
#include "velkctl/doctor/dhcp_checks.h"

namespace velkctl {
namespace {

class BlockCheck {
  public:
    BlockCheck(const Lines& lines, const std::string& interface)
        : lines_(lines), interface_(interface) {}

    Findings Run() {
        velk::ConfigBlocks blocks(interface_, /*comment_aware=*/false);
        for (size_t i = 0; i < lines_.size(); ++i) {
            const bool was_in_block = blocks.in_block();
            const bool concerns = blocks.Concerns(lines_[i]);
            if (!was_in_block && blocks.in_block()) {
                begin_ = i;
                is_off_ = velk::IsCommentedOut(lines_[i], std::string_view::npos);
            }
            if (was_in_block || blocks.in_block()) {
                CheckMember(i);
            } else if (concerns && velk::Contains(lines_[i], velk::kBlockEnd)) {
                AddStrayEnd(i);
            }
        }
        if (!begin_) {
            AddAbsence();
        }
        return std::move(findings_);
    }

  private:
    // What every finding has in common. The method itself is read from its stanza.
    Finding About() const {
        return {.subject = interface_ + ".method",
                .file = velk::kDhcpConfigFile,
                .concerns = {{.id = VELK_CMD_IP_METHOD, .interface = interface_}}};
    }

    void AddStrayEnd(size_t index) {
        Finding finding = About();
        finding.effect = "switches a line that is not its own";
        finding.what = "a '}' outside the blocks of interfaces";
        finding.line = index + 1;
        finding.remedy = "move these braces into a file of their own, and include it here";
        findings_.push_back(finding);
    }

    // What switching the block on makes of a line: its first "#" is deleted.
    void CheckMember(size_t index) {
        const std::string_view line = Trimmed(lines_[index]);
        if (!velk::Contains(line, "#")) {
            return;
        }
        Finding finding = About();
        finding.effect = "would break the file when set to dhcp";
        finding.line = index + 1;
        finding.remedy = "put the remark above the block";
        if (!line.starts_with('#')) {
            finding.what = "the '#' of the remark in " + Excerpt(line) + " is taken away";
        } else if (!is_off_) {
            finding.what = "the '#' of " + Excerpt(line) + " is taken away";
        } else if (LooksLikeRemark(line)) {
            finding.severity = Severity::kWarning;
            finding.effect = "may break the file when set to dhcp";
            finding.what =
                "the '#' of " + Excerpt(line) + " is taken away, and it looks like a remark";
        } else {
            return;
        }
        findings_.push_back(finding);
    }

    // A line that begins with one "#", and is no statement or part of one without it.
    static bool LooksLikeRemark(std::string_view line) {
        const std::string_view text = Trimmed(line.substr(1));
        return !text.empty() && !text.starts_with('#') &&
               !velk::Contains(";{},", text.substr(text.size() - 1));
    }

    void AddAbsence() {
        const std::string opening = "interface \"" + interface_ + "\" {";
        Finding finding = About();
        for (size_t i = 0; i < lines_.size(); ++i) {
            if (velk::Contains(lines_[i], "interface") && velk::Contains(lines_[i], interface_)) {
                finding.effect = "does not switch the interface's block";
                finding.what =
                    "the library does not recognise the opening line " + Excerpt(lines_[i]);
                finding.line = i + 1;
                finding.remedy = "write: " + opening;
                findings_.push_back(finding);
                return;
            }
        }
        finding.severity = Severity::kWarning;
        finding.effect = "switches nothing here";
        finding.what = "there is no block of the interface";
        finding.remedy =
            "add one: \"" + opening + "\", its statements, \"}\", each on a line of its own";
        findings_.push_back(finding);
    }

    const Lines& lines_;
    const std::string interface_;
    std::optional<size_t> begin_{};
    bool is_off_ = false;
    Findings findings_{};
};

}  // namespace

Findings CheckDhcpBlock(const Lines& lines, const std::string& interface) {
    return BlockCheck(lines, interface).Run();
}

}  // namespace velkctl
