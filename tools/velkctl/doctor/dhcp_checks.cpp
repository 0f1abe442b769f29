// dhcp_checks.cpp - whether the library finds its way about the DHCP client's configuration.
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "dhcp/config_blocks.h"
#include "frame/comment_switch.h"
#include "frame/words.h"
#include "velk.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/text_file.h"

namespace velkctl {
namespace {

using Lines = std::vector<std::string>;

constexpr std::string_view kInterface = "interface";
constexpr std::string_view kRequest = "request";
constexpr std::string_view kStatementEnd = ";";
constexpr std::string_view kBlockEnd = "}";

Finding FindingAt(Severity severity, std::string subject, std::string effect, std::string what,
                  size_t index, std::string remedy) {
    return {severity,         std::move(subject),    std::move(effect),
            std::move(what),  velk::kDhcpConfigFile, index + 1,
            std::move(remedy)};
}

bool IsComment(std::string_view line) {
    return Trimmed(line).starts_with('#');
}

bool OpensBrace(const Lines& lines, size_t index) {
    if (velk::Contains(lines[index], "{") || index + 1 == lines.size()) {
        return velk::Contains(lines[index], "{");
    }
    const std::string_view next = Trimmed(lines[index + 1]);
    return next == "{" || next == "#{";
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
        if (was_in_block || !blocks.in_block()) {
            continue;
        }
        begin = i;
        if (IsComment(lines[i]) && !OpensBrace(lines, i)) {
            findings.push_back(FindingAt(
                Severity::kProblem, "method, dhcp-dns and dhcp-ntp",
                "are not found, or switched for the wrong lines",
                "the remark " + Excerpt(lines[i]) + " is taken for the opening line of a block", i,
                "word it without 'interface'"));
        } else if (velk::Contains(lines[i], kBlockEnd)) {
            findings.push_back(FindingAt(
                Severity::kProblem, "method, dhcp-dns and dhcp-ntp",
                "are switched for the wrong lines",
                "the block ends where it begins; its interface's lines run on to the next '}'", i,
                "write the closing brace on a line of its own"));
        }
    }
    if (blocks.in_block()) {
        findings.push_back(FindingAt(Severity::kProblem, "method, dhcp-dns and dhcp-ntp",
                                     "are switched for the wrong lines",
                                     "no line with '}' as a word ends the block", begin,
                                     "write the closing brace on a line of its own"));
    }
    return findings;
}

// An interface's block as switching the method sees it.
class BlockCheck {
  public:
    BlockCheck(const Lines& lines, const std::string& interface)
        : lines_(lines), interface_(interface), setting_(interface + ".method") {}

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
            } else if (concerns && velk::Contains(lines_[i], kBlockEnd)) {
                Add(Severity::kProblem, "switches a line that is not its own",
                    "a '}' outside the blocks of interfaces", i,
                    "move these braces into a file of their own, and include it here");
            }
        }
        if (!begin_) {
            CheckAbsence();
        }
        return std::move(findings_);
    }

  private:
    void Add(Severity severity, std::string effect, std::string what, size_t index,
             std::string remedy) {
        findings_.push_back(FindingAt(severity, setting_, std::move(effect), std::move(what), index,
                                      std::move(remedy)));
    }

    // What switching the block on makes of a line: its first "#" is deleted.
    void CheckMember(size_t index) {
        const std::string_view line = Trimmed(lines_[index]);
        if (!velk::Contains(line, "#")) {
            return;
        }
        const std::string effect = "would break the file when set to dhcp";
        if (!line.starts_with('#')) {
            Add(Severity::kProblem, effect,
                "the '#' of the remark in " + Excerpt(line) + " is taken away", index,
                "put the remark above the block");
            return;
        }
        if (!is_off_) {
            Add(Severity::kProblem, effect, "the '#' of " + Excerpt(line) + " is taken away", index,
                "put the remark above the block");
            return;
        }
        const std::string_view text = Trimmed(line.substr(1));
        if (!text.empty() && !text.starts_with('#') && !EndsStatement(text)) {
            Add(Severity::kWarning, "may break the file when set to dhcp",
                "the '#' of " + Excerpt(line) + " is taken away, and it looks like a remark", index,
                "put remarks above the block");
        }
    }

    static bool EndsStatement(std::string_view text) {
        return velk::Contains(";{},", text.substr(text.size() - 1));
    }

    void CheckAbsence() {
        const std::string opening = "interface \"" + interface_ + "\" {";
        for (size_t i = 0; i < lines_.size(); ++i) {
            if (velk::Contains(lines_[i], kInterface) && velk::Contains(lines_[i], interface_)) {
                Add(Severity::kProblem, "does not switch the interface's block",
                    "the library does not recognise the opening line " + Excerpt(lines_[i]), i,
                    "write: " + opening);
                return;
            }
        }
        findings_.push_back({Severity::kWarning, setting_, "switches nothing here",
                             "there is no block of the interface", velk::kDhcpConfigFile, 0,
                             "add one: \"" + opening +
                                 "\", its statements, \"}\", each on a line "
                                 "of its own"});
    }

    const Lines& lines_;
    const std::string interface_;
    const std::string setting_;
    std::optional<size_t> begin_{};
    bool is_off_ = false;
    Findings findings_{};
};

// An option of the request statements, as the setting that switches it sees them.
struct Option {
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
        if (is_open_ && Has(index, kBlockEnd)) {
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

    void AddUnended() {
        findings_.push_back(FindingAt(
            Severity::kProblem, option_.setting, "is switched in the wrong statement",
            "no ';' ends this request statement", *begin_, "write one behind its last option"));
    }

    void AddStray(size_t index) {
        findings_.push_back(FindingAt(Severity::kProblem, option_.setting,
                                      "would break the file when set to on once more",
                                      option_.name + " is added to " + Excerpt(lines_[index]) +
                                          ", too, while the request statement above has it already",
                                      index, "move the request statement below it"));
    }

    void AddAbsent() {
        if (const std::optional<size_t> block = SwitchedOffBlock()) {
            findings_.push_back(FindingAt(
                Severity::kWarning, option_.setting, "cannot be set while the method is static",
                "the interface's block is switched off, and no other request statement counts",
                *block, "velkctl set " + option_.interface + ".method dhcp, when DHCP is wanted"));
            return;
        }
        const std::string reach =
            option_.interface.empty() ? "" : " that counts for " + option_.interface;
        findings_.push_back({Severity::kProblem, option_.setting, "cannot be set",
                             "there is no request statement" + reach, velk::kDhcpConfigFile, 0,
                             "add one: request subnet-mask, broadcast-address, routers;"});
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

Findings CheckDhcpConfig() {
    const TextFile file = ReadTextFile(velk::kDhcpConfigFile);
    if (file.state != FileState::kText) {
        return {};
    }
    const std::array<Option, 3> options{{
        {"eth0.dhcp-dns", VELK_WIRED_INTERFACE, "domain-name-servers", true},
        {"eth1.dhcp-dns", VELK_WIRELESS_INTERFACE, "domain-name-servers", true},
        {"dhcp-ntp", "", "ntp-servers", false},
    }};
    Findings findings = CheckBlockLines(file.lines);
    if (!findings.empty()) {
        return findings;  // what is below them is not what it seems, to the library
    }
    Append(findings, BlockCheck(file.lines, VELK_WIRED_INTERFACE).Run());
    Append(findings, BlockCheck(file.lines, VELK_WIRELESS_INTERFACE).Run());
    for (const Option& option : options) {
        Append(findings, RequestCheck(file.lines, option).Run());
    }
    return findings;
}

}  // namespace velkctl
