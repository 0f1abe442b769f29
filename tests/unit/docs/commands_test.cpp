// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// Compares the command reference, docs/commands.md, with the code's tables.
#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>

#include "lib/entry/dispatch_tables.h"
#include "support/device_test.h"
#include "support/words.h"
#include "velkctl/cli/verbs.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/value_kind.h"

namespace {

namespace fs = std::filesystem;

using testing::Contains;
using testing::ContainsRegex;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testkit::Words;
using velk::CommandEntry;

// ---- Text --------------------------------------------------------------------------------------

Words LinesOf(const std::string& text) {
    std::istringstream stream(text);
    Words lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

Words Split(const std::string& text, const std::string& separator) {
    Words parts;
    size_t begin = 0;
    for (size_t end = 0; (end = text.find(separator, begin)) != std::string::npos;) {
        parts.push_back(text.substr(begin, end - begin));
        begin = end + separator.size();
    }
    parts.push_back(text.substr(begin));
    return parts;
}

std::string Joined(const Words& words) {
    std::string text;
    for (const std::string& word : words) {
        text.append(text.empty() ? "" : ", ").append(word);
    }
    return text;
}

// The first groups of all matches.
Words Matches(const std::string& text, const std::string& pattern) {
    const std::regex regex(pattern);
    Words found;
    for (std::sregex_iterator match(text.begin(), text.end(), regex), end; match != end; ++match) {
        found.push_back((*match)[1]);
    }
    return found;
}

Words InBackticks(const Words& words) {
    Words quoted;
    for (const std::string& word : words) {
        quoted.push_back("`" + word + "`");
    }
    return quoted;
}

// The words of a shell command, which may hold quoted ones.
Words ShellWords(const std::string& command) {
    Words words;
    const std::regex word("'([^']*)'|\"([^\"]*)\"|([^ ]+)");
    for (std::sregex_iterator match(command.begin(), command.end(), word), end; match != end;
         ++match) {
        words.push_back((*match)[1].str() + (*match)[2].str() + (*match)[3].str());
    }
    return words;
}

// ---- The document ------------------------------------------------------------------------------

constexpr char kDocument[] = VELK_SOURCE_DIR "/docs/commands.md";
constexpr char kOverviewHeader[] = "| id | enumerator | `velkctl` | types | interfaces |";
constexpr char kFenceEnd[] = "```";

constexpr std::array kParts{"Data",   "Results", "Files", "Shell lines", "Longest blocking time",
                            "Example"};

// The entry of a command, in the words of the document.
struct Command {
    std::string id;
    std::string enumerator;
    std::string name;
    std::string types;
    std::string interfaces;

    bool operator==(const Command&) const = default;
};

void PrintTo(const Command& command, std::ostream* stream) {
    *stream << Joined(
        {command.id, command.enumerator, command.name, command.types, command.interfaces});
}

struct Section {
    Words ids;
    Words names;
    std::string facts;  // the paragraph below the heading
    std::vector<std::pair<std::string, std::string>> parts;

    std::string Part(const std::string& label) const {
        const auto part = std::find_if(parts.begin(), parts.end(),
                                       [&](const auto& known) { return known.first == label; });
        return part == parts.end() ? "" : part->second;
    }
};

const std::string& Document() {
    static const std::string text = testkit::ReadFile(kDocument);
    return text;
}

// The cells of "| a | b |".
Words Cells(const std::string& row) {
    return row.size() < 4 ? Words{} : Split(row.substr(2, row.size() - 4), " | ");
}

std::string Unquoted(const std::string& word) {
    const bool quoted = word.size() > 2 && word.front() == '`' && word.back() == '`';
    return quoted ? word.substr(1, word.size() - 2) : "not in backticks: " + word;
}

std::vector<Command> OverviewRows() {
    const Words lines = LinesOf(Document());
    auto line = std::find(lines.begin(), lines.end(), kOverviewHeader);
    std::vector<Command> rows;
    for (; line != lines.end() && line->starts_with("|"); ++line) {
        const Words cells = Cells(*line);
        if (*line == kOverviewHeader || line->starts_with("|---")) {
            continue;
        }
        if (cells.size() != 5) {
            ADD_FAILURE() << "not a row of five cells: " << *line;
            continue;
        }
        rows.push_back({cells[0], Unquoted(cells[1]), Unquoted(cells[2]), cells[3], cells[4]});
    }
    return rows;
}

class SectionReader {
  public:
    std::vector<Section> Read() {
        for (const std::string& line : LinesOf(Document())) {
            Take(line);
        }
        return sections_;
    }

  private:
    void Take(const std::string& line) {
        std::smatch match;
        if (!in_fence_ && line.starts_with("#")) {
            in_section_ = std::regex_match(line, match, std::regex("### ([0-9, ]+): (.+)"));
            if (in_section_) {
                facts_end_ = false;
                sections_.push_back({Split(match[1], ", "), Split(match[2], ", "), "", {}});
            }
            return;
        }
        in_fence_ = in_fence_ ? line != kFenceEnd : line.starts_with(kFenceEnd);
        if (in_section_) {
            TakeInside(line);
        }
    }

    void TakeInside(const std::string& line) {
        Section& section = sections_.back();
        std::smatch match;
        if (line.empty() && section.parts.empty()) {
            facts_end_ = !section.facts.empty();
        } else if (!facts_end_) {
            section.facts.append(section.facts.empty() ? "" : " ").append(line);
        } else if (!in_fence_ && std::regex_match(line, match, std::regex("\\*\\*(.+)\\*\\*"))) {
            section.parts.emplace_back(match[1], "");
        } else if (!section.parts.empty()) {
            section.parts.back().second.append(line).append("\n");
        }
    }

    std::vector<Section> sections_;
    bool in_section_ = false;
    bool in_fence_ = false;
    bool facts_end_ = false;
};

const std::vector<Section>& Sections() {
    static const std::vector<Section> sections = SectionReader().Read();
    return sections;
}

// The lines between fences such as "```sh".
Words FencedLines(const std::string& text, const std::string& fence) {
    Words fenced;
    bool inside = false;
    for (const std::string& line : LinesOf(text)) {
        if (inside && line != kFenceEnd) {
            fenced.push_back(line);
        }
        inside = inside ? line != kFenceEnd : line == fence;
    }
    return fenced;
}

// The commands that an example types.
Words TypedCommands(const Section& section) {
    Words commands;
    for (const std::string& line : FencedLines(section.Part("Example"), "```console")) {
        if (line.starts_with("$ ")) {
            commands.push_back(line.substr(2));
        }
    }
    return commands;
}

// Returns the arguments of each "velkctl" in the examples, without the commands before a pipe.
std::vector<Words> VelkctlCalls(const Section& section) {
    std::vector<Words> calls;
    for (const std::string& command : TypedCommands(section)) {
        Words words = ShellWords(Split(command, " | ").back());
        if (words.size() > 1 && words.front() == "velkctl") {
            words.erase(words.begin());
            calls.push_back(words);
        }
    }
    return calls;
}

// ---- The code ----------------------------------------------------------------------------------

struct Table {
    const char* type;
    std::span<const CommandEntry> rows;
};

const std::array<Table, 3> kTables{{
    {"get", velk::kGetTable},
    {"set", velk::kSetTable},
    {"restart", velk::kRestartTable},
}};

// The enumerators of the public header, by the number that they have there.
std::map<uint32_t, std::string> Enumerators() {
    const std::string header = testkit::ReadFile(VELK_SOURCE_DIR "/include/velk/request.h");
    const std::regex definition("(VELK_CMD_[A-Z0-9_]+) = ([0-9]+)");
    std::map<uint32_t, std::string> names;
    for (std::sregex_iterator match(header.begin(), header.end(), definition), end; match != end;
         ++match) {
        names[static_cast<uint32_t>(std::stoul((*match)[2]))] = (*match)[1];
    }
    return names;
}

// The settings by their ids, and the verb that is no setting.
std::map<uint32_t, std::string> VelkctlNames() {
    std::map<uint32_t, std::string> names;
    for (const velkctl::CatalogueRow& row : velkctl::Catalogue()) {
        names[row.id] = row.name;
    }
    const auto verbs = velkctl::Verbs();
    if (std::any_of(verbs.begin(), verbs.end(),
                    [](const velkctl::Verb& verb) { return verb.name == "restart"; })) {
        names[VELK_CMD_RESTART] = "restart";
    }
    return names;
}

std::string InterfacesOf(const CommandEntry& entry) {
    Words interfaces;
    if (entry.no_interface_allowed != 0) {
        interfaces.emplace_back("none");
    }
    if (entry.eth0_allowed != 0) {
        interfaces.emplace_back("eth0");
    }
    if (entry.eth1_allowed != 0) {
        interfaces.emplace_back("eth1");
    }
    return Joined(interfaces);
}

// Every command of the three tables, by its id. The types of one may differ in their interfaces,
// which the document has no words for.
std::vector<Command> CommandsOfTheCode() {
    const std::map<uint32_t, std::string> enumerators = Enumerators();
    const std::map<uint32_t, std::string> names = VelkctlNames();
    std::map<uint32_t, Command> commands;
    for (const Table& table : kTables) {
        for (const CommandEntry& entry : table.rows) {
            const auto [known, is_new] = commands.try_emplace(
                entry.command_id,
                Command{std::to_string(entry.command_id), enumerators.at(entry.command_id),
                        names.at(entry.command_id), table.type, InterfacesOf(entry)});
            if (!is_new) {
                known->second.types.append(", ").append(table.type);
                EXPECT_EQ(known->second.interfaces, InterfacesOf(entry)) << entry.command_id;
            }
        }
    }
    std::vector<Command> sorted;
    sorted.reserve(commands.size());
    for (const auto& [id, command] : commands) {
        sorted.push_back(command);
    }
    return sorted;
}

std::optional<Command> FindCommand(const std::string& id) {
    const std::vector<Command> commands = CommandsOfTheCode();
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const Command& command) { return command.id == id; });
    return found == commands.end() ? std::nullopt : std::optional(*found);
}

