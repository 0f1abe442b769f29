// value_line_checks.cpp - whether the library finds the lines of a stanza that hold addresses.
#include "velkctl/doctor/value_line_checks.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "lib/ipconf/interfaces_file.h"
#include "velk.h"
#include "velkctl/files/text_file.h"

namespace velkctl {
namespace {

// A line of a stanza that the library reads and sets.
struct ValueLine {
    uint32_t id;
    std::string_view key;   // with the blank that the library looks for
    std::string_view name;  // its first word, and the last part of the setting's name
    std::string_view example;
};

constexpr std::array<ValueLine, 3> kValueLines{{
    {VELK_CMD_IP_ADDRESS, velk::kAddressKey, "address", "address 192.168.0.10"},
    {VELK_CMD_NETMASK, velk::kNetmaskKey, "netmask", "netmask 255.255.255.0"},
    {VELK_CMD_GATEWAY, velk::kGatewayKey, "gateway", "gateway 192.168.0.1"},
}};

// With one of these ifup takes a stanza for ended; the library does with "iface" in the first
// column alone.
constexpr std::array<std::string_view, 5> kStarts{"iface", "auto", "mapping", "source",
                                                  "source-directory"};
constexpr std::string_view kAllow = "allow-";

std::string_view FirstWord(std::string_view line) {
    return velk::TakeWord(line);
}

bool EndsStanzaForIfup(std::string_view line) {
    const std::string_view word = FirstWord(line);
    return word.starts_with(kAllow) || std::ranges::find(kStarts, word) != kStarts.end();
}

class ValueCheck {
  public:
    ValueCheck(const Lines& lines, const Stanza& stanza, const ValueLine& value)
        : lines_(lines),
          stanza_(stanza),
          value_(value),
          name_(value.name),
          line_to_add_("a line \"" + std::string(value.example) + "\""),
          stray_(FindLine(lines, stanza.header + 1, stanza.end, EndsStanzaForIfup)) {}

    Findings Run() const {
        const std::optional<size_t> found = FindValueLine(lines_, stanza_, value_.key);
        return found ? JudgeLine(*found) : JudgeAbsence();
    }

  private:
    // What every finding on this line has in common.
    Finding At(size_t index) const {
        return {.subject = stanza_.interface + "." + name_,
                .file = velk::kInterfacesFile,
                .line = index + 1,
                .concerns = {{.id = value_.id, .interface = stanza_.interface}},
                .hinders = Hinders::kSetting};
    }

    // The line that the library takes for the value's.
    Findings JudgeLine(size_t index) const {
        if (FirstWord(lines_[index]) != value_.name) {
            return {OtherLine(index)};
        }
        if (stray_ && *stray_ < index) {
            return {LineOutside(index)};
        }
        Findings findings;
        const std::string_view line = lines_[index];
        const std::string_view text = line.substr(line.find(value_.key) + value_.key.size());
        if (WithoutLineEnd(text) != Trimmed(text)) {
            findings.push_back(SpaceAround(index));
        }
        const std::optional<size_t> second =
            FindLine(lines_, index + 1, stanza_.end,
                     [this](std::string_view other) { return velk::Contains(other, value_.key); });
        if (second && value_.id == VELK_CMD_GATEWAY) {
            findings.push_back(SecondLine(index, *second));
        }
        return findings;
    }

    Finding OtherLine(size_t index) const {
        Finding finding = At(index);
        finding.effect = "is read and set in the wrong line";
        finding.what =
            Excerpt(lines_[index]) + " comes first and holds '" + std::string(value_.key) + "'";
        finding.remedy = "word it otherwise, or move it below the line with the value";
        finding.hinders = Hinders::kReading;
        return finding;
    }

    Finding LineOutside(size_t index) const {
        Finding finding = At(index);
        finding.effect = "does not reach the interface";
        finding.what =
            "the line stands behind " + Excerpt(lines_[*stray_]) + ", outside the stanza";
        finding.remedy = "move it up, below line " + std::to_string(stanza_.header + 1);
        finding.hinders = Hinders::kNothing;
        return finding;
    }

