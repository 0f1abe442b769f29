// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// server_list.cpp - values that are a list of servers.
#include "velkctl/settings/server_list.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <vector>

#include "velkctl/text/data_bytes.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/ipv4.h"
#include <nlohmann/json.hpp>

namespace velkctl {
namespace {

// Returns the problem with the word for one server, to follow it in a message; empty if none.
std::string ServerProblem(const std::string& word) {
    const std::optional<uint32_t> address = ParseIpv4(word);
    return address ? std::string(HostAddressProblem(*address))
                   : NotIpv4Problem(word, "an IPv4 address");
}

bool IsLoopbackAddress(const std::string& word) {
    const std::optional<uint32_t> address = ParseIpv4(word);
    return address && IsLoopback(*address);
}

// Adds a clause to the problems of a list.
void AddClause(std::string& problems, const std::string& clause) {
    problems.append(problems.empty() ? "" : "; ").append(clause);
}

// Returns the problems with the words that are no servers, and with their number; empty if none.
std::string WrongServers(std::span<const std::string> words) {
    std::string problems;
    for (const std::string& word : words) {
        if (const std::string problem = ServerProblem(word); !problem.empty()) {
            AddClause(problems, Quoted(word) + " " + problem);
        }
    }
    if (words.size() > VELK_DNS_SLOTS) {
        AddClause(problems, std::to_string(words.size()) + " addresses given");
    }
    return problems;
}

// Returns the problems with the words, at least one; empty if they make a server list.
std::string ServerListProblem(std::span<const std::string> words) {
    if (std::ranges::find(words, kNone) != words.end()) {
        return "'none' takes no other value; give either addresses or none";
    }
    if (const std::string problems = WrongServers(words); !problems.empty()) {
        return problems + (std::ranges::any_of(words, IsLoopbackAddress)
                               ? "; give other addresses, or none"
                               : "; give one to three IPv4 addresses such as 192.168.0.1, or none");
    }
    for (size_t i = 1; i < words.size(); ++i) {
        const auto earlier = words.first(i);
        if (std::ranges::find(earlier, words[i]) != earlier.end()) {
            return Quoted(words[i]) + " is given twice; give every server once";
        }
    }
    return {};
}

// A slot with a last byte other than NUL is a text of full length, also with NULs inside.
std::string_view SlotText(const Data& data, size_t index) {
    const char* slot = &data[index * VELK_DNS_SLOT_SIZE];
    const bool filled = slot[VELK_DNS_SLOT_SIZE - 1] != '\0';
    return {slot, filled ? VELK_DNS_SLOT_SIZE : strlen(slot)};
}

// A blank inside a slot must not look like the gap between two.
std::string PrintableWord(std::string_view text) {
    std::string word;
    for (const char byte : PrintableValue(text)) {
        word.append(byte == ' ' ? "\\x20" : std::string_view(&byte, 1));
    }
    return word;
}

// A line of the file without an address leaves a slot empty; the servers after it count.
std::vector<std::string_view> Servers(const Data& data) {
    std::vector<std::string_view> servers;
    for (size_t i = 0; i < VELK_DNS_SLOTS; ++i) {
        const std::string_view server = SlotText(data, i);
        if (!server.empty()) {
            servers.push_back(server);
        }
    }
    return servers;
}

// Returns the servers in words that have blanks or commas between them. A word without a server
// stays: it is a mistake.
std::vector<std::string> SplitServers(std::span<const std::string> words) {
    constexpr std::string_view kSeparators = " ,";
    std::vector<std::string> servers;
    for (const std::string& word : words) {
        const size_t servers_before = servers.size();
        for (size_t at = 0; at < word.size();) {
            const size_t end = std::min(word.find_first_of(kSeparators, at), word.size());
            if (end > at) {
                servers.push_back(word.substr(at, end - at));
            }
            at = end + 1;
        }
        if (servers.size() == servers_before) {
            servers.push_back(word);
        }
    }
    return servers;
}

Parsed InSlots(std::span<const std::string> words) {
    Parsed parsed;
    for (size_t i = 0; i < words.size(); ++i) {
        (void)words[i].copy(&parsed.data[i * VELK_DNS_SLOT_SIZE], VELK_DNS_SLOT_SIZE);
    }
    return parsed;
}

}  // namespace

std::string ServerListKind::Wanted() const {
    return "one to three IPv4 addresses such as 192.168.0.1, or none";
}

Parsed ServerListKind::Parse(std::span<const std::string> given) const {
    if (given.empty()) {
        return Unparsable(OneWordProblem(given));
    }
    const std::vector<std::string> words = SplitServers(given);
    if (words.size() == 1 && words.front() == kNone) {
        return {};
    }
    const std::string problem = ServerListProblem(words);
    if (problem.empty()) {
        return InSlots(words);
    }
    // A resolver may run on the device itself, but a forwarder there would query itself without
    // end.
    const bool has_loopback = std::ranges::any_of(words, IsLoopbackAddress);
    return Unparsable(problem, has_loopback ? ", or --force for a local resolver" : "");
}

Parsed ServerListKind::Force(std::span<const std::string> given) const {
    if (given.empty()) {
        return Unparsable(OneWordProblem(given));
    }
    const std::vector<std::string> words = SplitServers(given);
    if (words.size() > VELK_DNS_SLOTS) {
        return Unparsable(std::to_string(words.size()) + " servers given; give at most three");
    }
    return InSlots(words);
}

std::string ServerListKind::Print(const Data& data) const {
    std::string text;
    for (const std::string_view server : Servers(data)) {
        text.append(text.empty() ? "" : " ").append(PrintableWord(server));
    }
    return text.empty() ? std::string(kNone) : text;
}

nlohmann::ordered_json ServerListKind::ToJson(const Data& data) const {
    nlohmann::ordered_json servers = nlohmann::ordered_json::array();
    for (const std::string_view server : Servers(data)) {
        servers.push_back(PrintableWord(server));
    }
    return servers;
}

Parsed ServerListKind::FromJson(const nlohmann::ordered_json& value) const {
    if (value == kNone) {
        return {};  // as other settings take it
    }
    if (!value.is_array()) {
        return WrongType(value, "array");
    }
    if (!std::ranges::all_of(value, [](const auto& server) { return server.is_string(); })) {
        return Unparsable("an element of it is not a string" + Give());
    }
    return value.empty() ? Parsed() : Parse(value.get<std::vector<std::string>>());
}

}  // namespace velkctl
