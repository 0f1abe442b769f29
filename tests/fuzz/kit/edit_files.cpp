// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// edit_files.cpp - the files that sets edit: the owners of the lines, and the permitted changes.
#include "fuzz/kit/edit_files.h"

#include <algorithm>
#include <optional>

#include "fuzz/kit/blocks.h"
#include "fuzz/kit/fuzz_device.h"
#include "fuzz/kit/lines.h"
#include "fuzz/kit/server_lines.h"
#include "support/edit_copy.h"
#include "support/paths.h"
#include "velk.h"

namespace fuzz {
namespace {

bool IsOwn(const EditedFile& file, std::string_view line) {
    return std::ranges::any_of(file.own, [&](const auto& text) { return Has(line, text); });
}

Texts Others(const EditedFile& file, Texts lines) {
    std::erase_if(lines, [&](const auto& line) { return IsOwn(file, line); });
    return lines;
}

bool IsOthers(const std::optional<std::vector<Owner>>& owners, size_t line) {
    return owners && (*owners)[line] == Owner::kOther;
}

Texts LinesOfOthers(const EditedFile& file, const Setting& setting, const Texts& lines) {
    const auto owners = OwnersOf(file.path, setting.interface, lines);
    Texts others;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (IsOthers(owners, i)) {
            others.push_back(lines[i]);
        }
    }
    return others;
}

bool IsOn(const EditedFile& file, const Setting& setting) {
    return setting.data[0] == (file.change == Change::kBlock ? '\2' : '\1');
}

// True if the line has one "#" more, or up to one less for each of the set's commands: one line may
// have several.
bool IsSwitched(std::string old_line, const std::string& new_line, bool is_on, size_t commands) {
    if (!is_on) {
        return new_line == "#" + old_line;
    }
    for (; commands > 0 && Has(old_line, "#"); --commands) {
        old_line.erase(old_line.find('#'), 1);
        if (old_line == new_line) {
            return true;
        }
    }
    return false;
}

// True if the line is more than a comment or a definition: in the client's script only a plain call
// counts.
bool IsSurelyOwn(const EditedFile& file, const std::string& line) {
    if (file.path != std::string_view(testkit::kClientScript)) {
        return IsOwn(file, line);
    }
    const std::string call = line.substr(std::min(line.find_first_not_of("#\t"), line.size()));
    return (call + " ").starts_with(file.own[0] + " ");
}

// On files in the device's usual form, checks that the interface's lines are on or off as the set
// asks, and that lines outside of blocks are unchanged.
void CheckSwitched(const EditedFile& file, const Setting& setting, const Texts& old_lines,
                   const Texts& new_lines) {
    const auto owners = OwnersOf(file.path, setting.interface, old_lines);
    const bool is_switch = setting.data == "\1" || setting.data == "\2";
    if (!owners || !is_switch || !std::ranges::all_of(old_lines, IsPlainlySwitched)) {
        return;
    }
    for (size_t i = 0; i < old_lines.size(); ++i) {
        if (file.change == Change::kBlock && (*owners)[i] == Owner::kEveryone) {
            Check(new_lines[i] == old_lines[i], "a line outside of the block is as it was");
        } else if (!IsOthers(owners, i) && IsSurelyOwn(file, old_lines[i])) {
            Check(new_lines[i].starts_with('#') != IsOn(file, setting), "a line is switched");
        }
    }
}

// The header has the interface's name, then the method, and nothing more.
void CheckMethodLine(const Setting& setting, const std::string& old_line,
                     const std::string& new_line) {
    const std::string header = "iface " + setting.interface + " inet ";
    const std::string method = setting.data == "\1" ? "static" : "dhcp";
    Check(new_line == (old_line.starts_with(header) ? header + method : old_line),
          "the interface's headers alone have the method");
}

std::string LettersOf(std::string text) {
    std::erase_if(text, [](char c) { return (c < 'a' || c > 'z') && (c < 'A' || c > 'Z'); });
    return text;
}

// A new option comes after a comma at the end of the statement. A removed option goes together with
// the characters between it and its neighbour.
void CheckOptionLine(const std::string& option, const Setting& setting, std::string line,
                     const std::string& new_line) {
    if (line == new_line) {
        return;
    }
    if (setting.data == "\1") {
        Check(Has(line, ";"), "an option comes in front of a semicolon");
        line.insert(line.find(';'), "," + option);
        Check(new_line == line, "an option comes, and nothing else changes");
        return;
    }
    Check(Has(line, option), "an option goes from where it was");
    line.erase(line.find(option), option.size());
    Check(new_line.size() <= line.size() && LettersOf(new_line) == LettersOf(line),
          "an option goes, and no other name");
}

void CheckOwnLine(const EditedFile& file, const Setting& setting, const std::string& old_line,
                  const std::string& new_line) {
    switch (file.change) {
        case Change::kSwitch:
        case Change::kBlock:
            Check(old_line == new_line ||
                      IsSwitched(old_line, new_line, IsOn(file, setting), file.own.size()),
                  "a line is switched, not rewritten");
            return;
        case Change::kMethod:
            CheckMethodLine(setting, old_line, new_line);
            return;
        case Change::kOption:
            CheckOptionLine(file.own[0], setting, old_line, new_line);
            return;
        default:
            CheckServerLine(old_line, new_line, setting.data);
            return;
    }
}

void CheckLineByLine(const EditedFile& file, const Setting& setting, const Texts& old_lines,
                     const Texts& new_lines) {
    const auto owners = OwnersOf(file.path, setting.interface, old_lines);
    Check(old_lines.size() == new_lines.size(), "there are as many lines as before");
    for (size_t i = 0; i < old_lines.size(); ++i) {
        if (IsOwn(file, old_lines[i]) && !IsOthers(owners, i)) {
            CheckOwnLine(file, setting, old_lines[i], new_lines[i]);
        } else {
            Check(old_lines[i] == new_lines[i], "another line is as it was");
        }
    }
}

// Own lines may be added and removed. Each added line of a value must hold it.
void CheckMoves(const EditedFile& file, const Setting& setting, const Texts& old_lines,
                const Texts& new_lines) {
    Check(Others(file, old_lines) == Others(file, new_lines), "other lines are as they were");
    Check(LinesOfOthers(file, setting, old_lines) == LinesOfOthers(file, setting, new_lines),
          "the other interfaces' lines are as they were");
    for (const std::string& line : new_lines) {
        const bool is_new = std::ranges::find(old_lines, line) == old_lines.end();
        Check(
            !is_new || file.change == Change::kMoves || line.ends_with(file.own[0] + setting.data),
            "a line that comes holds key and value");
    }
}

// Returns a line for each slot up to the first empty one.
std::string ServersText(const std::string& slots) {
    std::string text;
    for (size_t i = 0; i < kSlots; ++i) {
        const std::string server = TextIn(slots.substr(i * kSlotSize, kSlotSize));
        if (server.empty()) {
            break;
        }
        text += "nameserver " + server + "\n";
    }
    return text;
}

}  // namespace

std::string CopyOf(const EditedFile& file) {
    return file.change == Change::kWhole ? "" : testkit::CopyOf(file.path);
}

bool IsPlainlySwitched(const std::string& line) {
    return line.find('#', 1) == std::string::npos;
}

void CheckEdit(const EditedFile& file, const Setting& setting, std::string_view before,
               std::string_view after) {
    const Texts old_lines = Lines(before);
    const Texts new_lines = Lines(after);
    switch (file.change) {
        case Change::kSwitch:
        case Change::kBlock:
            CheckLineByLine(file, setting, old_lines, new_lines);
            CheckSwitched(file, setting, old_lines, new_lines);
            return;
        case Change::kMethod:
        case Change::kOption:
            CheckLineByLine(file, setting, old_lines, new_lines);
            return;
        case Change::kServer:
            CheckLineByLine(file, setting, WithJoins(old_lines), new_lines);
            return;
        case Change::kValue:
        case Change::kMoves:
            CheckMoves(file, setting, old_lines, new_lines);
            return;
        case Change::kWhole:
            Check(after == ServersText(setting.data), "the file has the servers and nothing else");
            return;
    }
}

}  // namespace fuzz
