// near_miss.cpp - guesses what a misspelt word means.
#include "velkctl/near_miss.h"

#include <algorithm>
#include <vector>

namespace velkctl {
namespace {

constexpr size_t kFarthest = 2;

// How many letters must be changed, added, removed or swapped with their neighbour.
size_t Distance(std::string_view from, std::string_view to) {
    std::vector<std::vector<size_t>> steps(from.size() + 1, std::vector<size_t>(to.size() + 1));
    for (size_t i = 0; i <= from.size(); ++i) {
        for (size_t j = 0; j <= to.size(); ++j) {
            if (i == 0 || j == 0) {
                steps[i][j] = i + j;
                continue;
            }
            const size_t changed = steps[i - 1][j - 1] + (from[i - 1] == to[j - 1] ? 0 : 1);
            steps[i][j] = std::min({changed, steps[i - 1][j] + 1, steps[i][j - 1] + 1});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1]) {
                steps[i][j] = std::min(steps[i][j], steps[i - 2][j - 2] + 1);
            }
        }
    }
    return steps[from.size()][to.size()];
}

}  // namespace

std::string_view NearMiss(std::string_view word, std::span<const std::string> candidates) {
    constexpr size_t kLongestWord = 64;  // no setting or verb is that long
    if (word.size() > kLongestWord) {
        return {};
    }
    std::string_view nearest;
    size_t fewest = kFarthest + 1;
    for (const std::string& candidate : candidates) {
        const size_t distance = Distance(word, candidate);
        if (distance < fewest && 2 * distance < candidate.size()) {
            nearest = candidate;
            fewest = distance;
        }
    }
    return nearest;
}

}  // namespace velkctl