    Finding SpaceAround(size_t index) const {
        Finding finding = At(index);
        finding.severity = Severity::kWarning;
        finding.effect = "is read with white space around it";
        finding.what = "more than one blank stands around the value";
        finding.remedy = "leave one blank before the value and none behind it";
        finding.hinders = Hinders::kReading;
        return finding;
    }

    // None takes away the first line alone.
    Finding SecondLine(size_t first, size_t second) const {
        Finding finding = At(second);
        finding.severity = Severity::kWarning;
        finding.effect = "cannot be set to none at once";
        finding.what = Excerpt(lines_[second]) + " counts when line " + std::to_string(first + 1) +
                       " is removed";
        finding.remedy = "remove it";
        return finding;
    }

    Findings JudgeAbsence() const {
        const std::optional<size_t> unseen =
            FindLine(lines_, stanza_.header + 1, stanza_.end,
                     [this](std::string_view line) { return FirstWord(line) == value_.name; });
        const bool is_last_stanza = stanza_.end == lines_.size();
        if (unseen) {
            return {UnseenLine(*unseen, is_last_stanza)};
        }
        if (is_last_stanza) {
            return {NoLineInLastStanza()};
        }
        return stray_ ? Findings{NoLineBeforeStray()} : Findings{};
    }

    // A stanza that is not the last one gains a line of the library's own, beside this one.
    Finding UnseenLine(size_t index, bool is_last_stanza) const {
        Finding finding = At(index);
        finding.effect = "can be neither read nor set";
        if (!is_last_stanza) {
            finding.effect = "cannot be read, and a set adds a second " + name_ + " line";
            finding.hinders = Hinders::kNothing;
        }
        finding.what = "no blank stands behind the word '" + name_ + "'";
        finding.remedy = "put one blank, no tab, between the word and the value";
        return finding;
    }

    Finding NoLineInLastStanza() const {
        Finding finding = At(stanza_.header);
        finding.effect = "cannot be set";
        finding.what = "the stanza is the last one and has no " + name_ + " line";
        finding.remedy = "add " + line_to_add_ + " to it";
        return finding;
    }

    Finding NoLineBeforeStray() const {
        Finding finding = At(stanza_.header);
        finding.severity = Severity::kWarning;
        finding.effect = "would be set in the wrong place";
        finding.what = "the stanza has no " + name_ + " line; a new one would stand behind " +
                       Excerpt(lines_[*stray_]) + ", outside the stanza";
        finding.remedy = "add " + line_to_add_ + " below it before setting it";
        finding.hinders = Hinders::kNothing;
        return finding;
    }

    const Lines& lines_;
    const Stanza& stanza_;
    const ValueLine& value_;
    const std::string name_;
    const std::string line_to_add_;
    const std::optional<size_t> stray_;
};

}  // namespace

Findings CheckValueLines(const Lines& lines, const Stanza& stanza) {
    Findings findings;
    for (const ValueLine& value : kValueLines) {
        Append(findings, ValueCheck(lines, stanza, value).Run());
    }
    return findings;
}

Findings ValueLineOf(const Setting& setting) {
    const auto* value = std::ranges::find(kValueLines, setting.row->id, &ValueLine::id);
    const TextFile file = ReadTextFile(velk::kInterfacesFile);
    const std::optional<Stanza> stanza = FindStanza(file.lines, std::string(setting.interface));
    if (value == kValueLines.end() || !stanza) {
        return {};
    }
    const std::optional<size_t> index = FindValueLine(file.lines, *stanza, value->key);
    if (!index) {
        return {};
    }
    return {{.severity = Severity::kWarning,
             .subject = setting.name(),
             .effect = "still has a line",
             .what = "it is read from " + Excerpt(file.lines[*index]),
             .file = velk::kInterfacesFile,
             .line = *index + 1,
             .remedy = "remove that line, or set it once more",
             .concerns = {{.id = value->id, .interface = stanza->interface}},
             .hinders = Hinders::kReading}};
}

}  // namespace velkctl
