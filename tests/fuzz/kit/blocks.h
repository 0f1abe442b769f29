// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// blocks.h - the interface that each line of a file belongs to.
#ifndef TESTS_FUZZ_KIT_BLOCKS_H_
#define TESTS_FUZZ_KIT_BLOCKS_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/kit/lines.h"

namespace fuzz {

enum class Owner { kEveryone, kInterface, kOther };

// Returns the owner of each line, seen from the interface; without an interface all lines are
// everyone's. Returns nothing if the file's blocks are not in the device's usual form: there the
// library's own reading decides.
std::optional<std::vector<Owner>> OwnersOf(std::string_view path, const std::string& interface,
                                           const Texts& lines);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_BLOCKS_H_
