// data.h - the data bytes of a command, and what became of making them from words.
#ifndef VELKCTL_TEXT_DATA_H_
#define VELKCTL_TEXT_DATA_H_

#include <array>
#include <string>
#include <utility>

#include "velk.h"

namespace velkctl {

// Always whole: what is not filled is zero.
using Data = std::array<char, VELK_DATA_SIZE>;

// Data bytes, or the problem that kept them from being made: what is wrong and what would be right.
struct Parsed {
    Data data{};
    std::string problem{};

    bool ok() const { return problem.empty(); }
};

inline Parsed Unparsable(std::string problem) {
    return {{}, std::move(problem)};
}

}  // namespace velkctl

#endif  // VELKCTL_TEXT_DATA_H_
