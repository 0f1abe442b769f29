// change_words.cpp - reads the changes that the words of a command line ask for.
#include "velkctl/verbs/change_words.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "velkctl/cli/secret_source.h"
#include "velkctl/cli/verb_arguments.h"
#include "velkctl/settings/catalogue.h"
#include "velkctl/text/escaping.h"

namespace velkctl {
namespace {

using Words = std::vector<std::string>;

struct Requests {
    std::vector<ChangeRequest> rows{};
    std::vector<Problem> problems{};
};

// True if a person or standard input gives the value.
bool IsAskedFor(const ChangeRequest& request) {
    const Words& words = request.words;
    return request.setting.row->secret &&
           (words.empty() || (words.size() == 1 && words.front() == "-"));
}

// ---- From words to requests --------------------------------------------------------------------

bool Has(const Requests& requests, const Setting& setting) {
    return std::ranges::any_of(requests.rows, [&setting](const ChangeRequest& request) {
        return IsSameSetting(request.setting, setting);
    });
}

void Refuse(Requests& requests, const Setting& setting, const std::string& problem) {
    const std::string name = setting.name();
    requests.problems.push_back(Problem{name + ": " + problem, name});
}

void Add(Requests& requests, const Setting& setting, Words words) {
    if (!setting.can_set()) {
        Refuse(requests, setting, "cannot be set, only read");
    } else if (Has(requests, setting)) {
        const bool is_mask = setting.row->id == VELK_CMD_NETMASK;
        Refuse(requests, setting,
               is_mask ? "given twice; the prefix length after an address counts too"
                       : "given twice; give it once");
    } else {
        requests.rows.push_back({setting, std::move(words)});
    }
}

// Adds the address, and the netmask if a prefix length follows: "192.168.0.77/24".
void AddAddress(Requests& requests, const Setting& setting, const std::string& word) {
    const size_t slash = word.find('/');
    const std::optional<Setting> netmask = FindSetting(VELK_CMD_NETMASK, setting.interface);
    Add(requests, setting, {word.substr(0, slash)});
    if (slash != std::string::npos && netmask) {
        Add(requests, *netmask, {word.substr(slash)});
    }
}

void AddValue(Requests& requests, const Setting& setting, const Words& words) {
    if (setting.row->id == VELK_CMD_IP_ADDRESS && words.size() == 1) {
        AddAddress(requests, setting, words.front());
    } else {
        Add(requests, setting, words);
    }
}

bool HasNameOfSecret(const Words& words) {
    return std::ranges::any_of(words, [](const std::string& word) { return NamesSecret(word); });
}

// True for the names of more settings: "eth0.address 10.0.0.1 eth0.gateway 10.0.0.2".
bool HasMoreNames(const Words& value) {
    return value.size() > 1 && std::any_of(value.begin() + 1, value.end(), [](const auto& word) {
               return FindSetting(WithoutValue(word)).has_value();
           });
}

Requests RequestOf(const Words& words) {
    Requests requests;
    const std::optional<Setting> setting = FindSetting(words.front());
    const Words value(words.begin() + 1, words.end());
    if (setting && HasMoreNames(value)) {
        Refuse(requests, *setting,
               "another setting follows the value; give NAME=VALUE for each of several settings");
    } else if (setting) {
        AddValue(requests, *setting, value);
    } else {
        // If the name of a secret comes later, the first word is probably the secret.
        requests.problems.push_back(
            Problem{"set: " + (HasNameOfSecret(value)
                                   ? "the name of the setting comes first, then its value"
                                   : UnknownSetting(words.front()))});
    }
    return requests;
}

// `may_be_key` is true after the name of a secret: the word may be a part of its value.
void AddAssignment(Requests& requests, const std::string& word, bool may_be_key) {
    const std::string name(WithoutValue(word));
    const std::optional<Setting> setting = FindSetting(name);
    if (!IsAssignment(word)) {
        requests.problems.push_back(Problem{"set: " + QuotedUnlessKey(word, may_be_key) +
                                            " has no '='; give NAME=VALUE, "
                                            "with quotes around a value that has blanks"});
    } else if (!setting) {
        requests.problems.push_back(Problem{"set: " + UnknownSetting(name, may_be_key)});
    } else {
        const std::string value = word.substr(name.size() + 1);
        const bool is_asked_for = setting->row->secret && value.empty();
        AddValue(requests, *setting, is_asked_for ? Words() : Words{value});
    }
}

Requests RequestsOf(const Words& words) {
    Requests requests;
    bool may_be_key = false;
    for (const std::string& word : words) {
        AddAssignment(requests, word, may_be_key);
        may_be_key = may_be_key || NamesSecret(WithoutValue(word));
    }
    return requests;
}

// ---- From requests to changes ------------------------------------------------------------------

Parsed ParseWords(const Setting& setting, std::span<const std::string> words, bool force) {
    const ValueKind& kind = *setting.row->kind;
    const Parsed parsed = kind.Parse(words);
    return parsed.ok() || !force ? parsed : kind.Force(words);
}

// Returns the data bytes of the words. The word of a secret may name its source; without a word,
// the user is asked for it.
Parsed ParseValue(const ChangeRequest& request, bool force) {
    const auto& [setting, words] = request;
    if (!setting.row->secret || words.size() > 1 || (words.empty() && !CanAskForSecret())) {
        return ParseWords(setting, words, force);
    }
    const Secret secret = words.empty() ? AskForSecret(setting.name()) : ReadSecret(words.front());
    return secret.problem.empty() ? ParseWords(setting, {&secret.text, 1}, force)
                                  : Unparsable(secret.problem);
}

void Take(const ChangeRequest& request, bool force, RequestedChanges& read) {
    const Parsed parsed = ParseValue(request, force);
    if (!parsed.ok()) {
        const std::string name = request.setting.name();
        read.problems.push_back(Problem{name + ": " + parsed.problem, name});
    }
    read.changes.push_back({request.setting, parsed.data});
}

}  // namespace

RequestedChanges ReadChanges(const Invocation& invocation) {
    const Words& words = invocation.words;
    const Requests requests = IsAssignment(words.front()) ? RequestsOf(words) : RequestOf(words);
    RequestedChanges read{{}, requests.problems, {}};
    for (const ChangeRequest& request : requests.rows) {
        if (IsAskedFor(request)) {
            read.open.push_back(request);
        } else {
            Take(request, invocation.force, read);
        }
    }
    return read;
}

void AskForSecrets(RequestedChanges& requested, bool force) {
    for (const ChangeRequest& request : std::exchange(requested.open, {})) {
        Take(request, force, requested);
    }
}

}  // namespace velkctl
