// shell_blocks.h - tells which lines of a shell script run for an interface.
#ifndef VELK_BASE_SHELL_BLOCKS_H_
#define VELK_BASE_SHELL_BLOCKS_H_

#include <string>
#include <string_view>

namespace velk {

// Follows the if / then / else / fi blocks that tell the interfaces apart in the scripts of the
// DHCP client. It knows one level: within a block another "if" is a line like any other, and the
// first "fi" ends the block. Keywords in comments do not count.
//
// A block begins at an "if" line that names the script's interface variable. Its condition matches
// when the interface is named there too, however the two are compared.
class ShellBlocks {
  public:
    // `variable` is what a condition must name to begin a block.
    ShellBlocks(std::string_view variable, std::string_view interface)
        : variable_(variable), interface_(interface) {}

    // Takes the next line, with its newline. True when it runs for the interface: outside blocks,
    // in the "then" branch of a condition that matches, in the "else" branch of one that does not.
    // Lines up to "then" and the "fi" line count as outside.
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
