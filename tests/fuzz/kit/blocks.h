// blocks.h - whose a line is, in the files that treat interfaces apart.
#ifndef TESTS_FUZZ_KIT_BLOCKS_H_
#define TESTS_FUZZ_KIT_BLOCKS_H_

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/kit/lines.h"

namespace fuzz {

enum class Owner { kEveryone, kInterface, kOther };

// Whose each line is, seen from the interface; everyone's without one. Nothing when the file's
// blocks are not written as the device has them: there the library's own reading decides.
std::optional<std::vector<Owner>> OwnersOf(std::string_view path, const std::string& interface,
                                           const Texts& lines);

}  // namespace fuzz

#endif  // TESTS_FUZZ_KIT_BLOCKS_H_
