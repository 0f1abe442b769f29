// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// interfaces_checks.cpp - checks that the library can find the stanzas of /etc/network/interfaces
// and their lines with addresses.
#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "lib/ipconf/interfaces_file.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/finding.h"
#include "velkctl/files/text_file.h"
#include "velkctl/settings/affected_settings.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/spelling.h"

namespace velkctl {
namespace {

// Words that end a stanza for ifup. The library ends it with "iface" in the first column alone.
constexpr std::array<std::string_view, 5> kStarts{"iface", "auto", "mapping", "source",
                                                  "source-directory"};
constexpr std::string_view kAllow = "allow-";

// The interface's first stanza: the line of its header, and the line after its last one.
struct Stanza {
    std::string method;  // the rest of the header
    size_t header;
    size_t end;
    bool has_lease;
};

// Returns the first line from `begin` on and before `end` for which the condition is true.
template <typename Condition>
std::optional<size_t> FindLine(const Lines& lines, size_t begin, size_t end, Condition condition) {
    for (size_t i = begin; i < end; ++i) {
        if (condition(lines[i])) {
            return i;
        }
    }
    return std::nullopt;
}

auto StartsWith(std::string_view start) {
    return [start](std::string_view line) { return line.starts_with(start); };
}

auto HasKey(const Setting& setting) {
    return [key = setting.row->held_in.line.key](std::string_view line) {
        return velk::Contains(line, key);
    };
}

std::string_view FirstWord(std::string_view line) {
    return velk::TakeWord(line);
}

auto IsOption(const Setting& setting) {
    return [name = setting.row->name](std::string_view line) { return FirstWord(line) == name; };
}

bool EndsStanzaForIfup(std::string_view line) {
    const std::string_view word = FirstWord(line);
    return word.starts_with(kAllow) || std::ranges::find(kStarts, word) != kStarts.end();
}

std::optional<Stanza> FindStanza(const Lines& lines, const std::string& interface) {
    const std::string start = velk::StanzaHeader(interface);
    const auto header = FindLine(lines, 0, lines.size(), StartsWith(start));
    if (!header) {
        return std::nullopt;
    }
    const auto end = FindLine(lines, *header + 1, lines.size(), StartsWith(velk::kStanzaStart));
    const std::string method = lines[*header].substr(start.size());
    return Stanza{method, *header, end.value_or(lines.size()),
                  method.starts_with(velk::kDhcpMethod)};
}

// The settings of a stanza that are examined.
struct Scope {
    AffectedSettings settings;
    bool is_set = false;       // for a set without effect, not by the doctor
    std::string_view value{};  // the value of that set, for the fix; empty: a placeholder
};

std::string InsteadOfLine(size_t index) {
    return "instead of line " + std::to_string(index + 1) + " write ";
}

std::string BelowLine(size_t index) {
    return "below line " + std::to_string(index + 1);
}

// The checks of the lines of settings in a stanza.
class StanzaCheck {
  public:
    StanzaCheck(const Lines& lines, const Stanza& stanza, const Scope& scope)
        : lines_(lines), stanza_(stanza), scope_(scope), stray_(Find(EndsStanzaForIfup)) {}

    Findings Run() const {
        Findings findings;
        AffectedSettings missing;
        for (const Setting& setting : scope_.settings) {
            if (const auto found = Find(HasKey(setting))) {
                Append(findings, CheckLine(setting, *found));
            } else if (const auto unseen = Find(IsOption(setting))) {
                findings.push_back(Unseen(setting, *unseen));
            } else {
                missing.push_back(setting);
            }
        }
        Append(findings, missing.empty() ? Findings() : CheckMissing(missing));
        return findings;
    }

  private:
    template <typename Condition>
    std::optional<size_t> Find(Condition condition) const {
        return FindLine(lines_, stanza_.header + 1, stanza_.end, condition);
    }

    // Returns the line with the value of the set, or with this one, quoted: "gateway GATEWAY".
    std::string LineFor(const Setting& setting, std::string_view present = {}) const {
        const std::string value(scope_.value.empty() ? present : scope_.value);
        return "\"" + std::string(setting.row->name) + " " +
               (value.empty() ? PlaceholderOf(setting) : value) + "\"";
    }

    bool is_last() const { return stanza_.end == lines_.size(); }

    Finding AboutLine(const Setting& setting, size_t index, Impact impact) const {
        return About({setting}, velk::kInterfacesFile, impact).At(index);
    }

