// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// host_value.cpp - values that name a host.
#include "velkctl/settings/host_value.h"

#include <algorithm>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>

#include "lib/base/words.h"
#include "velkctl/text/data_bytes.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/ipv4.h"

namespace velkctl {
namespace {

constexpr size_t kLongestName = 253;  // the longest host name, see hostname(7)
constexpr size_t kLongestLabel = 63;

bool IsNameCharacter(char c) {
    return velk::IsLetterOrDigit(c) || c == '-' || c == '_';
}

bool IsLabel(std::string_view label) {
    return !label.empty() && std::ranges::all_of(label, IsNameCharacter);
}

// Returns the part after the last dot. It is a number in an address, and never in a name.
std::string_view LastLabel(std::string_view name) {
    return name.substr(name.rfind('.') + 1);
}

bool IsNumericLabel(std::string_view label) {
    return label.find_first_not_of("0123456789") == std::string_view::npos;
}

bool IsIpv6(const std::string& word) {
    in6_addr address{};
    return word.find('\0') == std::string::npos && inet_pton(AF_INET6, word.c_str(), &address) == 1;
}

// A name that begins with a sign would be an option of the program that gets it.
bool BeginsLikeName(std::string_view word) {
    return !word.empty() && velk::IsLetterOrDigit(word.front());
}

// A dot at the end marks a complete name.
std::string_view WithoutEndDot(std::string_view name) {
    return name.substr(0, name.size() - (name.ends_with('.') ? 1 : 0));
}

// Returns the parts between the dots.
std::vector<std::string_view> LabelsOf(std::string_view word) {
    std::vector<std::string_view> labels;
    std::string_view rest = WithoutEndDot(word);
    for (size_t dot = 0; (dot = rest.find('.')) != std::string_view::npos;) {
        labels.push_back(rest.substr(0, dot));
        rest.remove_prefix(dot + 1);
    }
    labels.push_back(rest);
    return labels;
}

bool IsHostName(std::string_view word) {
    return BeginsLikeName(word) && std::ranges::all_of(LabelsOf(word), IsLabel);
}

// Returns the problem of a part of a name that is too long.
std::string TooLong(std::string_view part, size_t length, size_t longest) {
    return std::string("is too long; ").append(part).append(" has ") + std::to_string(length) +
           " of at most " + std::to_string(longest) + " characters";
}

// Returns the problem with the length of a name or of one of its parts; empty if none.
std::string LengthProblem(std::string_view word) {
    if (word.size() > kLongestName) {
        return TooLong("it", word.size(), kLongestName);
    }
    const std::vector<std::string_view> labels = LabelsOf(word);
    const auto longest = std::ranges::max_element(labels, {}, &std::string_view::size);
    return longest->size() > kLongestLabel
               ? TooLong("a part without a dot", longest->size(), kLongestLabel)
               : "";
}

// Returns the problem with a word, to follow it in a message; empty if none.
std::string HostProblem(const std::string& word) {
    if (const std::optional<uint32_t> address = ParseIpv4(word)) {
        return std::string(HostAddressProblem(*address));
    }
    if (BeginsLikeName(word) && IsIpv6(word)) {
        return {};
    }
    if (!IsHostName(word)) {
        return "is not a host name";
    }
    if (std::string problem = LengthProblem(word); !problem.empty()) {
        return problem;
    }
    return IsNumericLabel(LastLabel(WithoutEndDot(word))) ? NotIpv4Problem(word, "an IPv4 address")
                                                          : "";
}

}  // namespace

std::string HostKind::Wanted() const {
    return "a host name or address such as 192.168.0.1, or none";
}

Parsed HostKind::Parse(std::span<const std::string> words) const {
    if (std::string problem = OneWordProblem(words); !problem.empty()) {
        return Unparsable(std::move(problem));
    }
    Parsed parsed;
    const std::string& word = words.front();
    if (word == kNone) {
        return parsed;
    }
    if (word == kOff) {
        // Other settings are switched off by "off". Here it would be the name of a host.
        return Unparsable("'off' would be a host name here; give none to clear the setting",
                          ", or --force to set that name");
    }
    if (const std::string problem = HostProblem(word); !problem.empty()) {
        return Unparsable(Quoted(word) + " " + problem + Give());
    }
    (void)word.copy(parsed.data.data(), parsed.data.size());
    return parsed;
}

std::string HostKind::Print(const Data& data) const {
    return PrintText(data, kNone);
}

}  // namespace velkctl
