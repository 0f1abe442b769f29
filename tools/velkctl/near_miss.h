// near_miss.h - guesses what a misspelt word means.
#ifndef VELKCTL_NEAR_MISS_H_
#define VELKCTL_NEAR_MISS_H_

#include <span>
#include <string>
#include <string_view>

namespace velkctl {

// The candidate that a misspelt word most likely means: at most two letters are wrong, missing, too
// many or swapped, and fewer than half. Empty when none is that near.
std::string_view NearMiss(std::string_view word, std::span<const std::string> candidates);

}  // namespace velkctl

#endif  // VELKCTL_NEAR_MISS_H_
