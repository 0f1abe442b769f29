// interfaces_checks.cpp - whether the library finds its way about /etc/network/interfaces.
#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "frame/words.h"
#include "ipconf/interfaces_file.h"
#include "velk.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/text_file.h"

namespace velkctl {
namespace {

using Lines = std::vector<std::string>;

// A line of a stanza that the library reads and sets.
struct ValueLine {
    std::string_view key;   // with the blank that the library looks for
    std::string_view name;  // its first word, and the last part of the setting's name
    std::string_view example;
};

constexpr std::array<ValueLine, 3> kValueLines{{
    {velk::kAddressKey, "address", "address 192.168.0.10"},
    {velk::kNetmaskKey, "netmask", "netmask 255.255.255.0"},
    {velk::kGatewayKey, "gateway", "gateway 192.168.0.1"},
}};

// With one of these ifup takes a stanza for ended; the library does with "iface" in the first
// column alone.
constexpr std::array<std::string_view, 5> kStarts{"iface", "auto", "mapping", "source",
                                                  "source-directory"};
constexpr std::string_view kAllow = "allow-";

std::string FirstWord(std::string_view line) {
    return std::string(velk::TakeWord(line));
}

bool EndsStanzaForIfup(std::string_view line) {
    const std::string word = FirstWord(line);
    return word.starts_with(kAllow) || std::ranges::find(kStarts, word) != kStarts.end();
}

// The first line at `begin` or behind it, and before `end`, of which the predicate holds.
template <typename Predicate>
std::optional<size_t> FindLine(const Lines& lines, size_t begin, size_t end, Predicate holds) {
    for (size_t i = begin; i < end; ++i) {
        if (holds(lines[i])) {
            return i;
        }
    }
    return std::nullopt;
}

std::string NumberOf(size_t index) {
    return "line " + std::to_string(index + 1);
}

Finding FindingAt(Severity severity, std::string subject, std::string effect, std::string what,
                  size_t index, std::string remedy) {
    return {severity,         std::move(subject),    std::move(effect),
            std::move(what),  velk::kInterfacesFile, index + 1,
            std::move(remedy)};
}

// The interface's first stanza: its header and the end of its body.
struct Stanza {
    std::string interface;
    size_t header;
    size_t end;
};

class ValueCheck {
  public:
    ValueCheck(const Lines& lines, const Stanza& stanza, const ValueLine& value)
        : lines_(lines),
          stanza_(stanza),
          value_(value),
          setting_(stanza.interface + "." + std::string(value.name)),
          stray_(FindLine(lines, stanza.header + 1, stanza.end, EndsStanzaForIfup)) {}

    Findings Run() const {
        const std::optional<size_t> found =
            FindLine(lines_, stanza_.header + 1, stanza_.end,
                     [this](std::string_view line) { return velk::Contains(line, value_.key); });
        return found ? JudgeLine(*found) : JudgeAbsence();
    }

  private:
    // The line that the library takes for the value's.
    Findings JudgeLine(size_t index) const {
        const std::string_view line = lines_[index];
        if (FirstWord(line) != value_.name) {
            return {FindingAt(
                Severity::kProblem, setting_, "is read and set in the wrong line",
                Excerpt(line) + " comes first and holds '" + std::string(value_.key) + "'", index,
                "word it otherwise, or move it below the line with the value")};
        }
        if (stray_ && *stray_ < index) {
            return {FindingAt(
                Severity::kProblem, setting_, "does not reach the interface",
                "the line stands behind " + Excerpt(lines_[*stray_]) + ", outside the stanza",
                index, "move it up, below " + NumberOf(stanza_.header))};
        }
        const std::string_view text = line.substr(line.find(value_.key) + value_.key.size());
        if (text.substr(0, text.size() - 1) != Trimmed(text)) {
            return {FindingAt(Severity::kWarning, setting_, "is read with white space around it",
                              "more than one blank stands around the value", index,
                              "leave one blank before the value and none behind it")};
        }
        return {};
    }

