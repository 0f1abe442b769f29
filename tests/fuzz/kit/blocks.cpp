// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// blocks.cpp - the interface that each line of a file belongs to.
#include "fuzz/kit/blocks.h"

#include <algorithm>

#include "fuzz/kit/edit_files.h"
#include "support/paths.h"

namespace fuzz {
namespace {

using testkit::kClientScript;
using testkit::kDhcpConfigFile;
using testkit::kExitHooks;
using testkit::kInterfacesFile;

using Owners = std::vector<Owner>;

// The effect of a line on the blocks of its file.
enum class Mark {
    kNone,
    kOpens,
    kTurns,  // the next lines are for all other interfaces
    kCloses,
    kOdd  // an unusual form
};

const Texts kConfigOpenings = {"interface \"eth0\" {", "interface \"eth1\" {"};
const Texts kScriptOpenings = {"if [ \"$interface\" = \"eth0\" ]; then",
                               "if [ \"$interface\" = \"eth1\" ]; then"};
const Texts kKeywords = {"if", "then", "else", "fi"};

bool IsOneOf(const Texts& texts, std::string_view text) {
    return std::ranges::find(texts, text) != texts.end();
}

// A block that is switched off has a "#" in front of each line.
Mark ConfigMark(std::string_view line) {
    if (line.starts_with('#')) {
        line.remove_prefix(1);
    }
    if (IsOneOf(kConfigOpenings, line)) {
        return Mark::kOpens;
    }
    if (line == "}") {
        return Mark::kCloses;
    }
    return Has(line, "interface") || Has(line, "}") ? Mark::kOdd : Mark::kNone;
}

bool HasKeyword(std::string_view line) {
    constexpr std::string_view kSeparators = " \t,;#";
    while (!line.empty()) {
        const std::string_view word = line.substr(0, line.find_first_of(kSeparators));
        if (IsOneOf(kKeywords, word)) {
            return true;
        }
        line.remove_prefix(std::min(word.size() + 1, line.size()));
    }
    return false;
}

Mark ScriptMark(std::string_view line) {
    const std::string_view text = line.substr(std::min(line.find_first_not_of('\t'), line.size()));
    if (IsOneOf(kScriptOpenings, text)) {
        return Mark::kOpens;
    }
    if (text == "else") {
        return Mark::kTurns;
    }
    if (text == "fi") {
        return Mark::kCloses;
    }
    return HasKeyword(line) ? Mark::kOdd : Mark::kNone;
}

// Finds the lines' owners, one line after the other.
class Blocks {
  public:
    explicit Blocks(const std::string& interface) : name_("\"" + interface + "\"") {}

    // Returns false if the line does not fit into plain blocks.
    bool Add(const std::string& line, Mark mark);

    const Owners& owners() const { return owners_; }

  private:
    bool Fits(const std::string& line, Mark mark) const;

    const std::string name_;
    Owners owners_;
    Owner owner_ = Owner::kEveryone;
    bool is_off_ = false;  // the block around the line
    bool has_turned_ = false;
};

bool Blocks::Fits(const std::string& line, Mark mark) const {
    const bool is_inside = owner_ != Owner::kEveryone;
    const bool has_mark = line.starts_with('#');
    switch (mark) {
        case Mark::kNone:
            return !is_off_ || has_mark;
        case Mark::kOpens:
            return !is_inside;
        case Mark::kTurns:
            return is_inside && !has_turned_;
        case Mark::kCloses:
            return is_inside && has_mark == is_off_;
        case Mark::kOdd:
            return false;
    }
    return false;
}

bool Blocks::Add(const std::string& line, Mark mark) {
    if (!Fits(line, mark)) {
        return false;
    }
    if (mark == Mark::kOpens) {
        owner_ = Has(line, name_) ? Owner::kInterface : Owner::kOther;
        is_off_ = line.starts_with('#');
        has_turned_ = false;
    } else if (mark == Mark::kTurns) {
        owner_ = owner_ == Owner::kInterface ? Owner::kOther : Owner::kInterface;
        has_turned_ = true;
    }
    owners_.push_back(owner_);
    if (mark == Mark::kCloses) {
        owner_ = Owner::kEveryone;
        is_off_ = false;
    }
    return true;
}

std::optional<Owners> BlockOwners(const std::string& interface, const Texts& lines,
                                  Mark (*mark_of)(std::string_view)) {
    Blocks blocks(interface);
    for (const std::string& line : lines) {
        if (!blocks.Add(line, mark_of(line))) {
            return std::nullopt;
        }
    }
    return blocks.owners();
}

// A stanza reaches to the next one. No set may change the lines before the first.
Owners StanzaOwners(const std::string& interface, const Texts& lines) {
    Owners owners;
    Owner owner = Owner::kOther;
    for (const std::string& line : lines) {
        if (line.starts_with("iface")) {
            const bool is_own = line.starts_with("iface " + interface + " inet ");
            owner = is_own ? Owner::kInterface : Owner::kOther;
        }
        owners.push_back(owner);
    }
    return owners;
}

}  // namespace

std::optional<std::vector<Owner>> OwnersOf(std::string_view path, const std::string& interface,
                                           const Texts& lines) {
    if (path == kInterfacesFile) {
        return StanzaOwners(interface, lines);
    }
    if (!interface.empty() && path == kDhcpConfigFile) {
        return BlockOwners(interface, lines, ConfigMark);
    }
    if (!interface.empty() && (path == kExitHooks || path == kClientScript)) {
        return BlockOwners(interface, lines, ScriptMark);
    }
    return Owners(lines.size(), Owner::kEveryone);
}

}  // namespace fuzz
