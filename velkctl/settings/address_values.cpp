// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// address_values.cpp - values that are one IPv4 address or mask.
#include "velkctl/settings/address_values.h"

#include "velkctl/text/data_bytes.h"
#include "velkctl/text/escaping.h"
#include "velkctl/text/ipv4.h"
#include "velkctl/text/numbers.h"

namespace velkctl {
namespace {

// Returns the problem with a word that is a prefix length of no mask, "/33"; empty for others.
std::string PrefixProblem(std::string_view word) {
    const std::string_view number = word.substr(word.starts_with('/') ? 1 : 0);
    if (number.empty()) {
        return word.empty() ? "" : "has no prefix length";
    }
    const bool is_number = number.find_first_not_of("0123456789") == std::string_view::npos;
    return is_number ? "is no mask: a prefix length is 1 to 32" : "";
}

}  // namespace

std::string AddressKind::Wanted() const {
    return std::string(wanted_)
        .append(" such as ")
        .append(example_)
        .append(takes_none_ ? ", or none" : "");
}

std::string AddressKind::Problem(const std::string& word) const {
    const std::optional<uint32_t> address = ParseIpv4(word);
    if (address) {
        return std::string(problem_(*address));
    }
    const std::string prefix = in_full_ == nullptr ? "" : PrefixProblem(word);
    return prefix.empty() ? NotIpv4Problem(word, wanted_) : prefix;
}

Parsed AddressKind::Parse(std::span<const std::string> words) const {
    if (std::string problem = OneWordProblem(words); !problem.empty()) {
        return Unparsable(std::move(problem));
    }
    Parsed parsed;
    const std::string& word = words.front();
    if (takes_none_ && word == kNone) {
        return parsed;
    }
    const std::string address = in_full_ == nullptr ? word : in_full_(word);
    if (const std::string problem = Problem(address); !problem.empty()) {
        return Unparsable(Quoted(word) + " " + problem + Give());
    }
    (void)address.copy(parsed.data.data(), parsed.data.size());
    return parsed;
}

std::vector<Meaning> AddressKind::Meanings() const {
    return short_form_.value.empty() ? std::vector<Meaning>{} : std::vector<Meaning>{short_form_};
}

std::string AddressKind::Print(const Data& data) const {
    return PrintText(data, kNone);
}

std::string MaskOfPrefix(const std::string& word) {
    const std::string text = word.substr(word.starts_with('/') ? 1 : 0);
    const std::optional<unsigned> bits = ParseNumber<unsigned>(text, 0, 32);
    if (!bits) {
        return ParseIpv4(text) ? text : word;
    }
    return Dotted(*bits == 0 ? 0 : ~0U << (32 - *bits));
}

}  // namespace velkctl