    Findings JudgeAbsence() const {
        const std::optional<size_t> unseen =
            FindLine(lines_, stanza_.header + 1, stanza_.end,
                     [this](std::string_view line) { return FirstWord(line) == value_.name; });
        const std::string name(value_.name);
        if (unseen) {
            return {FindingAt(Severity::kProblem, setting_, "can be neither read nor set",
                              "no blank stands behind the word '" + name + "'", *unseen,
                              "put one blank, no tab, between the word and the value")};
        }
        const std::string line = "a line \"" + std::string(value_.example) + "\"";
        if (stanza_.end == lines_.size()) {
            return {FindingAt(Severity::kProblem, setting_, "cannot be set",
                              "the stanza is the last one and has no " + name + " line",
                              stanza_.header, "add " + line + " to it")};
        }
        if (stray_) {
            return {FindingAt(Severity::kWarning, setting_, "would be set in the wrong place",
                              "the stanza has no " + name + " line; a new one would stand behind " +
                                  Excerpt(lines_[*stray_]) + ", outside the stanza",
                              stanza_.header, "add " + line + " below it before setting it")};
        }
        return {};
    }

    const Lines& lines_;
    const Stanza& stanza_;
    const ValueLine& value_;
    const std::string setting_;
    const std::optional<size_t> stray_;
};

bool HasKnownMethod(std::string_view method) {
    return method.starts_with(velk::kStaticMethod) || method.starts_with(velk::kDhcpMethod);
}

bool IsAlmostHeader(std::string_view line, std::string_view interface) {
    const std::vector<std::string> words = WordsOf(line);
    return words.size() >= 3 && words[0] == velk::kStanzaStart && words[1] == interface &&
           words[2] == "inet" && !line.starts_with(velk::StanzaHeader(interface));
}

// Headers that ifup knows and the library does not.
Findings CheckHeaders(const Lines& lines, const std::string& interface) {
    Findings findings;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (IsAlmostHeader(lines[i], interface)) {
            findings.push_back(
                FindingAt(Severity::kProblem, interface + ".method",
                          "and the addresses are not found in a stanza",
                          "the library does not recognise the header " + Excerpt(lines[i]), i,
                          "write \"" + velk::StanzaHeader(interface) +
                              "static\" or \"... dhcp\" in the first column, with single blanks"));
        }
    }
    return findings;
}

Findings CheckStanza(const Lines& lines, const Stanza& stanza) {
    Findings findings;
    const std::string header = velk::StanzaHeader(stanza.interface);
    const std::string_view method = std::string_view(lines[stanza.header]).substr(header.size());
    if (!HasKnownMethod(method)) {
        findings.push_back(FindingAt(
            Severity::kProblem, stanza.interface + ".method", "and the addresses cannot be read",
            Excerpt(method) + " is neither static nor dhcp", stanza.header,
            "velkctl set " + stanza.interface + ".method static, or dhcp"));
    }
    for (const ValueLine& value : kValueLines) {
        Append(findings, ValueCheck(lines, stanza, value).Run());
    }
    return findings;
}

Findings CheckInterface(const Lines& lines, const std::string& interface) {
    const auto is_header = [header = velk::StanzaHeader(interface)](std::string_view line) {
        return line.starts_with(header);
    };
    Findings findings = CheckHeaders(lines, interface);
    const std::optional<size_t> first = FindLine(lines, 0, lines.size(), is_header);
    if (!first) {
        if (findings.empty()) {
            const std::string header = velk::StanzaHeader(interface) + "static";
            findings.push_back({Severity::kProblem, interface + ".method",
                                "and the addresses can be neither read nor set",
                                "no line begins with '" + header + "' or '... dhcp'",
                                velk::kInterfacesFile, 0, "add a stanza that begins with one"});
        }
        return findings;
    }
    const std::optional<size_t> end =
        FindLine(lines, *first + 1, lines.size(),
                 [](std::string_view line) { return line.starts_with(velk::kStanzaStart); });
    Append(findings, CheckStanza(lines, {interface, *first, end.value_or(lines.size())}));
    if (const auto second = FindLine(lines, *first + 1, lines.size(), is_header)) {
        findings.push_back(FindingAt(Severity::kWarning, interface + ".method",
                                     "and the addresses are not read from a second stanza",
                                     "only the one on " + NumberOf(*first) + " counts", *second,
                                     "make one stanza of the two"));
    }
    return findings;
}

}  // namespace

Findings CheckInterfaces() {
    const TextFile file = ReadTextFile(velk::kInterfacesFile);
    if (file.state != FileState::kText) {
        return {};
    }
    Findings findings = CheckInterface(file.lines, VELK_WIRED_INTERFACE);
    Append(findings, CheckInterface(file.lines, VELK_WIRELESS_INTERFACE));
    return findings;
}

}  // namespace velkctl
