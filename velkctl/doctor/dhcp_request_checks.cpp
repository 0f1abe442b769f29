// dhcp_request_checks.cpp - whether the options that the DHCP client requests can be switched.
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "lib/dhcp/config_blocks.h"
#include "velk.h"
#include "velkctl/doctor/dhcp_checks.h"

namespace velkctl {
namespace {

constexpr std::string_view kRequest = "request";
constexpr std::string_view kStatementEnd = ";";

// An option of the request statements, as the setting that switches it sees them.
struct Option {
    uint32_t id;
    std::string setting;
    std::string interface;  // empty: of all
    std::string name;
    bool comment_aware;
};

class RequestCheck {
  public:
    RequestCheck(const Lines& lines, const Option& option) : lines_(lines), option_(option) {}

    Findings Run() {
        velk::ConfigBlocks blocks(option_.interface, option_.comment_aware);
        for (size_t i = 0; i < lines_.size(); ++i) {
            const bool concerns = blocks.Concerns(lines_[i]);
            if (concerns && (blocks.in_block() || !velk::Contains(lines_[i], "#"))) {
                TakeLine(i);
            }
        }
        if (is_open_) {
            AddUnended();
        }
        if (!begin_) {
            AddAbsent();
        }
        return std::move(findings_);
    }

  private:
    bool Has(size_t index, std::string_view word) const {
        return velk::HasWord(lines_[index], word, option_.comment_aware);
    }

    // A line in scope. What the library takes for a part of the statement goes on, once it has met
    // the option, up to a line that ends a statement without naming it.
    void TakeLine(size_t index) {
        if (is_open_ && Has(index, velk::kBlockEnd)) {
            AddUnended();
            is_open_ = false;
        }
        if (Has(index, kRequest)) {
            begin_ = index;
            is_open_ = true;
            is_held_ = true;
        }
        if (!is_held_) {
            return;
        }
        const bool ends = velk::Contains(lines_[index], kStatementEnd);
        const bool has_option = Has(index, option_.name);
        if (ends && !has_option && !is_open_) {
            AddStray(index);
        }
        is_held_ = has_option || !ends;
        is_open_ = is_open_ && !ends;
    }

    // What every finding has in common.
    Finding About() const {
        return {.subject = option_.setting,
                .file = velk::kDhcpConfigFile,
                .concerns = {{.id = option_.id, .interface = option_.interface}},
                .hinders = Hinders::kSetting};
    }

    void AddUnended() {
        Finding finding = About();
        finding.effect = "is switched in the wrong statement";
        finding.what = "no ';' ends this request statement";
        finding.line = *begin_ + 1;
        finding.remedy = "write one behind its last option";
        findings_.push_back(finding);
    }

    void AddStray(size_t index) {
        Finding finding = About();
        finding.effect = "would break the file when set to on once more";
        finding.what = option_.name + " is added to " + Excerpt(lines_[index]) +
                       ", too, while the request statement above has it already";
        finding.line = index + 1;
        finding.remedy = "move the request statement below it";
        finding.hinders = Hinders::kNothing;
        findings_.push_back(finding);
    }

    void AddAbsent() {
        Finding finding = About();
        if (const std::optional<size_t> block = SwitchedOffBlock()) {
            finding.severity = Severity::kWarning;
            finding.effect = "cannot be set while the method is static";
            finding.what =
                "the interface's block is switched off, and no other request statement counts";
            finding.line = *block + 1;
            finding.remedy =
                "velkctl set " + option_.interface + ".method dhcp, when DHCP is wanted";
        } else {
            const std::string reach =
                option_.interface.empty() ? "" : " that counts for " + option_.interface;
            finding.effect = "cannot be set";
            finding.what = "there is no request statement" + reach;
            finding.remedy = "add one: request subnet-mask, broadcast-address, routers;";
        }
        findings_.push_back(finding);
    }

    // A block of the interface that would have a request statement, were it on.
    std::optional<size_t> SwitchedOffBlock() const {
        velk::ConfigBlocks blocks(option_.interface, /*comment_aware=*/false);
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
    const Option& option_;
    std::optional<size_t> begin_{};  // of the last request statement
    bool is_open_ = false;           // no ";" yet
    bool is_held_ = false;           // the library takes the next line for a part of it
    Findings findings_{};
};

}  // namespace

Findings CheckDhcpRequests(const Lines& lines) {
    const std::array<Option, 3> options{{
        {VELK_CMD_DHCP_DNS, "eth0.dhcp-dns", VELK_WIRED_INTERFACE, "domain-name-servers", true},
        {VELK_CMD_DHCP_DNS, "eth1.dhcp-dns", VELK_WIRELESS_INTERFACE, "domain-name-servers", true},
        {VELK_CMD_DHCP_NTP, "dhcp-ntp", "", "ntp-servers", false},
    }};
    Findings findings;
    for (const Option& option : options) {
        Append(findings, RequestCheck(lines, option).Run());
    }
    return findings;
}

}  // namespace velkctl
