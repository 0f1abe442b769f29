// SPDX-FileCopyrightText: 2026 The libvelk authors
// SPDX-License-Identifier: MIT

// shell_blocks.h - finds the lines of a shell script that run for an interface.
#ifndef VELK_BASE_SHELL_BLOCKS_H_
#define VELK_BASE_SHELL_BLOCKS_H_

#include <string>
#include <string_view>

namespace velk {

// Follows the if / then / else / fi blocks that select an interface in the scripts of the DHCP
// client. It knows one level: within a block another "if" is an ordinary line, and the first "fi"
// ends the block. Keywords in comments do not count.
//
// A block begins at an "if" line that names the script's interface variable. Its condition matches
// if the line also names the interface; the comparison operator is ignored.
class ShellBlocks {
  public:
    // A condition must name `variable` to begin a block.
    ShellBlocks(std::string_view variable, std::string_view interface)
        : variable_(variable), interface_(interface) {}

    // Takes the next line, with its newline. Returns true if it runs for the interface: outside
    // blocks, in the "then" branch of a condition that matches, in the "else" branch of one that
    // does not. Lines up to "then" and the "fi" line count as outside.
    bool RunsNext(std::string_view line);

  private:
    enum class Place { kOutside, kCondition, kThen, kElse };

    bool BeginsBlock(std::string_view line);

    const std::string variable_;
    const std::string interface_;
    Place place_ = Place::kOutside;
    bool matches_ = false;
};

}  // namespace velk

#endif  // VELK_BASE_SHELL_BLOCKS_H_