    // `index` is the line that the library takes for the value's.
    Findings CheckLine(const Setting& setting, size_t index) const {
        const std::string_view key = setting.row->held_in.line.key;
        const std::string_view line = lines_[index];
        const Finding about = AboutLine(setting, index, Impact::kReading);
        if (!IsOption(setting)(line)) {
            return {about.Problem("is read and set in the wrong line",
                                  "the library takes this line for the " +
                                      std::string(setting.row->name) + " line; " + Excerpt(line) +
                                      " contains '" + std::string(key) + "'",
                                  RemedyOfFalseLine(setting, index))};
        }
        if (stray_ && *stray_ < index) {
            return {about.With(Impact::kNothing)
                        .Problem("does not reach the interface",
                                 "the line is below " + Excerpt(lines_[*stray_]) +
                                     ", outside the stanza",
                                 "move it up, " + BelowLine(stanza_.header))};
        }
        Findings findings = CheckBlanks(setting, index);
        Append(findings, CheckSecond(setting, index));
        return findings;
    }

    Findings CheckBlanks(const Setting& setting, size_t index) const {
        const std::string_view line = lines_[index];
        const std::string_view key = setting.row->held_in.line.key;
        const std::string_view text = line.substr(line.find(key) + key.size());
        if (WithoutLineEnd(text) == Trimmed(text)) {
            return {};
        }
        return {AboutLine(setting, index, Impact::kReading)
                    .Warning("is read with white space around it",
                             "there is more than one blank around the value",
                             InsteadOfLine(index) + LineFor(setting, Trimmed(text)))};
    }

    // `index` is the line that a set changes. It leaves the others.
    Findings CheckSecond(const Setting& setting, size_t index) const {
        const auto before = FindLine(lines_, stanza_.header + 1, index, IsOption(setting));
        const auto second =
            before ? before : FindLine(lines_, index + 1, stanza_.end, IsOption(setting));
        if (!second) {
            return {};
        }
        const std::string first = "line " + std::to_string(index + 1);
        const std::string line = Excerpt(lines_[*second]);
        const Finding about =
            AboutLine(setting, *second, Impact::kNothing).FixedBy("remove " + line);
        if (setting.row->id != VELK_CMD_GATEWAY) {
            return {about.Warning("has a second line",
                                  "ifup may take " + line + "; a set changes " + first + " alone")};
        }
        return {about.With(Impact::kSetting)
                    .Warning("cannot be set to none in one set",
                             "a set removes " + first + " alone; " + line + " still applies")};
    }

    // The line is a comment, or one of another option such as "hwaddress".
    std::string RemedyOfFalseLine(const Setting& setting, size_t index) const {
        const std::string name(setting.row->name);
        if (IsComment(lines_[index])) {
            return "remove the word '" + name + "' from the comment";
        }
        const auto own = Find([&](std::string_view line) {
            return IsOption(setting)(line) && HasKey(setting)(line);
        });
        return own ? "move it " + BelowLine(*own)
                   : "above line " + std::to_string(index + 1) + " add " + LineFor(setting);
    }

    // A line with the setting's name and no blank after it.
    Finding Unseen(const Setting& setting, size_t index) const {
        const std::string name(setting.row->name);
        std::string_view value = lines_[index];
        (void)velk::TakeWord(value);
        return AboutLine(setting, index, is_last() ? Impact::kBoth : Impact::kNothing)
            .Problem(is_last() ? "can be neither read nor set"
                               : "cannot be read, and a set adds a second " + name + " line",
                     "no blank follows the word '" + name + "'",
                     InsteadOfLine(index) + LineFor(setting, Trimmed(value)));
    }

    // A stanza that is not the last one gains a line at its end, the last one none. With method
    // dhcp the lines are not needed before the next change of the method.
    Findings CheckMissing(const AffectedSettings& missing) const {
        std::vector<std::string> names;
        std::string remedy = BelowLine(stanza_.header) + " add ";
        for (const Setting& setting : missing) {
            remedy.append(names.empty() ? "" : ", ").append(LineFor(setting));
            names.emplace_back(setting.row->name);
        }
        const Finding about = About(missing, velk::kInterfacesFile, Impact::kNothing)
                                  .At(stanza_.header)
                                  .FixedBy(remedy);
        if (is_last()) {
            return {Unaddable(about, names)};
        }
        return stray_ ? Findings{AddedTooLow(about, names)} : Findings{};
    }

    Finding Unaddable(const Finding& about, const std::vector<std::string>& names) const {
        const bool is_needed = scope_.is_set || !stanza_.has_lease;
        const std::string description =
            names.size() == 1 ? "the stanza is the last one and has no " + names.front() + " line"
                              : "the last stanza lacks " + AllOf(names);
        return about.With(Impact::kSetting)
            .Of(is_needed ? Severity::kProblem : Severity::kWarning, "cannot be set")
            .Because(description);
    }

    Finding AddedTooLow(const Finding& about, const std::vector<std::string>& names) const {
        return about.Warning("would be set in the wrong place",
                             "the stanza has no " + OneOf(names) +
                                 " line; a new one would be below " + Excerpt(lines_[*stray_]) +
                                 ", outside the stanza");
    }

