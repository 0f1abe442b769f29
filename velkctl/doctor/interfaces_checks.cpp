// interfaces_checks.cpp - checks that the library can find the stanzas of /etc/network/interfaces
// and their lines with addresses.
#include <algorithm>
#include <array>
#include <optional>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "lib/ipconf/interfaces_file.h"
#include "velkctl/doctor/checks.h"

namespace velkctl {
namespace {

// Words that end a stanza for ifup. The library ends it with "iface" in the first column alone.
constexpr std::array<std::string_view, 5> kStarts{"iface", "auto", "mapping", "source",
                                                  "source-directory"};
constexpr std::string_view kAllow = "allow-";

// The interface's first stanza: the line of its header, and the line after its last one.
struct Stanza {
    std::string interface;
    size_t header;
    size_t end;
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
    return Stanza{interface, *header, end.value_or(lines.size())};
}

// The check of one setting's line in a stanza.
class ValueCheck {
  public:
    ValueCheck(const Lines& lines, const Stanza& stanza, const Setting& setting)
        : lines_(lines),
          stanza_(stanza),
          setting_(setting),
          name_(setting.row->name),
          line_to_add_("add a line \"" + name_ + " " + setting.row->kind->Example() + "\""),
          about_(About(setting, velk::kInterfacesFile, Impact::kSetting)),
          stray_(Find(EndsStanzaForIfup)) {}

    Findings Run() const {
        const std::optional<size_t> found = Find(HasKey(setting_));
        return found ? CheckLine(*found) : CheckAbsence();
    }

  private:
    template <typename Condition>
    std::optional<size_t> Find(Condition condition) const {
        return FindLine(lines_, stanza_.header + 1, stanza_.end, condition);
    }

    // `index` is the line that the library takes for the value's.
    Findings CheckLine(size_t index) const {
        const std::string_view key = setting_.row->held_in.line.key;
        const std::string_view line = lines_[index];
        const Finding about = about_.At(index).With(Impact::kReading);
        if (FirstWord(line) != name_) {
            return {about.Problem("is read and set in the wrong line",
                                  "the library takes " + Excerpt(line) +
                                      " for it, as it contains '" + std::string(key) + "'",
                                  "reword it, or move it below the line with the value")};
        }
        if (stray_ && *stray_ < index) {
            return {about.With(Impact::kNothing)
                        .Problem("does not reach the interface",
                                 "the line is below " + Excerpt(lines_[*stray_]) +
                                     ", outside the stanza",
                                 "move it up, below line " + std::to_string(stanza_.header + 1))};
        }
        Findings findings;
        const std::string_view text = line.substr(line.find(key) + key.size());
        if (WithoutLineEnd(text) != Trimmed(text)) {
            findings.push_back(about.Warning("is read with white space around it",
                                             "there is more than one blank around the value",
                                             "leave one blank before the value and none after it"));
        }
        // A set to none removes the first line alone.
        const auto second = FindLine(lines_, index + 1, stanza_.end, HasKey(setting_));
        if (second && setting_.row->id == VELK_CMD_GATEWAY) {
            findings.push_back(about_.At(*second).Warning(
                "cannot be set to none in one set",
                "after line " + std::to_string(index + 1) + " is removed, " +
                    Excerpt(lines_[*second]) + " still applies",
                "remove " + Excerpt(lines_[*second])));
        }
        return findings;
    }

    // A stanza that is not the last one gains a line at its end, the last one none.
    Findings CheckAbsence() const {
        const bool is_last = stanza_.end == lines_.size();
        const Finding about =
            about_.At(stanza_.header).With(is_last ? Impact::kSetting : Impact::kNothing);
        if (const auto unseen =
                Find([this](std::string_view line) { return FirstWord(line) == name_; })) {
            return {about.At(*unseen).Problem(
                is_last ? "can be neither read nor set"
                        : "cannot be read, and a set adds a second " + name_ + " line",
                "no blank follows the word '" + name_ + "'",
                "put one blank, no tab, between the word and the value")};
        }
        if (is_last) {
            return {about.Problem("cannot be set",
                                  "the stanza is the last one and has no " + name_ + " line",
                                  line_to_add_ + " to it")};
        }
        if (!stray_) {
            return {};
        }
        return {about.Warning(
            "would be set in the wrong place",
            "the stanza has no " + name_ + " line; a new one would be below " +
                Excerpt(lines_[*stray_]) + ", outside the stanza",
            line_to_add_ + " below line " + std::to_string(stanza_.header + 1) + ", then set it")};
    }

    const Lines& lines_;
    const Stanza& stanza_;
    const Setting& setting_;
    const std::string name_;
    const std::string line_to_add_;
    const Finding about_;
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
        return {about.At(i).Problem(
            "are not found in a stanza",
            "the library does not recognise the header " + Excerpt(lines[i]),
            "write \"" + velk::StanzaHeader(interface) +
                "static\" or \"... dhcp\" in the first column, with single blanks")};
    });
}

Findings CheckMethod(const Finding& about, std::string_view method, const std::string& interface) {
    if (method.starts_with(velk::kStaticMethod) || method.starts_with(velk::kDhcpMethod)) {
        return {};
    }
    return {about.With(Impact::kReading)
                .Problem("cannot be read", Excerpt(method) + " is neither static nor dhcp",
                         "choose a method: velkctl set " + interface + ".method static")};
}

Findings CheckInterface(const Lines& lines, const std::string& interface) {
    const Finding about{.subject = interface + ".method, " + interface + ".address, " + interface +
                                   ".netmask and " + interface + ".gateway",
                        .file = velk::kInterfacesFile,
                        .affected = SettingsHeldIn(velk::kInterfacesFile, interface),
                        .impact = Impact::kSetting};
    const std::string header = velk::StanzaHeader(interface);
    Findings findings = CheckHeaders(about, lines, interface);
    const std::optional<Stanza> stanza = FindStanza(lines, interface);
    if (!stanza && findings.empty()) {
        return {about.Problem("can be neither read nor set",
                              "no line begins with '" + header + "static' or '... dhcp'",
                              "add a stanza that begins with one")};
    }
    if (!stanza) {
        return findings;
    }
    const size_t first = stanza->header;
    Append(findings, CheckMethod(about.At(first), lines[first].substr(header.size()), interface));
    Append(findings, FindingsOfEach(AddressesOf(interface), [&](const Setting& setting) {
               return ValueCheck(lines, *stanza, setting).Run();
           }));
    // Method and addresses are set in every stanza of the interface and read from the first.
    if (const auto second = FindLine(lines, first + 1, lines.size(), StartsWith(header))) {
        findings.push_back(
            about.At(*second)
                .With(Impact::kNothing)
                .Warning("are not read from a second stanza",
                         "only the one on line " + std::to_string(first + 1) + " counts",
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
    return FindingsOfEach(kInterfaces, [&](const std::string& interface) {
        return CheckInterface(file.lines, interface);
    });
}

Findings ValueLineOf(const Setting& setting) {
    const TextFile file = ReadTextFile(velk::kInterfacesFile);
    const std::optional<Stanza> stanza = FindStanza(file.lines, std::string(setting.interface));
    if (!Includes(AddressesOf(setting.interface), setting) || !stanza) {
        return {};
    }
    const auto index = FindLine(file.lines, stanza->header + 1, stanza->end, HasKey(setting));
    if (!index) {
        return {};
    }
    return {About(setting, velk::kInterfacesFile, Impact::kReading)
                .At(*index)
                .Warning("still has a line", "it is read from " + Excerpt(file.lines[*index]),
                         "remove that line, or set it again")};
}

}  // namespace velkctl
