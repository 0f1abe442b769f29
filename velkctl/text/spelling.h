// spelling.h - guesses what a misspelt word means.
#ifndef VELKCTL_TEXT_SPELLING_H_
#define VELKCTL_TEXT_SPELLING_H_

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace velkctl {

// The candidates that a misspelt word most likely means: at most two letters are wrong, missing,
// too many or swapped, and fewer than half; small and capital letters are alike. Otherwise those
// that it is the beginning of. Empty when there are none, or too many.
std::vector<std::string> NearMisses(std::string_view word, std::span<const std::string> candidates);

// The end of a complaint about a word: "; did you mean static?", or "; " and what else would be
// right when no candidate is near.
std::string DidYouMean(std::string_view word, std::span<const std::string> candidates,
                       std::string_view otherwise);

// "auto, 100-full or 10-full"
std::string OneOf(std::span<const std::string> words);

}  // namespace velkctl

#endif  // VELKCTL_TEXT_SPELLING_H_
