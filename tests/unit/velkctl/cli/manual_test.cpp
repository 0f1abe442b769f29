// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velkctl/cli/verbs.h"
#include "velkctl/report/exit_status.h"
#include "velkctl/settings/catalogue.h"

namespace {

using velkctl::Catalogue;
using velkctl::ExitStatus;
using velkctl::Setting;
using velkctl::Settings;
using velkctl::Verb;
using velkctl::Verbs;

using Line = std::vector<std::string>;  // its words

Line Split(const std::string& text) {
    std::istringstream words(text);
    Line line;
    for (std::string word; words >> word;) {
        line.push_back(word);
    }
    return line;
}

// The lines of a section of velkctl.1, or of all of them.
std::vector<Line> Lines(const std::string& section = "") {
    std::ifstream page(VELK_SOURCE_DIR "/docs/man/velkctl.1");
    std::vector<Line> lines;
    bool is_wanted = section.empty();
    for (std::string text; std::getline(page, text);) {
        if (text.starts_with(".Sh ")) {
            is_wanted = section.empty() || text == ".Sh " + section;
        }
        if (is_wanted && !text.empty()) {
            lines.push_back(Split(text));
        }
    }
    return lines;
}

// The options in a line: the words after "Fl".
std::set<std::string> OptionsIn(const Line& line) {
    std::set<std::string> options;
    for (size_t i = 1; i < line.size(); ++i) {
        if (line[i - 1] == "Fl" || line[i - 1] == ".Fl") {
            options.insert("-" + line[i]);
        }
    }
    options.erase("--");  // the one in front of words, not an option
    return options;
}

std::set<std::string> OptionsOf(const Verb& verb) {
    std::set<std::string> options;
    for (const auto& option : verb.options) {
        options.emplace(option.name);
    }
    for (const auto& flag : verb.flags) {
        options.emplace(flag.name);
    }
    return options;
}

std::set<std::string> AllOptions() {
    std::set<std::string> options{"-h", "--help", "--version"};
    for (const Verb& verb : Verbs()) {
        options.merge(OptionsOf(verb));
    }
    return options;
}

// The verbs, and the word in front of one that asks for its help.
std::set<std::string> VerbNames() {
    std::set<std::string> names{"help"};
    for (const Verb& verb : Verbs()) {
        names.emplace(verb.name);
    }
    return names;
}

TEST(Manual, HasEveryVerbWithItsOptionsInTheSynopsis) {
    std::map<std::string, std::set<std::string>> expected{{"help", {}}};
    for (const Verb& verb : Verbs()) {
        expected[std::string(verb.name)] = OptionsOf(verb);
    }
    std::map<std::string, std::set<std::string>> found;
    std::string verb;
    for (const Line& line : Lines("SYNOPSIS")) {
        if (line[0] == ".Nm") {
            verb.clear();
        } else if (line[0] == ".Cm") {
            verb = line[1];
            found[verb];
        } else if (!verb.empty()) {
            found[verb].merge(OptionsIn(line));
        }
    }
    EXPECT_EQ(found, expected);
}

TEST(Manual, ExplainsEveryVerbAndNoOther) {
    std::set<std::string> found;
    for (const Line& line : Lines("VERBS")) {
        if (line[0] == ".It") {
            ASSERT_EQ(line[1], "Cm");
            EXPECT_TRUE(found.insert(line[2]).second) << line[2] << " stands there twice";
        }
    }
    EXPECT_EQ(found, VerbNames());
}

TEST(Manual, ExplainsEveryOption) {
    std::set<std::string> found;
    for (const Line& line : Lines("OPTIONS")) {
        if (line[0] == ".It") {
            found.merge(OptionsIn(line));
        }
    }
    EXPECT_EQ(found, AllOptions());
}

TEST(Manual, NamesNoUnknownOption) {
    const std::set<std::string> known = AllOptions();
    for (const Line& line : Lines()) {
        for (const std::string& option : OptionsIn(line)) {
            EXPECT_TRUE(known.contains(option)) << option;
        }
    }
}

TEST(Manual, ExplainsEveryExitStatus) {
    constexpr std::array kStatuses{ExitStatus::kDone,      ExitStatus::kFailed,
                                   ExitStatus::kInvalid,   ExitStatus::kLocked,
                                   ExitStatus::kNoAdapter, ExitStatus::kWiredLinked,
                                   ExitStatus::kNotHeld,   ExitStatus::kTimedOut,
                                   ExitStatus::kWaits,     ExitStatus::kPartlyBack};
    std::vector<std::string> expected;
    expected.reserve(kStatuses.size());
    for (const ExitStatus status : kStatuses) {
        expected.push_back(std::to_string(static_cast<int>(status)));
    }
    std::vector<std::string> found;
    for (const Line& line : Lines("EXIT STATUS")) {
        if (line[0] == ".It") {
            found.push_back(line[1]);
        }
    }
    EXPECT_EQ(found, expected);
}

// ".It Cm eth0.dns , eth1.dns Pq 108 , get and set", by the name of the setting: "108 get set".
std::map<std::string, std::string> SettingsInPage() {
    std::map<std::string, std::string> settings;
    for (const Line& line : Lines("SETTINGS")) {
        const auto number = std::find(line.begin(), line.end(), "Pq");
        if (line[0] != ".It" || number == line.end()) {
            continue;
        }
        std::string facts;
        for (auto word = number + 1; word != line.end(); ++word) {
            if (*word != "," && *word != "and") {
                facts.append(facts.empty() ? "" : " ").append(*word);
            }
        }
        for (auto word = line.begin() + 2; word != number; ++word) {
            if (*word != ",") {
                EXPECT_TRUE(settings.emplace(*word, facts).second)
                    << *word << " stands there twice";
            }
        }
    }
    return settings;
}

TEST(Manual, NamesEverySettingWithItsIdAndDirections) {
    std::map<std::string, std::string> expected;
    for (const Setting& setting : Settings()) {
        expected[setting.name()] = std::to_string(setting.row->id) +
                                   (setting.can_get() ? " get" : "") +
                                   (setting.can_set() ? " set" : "");
    }
    EXPECT_EQ(SettingsInPage(), expected);
}

TEST(Manual, DescribesEverySettingAsVelkctlDoes) {
    std::string page;
    for (const Line& line : Lines("SETTINGS")) {
        for (const std::string& word : line) {
            page.append(word).append(" ");
        }
    }
    for (const velkctl::CatalogueRow& row : Catalogue()) {
        // Its first letter is a capital there, and quotes are written as roff has them.
        std::string help(row.help.substr(1));
        for (size_t at = help.find('\''); at != std::string::npos; at = help.find('\'')) {
            help.replace(at, 1, "\\(aq");
        }
        EXPECT_NE(page.find(help), std::string::npos) << row.name << ": " << help;
    }
}

TEST(Manual, ExamplesAreOfKnownVerbs) {
    size_t examples = 0;
    for (const Line& line : Lines()) {
        if (line[0] == "velkctl" && line.size() > 1) {
            ++examples;
            EXPECT_TRUE(VerbNames().contains(line[1])) << line[1];
        }
    }
    EXPECT_GT(examples, 10U);
}

}  // namespace