    const Lines& lines_;
    const Stanza& stanza_;
    const Scope& scope_;
    const std::optional<size_t> stray_;  // the line that ends the stanza for ifup
};

// Returns the settings with a line of their own in the interface's stanza.
AffectedSettings AddressesOf(std::string_view interface) {
    AffectedSettings settings = SettingsHeldIn(velk::kInterfacesFile, interface);
    std::erase_if(settings, [](const Setting& s) { return s.row->held_in.line.key.empty(); });
    return settings;
}

// True if ifup takes the line for a header and the library does not.
bool IsAlmostHeader(std::string_view line, std::string_view interface) {
    const std::vector<std::string> words = WordsOf(line);
    return words.size() >= 3 && words[0] == velk::kStanzaStart && words[1] == interface &&
           words[2] == "inet" && !line.starts_with(velk::StanzaHeader(interface));
}

Findings CheckHeaders(const Finding& about, const Lines& lines, const std::string& interface) {
    const std::vector<size_t> headers =
        IndexesOf(lines, [&](std::string_view line) { return IsAlmostHeader(line, interface); });
    return FindingsOfEach(headers, [&](size_t i) -> Findings {
        const std::vector<std::string> words = WordsOf(lines[i]);
        const bool has_lease = words.size() > 3 && words[3] == velk::kDhcpMethod;
        return {about.At(i).Problem(
            "are not found in a stanza",
            "the library does not recognise the header; it is " + Excerpt(lines[i]),
            InsteadOfLine(i) + "\"" + velk::StanzaHeader(interface) +
                std::string(has_lease ? velk::kDhcpMethod : velk::kStaticMethod) + "\"")};
    });
}

Findings CheckMethod(const Finding& about, const Stanza& stanza, const std::string& interface) {
    if (stanza.has_lease || stanza.method.starts_with(velk::kStaticMethod)) {
        return {};
    }
    return {about.With(Impact::kReading)
                .Problem("cannot be read", Excerpt(stanza.method) + " is neither static nor dhcp",
                         "choose a method: velkctl set " + interface + ".method static")};
}

// Method and addresses are set in every stanza of the interface and read from the first.
Findings CheckSecondStanza(const Finding& about, const Lines& lines, const std::string& interface,
                           size_t first) {
    const auto second =
        FindLine(lines, first + 1, lines.size(), StartsWith(velk::StanzaHeader(interface)));
    if (!second) {
        return {};
    }
    return {about.At(*second)
                .With(Impact::kNothing)
                .Warning("are not read from a second stanza",
                         "only the one on line " + std::to_string(first + 1) + " counts",
                         "move the lines that are needed " + BelowLine(first) +
                             ", and remove the rest")};
}

Finding NoStanza(const Finding& about, const std::string& interface) {
    const std::string header = velk::StanzaHeader(interface);
    return about.Problem(
        "can be neither read nor set",
        "there is no stanza; no line begins with '" + header + "static' or '... dhcp'",
        "add \"" + header + "static\", and below it address, netmask and gateway");
}

Findings CheckInterface(const std::string& interface, const Scope& scope) {
    const TextFile file = ReadTextFile(velk::kInterfacesFile);
    if (file.state != FileState::kText) {
        return {};
    }
    const Finding about = About(SettingsHeldIn(velk::kInterfacesFile, interface),
                                velk::kInterfacesFile, Impact::kBoth);
    Findings findings = CheckHeaders(about, file.lines, interface);
    const std::optional<Stanza> stanza = FindStanza(file.lines, interface);
    if (!stanza) {
        return findings.empty() ? Findings{NoStanza(about, interface)} : findings;
    }
    Append(findings, CheckMethod(about.At(stanza->header), *stanza, interface));
    Append(findings, StanzaCheck(file.lines, *stanza, scope).Run());
    Append(findings, CheckSecondStanza(about, file.lines, interface, stanza->header));
    return findings;
}

}  // namespace

Findings CheckInterfaces() {
    return FindingsOfEach(kInterfaces, [](const std::string& interface) {
        return CheckInterface(interface, {AddressesOf(interface)});
    });
}

Findings CheckInterfacesFor(const Setting& setting, std::string_view value) {
    Scope scope{{}, /*is_set=*/true, setting.row->secret ? "" : value};
    if (Includes(AddressesOf(setting.interface), setting)) {
        scope.settings.push_back(setting);
    }
    return CheckInterface(std::string(setting.interface), scope);
}

Findings ValueLineOf(const Setting& setting) {
    const Lines lines = ReadTextFile(velk::kInterfacesFile).lines;
    const std::optional<Stanza> stanza = FindStanza(lines, std::string(setting.interface));
    if (!Includes(AddressesOf(setting.interface), setting) || !stanza) {
        return {};
    }
    const auto index = FindLine(lines, stanza->header + 1, stanza->end, HasKey(setting));
    return index ? Findings{About({setting}, velk::kInterfacesFile, Impact::kReading)
                                .At(*index)
                                .Warning("still has a line",
                                         "it is read from " + Excerpt(lines[*index]),
                                         "remove that line, or set it again")}
                 : Findings{};
}

}  // namespace velkctl
