// config_blocks.h - tells which lines of the DHCP client's configuration concern an interface.
#ifndef VELK_DHCP_CONFIG_BLOCKS_H_
#define VELK_DHCP_CONFIG_BLOCKS_H_

#include <string>
#include <string_view>

namespace velk {

constexpr std::string_view kBlockEnd = "}";

// Follows the blocks of dhclient.conf(5): the statements of an interface stand between a line with
// "interface" and its name and a line with "}", those outside are for all interfaces. Without an
// interface name every block is the wanted one, and the file begins inside one.
class ConfigBlocks {
  public:
    // With `comment_aware`, words behind a "#" do not count.
    ConfigBlocks(std::string_view nic, bool comment_aware)
        : nic_(nic), comment_aware_(comment_aware), in_block_(nic.empty()) {}

    // Takes the next line, with its newline. False for the lines of other interfaces' blocks.
    bool Concerns(std::string_view line);

    // The line taken last lies in the interface's block. No longer true at its closing line.
    bool in_block() const { return in_block_; }

  private:
    const std::string nic_;
    const bool comment_aware_;
    bool in_block_;
    bool other_block_ = false;
};

}  // namespace velk

#endif  // VELK_DHCP_CONFIG_BLOCKS_H_