// The value of a path constant of the library.
std::string PathNamed(const std::string& constant) {
    const Words values = Matches(testkit::ReadFile(VELK_SOURCE_DIR "/lib/base/paths.h"),
                                 constant + R"re(\[\] = "([^"]*)")re");
    return values.empty() ? "" : values.front();
}

// The text of the pieces of JoinText(): literals and names of path constants.
std::string JoinedPieces(const std::string& pieces) {
    std::string text;
    const std::regex piece(R"re("([^"]*)"|(k\w+))re");
    for (std::sregex_iterator at(pieces.begin(), pieces.end(), piece), end; at != end; ++at) {
        text += (*at)[2].matched ? PathNamed((*at)[2]) : std::string((*at)[1]);
    }
    return text;
}

// The string literals of the library's sources, and the texts that it joins at compile time. Those
// of comments come along: a shell line or a path in one has to be right too.
const std::set<std::string>& Literals() {
    static const std::set<std::string> all = [] {
        std::set<std::string> literals;
        for (const auto& file :
             fs::recursive_directory_iterator(fs::path(VELK_SOURCE_DIR) / "lib")) {
            const std::string source = testkit::ReadFile(file.path().string());
            for (const std::string& pieces : Matches(source, R"re(= JoinText\(([^;]*)\);)re")) {
                literals.insert(JoinedPieces(pieces));
            }
            const std::string unjoined =
                std::regex_replace(source, std::regex(R"re(= JoinText\([^;]*\);)re"), "");
            for (const std::string& literal : Matches(unjoined, R"re("((?:[^"\\\n]|\\.)*)")re")) {
                literals.insert(std::regex_replace(literal, std::regex(R"re(\\(["\\]))re"), "$1"));
            }
        }
        return literals;
    }();
    return all;
}

// The only shell line that is put together from pieces.
constexpr char kSnmpLine[] = "sudo sed -i 's/%s.*/%s %s/' %s";

// The format strings of the shell lines.
Words ShellFormats() {
    Words formats;
    for (const std::string& literal : Literals()) {
        if (std::regex_search(literal, std::regex("^(sudo|cat|rm|grep|ifconfig) .*[^ ]")) &&
            literal != "sudo sed -i 's/") {
            formats.push_back(literal);
        }
    }
    if (Literals().contains("sudo sed -i 's/")) {
        formats.emplace_back(kSnmpLine);
    }
    return formats;
}

// True if the format can give the line: "%s" is a word, or a literal with blanks.
bool Gives(const std::string& format, std::string line) {
    for (const std::string& literal : Literals()) {
        if (literal.find(' ') != std::string::npos && format.ends_with(" %s") &&
            line.ends_with(" " + literal)) {
            line.replace(line.size() - literal.size(), literal.size(), "OPTIONS");
        }
    }
    std::string pattern =
        std::regex_replace(format, std::regex(R"re([.*+?^${}()|\[\]\\])re"), R"(\$&)");
    pattern = std::regex_replace(pattern, std::regex("%s"), "[^ ]+");
    pattern = std::regex_replace(pattern, std::regex("%d"), "[0-9]+");
    return std::regex_match(line, std::regex(pattern));
}

// A path that the sources name, or the edit copy of one.
bool IsKnownPath(const std::string& path) {
    return std::any_of(Literals().begin(), Literals().end(), [&](const std::string& literal) {
        const Words words = Split(literal, " ");
        return std::find(words.begin(), words.end(), path) != words.end() ||
               (literal.starts_with("/") &&
                (path == "/var/tmp/" + fs::path(literal).filename().string() ||
                 (literal.ends_with(".") && path.starts_with(literal))));
    });
}

// Every shell line of the document, those of the sections before the commands too.
Words ShellLines() {
    return FencedLines(Document(), "```sh");
}

// ---- The overview ------------------------------------------------------------------------------

TEST(CommandReference, TheOverviewHasARowForEveryCommandOfTheTablesAndNoOther) {
    EXPECT_THAT(OverviewRows(), ElementsAreArray(CommandsOfTheCode()));
}

TEST(CommandReference, EveryCommandNumberOfTheHeaderHasARow) {
    Words ids;
    for (const auto& [id, name] : Enumerators()) {
        ids.push_back(std::to_string(id));
    }
    Words in_overview;
    for (const Command& row : OverviewRows()) {
        in_overview.push_back(row.id);
    }
    EXPECT_THAT(in_overview, ElementsAreArray(ids));
}

// ---- The sections ------------------------------------------------------------------------------

TEST(CommandReference, EveryRowOfTheOverviewHasOneSectionInTheSameOrder) {
    Words headings;
    for (const Section& section : Sections()) {
        ASSERT_EQ(section.ids.size(), section.names.size()) << Joined(section.ids);
        for (size_t i = 0; i < section.ids.size(); ++i) {
            headings.push_back(section.ids[i] + ": " + section.names[i]);
        }
    }
    Words rows;
    for (const Command& row : OverviewRows()) {
        rows.push_back(row.id + ": " + row.name);
    }
    EXPECT_THAT(headings, ElementsAreArray(rows));
    EXPECT_THAT(headings, Not(IsEmpty()));
}

TEST(CommandReference, EverySectionBeginsWithEnumeratorTypesAndInterfaces) {
    for (const Section& section : Sections()) {
        Words enumerators;
        std::set<std::string> facts;
        for (const std::string& id : section.ids) {
            const std::optional<Command> command = FindCommand(id);
            ASSERT_TRUE(command.has_value()) << id;
            enumerators.push_back(command->enumerator);
            const std::string interfaces =
                command->interfaces == "none" ? "no interface" : command->interfaces;
            facts.insert(command->types + "; " + interfaces + ".");
        }
        ASSERT_EQ(facts.size(), 1U)
            << "commands that differ share a section: " << Joined(section.ids);
        EXPECT_EQ(section.facts, Joined(InBackticks(enumerators)) + "; " + *facts.begin());
    }
}

TEST(CommandReference, EverySectionHasAllItsPartsInTheirOrder) {
    for (const Section& section : Sections()) {
        Words labels;
        for (const auto& [label, text] : section.parts) {
            EXPECT_THAT(text, ContainsRegex("[A-Za-z0-9]")) << Joined(section.ids) << ": " << label;
            if (label != "Quirks") {  // not every command has some
                labels.push_back(label);
            }
        }
        EXPECT_THAT(labels, ElementsAreArray(kParts)) << Joined(section.ids);
    }
}

TEST(CommandReference, EverySectionHasTheResultsOfItsTypesOnceEach) {
    for (const Section& section : Sections()) {
        const Words results = Matches(section.Part("Results"), "\\| (-?[0-9]+) \\| .");
        const bool takes_lock = section.facts.find("; get;") == std::string::npos;
        for (const char* always : {"0", "-1", "-4"}) {
            EXPECT_THAT(results, Contains(always)) << Joined(section.ids);
        }
        EXPECT_EQ(std::count(results.begin(), results.end(), "-3"), takes_lock ? 1 : 0)
            << Joined(section.ids);
        EXPECT_EQ(std::set<std::string>(results.begin(), results.end()).size(), results.size())
            << "a result has two rows: " << Joined(section.ids);
    }
}

// True if the command's get is refused without an adapter and while the cable is in.
bool IsRefusedToWireless(const std::string& id) {
    const auto row = std::find_if(
        velk::kGetTable.begin(), velk::kGetTable.end(),
        [&](const CommandEntry& entry) { return std::to_string(entry.command_id) == id; });
    return row != velk::kGetTable.end() &&
           (row->handler == GetWlanState || (row->handler == GetIoctl && row->eth1_allowed != 0));
}

TEST(CommandReference, SectionsThatDependOnAdapterOrCableHaveTheirResults) {
    // A restart needs the adapter alone; the gateway of a lease is asked as GetIoctl() does.
    const std::map<std::string, Words> others{{"1", {"-5"}}, {"106", {"-5", "-6"}}};
    for (const Section& section : Sections()) {
        const std::string& id = section.ids.front();
        Words expected;
        if (others.contains(id)) {
            expected = others.at(id);
        } else if (IsRefusedToWireless(id)) {
            expected = {"-5", "-6"};
        }
        EXPECT_THAT(Matches(section.Part("Results"), "\\| (-[56]) \\| ."),
                    ElementsAreArray(expected))
            << id;
    }
}

// ---- Examples ----------------------------------------------------------------------------------

// Returns the mistake in the arguments of "velkctl get" or "velkctl set"; empty if none.
std::string ProblemWith(const Words& arguments) {
    const std::optional<velkctl::Setting> setting = velkctl::FindSetting(arguments.at(1));
    if (!setting) {
        return "no such setting";
    }
    if (arguments[0] == "set") {
        const Words value(arguments.begin() + 2, arguments.end());
        return setting->can_set() ? setting->row->kind->Parse(value).problem : "cannot be set";
    }
    if (!setting->can_get()) {
        return "cannot be read";
    }
    const bool shows_secret = arguments.size() == 3 && arguments[2] == "--show-secrets";
    return arguments.size() == 2 || shows_secret ? "" : "more than a name";
}

TEST(CommandReference, EveryExampleNamesASettingAndAValueThatItTakes) {
    size_t checked = 0;
    for (const Section& section : Sections()) {
        for (const Words& call : VelkctlCalls(section)) {
            if (call[0] == "get" || call[0] == "set") {
                ASSERT_GE(call.size(), 2U) << Joined(section.ids);
                EXPECT_EQ(ProblemWith(call), "") << Joined(call);
                ++checked;
            } else {
                EXPECT_THAT((Words{"call", "restart"}), Contains(call[0])) << Joined(call);
            }
        }
    }
    EXPECT_GT(checked, Sections().size());
}

TEST(CommandReference, EveryCallInAnExampleIsOneOfTheTables) {
    for (const Section& section : Sections()) {
        for (const Words& call : VelkctlCalls(section)) {
            if (call[0] != "call") {
                continue;
            }
            ASSERT_GE(call.size(), 3U) << Joined(call);
            const std::optional<Command> command = FindCommand(call[2]);
            ASSERT_TRUE(command.has_value()) << Joined(call);
            EXPECT_THAT(Split(command->types, ", "), Contains(call[1])) << Joined(call);
            const std::string interface = call.size() > 3 ? call[3] : "none";
            EXPECT_THAT(Split(command->interfaces, ", "), Contains(interface)) << Joined(call);
        }
    }
}

// True if one of the calls does this with the setting, on any interface.
bool Shows(const std::vector<Words>& calls, const std::string& type, const Words& names) {
    return std::any_of(calls.begin(), calls.end(), [&](const Words& call) {
        const Words parts = call.size() > 1 ? Split(call[1], ".") : Words{""};
        return call[0] == type && (type == "restart" || std::find(names.begin(), names.end(),
                                                                  parts.back()) != names.end());
    });
}

TEST(CommandReference, EverySectionShowsEachOfItsTypes) {
    for (const Section& section : Sections()) {
        const std::optional<Command> command = FindCommand(section.ids.front());
        ASSERT_TRUE(command.has_value()) << Joined(section.ids);
        for (const std::string& type : Split(command->types, ", ")) {
            EXPECT_TRUE(Shows(VelkctlCalls(section), type, section.names))
                << type << " of " << Joined(section.names) << " has no example";
        }
    }
}

// ---- Shell lines and files ---------------------------------------------------------------------

TEST(CommandReference, EveryShellLineComesFromAFormatOfTheSources) {
    const Words formats = ShellFormats();
    EXPECT_THAT(ShellLines(), Not(IsEmpty()));
    for (const std::string& line : ShellLines()) {
        EXPECT_TRUE(std::any_of(formats.begin(), formats.end(), [&](const std::string& format) {
            return Gives(format, line);
        })) << line;
    }
}

TEST(CommandReference, EveryShellLineOfTheCommandsIsDocumented) {
    // Only programs that call the functions themselves run these lines.
    const std::set<std::string> of_direct_callers{
        "sudo ifconfig %s %s", "sudo ifconfig %s netmask %s", "sudo route add default gw %s",
        "sudo route del default gw %s"};
    const Words lines = ShellLines();
    const Words formats = ShellFormats();
    EXPECT_THAT(formats, Contains("sudo ifup %s &"));
    for (const std::string& format : formats) {
        EXPECT_TRUE(of_direct_callers.contains(format) ||
                    std::any_of(lines.begin(), lines.end(),
                                [&](const std::string& line) { return Gives(format, line); }))
            << format;
    }
}

TEST(CommandReference, EverySectionListsItsShellLinesOrNone) {
    for (const Section& section : Sections()) {
        const std::string part = section.Part("Shell lines");
        const bool has_lines = !FencedLines(part, "```sh").empty();
        EXPECT_NE(has_lines, part == "\nNone.\n\n") << Joined(section.ids);
    }
}

TEST(CommandReference, AnEditCopyIsPutInPlaceAndThenRemoved) {
    const Words lines = ShellLines();
    size_t edits = 0;
    for (size_t i = 0; i < lines.size(); ++i) {
        const Words words = ShellWords(lines[i]);
        if (words[0] != "cat") {
            continue;
        }
        ASSERT_EQ(words.size(), 4U) << lines[i];
        ASSERT_LT(i + 1, lines.size()) << lines[i];
        EXPECT_EQ(words[1], "/var/tmp/" + fs::path(words[3]).filename().string());
        EXPECT_EQ(lines[i + 1], "rm " + words[1]);
        ++edits;
    }
    EXPECT_GT(edits, 0U);
}

TEST(CommandReference, EveryPathIsOneOfTheSources) {
    size_t paths = 0;
    for (const Section& section : Sections()) {
        for (const std::string& path : Matches(section.Part("Files"), "`(/[^`]+)`")) {
            EXPECT_TRUE(IsKnownPath(path)) << Joined(section.ids) << ": " << path;
            ++paths;
        }
    }
    EXPECT_GT(paths, 0U);
    for (const std::string& line : ShellLines()) {
        for (const std::string& path : Matches(line, "(?:^| )(/[^ ]+)")) {
            EXPECT_TRUE(IsKnownPath(path) || path == "/dev/null") << line;
        }
    }
}

TEST(CommandReference, EveryFileThatAShellLineEditsIsAmongTheFiles) {
    for (const Section& section : Sections()) {
        for (const std::string& line : FencedLines(section.Part("Shell lines"), "```sh")) {
            for (const std::string& target : Matches(line, "^cat [^ ]+ > (/[^ ]+)$")) {
                EXPECT_THAT(section.Part("Files"), HasSubstr("`" + target + "`"))
                    << Joined(section.ids);
            }
        }
    }
}

// ---- The way around ----------------------------------------------------------------------------

// The anchor that a heading gets.
std::string AnchorOf(const std::string& heading) {
    std::string anchor;
    for (const char letter : heading.substr(heading.find(' ') + 1)) {
        if (letter == ' ') {
            anchor.push_back('-');
        } else if (isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '-') {
            anchor.push_back(static_cast<char>(tolower(static_cast<unsigned char>(letter))));
        }
    }
    return anchor;
}

TEST(CommandReference, EveryLinkLeadsToAHeadingOrAFile) {
    Words anchors;
    bool in_fence = false;
    for (const std::string& line : LinesOf(Document())) {
        in_fence = line.starts_with(kFenceEnd) ? !in_fence : in_fence;
        if (!in_fence && line.starts_with("#")) {
            anchors.push_back(AnchorOf(line));
        }
    }
    const Words links = Matches(Document(), "\\]\\(([^)]+)\\)");
    EXPECT_THAT(links, Not(IsEmpty()));
    for (const std::string& link : links) {
        if (link.starts_with("#")) {
            EXPECT_THAT(anchors, Contains(link.substr(1)));
        } else {
            EXPECT_TRUE(fs::exists(fs::path(kDocument).parent_path() / link)) << link;
        }
    }
}

}  // namespace
