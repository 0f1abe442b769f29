// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// dice.h - random choices for tests that make files at random.
#ifndef TESTS_SUPPORT_DICE_H_
#define TESTS_SUPPORT_DICE_H_

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace testkit {

// The same seed gives the same choices, so that a test that fails fails again.
class Dice {
  public:
    explicit Dice(unsigned seed) : engine_(seed) {}

    size_t Below(size_t count) { return engine_() % count; }
    bool OneIn(size_t count) { return Below(count) == 0; }
    const std::string& OneOf(const std::vector<std::string>& lines) {
        return lines[Below(lines.size())];
    }

  private:
    std::mt19937 engine_;
};

}  // namespace testkit

#endif  // TESTS_SUPPORT_DICE_H_
