// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// spelling.cpp - suggests corrections for misspelt words.
#include "velkctl/text/spelling.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace velkctl {
namespace {

constexpr size_t kFarthest = 2;
constexpr size_t kShortestBeginning = 3;
constexpr size_t kMostGuesses = 4;   // more would not help
constexpr size_t kLongestWord = 64;  // no name, option or value is that long

// A word that other programs use, and the name or value that it means here.
struct OtherName {
    std::string_view word;
    std::string_view meant;
};

constexpr std::array<OtherName, 34> kOtherNames{{
    {"addr", "address"},
    {"ip", "address"},
    {"ip-address", "address"},
    {"ipv4", "address"},
    {"mask", "netmask"},
    {"prefix", "netmask"},
    {"subnet", "netmask"},
    {"gw", "gateway"},
    {"route", "gateway"},
    {"router", "gateway"},
    {"dhcp", "method"},
    {"nameserver", "dns"},
    {"nameservers", "dns"},
    {"resolver", "dns"},
    {"speed", "link-speed"},
    {"duplex", "link-speed"},
    {"mac", "mac-address"},
    {"hwaddr", "mac-address"},
    {"ap", "access-point"},
    {"bssid", "access-point"},
    {"key", "psk"},
    {"key", "wep-key-1"},
    {"passphrase", "psk"},
    {"password", "psk"},
    {"contact", "administrator"},
    {"time-server", "ntp-server"},
    {"timeserver", "ntp-server"},
    {"schedule", "web-update"},
    {"enabled", "on"},
    {"yes", "on"},
    {"disabled", "off"},
    {"never", "off"},
    {"no", "off"},
    {"none", "off"},
}};

char ToLower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool IsSameLetter(char one, char other) {
    return ToLower(one) == ToLower(other);
}

// Returns the number of letters to change, add, remove or swap with their neighbour.
size_t Distance(std::string_view from, std::string_view to) {
    std::vector<std::vector<size_t>> steps(from.size() + 1, std::vector<size_t>(to.size() + 1));
    for (size_t i = 0; i <= from.size(); ++i) {
        for (size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                steps[i][j] = i + j;
                continue;
            }
            const size_t changed =
                steps[i - 1][j - 1] + (IsSameLetter(from[i - 1], to[j - 1]) ? 0 : 1);
            steps[i][j] = std::min({changed, steps[i - 1][j] + 1, steps[i][j - 1] + 1});
            if (i > 1 && j > 1 && IsSameLetter(from[i - 1], to[j - 2]) &&
                IsSameLetter(from[i - 2], to[j - 1])) {
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
            }
        }
    }
    return steps[from.size()][to.size()];
}

// Returns the candidates with the fewest wrong letters.
std::vector<std::string> NearestSpellings(std::string_view word,
                                          std::span<const std::string> candidates) {
    std::vector<std::string> nearest;
    size_t fewest = kFarthest;
    for (const std::string& candidate : candidates) {
        const size_t distance = Distance(word, candidate);
        if (distance > fewest || 2 * distance >= candidate.size()) {
            continue;
        }
        if (distance < fewest) {
            nearest.clear();
            fewest = distance;
        }
        nearest.push_back(candidate);
    }
    return nearest;
}

std::vector<std::string> StartingWith(std::string_view word,
                                      std::span<const std::string> candidates) {
    std::vector<std::string> begun;
    if (word.size() >= kShortestBeginning) {
        std::ranges::copy_if(candidates, std::back_inserter(begun),
                             [word](const std::string& text) { return text.starts_with(word); });
    }
    return begun;
}

// `before_last` is put before the last word, if there are several.
std::string Joined(std::span<const std::string> words, std::string_view before_last) {
    std::string text;
    for (const std::string& word : words) {
        const bool is_last = &word == &words.back();
        text.append(text.empty() ? "" : is_last ? before_last : ", ").append(word);
    }
    return text;
}

bool EqualsIgnoringCase(std::string_view one, std::string_view other) {
    return std::ranges::equal(one, other, IsSameLetter);
}

}  // namespace

std::vector<std::string> OtherNamesOf(std::string_view word,
                                      std::span<const std::string> candidates) {
    std::vector<std::string> meant;
    for (const OtherName& other : kOtherNames) {
        if (EqualsIgnoringCase(word, other.word) &&
            std::ranges::find(candidates, other.meant) != candidates.end()) {
            meant.emplace_back(other.meant);
        }
    }
    return meant;
}

std::vector<std::string> SpellingSuggestions(std::string_view word,
                                             std::span<const std::string> candidates) {
    if (word.size() > kLongestWord) {
        return {};
    }
    std::vector<std::string> meant = OtherNamesOf(word, candidates);
    if (!meant.empty()) {
        return meant;
    }
    meant = NearestSpellings(word, candidates);
    if (meant.empty()) {
        meant = StartingWith(word, candidates);
    }
    return meant.size() > kMostGuesses ? std::vector<std::string>{} : meant;
}

std::string Suggestion(std::span<const std::string> words, std::string_view noun) {
    return std::string("; did you mean ").append(noun).append(OneOf(words)).append("?");
}

std::string DidYouMean(std::string_view word, std::span<const std::string> candidates,
                       std::string_view otherwise) {
    const std::vector<std::string> meant = SpellingSuggestions(word, candidates);
    return meant.empty() ? std::string("; ").append(otherwise) : Suggestion(meant);
}

std::string OneOf(std::span<const std::string> words) {
    return Joined(words, " or ");
}

std::string AllOf(std::span<const std::string> words) {
    return Joined(words, " and ");
}

}  // namespace velkctl
