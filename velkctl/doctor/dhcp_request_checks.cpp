// dhcp_request_checks.cpp - whether the options that the DHCP client requests can be switched.
#include <optional>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "lib/dhcp/config_blocks.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/settings/device_files.h"

namespace velkctl {
namespace {

constexpr std::string_view kRequest = "request";
constexpr std::string_view kStatementEnd = ";";

// The request statements, as the setting that switches the option reads them.
class RequestCheck {
  public:
    RequestCheck(const Lines& lines, const SettingLine& option)
        : lines_(lines),
          option_(option.key),
          interface_(option.setting.interface),
          about_(About(option.setting, velk::kDhcpConfigFile, Impact::kSetting)) {}

    Findings Run() {
        velk::ConfigBlocks blocks(interface_, comment_aware());
        for (size_t i = 0; i < lines_.size(); ++i) {
            const bool is_in_scope = blocks.Concerns(lines_[i]);
            if (is_in_scope && (blocks.in_block() || !velk::Contains(lines_[i], "#"))) {
                TakeLine(i);
            }
        }
        if (is_open_) {
            AddUnended();
        }
        if (!begin_) {
            findings_.push_back(Absence());
        }
        return std::move(findings_);
    }

  private:
    bool comment_aware() const { return !interface_.empty(); }

    bool Has(size_t index, std::string_view word) const {
        return velk::HasWord(lines_[index], word, comment_aware());
    }

    // A line in scope. Once the library has met the option, the statement runs on for it to a line
    // that ends a statement without the option.
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
        if (!runs_on_) {
            return;
        }
        const bool ends = velk::Contains(lines_[index], kStatementEnd);
        const bool has_option = Has(index, option_);
        if (ends && !has_option && !is_open_) {
            findings_.push_back(
                about_.At(index)
                    .With(Impact::kNothing)
                    .Problem("would break the file when set to on once more",
                             option_ + " is added to " + Excerpt(lines_[index]) +
                                 ", too, while the request statement above has it already",
                             "move the request statement below it"));
        }
        runs_on_ = has_option || !ends;
        is_open_ = is_open_ && !ends;
    }

    void AddUnended() {
        findings_.push_back(about_.At(*begin_).Problem("is switched in the wrong statement",
                                                       "no ';' ends this request statement",
                                                       "write one after its last option"));
    }

    Finding Absence() const {
        if (const std::optional<size_t> block = SwitchedOffBlock()) {
            return about_.At(*block).Warning(
                "cannot be set while the method is static",
                "the interface's block is switched off, and no other request statement counts",
                "velkctl set " + interface_ + ".method dhcp, when DHCP is wanted");
        }
        return about_.Problem("cannot be set",
                              "there is no request statement" +
                                  (interface_.empty() ? "" : " that counts for " + interface_),
                              "add one: request subnet-mask, broadcast-address, routers;");
    }

    // Returns the interface's block that is off and has a request statement.
    std::optional<size_t> SwitchedOffBlock() const {
        velk::ConfigBlocks blocks(interface_, /*comment_aware=*/false);
        std::optional<size_t> begin;
        for (size_t i = 0; i < lines_.size(); ++i) {
            const bool was_in_block = blocks.in_block();
            (void)blocks.Concerns(lines_[i]);
            if (!was_in_block && blocks.in_block() && IsComment(lines_[i])) {
                begin = i;
            }
            if (begin && blocks.in_block() &&
                velk::HasWord(lines_[i], kRequest, /*comment_aware=*/false)) {
                return begin;
            }
        }
        return std::nullopt;
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

Findings CheckDhcpRequests(const Lines& lines) {
    Findings findings;
    for (const SettingLine& option : LinesOfSettings(velk::kDhcpConfigFile)) {
        if (!option.key.empty()) {
            Append(findings, RequestCheck(lines, option).Run());
        }
    }
    return findings;
}

}  // namespace velkctl
