// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// change_words.cpp - reads the changes that the words of a command line ask for.
#include "velkctl/changes/change_words.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "velkctl/changes/secret_source.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/settings/value_kind.h"
#include "velkctl/text/assignment.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

using Words = std::vector<std::string>;

// True if a person or standard input gives the value.
bool IsAskedFor(const ChangeRequest& request) {
    const Words& words = request.words;
    return request.setting.row->secret && (words.empty() ? CanAskForSecret() : words == Words{"-"});
}

// ---- Values ------------------------------------------------------------------------------------

Parsed ParseWords(const Setting& setting, std::span<const std::string> words, Forcing forcing) {
    const ValueKind& kind = *setting.row->kind;
    const Parsed parsed = kind.Parse(words);
    return parsed.ok() || forcing != Forcing::kGiven ? parsed : kind.Force(words);
}

// Returns the data bytes of the words. The word of a secret may name its source; without a word,
// the user is asked for it.
Parsed ParseValue(const ChangeRequest& request, Forcing forcing) {
    const auto& [setting, words] = request;
    if (!setting.row->secret || words.size() > 1 || (words.empty() && !CanAskForSecret())) {
        return ParseWords(setting, words, forcing);
    }
    const Secret secret = words.empty() ? AskForSecret(setting.name()) : ReadSecret(words.front());
    return secret.problem.empty() ? ParseWords(setting, {&secret.text, 1}, forcing)
                                  : Unparsable(secret.problem);
}

void Refuse(const Setting& setting, const std::string& problem, RequestedChanges& read) {
    const std::string name = setting.name();
    read.problems.push_back(Problem{name + ": " + problem, name});
}

void Take(const ChangeRequest& request, Forcing forcing, RequestedChanges& read) {
    Parsed parsed = ParseValue(request, forcing);
    if (!parsed.ok()) {
        const bool may_force = forcing != Forcing::kImpossible;
        Refuse(request.setting, parsed.problem.append(may_force ? parsed.or_force : ""), read);
    }
    read.changes.push_back({request.setting, parsed.data});
}

// ---- From words to changes ---------------------------------------------------------------------

bool IsRequested(const RequestedChanges& read, const Setting& setting) {
    const auto is_same = [&setting](const auto& row) {
        return IsSameSetting(row.setting, setting);
    };
    return std::ranges::any_of(read.changes, is_same) ||
           std::ranges::any_of(read.unread_secrets, is_same);
}

bool HasNameOfSecret(const Words& words) {
    return std::ranges::any_of(words, [](const std::string& word) { return NamesSecret(word); });
}

// True if the value contains another setting's name: "eth0.address 10.0.0.1 eth0.gateway 10.0.0.2".
bool HasMoreNames(const Words& value) {
    return value.size() > 1 && std::any_of(value.begin() + 1, value.end(), [](const auto& word) {
               return FindSetting(WithoutValue(word)).has_value();
           });
}

// True for "NAME= VALUE" and "NAME = VALUE".
bool HasBlankAtEquals(const Words& words) {
    const std::string_view first = words.front();
    if (words.size() < 2 || !FindSetting(WithoutValue(first))) {
        return false;
    }
    return IsAssignment(first) ? first.ends_with('=') && !IsAssignment(words[1])
                               : words[1] == "=" && words.size() > 2;
}

// Reads the words in their order, so that the problems have it too.
class ChangeReader {
  public:
    ChangeReader(std::string_view verb, Forcing forcing) : verb_(verb), forcing_(forcing) {}

    // Reads "NAME VALUE...".
    void AddOne(const Words& words) {
        const std::optional<Setting> setting = FindSetting(words.front());
        const Words value(words.begin() + 1, words.end());
        if (!setting) {
            // If the name of a secret comes later, the first word is probably the secret.
            RefuseWord(HasNameOfSecret(value) ? "the name of the setting comes after its value; "
                                                "give the name first"
                                              : UnknownSetting(words.front()));
        } else if (HasMoreNames(value)) {
            Refuse(*setting,
                   "another setting follows the value; give NAME=VALUE for each of several "
                   "settings",
                   read_);
        } else {
            AddValue(*setting, value);
        }
    }

