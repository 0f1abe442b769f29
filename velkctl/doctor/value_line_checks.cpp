// value_line_checks.cpp - whether the library finds the lines of a stanza that hold addresses.
#include <algorithm>
#include <array>

#include "lib/base/paths.h"
#include "lib/base/words.h"
#include "velkctl/doctor/checks.h"
#include "velkctl/doctor/interfaces_checks.h"

namespace velkctl {
namespace {

// Words that end a stanza for ifup. The library ends it with "iface" in the first column alone.
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

auto HasKey(const Setting& setting) {
    return [key = setting.row->held_in.line.key](std::string_view line) {
        return velk::Contains(line, key);
    };
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
        const Finding about = about_.At(index);
        if (FirstWord(line) != name_) {
            return {
                about.With(Impact::kReading)
                    .Problem("is read and set in the wrong line",
                             Excerpt(line) + " comes first and holds '" + std::string(key) + "'",
                             "word it otherwise, or move it below the line with the value")};
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
            findings.push_back(about.With(Impact::kReading)
                                   .Warning("is read with white space around it",
                                            "there is more than one blank around the value",
                                            "leave one blank before the value and none after it"));
        }
        // A set to none removes the first line alone.
        const auto second = FindLine(lines_, index + 1, stanza_.end, HasKey(setting_));
        if (second && setting_.row->id == VELK_CMD_GATEWAY) {
            findings.push_back(
                about_.At(*second).Warning("cannot be set to none at once",
                                           Excerpt(lines_[*second]) + " counts when line " +
                                               std::to_string(index + 1) + " is removed",
                                           "remove it"));
        }
        return findings;
    }

    // A stanza that is not the last one gains a line at its end, the last one none.
    Findings CheckAbsence() const {
        const std::optional<size_t> unseen =
            Find([this](std::string_view line) { return FirstWord(line) == name_; });
        const bool is_last = stanza_.end == lines_.size();
        if (unseen) {
            return {about_.At(*unseen)
                        .With(is_last ? Impact::kSetting : Impact::kNothing)
                        .Problem(is_last
                                     ? "can be neither read nor set"
                                     : "cannot be read, and a set adds a second " + name_ + " line",
                                 "no blank follows the word '" + name_ + "'",
                                 "put one blank, no tab, between the word and the value")};
        }
        if (is_last) {
            return {about_.At(stanza_.header)
                        .Problem("cannot be set",
                                 "the stanza is the last one and has no " + name_ + " line",
                                 line_to_add_ + " to it")};
        }
        if (!stray_) {
            return {};
        }
        return {about_.At(stanza_.header)
                    .With(Impact::kNothing)
                    .Warning("would be set in the wrong place",
                             "the stanza has no " + name_ + " line; a new one would be below " +
                                 Excerpt(lines_[*stray_]) + ", outside the stanza",
                             line_to_add_ + " below it before setting it")};
    }

    const Lines& lines_;
    const Stanza& stanza_;
    const Setting& setting_;
    const std::string name_;
    const std::string line_to_add_;
    const Finding about_;
    const std::optional<size_t> stray_;  // the line that ends the stanza for ifup
};

}  // namespace

Findings CheckValueLines(const Lines& lines, const Stanza& stanza) {
    Findings findings;
    for (const Setting& setting : SettingsHeldIn(velk::kInterfacesFile, stanza.interface)) {
        if (!setting.row->held_in.line.key.empty()) {
            Append(findings, ValueCheck(lines, stanza, setting).Run());
        }
    }
    return findings;
}

Findings ValueLineOf(const Setting& setting) {
    const bool has_line = Includes(SettingsHeldIn(velk::kInterfacesFile), setting) &&
                          !setting.row->held_in.line.key.empty();
    const TextFile file = ReadTextFile(velk::kInterfacesFile);
    const std::optional<Stanza> stanza = FindStanza(file.lines, std::string(setting.interface));
    if (!has_line || !stanza) {
        return {};
    }
    const auto index = FindLine(file.lines, stanza->header + 1, stanza->end, HasKey(setting));
    if (!index) {
        return {};
    }
    return {About(setting, velk::kInterfacesFile, Impact::kReading)
                .At(*index)
                .Warning("still has a line", "it is read from " + Excerpt(file.lines[*index]),
                         "remove that line, or set it once more")};
}

}  // namespace velkctl
