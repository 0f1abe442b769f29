// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// spelling.h - suggests corrections for misspelt words.
#ifndef VELKCTL_TEXT_SPELLING_H_
#define VELKCTL_TEXT_SPELLING_H_

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkctl {

// Returns the candidates with the meaning of the word, as other programs name it: "netmask" for
// "mask". Case does not matter. Empty if none.
std::vector<std::string> OtherNamesOf(std::string_view word,
                                      std::span<const std::string> candidates);

// Returns OtherNamesOf() the word, if there are any. Otherwise returns the candidates closest to a
// misspelt word: with at most two letters wrong, missing, added or swapped, and fewer than half.
// Without such candidates, returns those that begin with the word. Empty if there are none or too
// many.
std::vector<std::string> SpellingSuggestions(std::string_view word,
                                             std::span<const std::string> candidates);

// Returns the end of a message: "; did you mean static or dhcp?". `noun`, such as "the setting ",
// comes before the words.
std::string Suggestion(std::span<const std::string> words, std::string_view noun = "");

// Returns the end of a message about a word: "; did you mean static?", or "; " and `otherwise` if
// there is no suggestion.
std::string DidYouMean(std::string_view word, std::span<const std::string> candidates,
                       std::string_view otherwise);

// "auto, 100-full or 10-full"
std::string OneOf(std::span<const std::string> words);
// "address, netmask and gateway"
std::string AllOf(std::span<const std::string> words);

}  // namespace velkctl

#endif  // VELKCTL_TEXT_SPELLING_H_