    // Reads any number of "NAME=VALUE".
    void AddAll(const Words& words) {
        bool may_be_key = false;
        for (const std::string& word : words) {
            AddAssignment(word, may_be_key);
            may_be_key = may_be_key || NamesSecret(WithoutValue(word));
        }
    }

    void RefuseBlank(std::string_view word) {
        const std::string name(WithoutValue(word));
        RefuseWord(name + ": there is a blank at the '='; write " + name + "=VALUE without blanks");
    }

    RequestedChanges TakeChanges() { return std::move(read_); }

  private:
    void RefuseWord(const std::string& problem) {
        read_.problems.push_back(Problem{verb_ + ": " + problem});
    }

    // `may_be_key` is true after the name of a secret: the word may be a part of its value.
    void AddAssignment(const std::string& word, bool may_be_key) {
        const std::string name(WithoutValue(word));
        const std::optional<Setting> setting = FindSetting(name);
        if (!IsAssignment(word)) {
            RefuseWord(QuotedUnlessKey(word, may_be_key) +
                       " has no '='; give NAME=VALUE, with quotes around a value that has blanks");
        } else if (!setting) {
            RefuseWord(UnknownSetting(name, may_be_key));
        } else {
            const std::string value = word.substr(name.size() + 1);
            const bool is_asked_for = setting->row->secret && value.empty();
            AddValue(*setting, is_asked_for ? Words() : Words{value});
        }
    }

    void AddValue(const Setting& setting, const Words& words) {
        if (setting.row->id == VELK_CMD_IP_ADDRESS && words.size() == 1) {
            AddAddress(setting, words.front());
        } else {
            Add(setting, words);
        }
    }

    // Adds the address, and the netmask if a prefix length follows: "192.168.0.77/24".
    void AddAddress(const Setting& setting, const std::string& word) {
        const size_t slash = word.find('/');
        const std::optional<Setting> netmask = FindSetting(VELK_CMD_NETMASK, setting.interface);
        Add(setting, {word.substr(0, slash)});
        if (slash != std::string::npos && netmask) {
            Add(*netmask, {word.substr(slash)});
        }
    }

    void Add(const Setting& setting, Words words) {
        if (!setting.can_set()) {
            Refuse(setting,
                   "cannot be set, only read; 'velkctl get " + setting.name() + "' reads it",
                   read_);
        } else if (IsRequested(read_, setting)) {
            const bool is_mask = setting.row->id == VELK_CMD_NETMASK;
            Refuse(setting,
                   is_mask ? "given twice; the prefix length after an address counts too; give it "
                             "once"
                           : "given twice; give it once",
                   read_);
        } else {
            AddNew({setting, std::move(words)});
        }
    }

    void AddNew(const ChangeRequest& request) {
        if (IsAskedFor(request)) {
            read_.unread_secrets.push_back(request);
        } else {
            Take(request, forcing_, read_);
        }
    }

    const std::string verb_;
    const Forcing forcing_;
    RequestedChanges read_;
};

}  // namespace

RequestedChanges ReadChanges(std::string_view verb, const Words& words, Forcing forcing) {
    ChangeReader reader(verb, forcing);
    if (HasBlankAtEquals(words)) {
        reader.RefuseBlank(words.front());
    } else if (IsAssignment(words.front())) {
        reader.AddAll(words);
    } else {
        reader.AddOne(words);
    }
    return reader.TakeChanges();
}

void AskForSecrets(RequestedChanges& requested, Forcing forcing) {
    for (const ChangeRequest& request : std::exchange(requested.unread_secrets, {})) {
        Take(request, forcing, requested);
    }
}

}  // namespace velkctl
